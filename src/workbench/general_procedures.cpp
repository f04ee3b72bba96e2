// Path, size, existence and shortcut procedures of the workbench.
#include "workbench/general_procedures.h"

#include "util/file_names.h"
#include "util/size_format.h"
#include "util/string_array.h"
#include "workbench/app_context.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

namespace qb::workbench {

QString GetPathPart(const QString &Path, const QString &Delimiter, int Mode)
{
    const qsizetype p = Delimiter.isEmpty() ? -1 : Path.lastIndexOf(Delimiter);
    if (p < 0)
        return Path;
    switch (Mode) {
    case 0: {
        if (Delimiter != QLatin1String("."))
            return Path.left(p);
        const qsizetype folder = std::max(Path.lastIndexOf(u'\\'), Path.lastIndexOf(u'/'));
        if (folder > p)
            return {}; // the only dot is in a folder's name
        return Path.mid(folder + 1, p - folder - 1);
    }
    case 1:
        return Path.mid(p + Delimiter.size());
    case 2:
        return Path.left(p);
    default:
        return {};
    }
}

QString AddBackslash(const QString &Path, QChar Separator)
{
    return Path.endsWith(Separator) ? Path : Path + Separator;
}

QString frm::AddBackslash(const QString &Path, QChar Separator)
{
    return Path.isEmpty() ? Path : workbench::AddBackslash(Path, Separator);
}

bool FileExists(const QString &Path, bool UseWide)
{
    Q_UNUSED(UseWide);
    return util::FileExists(Path);
}

bool IsDirectory(const QString &Path)
{
    struct stat st;
    const QByteArray native = QFile::encodeName(Path);
    if (native.isEmpty() || native.contains('\0') || ::stat(native.constData(), &st) != 0)
        return true; // a failed lookup reads as a folder, as callers expect
    return S_ISDIR(st.st_mode);
}

bool FolderHasEntries(const QString &Path)
{
    if (Path.isEmpty())
        return false;
    return util::DirExists(Path);
}

QString GetSpecialFolder(quintptr Owner, int FolderId)
{
    Q_UNUSED(Owner);
    switch (FolderId) {
    case CSIDL_DESKTOPDIRECTORY:
        return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    case CSIDL_SENDTO:
        return QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation);
    default:
        return {};
    }
}

QString GetSystemDir()
{
    return AddBackslash(util::GetWindowsSystemDirectory());
}

QString GetTempDir()
{
    const QString folder = util::GetWindowsTempDirectory();
    return folder.isEmpty() ? QString() : AddBackslash(folder);
}

QString CreateTempName(const QString &Prefix, QString &Folder)
{
    const QString title = gAppTitle.isEmpty() ? QStringLiteral("Quillbox Desk") : gAppTitle;
    const QString prefix = Prefix.isEmpty() ? title.left(3) + QStringLiteral("TMP") : Prefix;
    if (!FolderHasEntries(Folder))
        Folder = GetTempDir();
    return util::CreateUniqueTempFile(Folder, prefix);
}

qint64 GetFileSizeBytes(const QString &Path)
{
    return util::GetFileLen(Path);
}

QString FormatSize(double Value)
{
    return util::FormatByteSize(Value);
}

QString FormatFileSize(const QString &Path)
{
    return FormatSize(double(GetFileSizeBytes(Path)));
}

QString GetModulePath()
{
    char buffer[4096];
    const ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer);
    if (length <= 0 || size_t(length) >= sizeof buffer)
        return {};
    return QFile::decodeName(QByteArray(buffer, length));
}

QString TrimAtNull(const QString &Text)
{
    return util::CleanString(Text);
}

namespace {

// A value of a desktop entry: backslash, line ends and tabs written as escapes.
QString entryValue(const QString &text)
{
    QString out;
    for (const QChar c : text) {
        if (c == u'\\')
            out += QStringLiteral("\\\\");
        else if (c == u'\n')
            out += QStringLiteral("\\n");
        else if (c == u'\r')
            out += QStringLiteral("\\r");
        else if (c == u'\t')
            out += QStringLiteral("\\t");
        else
            out += c;
    }
    return out;
}

// One argument of an Exec line, quoted so that no character of it is read as syntax.
QString execArgument(const QString &argument)
{
    QString quoted = QStringLiteral("\"");
    for (const QChar c : argument) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            quoted += u'\\';
        if (c == u'%')
            quoted += u'%';
        quoted += c;
    }
    quoted += u'"';
    return entryValue(quoted);
}

} // namespace

bool CreateShortcutFile(const QString &LinkPath, const QString &TargetPath, const QString &WorkingDirectory,
    const QString &HotKey, const QString &Description, int WindowStyle, const QString &IconPath,
    int IconIndex)
{
    Q_UNUSED(HotKey);
    Q_UNUSED(WindowStyle);
    Q_UNUSED(IconIndex);
    if (LinkPath.isEmpty() || TargetPath.isEmpty())
        return false;
    QString name = QFileInfo(LinkPath).completeBaseName();
    if (name.isEmpty())
        name = QFileInfo(TargetPath).fileName();

    QString text = QStringLiteral("[Desktop Entry]\nType=Application\nVersion=1.5\n");
    text += QStringLiteral("Name=") + entryValue(name) + u'\n';
    if (!Description.isEmpty())
        text += QStringLiteral("Comment=") + entryValue(Description) + u'\n';
    text += QStringLiteral("Exec=") + execArgument(TargetPath) + QStringLiteral(" %F\n");
    if (!WorkingDirectory.isEmpty())
        text += QStringLiteral("Path=") + entryValue(WorkingDirectory) + u'\n';
    text += QStringLiteral("Icon=") + entryValue(IconPath.isEmpty() ? TargetPath : IconPath) + u'\n';
    text += QStringLiteral("Terminal=false\n");

    QSaveFile file(LinkPath);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(text.toUtf8());
    if (!file.commit())
        return false;
    // Desktops run only launchers that are marked executable.
    return QFile::setPermissions(LinkPath, QFile::permissions(LinkPath) | QFile::ExeOwner | QFile::ExeUser);
}

} // namespace qb::workbench
