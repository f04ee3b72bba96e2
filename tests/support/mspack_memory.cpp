// Cabinets held in memory: assembled from encoded blocks, and unpacked by libmspack without files.
#include "support/mspack_memory.h"

#include "util/cab_format.h"

#include <mspack.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace qb::test {

namespace {

// A fixed date, so that two runs over the same blocks give the same cabinet.
constexpr quint16 kDosDate = ((2020 - 1980) << 9) | (1 << 5) | 1;
constexpr char kCabinetName[] = "memory.cab";

// The library hands our own pointer back to every callback, so the state sits behind it.
struct MemorySystem
{
    mspack_system base {}; // first: libmspack sees only this part
    const QByteArray *cabinet = nullptr;
    std::map<std::string, QByteArray> written;
    QStringList messages;
};

struct MemoryFile
{
    MemorySystem *system = nullptr;
    const QByteArray *source = nullptr; // set when reading
    QByteArray *sink = nullptr; // set when writing
    qint64 position = 0;

    qint64 size() const { return source ? source->size() : sink->size(); }
};

// message() gets no system pointer when it has no file, so the one at work is kept here.
thread_local MemorySystem *t_current = nullptr;

MemoryFile *asFile(mspack_file *file)
{
    return reinterpret_cast<MemoryFile *>(file);
}

mspack_file *memOpen(mspack_system *self, const char *filename, int mode)
{
    auto *system = reinterpret_cast<MemorySystem *>(self);
    auto *file = new MemoryFile;
    file->system = system;
    if (mode == MSPACK_SYS_OPEN_READ && std::strcmp(filename, kCabinetName) == 0) {
        file->source = system->cabinet;
    } else if (mode == MSPACK_SYS_OPEN_WRITE) {
        file->sink = &system->written[filename];
        file->sink->clear();
    } else {
        delete file;
        return nullptr;
    }
    return reinterpret_cast<mspack_file *>(file);
}

void memClose(mspack_file *file)
{
    delete asFile(file);
}

int memRead(mspack_file *handle, void *buffer, int bytes)
{
    MemoryFile *file = asFile(handle);
    if (!file->source || bytes < 0)
        return -1;
    const qint64 left = std::max<qint64>(0, file->size() - file->position);
    const qint64 n = std::min<qint64>(left, bytes);
    if (n > 0)
        std::memcpy(buffer, file->source->constData() + file->position, size_t(n));
    file->position += n;
    return int(n);
}

int memWrite(mspack_file *handle, void *buffer, int bytes)
{
    MemoryFile *file = asFile(handle);
    if (!file->sink || bytes < 0)
        return -1;
    // Extraction only appends, so a write anywhere else would be our own mistake.
    if (file->position != file->sink->size())
        return -1;
    file->sink->append(static_cast<const char *>(buffer), bytes);
    file->position += bytes;
    return bytes;
}

int memSeek(mspack_file *handle, off_t offset, int mode)
{
    MemoryFile *file = asFile(handle);
    qint64 base = 0;
    if (mode == MSPACK_SYS_SEEK_CUR)
        base = file->position;
    else if (mode == MSPACK_SYS_SEEK_END)
        base = file->size();
    else if (mode != MSPACK_SYS_SEEK_START)
        return -1;
    const qint64 target = base + qint64(offset);
    if (target < 0)
        return -1;
    file->position = target;
    return 0;
}

off_t memTell(mspack_file *handle)
{
    return off_t(asFile(handle)->position);
}

void memMessage(mspack_file *, const char *format, ...)
{
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    if (t_current)
        t_current->messages.append(QString::fromLocal8Bit(text));
}

void *memAlloc(mspack_system *, size_t bytes)
{
    return std::malloc(bytes);
}

void memFree(void *pointer)
{
    std::free(pointer);
}

void memCopy(void *source, void *target, size_t bytes)
{
    std::memcpy(target, source, bytes);
}

const char *errorName(int error)
{
    static const char *const names[] = {"OK", "ARGS", "OPEN", "READ", "WRITE", "SEEK", "NOMEMORY",
        "SIGNATURE", "DATAFORMAT", "CHECKSUM", "CRUNCH", "DECRUNCH"};
    return error >= 0 && error < int(std::size(names)) ? names[error] : "unknown";
}

class CurrentSystem
{
public:
    explicit CurrentSystem(MemorySystem *system) { t_current = system; }
    ~CurrentSystem() { t_current = nullptr; }
    CurrentSystem(const CurrentSystem &) = delete;
    CurrentSystem &operator=(const CurrentSystem &) = delete;
};

} // namespace

QByteArray AssembleCabinet(quint16 compressionType, const std::vector<cabmaker::EncodedBlock> &blocks,
    const QList<CabEntry> &entries)
{
    size_t tables = cab::kHeaderSize + cab::kFolderEntrySize;
    for (const CabEntry &entry : entries)
        tables += cab::kFileEntryFixedSize + size_t(entry.name.size()) + 1;
    size_t total = tables;
    for (const cabmaker::EncodedBlock &block : blocks)
        total += cab::kDataHeaderSize + size_t(block.payload.size());

    QByteArray cabinet(qsizetype(total), '\0');
    auto *p = reinterpret_cast<unsigned char *>(cabinet.data());
    std::memcpy(p, cab::kSignature, 4);
    cab::put32(p + 8, quint32(total));
    cab::put32(p + 16, quint32(cab::kHeaderSize + cab::kFolderEntrySize));
    p[24] = cab::kVersionMinor;
    p[25] = cab::kVersionMajor;
    cab::put16(p + 26, 1);
    cab::put16(p + 28, quint16(entries.size()));

    unsigned char *folder = p + cab::kHeaderSize;
    cab::put32(folder, quint32(tables));
    cab::put16(folder + 4, quint16(blocks.size()));
    cab::put16(folder + 6, compressionType);

    unsigned char *at = folder + cab::kFolderEntrySize;
    quint32 offset = 0;
    for (const CabEntry &entry : entries) {
        const bool ascii = std::all_of(entry.name.cbegin(), entry.name.cend(),
            [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        cab::put32(at, quint32(entry.bytes.size()));
        cab::put32(at + 4, offset);
        cab::put16(at + 8, 0);
        cab::put16(at + 10, kDosDate);
        cab::put16(at + 12, 0);
        cab::put16(at + 14, quint16(cab::kAttrArchive | (ascii ? 0 : cab::kAttrNameIsUtf8)));
        std::memcpy(at + cab::kFileEntryFixedSize, entry.name.constData(), size_t(entry.name.size()));
        at += cab::kFileEntryFixedSize + size_t(entry.name.size()) + 1;
        offset += quint32(entry.bytes.size());
    }

    for (const cabmaker::EncodedBlock &block : blocks) {
        const auto payloadSize = quint16(block.payload.size());
        cab::put32(
            at, cab::DataBlockChecksum(block.payload.constData(), payloadSize, block.uncompressedSize));
        cab::put16(at + 4, payloadSize);
        cab::put16(at + 6, block.uncompressedSize);
        std::memcpy(at + cab::kDataHeaderSize, block.payload.constData(), payloadSize);
        at += cab::kDataHeaderSize + payloadSize;
    }
    return cabinet;
}

QString UnpackResult::describe() const
{
    QString text = QStringLiteral("libmspack error %1 (MSPACK_ERR_%2)")
                       .arg(error)
                       .arg(QString::fromLatin1(errorName(error)));
    if (!stage.isEmpty())
        text += QStringLiteral(" at ") + stage;
    if (!messages.isEmpty())
        text += QStringLiteral("; it said: ") + messages.join(QStringLiteral(" | "));
    return text;
}

UnpackResult UnpackWithMspack(const QByteArray &cabinet)
{
    UnpackResult result;
    int selftest = MSPACK_ERR_OK;
    MSPACK_SYS_SELFTEST(selftest);
    if (selftest != MSPACK_ERR_OK) {
        result.error = selftest;
        result.stage = QStringLiteral("self-test");
        return result;
    }

    MemorySystem system;
    system.base.open = memOpen;
    system.base.close = memClose;
    system.base.read = memRead;
    system.base.write = memWrite;
    system.base.seek = memSeek;
    system.base.tell = memTell;
    system.base.message = memMessage;
    system.base.alloc = memAlloc;
    system.base.free = memFree;
    system.base.copy = memCopy;
    system.base.null_ptr = nullptr;
    system.cabinet = &cabinet;
    const CurrentSystem current(&system);

    mscab_decompressor *decompressor = mspack_create_cab_decompressor(&system.base);
    if (!decompressor) {
        result.error = MSPACK_ERR_NOMEMORY;
        result.stage = QStringLiteral("create");
        return result;
    }
    mscabd_cabinet *opened = decompressor->open(decompressor, kCabinetName);
    if (!opened) {
        result.error = decompressor->last_error(decompressor);
        if (result.error == MSPACK_ERR_OK)
            result.error = MSPACK_ERR_DATAFORMAT;
        result.stage = QStringLiteral("open");
    } else {
        if (opened->folders)
            result.folderType = opened->folders->comp_type;
        int index = 0;
        for (mscabd_file *file = opened->files; file; file = file->next, ++index) {
            const std::string target = "out/" + std::to_string(index);
            UnpackedFile unpacked;
            unpacked.name = QByteArray(file->filename);
            unpacked.error = decompressor->extract(decompressor, file, target.c_str());
            unpacked.bytes = system.written[target];
            system.written.erase(target);
            if (unpacked.error != MSPACK_ERR_OK && result.error == MSPACK_ERR_OK) {
                result.error = unpacked.error;
                result.stage = QString::fromUtf8(unpacked.name);
            }
            result.files.append(unpacked);
        }
        decompressor->close(decompressor, opened);
    }
    mspack_destroy_cab_decompressor(decompressor);
    return result;
}

qsizetype FirstDifference(const QByteArray &a, const QByteArray &b)
{
    const qsizetype common = std::min(a.size(), b.size());
    const auto mismatch = std::mismatch(a.cbegin(), a.cbegin() + common, b.cbegin());
    if (mismatch.first != a.cbegin() + common)
        return mismatch.first - a.cbegin();
    return a.size() == b.size() ? -1 : common;
}

} // namespace qb::test
