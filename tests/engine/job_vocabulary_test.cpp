// The status names, priority classes and the remainder estimate across midnight.
#include "engine/job_progress.h"
#include "engine/status_codes.h"
#include "util/process_priority.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using namespace util; // the priority classes

TEST(StatusNames, NamedCodesAndSilentOnes)
{
    const QStringList names {u"Starting"_s, u"Processing"_s, u"Complete"_s, u"Error"_s, u"Canceled"_s,
        u"SettingChanged"_s, u"InfoString"_s, u"CreateThumb"_s, u"CancelFailed"_s, u"Searching"_s};
    for (int code = 0; code < names.size(); ++code)
        EXPECT_EQ(GetStatusString(code), names[code]);
    for (int code : {10, 11, 12, 255, -1})
        EXPECT_TRUE(GetStatusString(code).isEmpty()) << code;
}

TEST(PriorityClasses, MapToNiceAndBack)
{
    const std::pair<int, int> table[] = {{64, 19}, {16384, 10}, {32, 0}, {32768, -5}, {128, -10}, {256, -15}};
    for (const auto &[cls, nice] : table) {
        EXPECT_EQ(NiceForPriorityClass(cls), nice);
        EXPECT_EQ(PriorityClassForNice(nice), cls);
    }
    EXPECT_EQ(NiceForPriorityClass(16), 0); // no class: normal
    EXPECT_EQ(PriorityClassForNice(15), 64);
    EXPECT_EQ(PriorityClassForNice(14), 16384);
    EXPECT_EQ(PriorityClassForNice(5), 16384); // a tie goes to the calmer class
    EXPECT_EQ(PriorityClassForNice(-20), 256);
}

TEST(JobProgress, ElapsedTimeCrossesMidnight)
{
    EXPECT_EQ(ElapsedMSecs(u"10:00:00"_s, u"10:01:30"_s), 90'000);
    EXPECT_EQ(ElapsedMSecs(u"23:59:50"_s, u"00:00:20"_s), 30'000);
    EXPECT_EQ(ElapsedMSecs(u"12:00:00"_s, u"12:00:00"_s), 0);
}

TEST(JobProgress, RemainderFromPositionAndEnd)
{
    EXPECT_EQ(RemainderText(30'000, 25, 100), u"00:01:30/00:02:00"_s);
    EXPECT_EQ(RemainderText(10'000, 50, 100), u"00:00:10/00:00:20"_s);
    EXPECT_EQ(RemainderText(0, 10, 100), u"00:00:00/00:00:00"_s);
    EXPECT_TRUE(RemainderText(5000, 0, 100).isEmpty());
}

} // namespace
} // namespace qb::engine
