// The two-pass folder walk of clsFindFile on the POSIX directory reader.
#include "host/find_file.h"

#include "util/wildcard.h"

#include <QFile>

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <vector>

namespace qb::host {

namespace {

bool isDotEntry(const char *name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

QByteArray withSlash(const QByteArray &folder)
{
    return folder.endsWith('/') ? folder : folder + '/';
}

// Folder pass: the tree below root, breadth first, root included.
std::vector<QByteArray> collectFolders(const QByteArray &root)
{
    std::vector<QByteArray> folders {root};
    for (size_t i = 0; i < folders.size(); ++i) {
        DIR *dir = ::opendir(folders[i].constData());
        if (!dir)
            continue;
        const QByteArray base = withSlash(folders[i]);
        const int fd = ::dirfd(dir);
        while (const dirent *d = ::readdir(dir)) {
            if (isDotEntry(d->d_name))
                continue;
            bool isDir = d->d_type == DT_DIR;
            if (d->d_type == DT_UNKNOWN) {
                struct stat st;
                isDir = ::fstatat(fd, d->d_name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(st.st_mode);
            }
            if (isDir)
                folders.push_back(base + d->d_name);
        }
        ::closedir(dir);
    }
    return folders;
}

} // namespace

bool clsFindFile::FindFiles(
    const QString &Folders, const QString &Wildcard, int FindAttribute, bool SubFolder)
{
    m_files.clear();
    m_size = 0;
    const QByteArray root = QFile::encodeName(Folders);
    if (root.isEmpty() || root.contains('\0'))
        return false;
    struct stat rootStat;
    if (::stat(root.constData(), &rootStat) != 0 || !S_ISDIR(rootStat.st_mode))
        return false;

    const std::vector<QByteArray> folders = SubFolder ? collectFolders(root) : std::vector<QByteArray> {root};
    const util::FindPattern pattern(Wildcard);
    const bool wantFiles = FindAttribute & kAttrPlainFile;
    const bool wantDirs = FindAttribute & kAttrDirectory;
    const bool needsMode = FindAttribute & kAttrReadOnly;
    const int fileMask = FindAttribute & ~kAttrDirectory;
    const int dirMask = FindAttribute & ~kAttrPlainFile;

    for (const QByteArray &folder : folders) {
        DIR *dir = ::opendir(folder.constData());
        if (!dir)
            continue; // an unreadable folder is skipped without a report
        const QString base = QFile::decodeName(withSlash(folder));
        const int fd = ::dirfd(dir);
        while (const dirent *d = ::readdir(dir)) {
            if (isDotEntry(d->d_name))
                continue;
            const QString name = QFile::decodeName(d->d_name);
            if (!pattern.matches(name))
                continue;
            struct stat st;
            bool haveStat = false;
            bool isDir = d->d_type == DT_DIR;
            if (d->d_type == DT_UNKNOWN || d->d_type == DT_LNK || needsMode) {
                haveStat = ::fstatat(fd, d->d_name, &st, 0) == 0;
                if (!haveStat && ::fstatat(fd, d->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                    continue;
                haveStat = true;
                isDir = S_ISDIR(st.st_mode);
            }
            int attributes = isDir ? kAttrDirectory : kAttrPlainFile;
            if (d->d_name[0] == '.')
                attributes |= kAttrHidden;
            if (haveStat && !(st.st_mode & S_IWUSR))
                attributes |= kAttrReadOnly;
            const bool asFile = wantFiles && (FindAttribute & attributes) == fileMask;
            const bool asDir = wantDirs && (FindAttribute & attributes) == dirMask;
            if (!asFile && !asDir)
                continue;
            quint32 lowSize = 0;
            if (!isDir) {
                if (!haveStat && ::fstatat(fd, d->d_name, &st, 0) != 0)
                    continue;
                lowSize = quint32(quint64(st.st_size) & 0xFFFFFFFFu);
            }
            m_files.append(base + name);
            m_size += double(lowSize);
        }
        ::closedir(dir);
    }
    return true;
}

QString clsFindFile::Files(qsizetype Index) const
{
    if (Index < 1 || Index > m_files.size())
        return {};
    return m_files.at(Index - 1);
}

} // namespace qb::host
