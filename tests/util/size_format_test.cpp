// Byte counts as unit texts at every unit boundary, and the size text of real files.
#include "util/size_format.h"

#include "support/temp_tree.h"

#include <gtest/gtest.h>
#include <limits>

using namespace Qt::StringLiterals;
using qb::util::CheckFileSize;
using qb::util::ConvertFileSize;
using qb::util::FormatByteSize;

namespace {

// Compares as UTF-8 so that a failure prints readable text.
std::string utf8(const QString &s)
{
    return s.toStdString();
}

struct SizeCase
{
    double bytes;
    const char16_t *fileWithDecimals;
    const char16_t *fileWhole;
    const char16_t *workbench;
};

class SizeBoundaryTable : public ::testing::TestWithParam<SizeCase>
{
};

TEST_P(SizeBoundaryTable, PicksTheUnitAndRounds)
{
    const SizeCase &c = GetParam();
    EXPECT_EQ(utf8(ConvertFileSize(c.bytes, true)), utf8(QString::fromUtf16(c.fileWithDecimals))) << c.bytes;
    EXPECT_EQ(utf8(ConvertFileSize(c.bytes, false)), utf8(QString::fromUtf16(c.fileWhole))) << c.bytes;
    EXPECT_EQ(utf8(FormatByteSize(c.bytes)), utf8(QString::fromUtf16(c.workbench))) << c.bytes;
}

INSTANTIATE_TEST_SUITE_P(SizeBoundaries, SizeBoundaryTable,
    ::testing::Values(SizeCase {0, u"0B", u"0B", u"0B"}, SizeCase {-0.0, u"0B", u"0B", u"0B"},
        SizeCase {1023, u"1023B", u"1023B", u"1023B"}, SizeCase {1023.5, u"1023.5B", u"1023.5B", u"1023.5B"},
        SizeCase {-5, u"-5B", u"-5B", u"-5B"}, SizeCase {1024, u"1.00KB", u"1KB", u"1.00KB"},
        SizeCase {1536, u"1.50KB", u"2KB", u"1.50KB"},
        SizeCase {1048575, u"1024.00KB", u"1024KB", u"1024.00KB"},
        SizeCase {1048576, u"1.00MB", u"1MB", u"1.00MB"},
        SizeCase {1048575999, u"1000.00MB", u"1000MB", u"1000.00MB"},
        SizeCase {1048576000, u"0.98GB", u"1GB", u"1000.00MB"},
        SizeCase {1073741823, u"1.00GB", u"1GB", u"1024.00MB"},
        SizeCase {1073741824, u"1.00GB", u"1GB", u"1.00GB"}, SizeCase {5e9, u"4.66GB", u"5GB", u"4.66GB"},
        SizeCase {1099511627776.0, u"1024.00GB", u"1024GB", u"1024.00GB"}));

TEST(SizeFormat, NotANumberGivesNoText)
{
    for (double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
             -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(utf8(ConvertFileSize(bad, true)), utf8(QString())) << bad;
        EXPECT_EQ(utf8(ConvertFileSize(bad, false)), utf8(QString())) << bad;
        EXPECT_EQ(utf8(FormatByteSize(bad)), utf8(QString())) << bad;
    }
}

TEST(SizeCheckFileSize, ReadsTheLengthOfRealFiles)
{
    qb::test::TempTree tree;
    EXPECT_EQ(utf8(CheckFileSize(tree.path(u"missing.bin"_s), true)), utf8(u"0B"_s));
    EXPECT_EQ(utf8(CheckFileSize(QString(), false)), utf8(u"0B"_s));
    EXPECT_EQ(utf8(CheckFileSize(tree.makeDir(u"folder"_s), true)), utf8(u"0B"_s));
    EXPECT_EQ(utf8(CheckFileSize(tree.writeFile(u"empty.bin"_s), true)), utf8(u"0B"_s));

    const QString small = tree.writeFile(u"small.bin"_s, QByteArray(1536, 'x'));
    EXPECT_EQ(utf8(CheckFileSize(small, true)), utf8(u"1.50KB"_s));
    EXPECT_EQ(utf8(CheckFileSize(small, false)), utf8(u"2KB"_s));
}

TEST(SizeCheckFileSize, HandlesFilesBeyondFourGigabytes)
{
    qb::test::TempTree tree;
    const QString big = tree.makeSparseFile(u"big.bin"_s, 5000000000LL);
    if (big.isEmpty())
        GTEST_SKIP() << "the file system does not take a 5 GB sparse file";
    EXPECT_EQ(utf8(CheckFileSize(big, true)), utf8(u"4.66GB"_s));
    EXPECT_EQ(utf8(CheckFileSize(big, false)), utf8(u"5GB"_s));
}

} // namespace
