// The workbench's questions and file dialogs as the desktop shows them.
#pragma once

#include "workbench/user_dialogs.h"

class QWidget;

namespace qb::workbench {

class QtUserDialogs : public UserDialogs
{
public:
    explicit QtUserDialogs(QWidget *parent)
        : m_parent(parent)
    { }

    int MsgBox(const QString &Prompt, int Buttons) override;
    int MsgBoxTitled(const QString &Prompt, int Buttons, const QString &Title) override;
    ChosenFiles GetOpenFiles(const QString &filter, const QString &initialFolder, bool several) override;
    QString GetSaveFile(const QString &filter, const QString &proposed) override;
    QString SelectFolder(const QString &Title) override;
    void OpenWithSystem(const QString &path) override;

    // A dialog filter for a pattern: "*.*" means every file here, dotted or not.
    static QString DialogFilter(const QString &pattern);

private:
    QWidget *m_parent;
};

} // namespace qb::workbench
