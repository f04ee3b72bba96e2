// clsCAB: every service opens the cabinet with libmspack and walks its file list.
#include "cabinet/cab_reader.h"

#include "cabinet/cab_errors.h"
#include "cabinet/cab_paths.h"
#include "util/code_page.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <mspack.h>

#include <chrono>
#include <filesystem>
#include <system_error>

namespace qb::cabinet {

namespace {

const QString kSource = QStringLiteral("CabFile");

QString xmlHead(const QString &cabName)
{
    return QStringLiteral("<?xml version=\"1.0\"?><CABFILE CABFILENAME = '") + cabName
        + QStringLiteral("'><FILES>");
}

const QString kXmlTail = QStringLiteral("</FILES></CABFILE>");

// DOS fields as they are, no time-zone shift; an impossible date or time gives a null value.
QDateTime memberDateTime(const mscabd_file *file)
{
    const QDate date(file->date_y, file->date_m, file->date_d);
    const QTime time(file->time_h, file->time_m, file->time_s);
    if (!date.isValid() || !time.isValid())
        return {};
    return QDateTime(date, time);
}

} // namespace

// The decompressor and the open cabinet of one service, released when the service ends.
class clsCAB::Session
{
public:
    Session()
        : decompressor(mspack_create_cab_decompressor(nullptr))
    { }
    ~Session()
    {
        if (decompressor && cabinet)
            decompressor->close(decompressor, cabinet);
        if (decompressor)
            mspack_destroy_cab_decompressor(decompressor);
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    mscab_decompressor *decompressor = nullptr;
    mscabd_cabinet *cabinet = nullptr;
    // libmspack keeps using the name while the cabinet is open.
    QByteArray encodedName;
};

clsCAB::clsCAB(QObject *parent)
    : QObject(parent)
{ }

clsCAB::~clsCAB() = default;

void clsCAB::raise(long number, const QString &description)
{
    Q_EMIT RaiseError(number, kSource, description);
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
    const QString scratch = targetFolder + QStringLiteral(".") + leaf + QStringLiteral(".qbpart")
        + QString::number(QRandomGenerator::global()->generate(), 16);
    const QByteArray scratchName = QFile::encodeName(scratch);
    const auto *file = static_cast<const mscabd_file *>(member.handle);
    const int result = session.decompressor->extract(
        session.decompressor, const_cast<mscabd_file *>(file), scratchName.constData());
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
