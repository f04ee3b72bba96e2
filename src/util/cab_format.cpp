// The cabinet data block checksum and DOS date conversion.
#include "util/cab_format.h"

#include <ctime>

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
    // Qt leaves a local time in a gap invalid but keeps its fields; they are what was meant.
    if (!localTime.isValid() && localTime.date().isValid() && localTime.time().isValid())
        t = QDateTime(localTime.date(), localTime.time(), Qt::UTC);
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
    return WallClockDateTime(d, c);
}

namespace {

// Seconds east of UTC of the local zone at an instant given in milliseconds.
qint64 localOffsetAt(qint64 msecs)
{
    const std::time_t seconds = std::time_t(msecs >= 0 ? msecs / 1000 : (msecs - 999) / 1000);
    std::tm fields {};
    if (!localtime_r(&seconds, &fields))
        return 0;
    return fields.tm_gmtoff;
}

} // namespace

QDateTime WallClockDateTime(const QDate &date, const QTime &time)
{
    if (!date.isValid() || !time.isValid())
        return {};
    // localtime_r reads TZ only once unless asked; Qt's own conversions ask every time.
    tzset();
    // The fields read as UTC; wall - offset is an instant, right when the zone has that offset then.
    const qint64 wall = QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch();
    constexpr qint64 kDay = 86400 * 1000;
    const qint64 before = localOffsetAt(wall - kDay);
    const qint64 after = localOffsetAt(wall + kDay);
    // In a gap neither offset fits; the earlier one lands past the gap, by the gap's length.
    qint64 instant = wall - before * 1000;
    bool fits = false;
    for (const qint64 offset : {before, after}) {
        const qint64 candidate = wall - offset * 1000;
        if (localOffsetAt(candidate) == offset && (!fits || candidate > instant)) {
            instant = candidate;
            fits = true;
        }
    }
    // Keep plain local time where Qt agrees, so callers compare and convert as before.
    const QDateTime local(date, time);
    if (local.isValid() && local.toMSecsSinceEpoch() == instant)
        return local;
    return QDateTime::fromMSecsSinceEpoch(instant, Qt::OffsetFromUTC, int((wall - instant) / 1000));
}

} // namespace qb::cab
