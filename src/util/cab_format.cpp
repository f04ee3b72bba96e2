// The cabinet data block checksum and DOS date conversion.
#include "util/cab_format.h"

namespace qb::cab {

quint32 Checksum(const void *data, size_t size, quint32 seed)
{
    const auto *p = static_cast<const unsigned char *>(data);
    quint32 sum = seed;
    size_t words = size / 4;
    while (words-- > 0) {
        sum ^= quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
        p += 4;
    }
    quint32 tail = 0;
    switch (size % 4) {
    case 3:
        tail = quint32(p[0]) << 16 | quint32(p[1]) << 8 | p[2];
        break;
    case 2:
        tail = quint32(p[0]) << 8 | p[1];
        break;
    case 1:
        tail = p[0];
        break;
    default:
        break;
    }
    return sum ^ tail;
}

quint32 DataBlockChecksum(const void *payload, quint16 compressedSize, quint16 uncompressedSize)
{
    unsigned char sizes[4];
    put16(sizes, compressedSize);
    put16(sizes + 2, uncompressedSize);
    return Checksum(sizes, 4, Checksum(payload, compressedSize));
}

DosDateTime ToDosDateTime(const QDateTime &localTime)
{
    QDateTime t = localTime.toLocalTime();
    const QDateTime earliest(QDate(1980, 1, 1), QTime(0, 0));
    const QDateTime latest(QDate(2107, 12, 31), QTime(23, 59, 58));
    if (!t.isValid() || t < earliest)
        t = earliest;
    else if (t > latest)
        t = latest;
    const QDate d = t.date();
    const QTime c = t.time();
    DosDateTime out;
    out.date = quint16(((d.year() - 1980) << 9) | (d.month() << 5) | d.day());
    out.time = quint16((c.hour() << 11) | (c.minute() << 5) | (c.second() / 2));
    return out;
}

QDateTime FromDosDateTime(quint16 date, quint16 time)
{
    const QDate d(1980 + (date >> 9), (date >> 5) & 0x0F, date & 0x1F);
    const QTime c(time >> 11, (time >> 5) & 0x3F, (time & 0x1F) * 2);
    return QDateTime(d, c);
}

} // namespace qb::cab
