// The cabinet writer: lays out folders and files, streams data blocks, then writes the tables.
#include "cabmaker/cabinet_writer.h"

#include "cabmaker/folder_encoder.h"
#include "cabmaker/pending_cabinet.h"
#include "cabmaker/source_stamp.h"
#include "util/cab_format.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qb::cabmaker {

struct CabinetWriter::LaidFile
{
    const PlannedFile *planned = nullptr;
    QByteArray name; // as stored: UTF-8, "\"-separated
    qint64 size = 0;
    SourceStamp stamp;
    int folder = 0;
    qint64 offsetInFolder = 0;
};

struct CabinetWriter::LaidFolder
{
    FolderSettings settings;
    std::vector<int> files;
    qint64 bytes = 0;
    quint32 dataStart = 0;
    quint16 blocks = 0;
    quint16 type = 0;
};

namespace {

constexpr size_t kBatchBlocks = 64; // 2 MiB of folder data per round of compression
constexpr qint64 kProgressStep = 1 << 20;

QString errnoText()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// Buffered output to a file descriptor, with positioned writes for the tables at the start.
class Output
{
public:
    explicit Output(int fd)
        : m_fd(fd)
    {
        m_buffer.reserve(kBufferSize);
    }
    bool append(const void *data, size_t size)
    {
        if (m_buffer.size() + size > kBufferSize && !flush())
            return false;
        if (size >= kBufferSize)
            return writeAll(data, size);
        const auto *p = static_cast<const unsigned char *>(data);
        m_buffer.insert(m_buffer.end(), p, p + size);
        return true;
    }
    bool flush()
    {
        const bool ok = writeAll(m_buffer.data(), m_buffer.size());
        m_buffer.clear();
        return ok;
    }
    bool writeAt(qint64 offset, const std::vector<unsigned char> &bytes)
    {
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t n
                = ::pwrite(m_fd, bytes.data() + done, bytes.size() - done, off_t(offset + qint64(done)));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return false;
            done += size_t(n);
        }
        return true;
    }

private:
    static constexpr size_t kBufferSize = 1 << 20;
    bool writeAll(const void *data, size_t size)
    {
        const auto *p = static_cast<const unsigned char *>(data);
        while (size > 0) {
            const ssize_t n = ::write(m_fd, p, size);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return false;
            p += n;
            size -= size_t(n);
        }
        return true;
    }
    int m_fd;
    std::vector<unsigned char> m_buffer;
};

} // namespace

CabinetWriter::CabinetWriter(BuildPlan plan)
    : m_plan(std::move(plan))
    , m_setId(quint16(QRandomGenerator::global()->bounded(0x10000u)))
{ }

bool CabinetWriter::fail(const QString &message)
{
    m_error = message;
    return false;
}

bool CabinetWriter::layOut(std::vector<LaidFile> &files, std::vector<LaidFolder> &folders)
{
    for (const PlannedFolder &planned : m_plan.folders) {
        bool startNew = true;
        for (const PlannedFile &file : planned.files) {
            LaidFile laid;
            laid.planned = &file;
            QString problem;
            if (!ReadSourceStamp(file, laid.stamp, laid.size, problem))
                return fail(problem);
            if (laid.size >= cab::kMaxFileBytes)
                return fail(
                    QStringLiteral("'%1' is 2 GiB or larger; a cabinet cannot hold it").arg(file.sourcePath));
            laid.name = file.nameInCabinet.toUtf8();
            if (laid.name.isEmpty() || laid.name.size() > qsizetype(cab::kMaxNameBytes)
                || laid.name.contains('\0'))
                return fail(QStringLiteral("'%1' is not a name a cabinet can hold").arg(file.nameInCabinet));
            for (const char c : std::as_const(laid.name)) {
                if (uchar(c) >= 0x80) {
                    laid.stamp.attributes |= cab::kAttrNameIsUtf8;
                    break;
                }
            }

            if (!startNew) {
                const LaidFolder &current = folders.back();
                startNew = current.bytes + laid.size > cab::kMaxFolderBytes
                    || (m_plan.folderSizeThreshold > 0
                        && current.bytes + laid.size > m_plan.folderSizeThreshold)
                    || (m_plan.folderFileCountThreshold > 0
                        && qsizetype(current.files.size()) >= m_plan.folderFileCountThreshold);
            }
            if (startNew) {
                if (folders.size() >= size_t(cab::kMaxFolders))
                    return fail(QStringLiteral("more than %1 folders in one cabinet").arg(cab::kMaxFolders));
                LaidFolder folder;
                folder.settings = planned.settings;
                folders.push_back(folder);
                startNew = false;
            }
            LaidFolder &folder = folders.back();
            laid.folder = int(folders.size() - 1);
            laid.offsetInFolder = folder.bytes;
            folder.bytes += laid.size;
            folder.files.push_back(int(files.size()));
            files.push_back(laid);
        }
    }
    if (files.empty())
        return fail(QStringLiteral("no files to put in the cabinet"));
    joinEmptyFolders(files, folders);
    if (files.size() > size_t(cab::kMaxFiles))
        return fail(QStringLiteral("%1 files are more than the %2 one cabinet can hold")
                        .arg(files.size())
                        .arg(cab::kMaxFiles));
    return true;
}

void CabinetWriter::joinEmptyFolders(std::vector<LaidFile> &files, std::vector<LaidFolder> &folders)
{
    // A folder without data blocks starts where the next one does, and libarchive then refuses
    // the whole cabinet; so its empty files go to the folder before (or after) it. A cabinet of
    // empty files only keeps one such folder, which every reader takes.
    const bool anyData
        = std::any_of(folders.begin(), folders.end(), [](const LaidFolder &f) { return f.bytes > 0; });
    std::vector<LaidFolder> kept;
    std::vector<int> waiting; // empty files before the first folder with data
    for (LaidFolder &folder : folders) {
        const bool join = anyData ? folder.bytes == 0 : !kept.empty();
        if (join && !kept.empty()) {
            LaidFolder &before = kept.back();
            for (const int index : folder.files) {
                files[size_t(index)].folder = int(kept.size() - 1);
                files[size_t(index)].offsetInFolder = before.bytes;
                before.files.push_back(index);
            }
            continue;
        }
        if (join) {
            waiting.insert(waiting.end(), folder.files.begin(), folder.files.end());
            continue;
        }
        folder.files.insert(folder.files.begin(), waiting.begin(), waiting.end());
        waiting.clear();
        for (const int index : folder.files)
            files[size_t(index)].folder = int(kept.size());
        kept.push_back(std::move(folder));
    }
    folders = std::move(kept);
}

bool CabinetWriter::write()
{
    m_stats = {};
    m_error.clear();
    std::vector<LaidFile> files;
    std::vector<LaidFolder> folders;
    if (!layOut(files, folders))
        return false;

    // Encoders first, so that a method we can't write fails before anything touches the disk.
    std::vector<std::unique_ptr<FolderEncoder>> encoders;
    for (LaidFolder &folder : folders) {
        QString problem;
        encoders.push_back(MakeFolderEncoder(folder.settings, problem));
        if (!encoders.back())
            return fail(problem);
        folder.type = encoders.back()->compressionType();
    }

    const QFileInfo target(m_plan.cabinetPath);
    const QString targetFolder = target.absolutePath();
    // The disk folder is ours to make, as makers of disk sets always have; any other folder
    // named in the cabinet's path has to be there already.
    if (!m_plan.diskFolder.isEmpty() && QDir::cleanPath(m_plan.diskFolder) == QDir::cleanPath(targetFolder)
        && !QFileInfo::exists(targetFolder) && !QDir().mkpath(targetFolder))
        return fail(QStringLiteral("cannot make the folder '%1'").arg(targetFolder));
    if (!QFileInfo(targetFolder).isDir())
        return fail(QStringLiteral("the folder '%1' does not exist").arg(targetFolder));
    if (target.isDir())
        return fail(QStringLiteral("'%1' is a folder").arg(m_plan.cabinetPath));

    PendingCabinet pending;
    QString problem;
    if (!pending.open(targetFolder, problem))
        return fail(problem);
    Output out(pending.fd());

    qint64 tablesSize = qint64(cab::kHeaderSize + cab::kFolderEntrySize * folders.size());
    const qint64 filesOffset = tablesSize;
    for (const LaidFile &file : files)
        tablesSize += qint64(cab::kFileEntryFixedSize) + file.name.size() + 1;
    if (::lseek(pending.fd(), off_t(tablesSize), SEEK_SET) < 0)
        return fail(QStringLiteral("cannot write '%1': %2").arg(m_plan.cabinetPath, errnoText()));

    qint64 position = tablesSize;
    qint64 totalBytes = 0;
    for (const LaidFile &file : files)
        totalBytes += file.size;
    const qint64 sizeLimit = m_plan.maxCabinetSize > 0
        ? std::min(m_plan.maxCabinetSize, cab::kMaxCabinetBytes)
        : cab::kMaxCabinetBytes;
    auto tooLarge = [&] {
        if (m_plan.maxCabinetSize > 0 && position > m_plan.maxCabinetSize)
            return fail(
                QStringLiteral("the cabinet would be larger than %1 bytes (MaxCabinetSize/MaxDiskSize); "
                               "spanning several cabinets is not supported")
                    .arg(m_plan.maxCabinetSize));
        return fail(
            QStringLiteral("the cabinet would be larger than 4 GiB, the most the format can address"));
    };

    std::vector<unsigned char> batch(kBatchBlocks * size_t(cab::kBlockSize));
    std::vector<EncodedBlock> blocks;
    std::vector<unsigned char> readBuffer;
    qint64 bytesDone = 0;
    int fileNumber = 0;

    auto writeBlocks = [&](LaidFolder &folder) -> bool {
        for (const EncodedBlock &block : blocks) {
            unsigned char head[cab::kDataHeaderSize];
            const auto payloadSize = quint16(block.payload.size());
            cab::put32(
                head, cab::DataBlockChecksum(block.payload.constData(), payloadSize, block.uncompressedSize));
            cab::put16(head + 4, payloadSize);
            cab::put16(head + 6, block.uncompressedSize);
            if (!out.append(head, sizeof head) || !out.append(block.payload.constData(), size_t(payloadSize)))
                return fail(QStringLiteral("cannot write '%1': %2").arg(m_plan.cabinetPath, errnoText()));
            position += qint64(sizeof head) + payloadSize;
            if (position > sizeLimit)
                return tooLarge();
            ++folder.blocks;
            ++m_stats.dataBlocks;
        }
        blocks.clear();
        return true;
    };

    for (size_t f = 0; f < folders.size(); ++f) {
        LaidFolder &folder = folders[f];
        FolderEncoder &encoder = *encoders[f];
        folder.dataStart = quint32(position);
        size_t filled = 0;
        for (const int index : folder.files) {
            const LaidFile &file = files[size_t(index)];
            ++fileNumber;
            const int fd
                = ::open(QFile::encodeName(file.planned->sourcePath).constData(), O_RDONLY | O_CLOEXEC);
            if (fd < 0)
                return fail(
                    QStringLiteral("cannot read '%1': %2").arg(file.planned->sourcePath, errnoText()));
            qint64 left = file.size;
            qint64 sinceReport = 0;
            while (left > 0) {
                const size_t room = batch.size() - filled;
                const size_t want = size_t(std::min<qint64>(left, qint64(room)));
                const ssize_t n = ::read(fd, batch.data() + filled, want);
                if (n < 0 && errno == EINTR)
                    continue;
                if (n <= 0) {
                    const QString why
                        = n < 0 ? errnoText() : QStringLiteral("it became shorter while it was read");
                    ::close(fd);
                    return fail(QStringLiteral("cannot read '%1': %2").arg(file.planned->sourcePath, why));
                }
                filled += size_t(n);
                left -= n;
                bytesDone += n;
                sinceReport += n;
                // Reported before the batch is compressed, so that every line is followed by a
                // pause and a reader of the output sees each one on its own.
                if (m_progress && (left == 0 || sinceReport >= kProgressStep)) {
                    sinceReport = 0;
                    m_progress({fileNumber, int(files.size()), file.planned->nameInCabinet, bytesDone,
                        totalBytes, left == 0});
                }
                if (filled == batch.size()) {
                    encoder.encode(batch.data(), filled, false, blocks);
                    filled = 0;
                    if (!writeBlocks(folder)) {
                        ::close(fd);
                        return false;
                    }
                }
            }
            ::close(fd);
            if (m_progress && file.size == 0)
                m_progress({fileNumber, int(files.size()), file.planned->nameInCabinet, bytesDone, totalBytes,
                    true});
        }
        encoder.encode(batch.data(), filled, true, blocks);
        if (!writeBlocks(folder))
            return false;
    }
    if (!out.flush())
        return fail(QStringLiteral("cannot write '%1': %2").arg(m_plan.cabinetPath, errnoText()));

    // The tables, now that every folder knows where its data starts.
    std::vector<unsigned char> tables(size_t(tablesSize), 0);
    unsigned char *p = tables.data();
    std::memcpy(p, cab::kSignature, 4);
    cab::put32(p + 8, quint32(position));
    cab::put32(p + 16, quint32(filesOffset));
    p[24] = cab::kVersionMinor;
    p[25] = cab::kVersionMajor;
    cab::put16(p + 26, quint16(folders.size()));
    cab::put16(p + 28, quint16(files.size()));
    cab::put16(p + 30, 0);
    cab::put16(p + 32, m_setId);
    cab::put16(p + 34, 0);
    p += cab::kHeaderSize;
    for (const LaidFolder &folder : folders) {
        cab::put32(p, folder.dataStart);
        cab::put16(p + 4, folder.blocks);
        cab::put16(p + 6, folder.type);
        p += cab::kFolderEntrySize;
    }
    for (const LaidFile &file : files) {
        cab::put32(p, quint32(file.size));
        cab::put32(p + 4, quint32(file.offsetInFolder));
        cab::put16(p + 8, quint16(file.folder));
        cab::put16(p + 10, file.stamp.date);
        cab::put16(p + 12, file.stamp.time);
        cab::put16(p + 14, file.stamp.attributes);
        std::memcpy(p + cab::kFileEntryFixedSize, file.name.constData(), size_t(file.name.size()));
        p += cab::kFileEntryFixedSize + size_t(file.name.size()) + 1;
    }
    if (!out.writeAt(0, tables))
        return fail(QStringLiteral("cannot write '%1': %2").arg(m_plan.cabinetPath, errnoText()));
    if (!pending.commit(target.absoluteFilePath(), problem))
        return fail(problem);

    m_stats.bytesIn = totalBytes;
    m_stats.bytesOut = position;
    m_stats.folders = int(folders.size());
    for (const LaidFile &file : files)
        m_stats.files.append({file.planned->nameInCabinet, file.planned->sourcePath, file.size, file.folder,
            file.stamp.date, file.stamp.time, file.stamp.attributes});
    return true;
}

} // namespace qb::cabmaker
