// The cabinet file format: record layouts, flags, limits, the data block checksum, DOS dates.
#pragma once

#include <QDateTime>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

namespace qb::cab {

inline constexpr char kSignature[4] = {'M', 'S', 'C', 'F'};
inline constexpr quint8 kVersionMinor = 3;
inline constexpr quint8 kVersionMajor = 1;

// Fixed record sizes, without optional reserve areas.
inline constexpr size_t kHeaderSize = 36;
inline constexpr size_t kFolderEntrySize = 8;
inline constexpr size_t kFileEntryFixedSize = 16; // followed by the name and its NUL
inline constexpr size_t kDataHeaderSize = 8;

// Header flags.
inline constexpr quint16 kFlagPrevCabinet = 0x0001;
inline constexpr quint16 kFlagNextCabinet = 0x0002;
inline constexpr quint16 kFlagReservePresent = 0x0004;

// Folder compression types (low nibble); LZX keeps its window bits in bits 8..12.
inline constexpr quint16 kCompressNone = 0;
inline constexpr quint16 kCompressMsZip = 1;
inline constexpr quint16 kCompressQuantum = 2;
inline constexpr quint16 kCompressLzx = 3;
constexpr quint16 lzxCompressionType(int windowBits)
{
    return quint16(kCompressLzx | (windowBits << 8));
}

// File attributes.
inline constexpr quint16 kAttrReadOnly = 0x01;
inline constexpr quint16 kAttrHidden = 0x02;
inline constexpr quint16 kAttrSystem = 0x04;
inline constexpr quint16 kAttrArchive = 0x20;
inline constexpr quint16 kAttrExecute = 0x40;
inline constexpr quint16 kAttrNameIsUtf8 = 0x80;

// Limits of the format.
inline constexpr qint64 kBlockSize = 32768; // uncompressed bytes in every data block but a folder's last
inline constexpr qint64 kMaxFolderBytes = 0x7FFF8000; // uncompressed bytes of one folder: 2 GiB - 32 KiB
inline constexpr qint64 kMaxFileBytes = kMaxFolderBytes; // a file never spans folders in one cabinet
inline constexpr qint64 kMaxCabinetBytes = 0xFFFFFFFFLL;
inline constexpr int kMaxFiles = 0xFFFF;
inline constexpr int kMaxFolders = 0xFFFF;
inline constexpr size_t kMaxNameBytes = 255; // without the NUL
inline constexpr size_t kMaxMsZipBlock = kBlockSize + 12; // compressed bytes of one MSZIP block
inline constexpr quint8 kMsZipSignature[2] = {'C', 'K'};

// The data block checksum over bytes, continuing from seed: little-endian 32-bit words XORed
// together, the 1 to 3 bytes left at the end folded in with the first of them highest.
quint32 Checksum(const void *data, size_t size, quint32 seed = 0);

// The checksum of a whole data block: its payload, then its two size fields.
quint32 DataBlockChecksum(const void *payload, quint16 compressedSize, quint16 uncompressedSize);

// Local date and time in the DOS form of file entries, clamped to the years 1980 to 2107. A local
// time that the zone skips (invalid, yet with its date and time) is stored as it was given.
struct DosDateTime
{
    quint16 date = 0;
    quint16 time = 0;
};
DosDateTime ToDosDateTime(const QDateTime &localTime);
// The stored fields as WallClockDateTime gives them.
QDateTime FromDosDateTime(quint16 date, quint16 time);

// A zone-less local date and time as cabinets store it. date() and time() of the result are the
// given ones, so it shows as stored. Its instant is the one extractors give the file: a time that a
// daylight-saving change skips moves forward by the gap, a time met twice takes the second. Null for
// an impossible date or time. Follows TZ as it is at the call.
QDateTime WallClockDateTime(const QDate &date, const QTime &time);

// Little-endian stores into a byte buffer.
inline void put16(unsigned char *p, quint16 v)
{
    p[0] = uchar(v);
    p[1] = uchar(v >> 8);
}
inline void put32(unsigned char *p, quint32 v)
{
    p[0] = uchar(v);
    p[1] = uchar(v >> 8);
    p[2] = uchar(v >> 16);
    p[3] = uchar(v >> 24);
}

} // namespace qb::cab
