// The workbench without its window: the package list, the build of a cabinet through the job
// engine and our cabinet maker, and opening and extracting a cabinet. The window (or a test)
// gives it a list, a strip, the menus and the dialogs; everything else it owns.
#pragma once

#include "cabinet/cab_reader.h"
#include "engine/ffmpegx.h"
#include "workbench/list_surface.h"
#include "workbench/menu_surface.h"
#include "workbench/package_rows.h"
#include "workbench/strip_surface.h"
#include "workbench/user_dialogs.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>

namespace qb::workbench {

class Workbench : public QObject
{
    Q_OBJECT

public:
    Workbench(ListSurface &list, StripSurface &strip, MenuSurface &menus, UserDialogs &dialogs,
        QObject *parent = nullptr);

    // Adding to the package.
    // Adds inFile, or with inFile empty the dropped names (the first one's folder becomes the base).
    void DropFile(const QStringList &dropped, const QString &inFile);
    // Index 0: files from the open dialog; 1: a folder from the folder browser.
    void mnuAdd(int Index);
    void mnuDelete();
    void mnuClear();

    // Building.
    // Index 0: build under the default name; 1: ask for the name first.
    void mnuSave(int Index);
    void BuildCabinet();
    // Compression lines for the directive file in place of those of the settings (a build from
    // the command line chooses its own); empty: the settings decide.
    void setCompressionLines(const QStringList &lines) { m_compressionLines = lines; }
    void mnuCancel();
    void CleanSetupFiles();
    void DeleteTempFiles();
    void ShowStatus(const QString &text);

    // Opening and extracting.
    void mnuOpen();
    // Opens a cabinet into the list, as the open menu does once a file is chosen.
    void OpenCabinet(const QString &path);
    void mnuExtract();

    // A request from the command line or another instance: files, then folders; other words
    // are ignored, but for "--open" followed by one cabinet, which opens it.
    void cPrevInstance_PrevInstance(const QString &sCommand, bool bReady, const QStringList &Files,
        const QStringList &Folders, const QStringList &Parameters);
    // Brings a minimised or maximised window back to its normal state; set by the window.
    std::function<void()> restoreWindow;

    // The menu entries that a running job or add holds back, in their order.
    void SetMenusEnabled(bool flag);

    engine::FFmpegX &FFmpegX1() { return m_engine; }
    cabinet::clsCAB &cCab() { return m_cab; }
    QTimer &Timer1() { return m_timer; }

    // Window-level fields.
    QString mBasePath;
    QString mCabinetPath;
    QString mDirectivePath;
    QString mNoticePath;
    double mSourceBytes = 0;
    int mExtractCount = 0;

    // The clock of the status line; tests fix it.
    void setClock(std::function<QTime()> clock) { m_clock = std::move(clock); }

private:
    void addRow(const QString &path);
    // Tells the user which names an add could not take, once the add is over.
    void reportRefused();
    void onStatusChange(int Status, const QString &StatusText);
    void onProgressChange(int ProgressValue, int ProgressMax, int FPSSpeed, const QString &RemainderInfo,
        const QString &OutputInfo, bool LastStatusText);
    void onFileFound(const QString &FileName, const QDateTime &DateTime, qint64 Size, const QString &Path);
    void onRaiseError(long Number, const QString &Source, const QString &Description);
    void onBeforeExtract(const QString &FileName, bool &Cancel);
    void onTimer();
    void setAddMenusEnabled(bool on);

    ListSurface &m_list;
    StripSurface &m_strip;
    MenuSurface &m_menus;
    UserDialogs &m_dialogs;
    engine::FFmpegX m_engine;
    cabinet::clsCAB m_cab;
    QTimer m_timer;
    TypeNames m_types;
    QDateTime m_buildStarted;
    std::function<QTime()> m_clock;
    QStringList m_refused;
    QStringList m_compressionLines;
};

} // namespace qb::workbench
