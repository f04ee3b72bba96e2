// The cabinet while it is written: a file without a name until it is whole, so that however the
// program ends, a kill included, no half-written file is left in the target folder.
#pragma once

#include <QString>

namespace qb::cabmaker {

// Set (to anything) to write through a named temporary file even where the file system has
// unnamed ones: the path taken on file systems without O_TMPFILE, and how it is tested.
inline constexpr char kNamedTempVariable[] = "QB_MAKECAB_NAMED_TEMP";

class PendingCabinet
{
public:
    PendingCabinet() = default;
    PendingCabinet(const PendingCabinet &) = delete;
    PendingCabinet &operator=(const PendingCabinet &) = delete;
    // Closes the file; a named temporary that was not committed is removed.
    ~PendingCabinet();

    // Opens an unnamed file in folder, or, where the file system has none, a named temporary
    // that SIGTERM, SIGINT and SIGHUP remove before the program ends. False with problem set.
    bool open(const QString &folder, QString &problem);
    int fd() const { return m_fd; }
    // The temporary's path; empty for an unnamed file.
    const QString &temporaryPath() const { return m_tempPath; }

    // Closes the file and puts it under target's name, replacing a file already there in one
    // step. The permission bits are those of any new file: 0666 less the umask.
    bool commit(const QString &target, QString &problem);

private:
    bool openNamed(const QString &folder, QString &problem);
    bool linkUnnamed(const QByteArray &to);
    void discard();

    int m_fd = -1;
    QString m_folder;
    QString m_tempPath;
    bool m_armed = false; // the signal handlers know m_tempPath
};

} // namespace qb::cabmaker
