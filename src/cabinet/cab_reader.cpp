// clsCAB: every service opens the cabinet with libmspack and walks its file list.
#include "cabinet/cab_reader.h"

#include "cabinet/cab_errors.h"
#include "cabinet/cab_paths.h"
#include "util/cab_format.h"
#include "util/code_page.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStringList>

#include <mspack.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

namespace qb::cabinet {

namespace {

const QString kSource = QStringLiteral("CabFile");

QString xmlHead(const QString &cabName)
{
    return QStringLiteral("<?xml version=\"1.0\"?><CABFILE CABFILENAME = '") + cabName
        + QStringLiteral("'><FILES>");
}

const QString kXmlTail = QStringLiteral("</FILES></CABFILE>");

// DOS fields as they are, shown as stored; an impossible date or time gives a null value.
QDateTime memberDateTime(const mscabd_file *file)
{
    return cab::WallClockDateTime(
        QDate(file->date_y, file->date_m, file->date_d), QTime(file->time_h, file->time_m, file->time_s));
}

// libmspack's file access, on plain descriptors. Its default one prints warnings on stderr; ours
// hands them to the session running on this thread.
struct DiskFile
{
    int fd = -1;
};

// libmspack may hand back a file it never opened, as a null handle: that is a closed descriptor,
// on which every read, write and seek fails.
int descriptor(mspack_file *file)
{
    return file ? reinterpret_cast<DiskFile *>(file)->fd : -1;
}

mspack_file *diskOpen(mspack_system *, const char *name, int mode) noexcept
{
    int flags = O_CLOEXEC;
    switch (mode) {
    case MSPACK_SYS_OPEN_READ:
        flags |= O_RDONLY;
        break;
    case MSPACK_SYS_OPEN_WRITE:
        // Only fresh scratch names are written: never through a file or link already there.
        flags |= O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
        break;
    default:
        return nullptr; // the cabinet reader neither updates nor appends
    }
    int fd = -1;
    do {
        fd = ::open(name, flags, 0666);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return nullptr;
    auto *file = new (std::nothrow) DiskFile {fd};
    if (!file)
        ::close(fd);
    return reinterpret_cast<mspack_file *>(file);
}

void diskClose(mspack_file *file) noexcept
{
    if (!file)
        return;
    ::close(descriptor(file));
    delete reinterpret_cast<DiskFile *>(file);
}

// libmspack takes a short read for the end of the file, so read until then.
int diskRead(mspack_file *file, void *buffer, int bytes) noexcept
{
    int done = 0;
    while (done < bytes) {
        const ssize_t got
            = ::read(descriptor(file), static_cast<char *>(buffer) + done, size_t(bytes - done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        done += int(got);
    }
    return done;
}

int diskWrite(mspack_file *file, void *buffer, int bytes) noexcept
{
    int done = 0;
    while (done < bytes) {
        const ssize_t put
            = ::write(descriptor(file), static_cast<const char *>(buffer) + done, size_t(bytes - done));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return done > 0 ? done : -1;
        done += int(put);
    }
    return done;
}

int diskSeek(mspack_file *file, off_t offset, int mode) noexcept
{
    int whence = SEEK_SET;
    if (mode == MSPACK_SYS_SEEK_CUR)
        whence = SEEK_CUR;
    else if (mode == MSPACK_SYS_SEEK_END)
        whence = SEEK_END;
    return ::lseek(descriptor(file), offset, whence) < 0 ? -1 : 0;
}

off_t diskTell(mspack_file *file) noexcept
{
    return ::lseek(descriptor(file), 0, SEEK_CUR);
}

void *memAlloc(mspack_system *, size_t bytes) noexcept
{
    return std::malloc(bytes);
}

void memFree(void *pointer) noexcept
{
    std::free(pointer);
}

void memCopy(void *source, void *target, size_t bytes) noexcept
{
    std::memcpy(target, source, bytes);
}

} // namespace

// The decompressor and the open cabinet of one service, released when the service ends.
class clsCAB::Session
{
public:
    Session()
    {
        // message() gets no context from libmspack: the innermost session on this thread takes it.
        m_outer = s_current;
        s_current = this;
        int selfTest = MSPACK_ERR_OK;
        MSPACK_SYS_SELFTEST(selfTest);
        if (selfTest == MSPACK_ERR_OK)
            decompressor = mspack_create_cab_decompressor(&system());
    }
    ~Session()
    {
        if (decompressor && cabinet)
            decompressor->close(decompressor, cabinet);
        if (decompressor)
            mspack_destroy_cab_decompressor(decompressor);
        s_current = m_outer;
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // What libmspack said since the last call, in order; raised by the service between its calls.
    QStringList takeMessages() { return std::exchange(m_messages, {}); }

    mscab_decompressor *decompressor = nullptr;
    mscabd_cabinet *cabinet = nullptr;
    // libmspack keeps using the name while the cabinet is open.
    QByteArray encodedName;

private:
    static mspack_system &system()
    {
        static mspack_system disk {diskOpen, diskClose, diskRead, diskWrite, diskSeek, diskTell, message,
            memAlloc, memFree, memCopy, nullptr};
        return disk;
    }

    // Queued, not raised: a signal handler must not run inside libmspack's frames.
    static void message(mspack_file *, const char *format, ...) noexcept
    {
        char text[512];
        va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        if (length < 0 || !s_current)
            return;
        QString line = QString::fromUtf8(text);
        for (const QLatin1String lead : {QLatin1String("WARNING; "), QLatin1String("ERROR; ")}) {
            if (line.startsWith(lead)) {
                line.remove(0, lead.size());
                break;
            }
        }
        s_current->m_messages << QStringLiteral("libmspack: ") + line;
    }

    static thread_local Session *s_current;
    Session *m_outer = nullptr;
    QStringList m_messages;
};

thread_local clsCAB::Session *clsCAB::Session::s_current = nullptr;

clsCAB::clsCAB(QObject *parent)
    : QObject(parent)
{ }

clsCAB::~clsCAB() = default;

void clsCAB::raise(long number, const QString &description)
{
    Q_EMIT RaiseError(number, kSource, description);
}

void clsCAB::raiseMessages(Session &session)
{
    for (const QString &message : session.takeMessages())
        raise(kErrLibraryMessage, message);
}

bool clsCAB::openSession(Session &session)
{
    if (m_cabName.isEmpty()) {
        raise(kErrNoCabName,
            QStringLiteral(
                "You must set the CabName property before taking any action on the CabFile object."));
        return false;
    }
    // libmspack reports every failure to open as one code; look first so that a missing file and
    // a locked one get their own numbers.
    const QFileInfo info(m_cabName);
    if (!info.exists()) {
        raise(kErrFileNotFound, ErrorText(kErrFileNotFound));
        return false;
    }
    if (!info.isReadable() || info.isDir()) {
        raise(kErrAccessDenied, ErrorText(kErrAccessDenied));
        return false;
    }
    if (!session.decompressor) {
        raise(kErrNoMemory, ErrorText(kErrNoMemory));
        return false;
    }
    session.encodedName = QFile::encodeName(m_cabName);
    session.cabinet = session.decompressor->open(session.decompressor, session.encodedName.constData());
    raiseMessages(session);
    if (!session.cabinet) {
        const long number = ErrorFromMspack(session.decompressor->last_error(session.decompressor));
        raise(number, ErrorText(number));
        return false;
    }
    return true;
}

template<typename Visit>
bool clsCAB::walk(Visit &&visit)
{
    // A handler starting another service would reuse this object's state mid-walk.
    if (m_busy)
        return false;
    m_busy = true;
    Session session;
    bool ok = openSession(session);
    for (const mscabd_file *file = ok ? session.cabinet->files : nullptr; file; file = file->next) {
        const QByteArrayView bytes(file->filename);
        Member member;
        member.fullName = (file->attribs & MSCAB_ATTRIB_UTF_NAME)
            ? QString::fromUtf8(bytes)
            : util::DecodeCodePage(bytes, m_legacyCodePage);
        member.dateTime = memberDateTime(file);
        member.size = file->length;
        member.handle = file;
        if (!visit(session, member))
            break;
    }
    m_busy = false;
    return ok;
}

long clsCAB::FileCount()
{
    long count = 0;
    const bool ok = walk([&count](Session &, const Member &) {
        ++count;
        return true;
    });
    return ok ? count : 0;
}

bool clsCAB::GetInfo(const QString &FileToInvestigate)
{
    return walk([&](Session &, const Member &member) {
        const bool all = FileToInvestigate.isEmpty();
        if (!all && member.fullName.compare(FileToInvestigate, Qt::CaseInsensitive) != 0)
            return true;
        QString path;
        QString name;
        cabinet::SplitFile(member.fullName, path, name);
        Q_EMIT FileFound(name, member.dateTime, member.size, path);
        return all;
    });
}

QString clsCAB::GetXML(const QString &FileToInvestigate)
{
    QString xml = xmlHead(m_cabName);
    QString files;
    const bool ok = walk([&](Session &, const Member &member) {
        const bool all = FileToInvestigate.isEmpty();
        if (!all && member.fullName.compare(FileToInvestigate, Qt::CaseInsensitive) != 0)
            return true;
        QString path;
        QString name;
        cabinet::SplitFile(member.fullName, path, name);
        files += QStringLiteral("<FILE><FULLNAME>") + member.fullName + QStringLiteral("</FULLNAME><NAME>")
            + name + QStringLiteral("</NAME><DATE>")
            + member.dateTime.toString(QStringLiteral("yyyy-M-d H:mm:ss")) + QStringLiteral("</DATE><SIZE>")
            + QString::number(member.size) + QStringLiteral("</SIZE><PATH>") + path
            + QStringLiteral("</PATH></FILE>\r\n");
        return all;
    });
    if (ok)
        xml += files;
    return xml + kXmlTail;
}

bool clsCAB::Extract(const QString &FileToExtract, const QString &OutputPath, const QString &OutputFile)
{
    QString folder = OutputPath;
    if (folder.isEmpty() && !m_cabName.isEmpty())
        folder = QFileInfo(m_cabName).absolutePath();
    folder = cabinet::FixPath(folder);
    m_cabCanonical = QFileInfo(m_cabName).canonicalFilePath();
    m_madeFolder.clear();
    return walk([&](Session &session, const Member &member) {
        if (!FileToExtract.isEmpty() && member.fullName.compare(FileToExtract, Qt::CaseInsensitive) != 0)
            return true;
        bool cancel = false;
        Q_EMIT BeforeExtract(member.fullName, cancel);
        if (!cancel)
            extractOne(session, member, folder, OutputFile);
        return true;
    });
}

void clsCAB::extractOne(
    Session &session, const Member &member, const QString &folder, const QString &outputFile)
{
    QString target;
    if (!outputFile.isEmpty()) {
        target = folder + outputFile;
    } else {
        if (!IsSafeMemberName(member.fullName)) {
            raise(kErrBadName,
                QStringLiteral("'") + member.fullName
                    + QStringLiteral("' would be written outside the target folder; skipped"));
            return;
        }
        target = folder + MemberNameToRelativePath(member.fullName);
    }
    QString targetFolder;
    QString leaf;
    cabinet::SplitFile(target, targetFolder, leaf);
    // Many files share a folder; create and check it once.
    if (leaf.isEmpty())
        return;
    if (targetFolder != m_madeFolder) {
        if (!cabinet::MakePath(targetFolder))
            return;
        m_madeFolder = targetFolder;
    }
    const QString canonical = QFileInfo(target).canonicalFilePath();
    if (!canonical.isEmpty() && canonical == m_cabCanonical) {
        raise(kErrInUse,
            QStringLiteral("'") + member.fullName
                + QStringLiteral("' would overwrite the cabinet being read; skipped"));
        return;
    }
    // Written under a scratch name first, so a failure never leaves half a file under the real one.
    // The name is short: a long leaf plus any suffix would pass the file system's name limit.
    const QString scratch = targetFolder + QStringLiteral(".qbpart-")
        + QStringLiteral("%1").arg(QRandomGenerator::global()->generate64(), 16, 16, QLatin1Char('0'));
    const QByteArray scratchName = QFile::encodeName(scratch);
    const auto *file = static_cast<const mscabd_file *>(member.handle);
    const int result = session.decompressor->extract(
        session.decompressor, const_cast<mscabd_file *>(file), scratchName.constData());
    raiseMessages(session);
    if (result != MSPACK_ERR_OK) {
        QFile::remove(scratch);
        const long number = result == MSPACK_ERR_OPEN ? kErrCannotCreate : ErrorFromMspack(result);
        raise(number, ErrorText(number));
        return;
    }
    // The stored time on the file, set by name: one call, no second open.
    std::error_code error;
    if (member.dateTime.isValid()) {
        const std::chrono::sys_time<std::chrono::milliseconds> stamp {
            std::chrono::milliseconds(member.dateTime.toMSecsSinceEpoch())};
        std::filesystem::last_write_time(
            scratchName.constData(), std::chrono::file_clock::from_sys(stamp), error);
    }
    // A rename replaces the target in one step, also when the target is a link.
    std::filesystem::rename(scratchName.constData(), QFile::encodeName(target).constData(), error);
    if (error) {
        QFile::remove(scratch);
        raise(kErrCannotCreate, ErrorText(kErrCannotCreate));
        return;
    }
    Q_EMIT AfterExtract(target);
}

bool clsCAB::MakePath(const QString &strPath)
{
    return cabinet::MakePath(strPath);
}

QString clsCAB::FixPath(const QString &strPath)
{
    return cabinet::FixPath(strPath);
}

void clsCAB::SplitFile(const QString &strFull, QString &strPath, QString &strFile)
{
    cabinet::SplitFile(strFull, strPath, strFile);
}

} // namespace qb::cabinet
