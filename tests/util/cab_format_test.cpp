// The cabinet checksum's word and tail rules, and DOS date conversion at its limits.
#include "util/cab_format.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace qb::cab;

namespace {

TEST(CabFormat, ChecksumXorsLittleEndianWords)
{
    const unsigned char words[8] = {0x01, 0x02, 0x03, 0x04, 0x10, 0x20, 0x30, 0x40};
    EXPECT_EQ(Checksum(words, 4), 0x04030201u);
    EXPECT_EQ(Checksum(words, 8), 0x04030201u ^ 0x40302010u);
    EXPECT_EQ(Checksum(words, 4, 0xFFFFFFFFu), 0x04030201u ^ 0xFFFFFFFFu);
    EXPECT_EQ(Checksum(words, 0, 0x1234u), 0x1234u);
}

TEST(CabFormat, ChecksumTailPutsTheFirstByteHighest)
{
    const unsigned char bytes[7] = {0x01, 0x02, 0x03, 0x04, 0xAA, 0xBB, 0xCC};
    EXPECT_EQ(Checksum(bytes, 5), 0x04030201u ^ 0xAAu);
    EXPECT_EQ(Checksum(bytes, 6), 0x04030201u ^ 0xAABBu);
    EXPECT_EQ(Checksum(bytes, 7), 0x04030201u ^ 0xAABBCCu);
}

TEST(CabFormat, DataBlockChecksumCoversTheSizeFields)
{
    const unsigned char payload[3] = {'a', 'b', 'c'};
    const quint32 sum = DataBlockChecksum(payload, 3, 3);
    // The size fields (3, 3) form the word 0x00030003, folded in after the payload.
    EXPECT_EQ(sum, Checksum(payload, 3) ^ 0x00030003u);
    EXPECT_NE(DataBlockChecksum(payload, 3, 4), sum);
}

TEST(CabFormat, DosDateTimeRoundTripAndClamp)
{
    const QDateTime when(QDate(2024, 2, 29), QTime(13, 45, 58));
    const DosDateTime dos = ToDosDateTime(when);
    EXPECT_EQ(dos.date, quint16(((2024 - 1980) << 9) | (2 << 5) | 29));
    EXPECT_EQ(dos.time, quint16((13 << 11) | (45 << 5) | 29));
    EXPECT_EQ(FromDosDateTime(dos.date, dos.time), when);
    // Odd seconds round down to the two-second grid.
    EXPECT_EQ(ToDosDateTime(QDateTime(QDate(2024, 1, 1), QTime(0, 0, 1))).time, 0);
    // Before 1980 and after 2107 clamp to the ends.
    EXPECT_EQ(ToDosDateTime(QDateTime(QDate(1970, 1, 1), QTime(0, 0))).date, quint16((1 << 5) | 1));
    EXPECT_EQ(
        ToDosDateTime(QDateTime(QDate(2200, 1, 1), QTime(0, 0))).date, quint16((127 << 9) | (12 << 5) | 31));
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

TEST(CabFormat, WallClockInABerlinGapMovesForwardByTheGap)
{
    const ZoneScope berlin("Europe/Berlin");
    const QDateTime gap = WallClockDateTime(QDate(2021, 3, 28), QTime(2, 30));
    ASSERT_TRUE(gap.isValid());
    EXPECT_EQ(fields(gap), QStringLiteral("2021-03-28 02:30:00"));
    EXPECT_EQ(gap.toSecsSinceEpoch(), 1616895000); // 01:30Z
    EXPECT_EQ(fields(gap.toLocalTime()), QStringLiteral("2021-03-28 03:30:00"));
    // The edges: 02:00 is skipped too, 01:59:58 and 03:00 are plain.
    EXPECT_EQ(fields(WallClockDateTime(QDate(2021, 3, 28), QTime(2, 0)).toLocalTime()),
        QStringLiteral("2021-03-28 03:00:00"));
    EXPECT_EQ(WallClockDateTime(QDate(2021, 3, 28), QTime(1, 59, 58)).toSecsSinceEpoch(), 1616893198);
    EXPECT_EQ(WallClockDateTime(QDate(2021, 3, 28), QTime(3, 0)).toSecsSinceEpoch(), 1616893200);
    // The same fields from the DOS form.
    const DosDateTime dos {quint16(((2021 - 1980) << 9) | (3 << 5) | 28), quint16((2 << 11) | (30 << 5))};
    EXPECT_EQ(FromDosDateTime(dos.date, dos.time), gap);
    EXPECT_EQ(fields(FromDosDateTime(dos.date, dos.time)), QStringLiteral("2021-03-28 02:30:00"));
}

TEST(CabFormat, WallClockInABerlinFoldTakesTheSecondOccurrenceAsOtherExtractorsDo)
{
    const ZoneScope berlin("Europe/Berlin");
    const QDateTime fold = WallClockDateTime(QDate(2021, 10, 31), QTime(2, 30));
    EXPECT_EQ(fields(fold), QStringLiteral("2021-10-31 02:30:00"));
    EXPECT_EQ(fold.toSecsSinceEpoch(), 1635643800); // 01:30Z, back on standard time
    EXPECT_EQ(WallClockDateTime(QDate(2021, 10, 31), QTime(3, 0)).toSecsSinceEpoch(), 1635645600);
    // An ordinary time stays plain local time.
    const QDateTime plain = WallClockDateTime(QDate(2021, 7, 1), QTime(12, 0));
    EXPECT_EQ(plain.toString(Qt::ISODate), QStringLiteral("2021-07-01T12:00:00")); // no fixed offset
    EXPECT_EQ(plain, QDateTime(QDate(2021, 7, 1), QTime(12, 0)));
    EXPECT_TRUE(WallClockDateTime(QDate(2021, 2, 30), QTime(1, 0)).isNull());
    EXPECT_TRUE(WallClockDateTime(QDate(2021, 2, 3), QTime(25, 0)).isNull());
}

TEST(CabFormat, WallClockInAHalfHourGap)
{
    // Lord Howe Island: 02:00 +10:30 jumps to 02:30 +11:00.
    const ZoneScope lordHowe("Australia/Lord_Howe");
    const QDateTime gap = WallClockDateTime(QDate(2021, 10, 3), QTime(2, 14, 58));
    EXPECT_EQ(fields(gap), QStringLiteral("2021-10-03 02:14:58"));
    EXPECT_EQ(fields(gap.toLocalTime()), QStringLiteral("2021-10-03 02:44:58"));
    EXPECT_EQ(fields(gap.toUTC()), QStringLiteral("2021-10-02 15:44:58"));
}

TEST(CabFormat, ToDosDateTimeKeepsALocalTimeThatTheZoneSkips)
{
    const ZoneScope berlin("Europe/Berlin");
    const DosDateTime dos = ToDosDateTime(QDateTime(QDate(2021, 3, 28), QTime(2, 30)));
    EXPECT_EQ(dos.date, quint16(((2021 - 1980) << 9) | (3 << 5) | 28));
    EXPECT_EQ(dos.time, quint16((2 << 11) | (30 << 5)));
}

} // namespace
