// The cabinet checksum's word and tail rules, and DOS date conversion at its limits.
#include "util/cab_format.h"

#include <gtest/gtest.h>

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

} // namespace
