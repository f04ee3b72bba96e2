// The folder walk with name patterns and content search.
#include "util/file_search.h"

#include "util/code_page.h"
#include "util/file_names.h"
#include "util/wildcard.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace qb::util {

namespace {

// Which names the walk tries in each folder, derived from the caller's pattern.
QString effectivePattern(const QString &filePattern)
{
    if (!filePattern.contains(u'*'))
        return filePattern;
    const qsizetype dot = filePattern.indexOf(u'.');
    if (dot >= 0)
        return QStringLiteral("*.") + filePattern.mid(dot + 1);
    return QStringLiteral("*.*");
}

struct Entry
{
    QString name;
    bool isDir = false;
    bool isLink = false;
    qint64 size = 0;
};

// Lists a folder in the order the file system gives; "." and ".." left out.
QList<Entry> listFolder(const QString &folder)
{
    QList<Entry> entries;
    const QByteArray native = QFile::encodeName(folder);
    DIR *dir = ::opendir(native.constData());
    if (!dir)
        return entries;
    const int fd = ::dirfd(dir);
    while (const dirent *d = ::readdir(dir)) {
        if (std::strcmp(d->d_name, ".") == 0 || std::strcmp(d->d_name, "..") == 0)
            continue;
        Entry entry;
        entry.name = QFile::decodeName(d->d_name);
        struct stat st;
        if (::fstatat(fd, d->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        entry.isLink = S_ISLNK(st.st_mode);
        if (entry.isLink && ::fstatat(fd, d->d_name, &st, 0) != 0)
            st.st_mode = S_IFREG, st.st_size = 0; // a dangling link reads as an empty file
        entry.isDir = S_ISDIR(st.st_mode);
        entry.size = entry.isDir ? 0 : qint64(st.st_size);
        entries.append(entry);
    }
    ::closedir(dir);
    return entries;
}

constexpr qint64 kWindowBytes = 4 * 1024 * 1024;

// Backs a cut in UTF-8 text up to the start of a character.
qint64 characterStart(const QByteArray &bytes, qint64 cut)
{
    qint64 k = cut;
    while (k > 0 && cut - k < 4 && (uchar(bytes[k]) & 0xC0) == 0x80)
        --k;
    return k < bytes.size() && (uchar(bytes[k]) & 0xC0) == 0x80 ? cut : k;
}

} // namespace

FileSearchEngine::FileSearchEngine(QObject *parent)
    : QObject(parent)
{ }

void FileSearchEngine::SearchFileStart(
    const QString &Start_Dir, const QString &File_Pattern, const QString &Find_String)
{
    m_hits = 0;
    Q_EMIT SearchStart();
    if (!Start_Dir.isEmpty())
        searchFolder(cPath(Start_Dir), File_Pattern, Find_String);
    Q_EMIT SearchEnd();
}

void FileSearchEngine::SearchFileStop()
{
    Q_EMIT SearchEnd();
}

void FileSearchEngine::searchFolder(const QString &folder, const QString &pattern, const QString &findString)
{
    const QList<Entry> entries = listFolder(folder);
    const FindPattern names(effectivePattern(pattern));
    for (const Entry &entry : entries) {
        if (entry.isDir || !names.matches(entry.name))
            continue;
        const QString path = folder + entry.name;
        if (findString.isEmpty()) {
            Q_EMIT SearchFile(0, double(entry.size), path);
        } else if (FileContainsText(path, findString)) {
            ++m_hits;
            Q_EMIT SearchFile(m_hits, double(entry.size), path);
        }
    }
    const QString likePattern = pattern.toLower();
    for (const Entry &entry : entries) {
        if (!entry.isDir)
            continue;
        const QString path = folder + entry.name;
        if (!entry.isLink)
            searchFolder(path + u'/', pattern, findString);
        // A folder can't hold text, so only a plain name search reports folders.
        if (findString.isEmpty() && Like(entry.name.toLower(), likePattern))
            Q_EMIT SearchFile(0, 0.0, path);
    }
}

bool FileSearchEngine::FileContainsText(const QString &FileName, const QString &Find_String)
{
    const bool anywhere = Find_String.startsWith(u'*') || Find_String.endsWith(u'*');
    QString needle = Find_String;
    needle.remove(u'*');
    needle = needle.toLower();

    QFile file(FileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const qint64 size = file.size();
    if (size == 0)
        return false;

    if (!anywhere) {
        // A whole-file compare: a file far longer than the text can't be equal to it.
        if (size > qint64(needle.size()) * 4 + 4)
            return false;
        return DecodeCodePage(file.readAll()).toLower() == needle;
    }
    if (needle.isEmpty())
        return true;

    // Windows of the file, each decoded on its own, overlapping by more than the text's length
    // so that a hit across a cut is still seen.
    const qint64 overlap = qint64(needle.size()) * 4 + 4;
    QByteArray carry;
    while (!file.atEnd()) {
        QByteArray window = carry + file.read(kWindowBytes);
        qint64 usable = window.size();
        if (!file.atEnd())
            usable = characterStart(window, window.size() - 1);
        const QByteArray piece = window.left(usable);
        if (DecodeCodePage(piece).toLower().contains(needle))
            return true;
        const qint64 keepFrom = std::max<qint64>(0, usable - overlap);
        carry = window.mid(characterStart(window, keepFrom));
        if (file.atEnd())
            break;
    }
    return false;
}

} // namespace qb::util
