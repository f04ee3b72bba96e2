// The workbench's procedures: adding, building, opening and extracting.
#include "workbench/workbench.h"

#include "host/find_file.h"
#include "util/number_text.h"
#include "workbench/app_context.h"
#include "workbench/directive_text.h"
#include "workbench/general_procedures.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace qb::workbench {

namespace {

// The file attribute mask of a folder expansion: every entry that is not a folder.
constexpr int kFileAttributes = host::kAttrPlainFile;

// Status codes of the engine the workbench acts on.
constexpr int kStarting = 0;
constexpr int kComplete = 2;
constexpr int kError = 3;
constexpr int kCanceled = 4;
constexpr int kCancelFailed = 8;

QString fileNameOf(const QString &path)
{
    return GetPathPart(path, u"/"_s, 1);
}

} // namespace

Workbench::Workbench(
    ListSurface &list, StripSurface &strip, MenuSurface &menus, UserDialogs &dialogs, QObject *parent)
    : QObject(parent)
    , m_list(list)
    , m_strip(strip)
    , m_menus(menus)
    , m_dialogs(dialogs)
    , m_clock([] { return QTime::currentTime(); })
{
    m_timer.setInterval(1000);
    connect(&m_timer, &QTimer::timeout, this, &Workbench::onTimer);
    connect(&m_engine, &engine::FFmpegX::StatusChange, this, &Workbench::onStatusChange);
    connect(&m_engine, &engine::FFmpegX::ProgressChange, this, &Workbench::onProgressChange);
    connect(&m_cab, &cabinet::clsCAB::FileFound, this, &Workbench::onFileFound);
    connect(&m_cab, &cabinet::clsCAB::RaiseError, this, &Workbench::onRaiseError);
    connect(&m_cab, &cabinet::clsCAB::BeforeExtract, this, &Workbench::onBeforeExtract, Qt::DirectConnection);
}

void Workbench::setAddMenusEnabled(bool on)
{
    for (const Menu menu : {Menu::Save, Menu::SaveAs, Menu::AddBase, Menu::Delete, Menu::Clear})
        m_menus.setMenuEnabled(menu, on);
}

void Workbench::SetMenusEnabled(bool flag)
{
    for (const Menu menu :
        {Menu::Open, Menu::Extract, Menu::Save, Menu::SaveAs, Menu::AddBase, Menu::Delete, Menu::Clear})
        m_menus.setMenuEnabled(menu, flag);
}

void Workbench::DropFile(const QStringList &dropped, const QString &inFile)
{
    if (!m_list.Enabled())
        return;
    setAddMenusEnabled(false);
    m_list.setEnabled(false);

    const qsizetype count = inFile.isEmpty() ? dropped.size() : 1;
    if (count > 0) {
        m_list.SetRedraw(false);
        for (qsizetype i = 0; i < count; ++i) {
            QString name = inFile;
            if (inFile.isEmpty()) {
                name = TrimAtNull(dropped[i]);
                // The folder of the first dropped item decides for all.
                if (i == 0)
                    mBasePath = AddBackslash(GetPathPart(name, u"/"_s, 0));
            }
            if (name.isEmpty())
                continue;
            if (IsDirectory(name)) {
                host::clsFindFile finder;
                finder.FindFiles(name, u"*.*"_s, kFileAttributes, true);
                const QStringList &files = finder.results();
                for (qsizetype k = 0; k < files.size(); ++k) {
                    addRow(TrimAtNull(files[k]));
                    // Lets a long add paint now and then.
                    if ((k + 1) % 1000 == 0) {
                        m_list.SetRedraw(true);
                        m_list.SetRedraw(false);
                    }
                }
            } else {
                addRow(TrimAtNull(name));
            }
        }
        m_list.SetRedraw(true);
    }
    m_strip.setCaption(u" "_s + QString::number(m_list.Count()) + u" 文件被添加"_s);
    setAddMenusEnabled(true);
    m_list.setEnabled(true);
}

void Workbench::addRow(const QString &path)
{
    m_list.AddItem(PackageRowText(path, mBasePath, m_types), path);
}

void Workbench::mnuAdd(int Index)
{
    if (!m_list.Enabled())
        return;
    if (FileExists(m_cab.CabName())) {
        if (m_dialogs.MsgBox(u"是否关闭已经打开的 CAB 文件包？"_s, kYesNo) != kAnswerYes)
            return;
        m_list.Clear();
    }
    if (Index == 1) {
        const QString folder = m_dialogs.SelectFolder(u"添加一个目录"_s);
        if (IsDirectory(folder)) {
            mBasePath = folder;
            DropFile({}, folder);
        }
        return;
    }
    const ChosenFiles chosen = m_dialogs.GetOpenFiles(u"*.*"_s, ReadSetting(u"LastOpenFileFolder"), true);
    if (chosen.cancelled())
        return;
    QString firstText;
    if (chosen.names.size() > 1) {
        // The root "/" already ends in its separator.
        const QString folder = AddBackslash(chosen.folder);
        for (const QString &name : chosen.names) {
            if (name.isEmpty())
                continue;
            mBasePath = folder;
            DropFile({}, folder + name);
        }
        firstText = chosen.folder;
    } else {
        const QString path = AddBackslash(chosen.folder) + chosen.names.first();
        mBasePath = AddBackslash(GetPathPart(path, u"/"_s, 0));
        DropFile({}, path);
        firstText = path;
    }
    // With several files this is the folder above theirs, by the same rule.
    WriteSetting(u"LastOpenFileFolder", GetPathPart(firstText, u"/"_s, 0));
}

void Workbench::cPrevInstance_PrevInstance(
    const QString &, bool bReady, const QStringList &Files, const QStringList &Folders, const QStringList &)
{
    if (!bReady)
        return;
    if (restoreWindow)
        restoreWindow();
    // Words that are no paths are ignored.
    for (const QStringList *items : {&Files, &Folders}) {
        if (items->isEmpty())
            continue;
        if (FileExists(m_cab.CabName())) {
            if (m_dialogs.MsgBox(u"是否关闭已经打开的 CAB 文件包？"_s, kYesNo) != kAnswerYes)
                return;
            m_list.Clear();
        }
        for (const QString &item : *items) {
            // A folder ends in its separator: its files are named relative to it.
            mBasePath = AddBackslash(GetPathPart(item, u"/"_s, 0));
            DropFile({}, item);
        }
    }
}

void Workbench::mnuDelete()
{
    if (m_list.ItemIndex() >= 0)
        m_list.ItemRemove(m_list.ItemIndex());
}

void Workbench::mnuClear()
{
    m_list.Clear();
}

void Workbench::ShowStatus(const QString &text)
{
    m_strip.setCaption(u"  ["_s + m_clock().toString(u"HH:mm:ss"_s) + u"] "_s + text);
}

void Workbench::mnuSave(int Index)
{
    if (m_list.Count() < 1)
        return;
    const QString base = AddBackslash(mBasePath);
    if (base == u"/"_s) {
        mCabinetPath = base + u"新建压缩包"_s + u".cab"_s;
    } else {
        QString folder = base;
        folder.chop(1);
        mCabinetPath = base + GetPathPart(folder, u"/"_s, 1) + u".cab"_s;
    }
    if (Index == 1) {
        const QString chosen = m_dialogs.GetSaveFile(u"*.cab"_s, mCabinetPath);
        if (chosen.isEmpty())
            return;
        mCabinetPath = m_engine.RenameExists(TrimAtNull(chosen));
    }
    BuildCabinet();
}

void Workbench::BuildCabinet()
{
    if (!FileExists(gMakeCabPath)) {
        m_dialogs.MsgBox(u"无法找到 "_s + gMakeCabPath, kCritical);
        return;
    }
    if (m_engine.Processing()) {
        ShowStatus(u"无法进行，正在处理上一请求!"_s);
        return;
    }
    ShowStatus(u"正在索引文件..."_s);
    mSourceBytes = 0;
    m_buildStarted = QDateTime::currentDateTime();

    DeleteTempFiles();
    QString folder;
    mDirectivePath = CreateTempName(QString(), folder);
    folder.clear();
    mNoticePath = CreateTempName(QString(), folder);
    WriteTextFile(NoticeText(), mNoticePath, false);

    QList<DirectiveEntry> entries;
    entries.reserve(m_list.Count());
    for (int i = 0; i < m_list.Count(); ++i) {
        mSourceBytes += double(ReadGrouped(m_list.ItemText(i, kColumnSize)));
        entries.append({m_list.ItemText(i, kColumnSource),
            m_list.ItemText(i, kColumnFolder) + m_list.ItemText(i, kColumnName)});
    }
    const QString text = DirectiveText(mCabinetPath, mNoticePath,
        CompressionLines(ReadSetting(u"CompressionType"), ReadSetting(u"CompressionMemory")), entries);
    QFile directive(mDirectivePath);
    if (directive.open(QIODevice::WriteOnly | QIODevice::Truncate))
        directive.write(text.toUtf8());
    directive.close();

    m_engine.setOnlyUseExtCommandLine(true);
    m_engine.setCommandLine(MakeCabCommandLine(gMakeCabPath, mDirectivePath));
    m_engine.StartProcess();
}

void Workbench::onProgressChange(
    int ProgressValue, int ProgressMax, int, const QString &, const QString &, bool)
{
    if (!m_engine.Processing() || ProgressMax <= 0)
        return;
    m_strip.setRefresh(false);
    m_strip.setMax(ProgressMax);
    m_strip.setvalue(ProgressValue);
    const double percent = util::RoundHalfEven(double(ProgressValue) * 100.0 / double(ProgressMax));
    m_strip.setCaption(u"  "_s + QString::number(qint64(percent)) + u"%"_s + u" - "_s + u"生成压缩包 "_s
        + fileNameOf(mCabinetPath));
    m_strip.setRefresh(true);
}

void Workbench::onStatusChange(int Status, const QString &)
{
    switch (Status) {
    case kStarting:
        SetMenusEnabled(false);
        m_menus.setMenuEnabled(Menu::Cancel, true);
        ShowStatus(u"开始压缩..."_s);
        break;
    case kComplete: {
        SetMenusEnabled(true);
        m_menus.setMenuEnabled(Menu::Cancel, false);
        m_strip.setvalue(0);
        ShowStatus(u"已经完成! "_s + mCabinetPath + u" ["_s + FormatFileSize(mCabinetPath) + u"/"_s
            + FormatSize(mSourceBytes) + u"]"_s);
        CleanSetupFiles();
        m_timer.start();
        if (FileExists(mCabinetPath)) {
            if (util::Val(ReadSetting(u"CompleteAction")) == 1
                && m_dialogs.MsgBox(mCabinetPath + u"\r\n是否使用系统默认方式打开已创建的压缩包？"_s, kYesNo)
                    == kAnswerYes)
                m_dialogs.OpenWithSystem(mCabinetPath);
        } else {
            m_dialogs.MsgBox(u"压缩包创建失败"_s, kCritical);
        }
        // Files left while the question was open go too.
        CleanSetupFiles();
        m_timer.start();
        break;
    }
    case kError:
        m_menus.setMenuEnabled(Menu::Cancel, false);
        ShowStatus(u"发生错误!"_s);
        break;
    case kCanceled:
        m_menus.setMenuEnabled(Menu::Cancel, false);
        m_strip.setvalue(0);
        CleanSetupFiles();
        m_timer.start();
        ShowStatus(u"任务已经取消!"_s);
        break;
    case kCancelFailed:
        m_menus.setMenuEnabled(Menu::Cancel, false);
        ShowStatus(u"无法取消任务!"_s);
        break;
    default:
        break;
    }
}

void Workbench::mnuCancel()
{
    if (m_engine.Processing()) {
        ShowStatus(u"取消任务..."_s);
        m_engine.CancelProcess();
    } else {
        ShowStatus(u"没有需要取消的任务!"_s);
    }
}

void Workbench::CleanSetupFiles()
{
    const QStringList folders {
        GetPathPart(mCabinetPath, u"/"_s, 0), QCoreApplication::applicationDirPath(), mBasePath};
    for (const QString &folder : folders) {
        if (folder.isEmpty())
            continue;
        for (const QString &name : {u"setup.inf"_s, u"setup.rpt"_s}) {
            const QFileInfo file(AddBackslash(folder) + name);
            // A setup file older than the build is the user's own, perhaps part of the package.
            if (file.isFile() && m_buildStarted.isValid() && file.lastModified().addSecs(2) >= m_buildStarted)
                QFile::remove(file.filePath());
        }
    }
}

void Workbench::DeleteTempFiles()
{
    for (const QString &path : {mDirectivePath, mNoticePath}) {
        if (!path.isEmpty() && QFileInfo(path).isFile())
            QFile::remove(path);
    }
}

void Workbench::onTimer()
{
    m_timer.stop();
    DeleteTempFiles();
}

void Workbench::mnuOpen()
{
    const ChosenFiles chosen = m_dialogs.GetOpenFiles(u"*.cab"_s, ReadSetting(u"LastOpenFileFolder"), false);
    if (chosen.cancelled())
        return;
    SetMenusEnabled(false);
    m_list.Clear();
    m_list.setEnabled(false);
    m_list.SetRedraw(false);
    m_cab.setCabName(AddBackslash(chosen.folder) + chosen.names.first());
    m_cab.GetInfo(QString());
    m_list.SetRedraw(true);
    m_list.setEnabled(true);
    SetMenusEnabled(true);
}

void Workbench::onFileFound(
    const QString &FileName, const QDateTime &DateTime, qint64 Size, const QString &Path)
{
    const QString type = m_types.forExtension(GetPathPart(FileName, u"."_s, 1));
    if (FileName == HiddenNoticeName())
        return;
    m_list.AddItem(FileName + u'|' + Path + u'|' + type + u'|' + FormatGrouped(Size) + u'|'
            + DefaultDateText(DateTime) + u'|',
        FileName);
}

void Workbench::onRaiseError(long Number, const QString &, const QString &Description)
{
    ShowStatus(u"发生错误："_s + Description + u" <"_s + QString::number(Number) + u">"_s);
}

void Workbench::onBeforeExtract(const QString &, bool &)
{
    ++mExtractCount;
    if (mExtractCount % 100 == 0)
        m_strip.setvalue(mExtractCount);
}

void Workbench::mnuExtract()
{
    if (!FileExists(m_cab.CabName())) {
        m_dialogs.MsgBox(u"还未打开任何 CAB 文件包！"_s, kInformation);
        return;
    }
    SetMenusEnabled(false);
    const QString folder = m_dialogs.SelectFolder(u"选择释放目录"_s);
    const bool extracting = IsDirectory(folder);
    if (extracting) {
        QStringList selected;
        for (int i = 0; i < m_list.Count(); ++i) {
            if (m_list.ItemSelected(i))
                selected.append(m_list.ItemText(i, kColumnFolder) + m_list.ItemText(i, kColumnName));
        }
        mExtractCount = 0;
        if (selected.isEmpty()) {
            m_strip.setMax(m_cab.FileCount());
            m_cab.Extract(QString(), folder, QString());
        } else {
            m_strip.setMax(selected.size());
            for (const QString &name : std::as_const(selected))
                m_cab.Extract(name, folder, QString());
        }
    }
    SetMenusEnabled(true);
    m_strip.setRefresh(false);
    m_strip.setMax(100);
    m_strip.setvalue(0);
    m_strip.setRefresh(true);
    mExtractCount = 0;
    if (extracting
        && m_dialogs.MsgBox(folder + u"\r\n是否立即查看文件释放目标路径？"_s, kYesNo) == kAnswerYes)
        m_dialogs.OpenWithSystem(folder);
}

} // namespace qb::workbench
