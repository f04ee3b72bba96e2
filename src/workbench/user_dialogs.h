// Every question, message and file dialog of the workbench goes through this one surface: the
// window answers with real dialogs, tests with prepared answers.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::workbench {

// Message box flags and answers, as the workbench uses them.
inline constexpr int kYesNo = 4;
inline constexpr int kCritical = 16;
inline constexpr int kExclamation = 48;
inline constexpr int kInformation = 64;
inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;

// Files chosen in an open dialog: their folder (without a trailing "/", except the root) and
// their names. Nothing chosen means the dialog was cancelled.
struct ChosenFiles
{
    QString folder;
    QStringList names;
    bool cancelled() const { return names.isEmpty(); }
};

class UserDialogs
{
public:
    virtual ~UserDialogs() = default;
    // A message box titled with the program's title; flags as above. Returns the answer.
    virtual int MsgBox(const QString &Prompt, int Buttons) = 0;
    // The same under a title of its own (the about box); without one of its own it is a MsgBox.
    virtual int MsgBoxTitled(const QString &Prompt, int Buttons, const QString &Title)
    {
        static_cast<void>(Title);
        return MsgBox(Prompt, Buttons);
    }
    // filter: a pattern such as "*.cab"; several: more than one file may be chosen.
    virtual ChosenFiles GetOpenFiles(const QString &filter, const QString &initialFolder, bool several) = 0;
    // The file to save to, starting from proposed; "" on cancel. No question about overwriting.
    virtual QString GetSaveFile(const QString &filter, const QString &proposed) = 0;
    // A folder; "" on cancel.
    virtual QString SelectFolder(const QString &Title) = 0;
    // Opens a file or folder the way the desktop opens it.
    virtual void OpenWithSystem(const QString &path) = 0;
};

} // namespace qb::workbench
