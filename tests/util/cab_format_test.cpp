// The cabinet checksum's word and tail rules, and DOS date conversion at its limits.
#include "util/cab_format.h"

#include <gtest/gtest.h>

#include <ctime>
#include <utility>

using namespace qb::cab;

namespace {

TEST(CabFormat, ChecksumWordsTailAndSizeFields)
{
    const unsigned char bytes[11] = {0x01, 0x02, 0x03, 0x04, 0x10, 0x20, 0x30, 0x40, 0xAA, 0xBB, 0xCC};
    // Little-endian words; a tail of 1 to 3 bytes puts its first byte highest.
    const std::pair<size_t, quint32> cases[] = {{0, 0}, {4, 0x04030201u}, {5, 0x04030211u}, {8, 0x44332211u},
        {9, 0x443322BBu}, {10, 0x443388AAu}, {11, 0x449999DDu}};
    for (const auto &[size, sum] : cases)
        EXPECT_EQ(Checksum(bytes, size), sum) << size;
    EXPECT_EQ(Checksum(bytes, 4, 0xFFFFFFFFu), 0xFBFCFDFEu);
    EXPECT_EQ(Checksum(bytes, 0, 0x1234u), 0x1234u);
    // "abc" is the tail 0x616263; the sizes (3, 3) follow as the word 0x00030003.
    const unsigned char payload[3] = {'a', 'b', 'c'};
    EXPECT_EQ(DataBlockChecksum(payload, 3, 3), 0x00626260u);
    EXPECT_EQ(DataBlockChecksum(payload, 3, 4), 0x00656260u);
}

TEST(CabFormat, DosDateTimeRoundTripAndClamp)
{
    const QDateTime when(QDate(2024, 2, 29), QTime(13, 45, 58));
    const DosDateTime dos = ToDosDateTime(when);
    EXPECT_EQ(dos.date, 0x585D); // 44 years, month 2, day 29
    EXPECT_EQ(dos.time, 0x6DBD); // 13 h, 45 min, 29 two-second units
    EXPECT_EQ(FromDosDateTime(dos.date, dos.time), when);
    // Odd seconds round down to the two-second grid.
    EXPECT_EQ(ToDosDateTime(QDateTime(QDate(2024, 1, 1), QTime(0, 0, 1))).time, 0);
    // Before 1980 and after 2107 clamp to the ends.
    EXPECT_EQ(ToDosDateTime(QDateTime(QDate(1970, 1, 1), QTime(0, 0))).date, 0x0021);
    EXPECT_EQ(ToDosDateTime(QDateTime(QDate(2200, 1, 1), QTime(0, 0))).date, 0xFF9F);
    EXPECT_EQ(lzxCompressionType(21), 0x1503);
}

// Sets TZ for one scope and puts the old value back.
class ZoneScope
{
public:
    explicit ZoneScope(const char *zone)
        : m_had(qEnvironmentVariableIsSet("TZ"))
        , m_old(qgetenv("TZ"))
    {
        qputenv("TZ", zone);
        tzset();
    }
    ~ZoneScope()
    {
        if (m_had)
            qputenv("TZ", m_old);
        else
            qunsetenv("TZ");
        tzset();
    }

private:
    bool m_had;
    QByteArray m_old;
};

QString fields(const QDateTime &value)
{
    return value.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

TEST(CabFormat, WallClockShowsTheStoredFieldsAtTheInstantExtractorsGive)
{
    // Berlin: 2021-03-28 02:00 jumps to 03:00; 2021-10-31 03:00 falls back to 02:00.
    // Lord Howe Island: 2021-10-03 02:00 +10:30 jumps to 02:30 +11:00.
    const struct
    {
        const char *zone;
        QDate date;
        QTime time;
        qint64 utcSeconds;
        const char *local; // the instant back in local time
    } cases[] = {
        {"Europe/Berlin", {2021, 3, 28}, {2, 30}, 1616895000, "2021-03-28 03:30:00"}, // gap: forward
        {"Europe/Berlin", {2021, 3, 28}, {2, 0}, 1616893200, "2021-03-28 03:00:00"},
        {"Europe/Berlin", {2021, 3, 28}, {1, 59, 58}, 1616893198, "2021-03-28 01:59:58"},
        {"Europe/Berlin", {2021, 3, 28}, {3, 0}, 1616893200, "2021-03-28 03:00:00"},
        {"Europe/Berlin", {2021, 10, 31}, {2, 30}, 1635643800, "2021-10-31 02:30:00"}, // fold: second
        {"Europe/Berlin", {2021, 10, 31}, {3, 0}, 1635645600, "2021-10-31 03:00:00"},
        {"Europe/Berlin", {2021, 7, 1}, {12, 0}, 1625133600, "2021-07-01 12:00:00"},
        {"Australia/Lord_Howe", {2021, 10, 3}, {2, 14, 58}, 1633189498, "2021-10-03 02:44:58"},
    };
    for (const auto &c : cases) {
        const ZoneScope zone(c.zone);
        const QDateTime got = WallClockDateTime(c.date, c.time);
        SCOPED_TRACE(fields(QDateTime(c.date, c.time, Qt::UTC)).toStdString());
        ASSERT_TRUE(got.isValid());
        EXPECT_EQ(got.date(), c.date);
        EXPECT_EQ(got.time(), c.time);
        EXPECT_EQ(got.toSecsSinceEpoch(), c.utcSeconds);
        EXPECT_EQ(fields(got.toLocalTime()), QString::fromLatin1(c.local));
    }

    const ZoneScope berlin("Europe/Berlin");
    // The same fields from the DOS form; a skipped time is stored as given.
    const QDateTime fromDos = FromDosDateTime(0x527C, 0x13C0);
    EXPECT_EQ(fields(fromDos), QStringLiteral("2021-03-28 02:30:00"));
    EXPECT_EQ(fromDos.toSecsSinceEpoch(), 1616895000);
    const DosDateTime skipped = ToDosDateTime(QDateTime(QDate(2021, 3, 28), QTime(2, 30)));
    EXPECT_EQ(skipped.date, 0x527C);
    EXPECT_EQ(skipped.time, 0x13C0);
    // An ordinary time stays plain local time, without a fixed offset.
    const QDateTime plain = WallClockDateTime(QDate(2021, 7, 1), QTime(12, 0));
    EXPECT_EQ(plain.toString(Qt::ISODate), QStringLiteral("2021-07-01T12:00:00"));
    EXPECT_EQ(plain, QDateTime(QDate(2021, 7, 1), QTime(12, 0)));
    EXPECT_TRUE(WallClockDateTime(QDate(2021, 2, 30), QTime(1, 0)).isNull());
    EXPECT_TRUE(WallClockDateTime(QDate(2021, 2, 3), QTime(25, 0)).isNull());
}

} // namespace
