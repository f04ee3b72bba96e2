// The workbench's procedures: adding, building, opening and extracting.
#include "workbench/workbench.h"

#include "engine/status_codes.h"
#include "host/find_file.h"
#include "util/number_text.h"
#include "workbench/app_context.h"
#include "workbench/directive_text.h"
#include "workbench/general_procedures.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace qb::workbench {

namespace {

// The file attribute mask of a folder expansion: every entry that is not a folder.
constexpr int kFileAttributes = host::kAttrPlainFile;

using engine::kCanceled;
using engine::kCancelFailed;
using engine::kComplete;
using engine::kError;
using engine::kStarting;

QString fileNameOf(const QString &path)
{
    return GetPathPart(path, u"/"_s, 1);
}

// The one word of the command line: the desktop's "open" entry puts it before a cabinet.
const QString kOpenWord = u"--open"_s;

// How many refused names one message lists before it only counts the rest.
constexpr qsizetype kRefusedNamesShown = 20;

// "\" separates folders inside a cabinet, so a name holding one would come out as another file;
// a name that is not UTF-8 reached us as replacement characters and cannot be opened by them.
bool storableInCabinet(const QString &path, const QString &basePath)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    QString folder = path.left(slash + 1);
    if (!basePath.isEmpty() && basePath != u"/"_s)
        folder.remove(basePath, Qt::CaseSensitive);
    if (path.mid(slash + 1).contains(u'\\') || folder.contains(u'\\'))
        return false;
    return !path.contains(QChar::ReplacementCharacter) || QFileInfo::exists(path);
}

// All of the bytes, flushed and closed without an error.
bool writeWhole(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const bool written = file.write(bytes) == bytes.size() && file.flush();
    file.close();
    return written && file.error() == QFileDevice::NoError;
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
    reportRefused();
}

void Workbench::addRow(const QString &path)
{
    if (!storableInCabinet(path, mBasePath)) {
        m_refused.append(path);
        return;
    }
    // The exact name goes with the row: its columns are for display and cannot keep every name.
    const QString nameInCabinet = CabinetFolderOf(path, mBasePath) + path.mid(path.lastIndexOf(u'/') + 1);
    m_list.AddItem(PackageRowText(path, mBasePath, m_types), path, nameInCabinet);
}

void Workbench::reportRefused()
{
    if (m_refused.isEmpty())
        return;
    const QStringList refused = std::exchange(m_refused, {});
    QString text
        = u"以下文件的名称无法存入 CAB 压缩包（含有 \"\\\" 或不是有效的 UTF-8 编码），没有添加，请改名后再添加："_s;
    for (qsizetype i = 0; i < refused.size() && i < kRefusedNamesShown; ++i)
        text += u"\r\n"_s + refused[i];
    if (refused.size() > kRefusedNamesShown)
        text += u"\r\n……共 "_s + QString::number(refused.size()) + u" 个文件"_s;
    m_dialogs.MsgBox(text, kExclamation);
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

void Workbench::cPrevInstance_PrevInstance(const QString &sCommand, bool bReady, const QStringList &Files,
    const QStringList &Folders, const QStringList &Parameters)
{
    if (!bReady)
        return;
    if (restoreWindow)
        restoreWindow();
    // The desktop's "open" entry: exactly the word and one cabinet, opened as the open menu does.
    if (Parameters == QStringList {kOpenWord} && Files.size() == 1 && Folders.isEmpty()
        && sCommand.startsWith(u'"' + kOpenWord + u"\" "_s)) {
        OpenCabinet(Files.first());
        return;
    }
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
    // The maker numbers cabinets by the "*" of its name template; such a path would come out as
    // another name.
    if (mCabinetPath.contains(u'*')) {
        m_dialogs.MsgBox(u"压缩包的路径中不能含有 \"*\"，请换一个名称："_s + mCabinetPath, kCritical);
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

    QList<DirectiveEntry> entries;
    entries.reserve(m_list.Count());
    for (int i = 0; i < m_list.Count(); ++i) {
        // The file itself, not the size column: a name with "|" shifts the columns.
        mSourceBytes += double(GetFileSizeBytes(m_list.ItemFile(i)));
        entries.append({m_list.ItemFile(i), m_list.ItemTag(i)});
    }
    const QStringList compression = m_compressionLines.isEmpty()
        ? CompressionLines(ReadSetting(u"CompressionType"), ReadSetting(u"CompressionMemory"))
        : m_compressionLines;
    const QString text = DirectiveText(mCabinetPath, mNoticePath, compression, entries);
    // Without both files the maker would build something else than the list, or nothing.
    QString failed;
    if (mDirectivePath.isEmpty() || mNoticePath.isEmpty())
        failed = GetTempDir().isEmpty() ? u"临时文件夹不存在"_s : GetTempDir();
    else if (!WriteTextFile(NoticeText(), mNoticePath, false))
        failed = mNoticePath;
    else if (!writeWhole(mDirectivePath, text.toUtf8()))
        failed = mDirectivePath;
    if (!failed.isEmpty()) {
        DeleteTempFiles();
        ShowStatus(u"发生错误!"_s);
        m_dialogs.MsgBox(u"无法写入临时文件，压缩包没有生成："_s + failed
                + u"\r\n请检查临时文件夹（TMPDIR）是否存在、可写且有足够空间。"_s,
            kCritical);
        return;
    }

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
    OpenCabinet(AddBackslash(chosen.folder) + chosen.names.first());
}

void Workbench::OpenCabinet(const QString &path)
{
    SetMenusEnabled(false);
    m_list.Clear();
    m_list.setEnabled(false);
    m_list.SetRedraw(false);
    m_cab.setCabName(path);
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
        FileName, Path + FileName);
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
                selected.append(m_list.ItemTag(i));
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
