// Byte counts as unit texts at every unit boundary, and the size text of real files.
#include "util/size_format.h"

#include "support/temp_tree.h"

#include <gtest/gtest.h>
#include <limits>
#include <tuple>
#include <utility>

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

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(SizeFormat, PicksTheUnitAndRoundsAtEveryBoundary)
{
    // Bytes, then ConvertFileSize with and without decimals, then FormatByteSize.
    const std::tuple<double, const char16_t *, const char16_t *, const char16_t *> cases[] = {
        {0, u"0B", u"0B", u"0B"}, {-0.0, u"0B", u"0B", u"0B"}, {1023, u"1023B", u"1023B", u"1023B"},
        {1023.5, u"1023.5B", u"1023.5B", u"1023.5B"}, {-5, u"-5B", u"-5B", u"-5B"},
        {1024, u"1.00KB", u"1KB", u"1.00KB"}, {1536, u"1.50KB", u"2KB", u"1.50KB"},
        {1048575, u"1024.00KB", u"1024KB", u"1024.00KB"}, {1048576, u"1.00MB", u"1MB", u"1.00MB"},
        {1048575999, u"1000.00MB", u"1000MB", u"1000.00MB"}, {1048576000, u"0.98GB", u"1GB", u"1000.00MB"},
        {1073741823, u"1.00GB", u"1GB", u"1024.00MB"}, {1073741824, u"1.00GB", u"1GB", u"1.00GB"},
        {5e9, u"4.66GB", u"5GB", u"4.66GB"}, {1099511627776.0, u"1024.00GB", u"1024GB", u"1024.00GB"},
        // Not a number: no text.
        {kNaN, u"", u"", u""}, {kInf, u"", u"", u""}, {-kInf, u"", u"", u""}};
    for (const auto &[bytes, withDecimals, whole, workbench] : cases) {
        EXPECT_EQ(utf8(ConvertFileSize(bytes, true)), utf8(QString::fromUtf16(withDecimals))) << bytes;
        EXPECT_EQ(utf8(ConvertFileSize(bytes, false)), utf8(QString::fromUtf16(whole))) << bytes;
        EXPECT_EQ(utf8(FormatByteSize(bytes)), utf8(QString::fromUtf16(workbench))) << bytes;
    }
}

TEST(SizeCheckFileSize, ReadsTheLengthOfRealFiles)
{
    qb::test::TempTree tree;
    const QString small = tree.writeFile(u"small.bin"_s, QByteArray(1536, 'x'));
    const std::pair<QString, const char16_t *> cases[]
        = {{tree.path(u"missing.bin"_s), u"0B"}, {QString(), u"0B"}, {tree.makeDir(u"folder"_s), u"0B"},
            {tree.writeFile(u"empty.bin"_s), u"0B"}, {small, u"1.50KB"}};
    for (const auto &[path, text] : cases)
        EXPECT_EQ(utf8(CheckFileSize(path, true)), utf8(QString::fromUtf16(text))) << path.toStdString();
    EXPECT_EQ(utf8(CheckFileSize(small, false)), utf8(u"2KB"_s));
}

} // namespace
