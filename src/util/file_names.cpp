// File and folder name helpers on the POSIX file layer.
#include "util/file_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qb::util {

namespace {

bool statPath(const QString &path, struct stat &st)
{
    if (path.isEmpty())
        return false;
    const QByteArray native = QFile::encodeName(path);
    if (native.contains('\0'))
        return false;
    return ::stat(native.constData(), &st) == 0;
}

// Opens a folder and reads its first entry; a folder always lists at least "." on this platform.
bool folderYieldsName(const QString &path)
{
    const QByteArray native = QFile::encodeName(path);
    if (native.isEmpty() || native.contains('\0'))
        return false;
    DIR *dir = ::opendir(native.constData());
    if (!dir)
        return false;
    const dirent *entry = ::readdir(dir);
    const bool named = entry && entry->d_name[0] != '\0';
    ::closedir(dir);
    return named;
}

} // namespace

bool FileExists(const QString &fileName)
{
    struct stat st;
    return statPath(fileName, st);
}

bool DirExists(const QString &path)
{
    if (path.isEmpty())
        return false;
    return folderYieldsName(path.endsWith(u'/') ? path : path + u'/');
}

bool DirectoryExists(const QString &path)
{
    const QString folder = cPath(path);
    if (folder.trimmed().isEmpty())
        return false;
    return folderYieldsName(folder);
}

QString cPath(const QString &path)
{
    if (path.trimmed().isEmpty())
        return path;
    return path.endsWith(u'/') ? path : path + u'/';
}

bool MakedPath(const QString &path)
{
    if (path.isEmpty())
        return false;
    const QStringList pieces = path.split(u'/');
    QString prefix;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        prefix += pieces[i];
        if (!pieces[i].isEmpty() && !FileExists(prefix))
            ::mkdir(QFile::encodeName(prefix).constData(), 0777); // a failure shows in the final test
        if (i + 1 < pieces.size())
            prefix += u'/';
    }
    struct stat st;
    return statPath(path, st) && S_ISDIR(st.st_mode);
}

QString RenameExists(const QString &fileName)
{
    if (!FileExists(fileName))
        return fileName;
    const qsizetype slash = fileName.lastIndexOf(u'/');
    const qsizetype dot = fileName.lastIndexOf(u'.');
    // A dot that belongs to a folder, or that starts a hidden name, is no extension.
    const bool hasExtension = dot > slash + 1;
    const QString stem = hasExtension ? fileName.left(dot) : fileName;
    const QString extension = hasExtension ? fileName.mid(dot) : QString();
    for (quint64 counter = 1;; ++counter) {
        const QString candidate = stem + u'(' + QString::number(counter) + u')' + extension;
        if (!FileExists(candidate))
            return candidate;
    }
}

namespace {

// Renames without ever replacing an existing file; falls back to a check where the file system
// cannot do that atomically.
bool renameNoReplace(const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    struct stat st;
    if (::lstat(to.constData(), &st) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.constData(), to.constData()) == 0;
}

bool placeFile(const QByteArray &from, const QByteArray &to, bool overwrite)
{
    return overwrite ? ::rename(from.constData(), to.constData()) == 0 : renameNoReplace(from, to);
}

} // namespace

bool MoveFileTo(const QString &source, const QString &target, bool overwrite)
{
    struct stat st;
    if (!statPath(source, st) || target.isEmpty())
        return false;
    const QString destination = overwrite ? target : RenameExists(target);
    const QByteArray from = QFile::encodeName(source);
    const QByteArray to = QFile::encodeName(destination);
    if (placeFile(from, to, overwrite))
        return true;
    if (errno != EXDEV || S_ISDIR(st.st_mode))
        return false;
    // Another file system: copy beside the target, rename into place, then remove the source,
    // so that the target never shows a half-copied file.
    const QString staging
        = CreateUniqueTempFile(QFileInfo(destination).absolutePath(), QStringLiteral("mov"));
    if (staging.isEmpty())
        return false;
    QFile::remove(staging);
    if (!QFile::copy(source, staging)) {
        QFile::remove(staging);
        return false;
    }
    if (!placeFile(QFile::encodeName(staging), to, overwrite)) {
        QFile::remove(staging);
        return false;
    }
    return QFile::remove(source);
}

QString CreateUniqueTempFile(const QString &folder, const QString &prefix)
{
    struct stat st;
    if (!statPath(folder, st) || !S_ISDIR(st.st_mode))
        return {};
    const QString base = cPath(folder) + prefix.left(3);
    const quint32 start = QRandomGenerator::system()->bounded(0x10000u);
    for (quint32 i = 0; i < 0x10000u; ++i) {
        const quint32 unique = (start + i) & 0xFFFFu;
        if (unique == 0)
            continue;
        const QString name = base + QStringLiteral("%1").arg(unique, 4, 16, QLatin1Char('0')).toUpper()
            + QStringLiteral(".tmp");
        const int fd
            = ::open(QFile::encodeName(name).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd >= 0) {
            ::close(fd);
            return name;
        }
        if (errno != EEXIST)
            return {};
    }
    return {};
}

QString CreateTempFile(const QString &folder, const QString &prefix)
{
    QString three = prefix.left(3);
    three += QStringLiteral("TMP").left(3 - three.size());
    return CreateUniqueTempFile(folder, three);
}

qint64 GetFileLen(const QString &fileName)
{
    struct stat st;
    if (!statPath(fileName, st) || S_ISDIR(st.st_mode))
        return 0;
    return qint64(st.st_size);
}

QString GetWindowsBaseDirectory()
{
    return QStringLiteral("/usr");
}

QString GetWindowsSystemDirectory()
{
    return QStringLiteral("/usr/bin");
}

QString GetWindowsTempDirectory()
{
    // TMPDIR as given, else /tmp; one that names no folder is a failed lookup, never "/".
    QString temp = qEnvironmentVariable("TMPDIR");
    if (temp.isEmpty())
        temp = QStringLiteral("/tmp");
    struct stat st;
    if (!statPath(temp, st) || !S_ISDIR(st.st_mode))
        return {};
    temp = QFileInfo(temp).absoluteFilePath();
    while (temp.size() > 1 && temp.endsWith(u'/'))
        temp.chop(1);
    return temp;
}

} // namespace qb::util
