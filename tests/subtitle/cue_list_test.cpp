// The converter's cue stages: the window and split rules of storing, merging equal times, the
// watermark cue, sorting, the format table and the accompanying-subtitle lookup.
#include "subtitle/cue_list.h"
#include "subtitle/subtitle_formats.h"
#include "support/temp_tree.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::subtitle {
namespace {

TEST(CueList, StoringFollowsTheWindowAndTheSplitMode)
{
    struct Case
    {
        const char *name;
        QString time;
        CueWindow window;
        QString stored; // "" when dropped
    };
    const Case cases[] = {
        {"window cuts the end, times move to the window's start", u"00:00:12,000->00:00:25,000"_s,
            {10, 20, 0, false}, u"00:00:02,000->00:00:10,000|t"_s},
        {"split mode keeps the source's time line", u"00:00:12,000->00:00:25,000"_s, {10, 20, 0, true},
            u"00:00:12,000->00:00:20,000|t"_s},
        {"across both edges", u"00:00:05,000->00:00:25,000"_s, {10, 20, 0, true},
            u"00:00:10,000->00:00:20,000|t"_s},
        {"wholly before", u"00:00:01,000->00:00:09,000"_s, {10, 20, 0, false}, {}},
        {"wholly after", u"00:00:21,000->00:00:29,000"_s, {10, 20, 0, false}, {}},
        {"no window: the offset moves the cue", u"00:00:01,000"_s, {0, 0, 2, false}, u"00:00:03,000|t"_s},
        {"a start alone counts as five seconds for the window", u"00:00:08,000"_s, {10, 20, 0, true},
            u"00:00:10,000|t"_s},
        {"milliseconds survive", u"00:01:02,345->00:01:03,456"_s, {0, 0, 0, false},
            u"00:01:02,345->00:01:03,456|t"_s},
        {"an empty time stores nothing", QString(), {0, 0, 0, false}, {}},
    };
    for (const Case &c : cases) {
        CueList cues = EmptyCueList();
        AddCue(cues, c.time, u"t"_s, c.window);
        if (c.stored.isEmpty())
            EXPECT_EQ(cues.size(), 1) << c.name;
        else
            EXPECT_EQ(cues.value(1), c.stored) << c.name;
    }
}

TEST(CueList, MergeJoinsEqualTimesButNotEqualCues)
{
    CueList cues {QString(), u"00:00:01,000|a"_s, u"00:00:01,000| b "_s, u"00:00:02,000|c"_s,
        u"00:00:02,000|c"_s, u"00:00:03,000|"_s, u"00:00:03,000|d"_s};
    MergeSamePosition(cues);
    EXPECT_EQ(cues,
        (CueList {QString(), u"00:00:01,000|a\\Nb"_s, u"00:00:02,000|c"_s, u"00:00:02,000|c"_s,
            u"00:00:03,000|"_s, u"00:00:03,000|d"_s}));
    // An empty later cue still leaves its "\N"; the time fields compare trimmed.
    CueList empty {QString(), u"00:00:05,000 |x"_s, u"00:00:05,000|"_s};
    MergeSamePosition(empty);
    EXPECT_EQ(empty, (CueList {QString(), u"00:00:05,000 |x\\N"_s}));
}

TEST(CueList, WatermarkSortAndTheFormatTable)
{
    CueList cues {QString(), u"00:00:09,000|late"_s, u"00:00:01,000|early"_s};
    AddWatermark(cues, u"mark"_s, 30, 20, 10);
    EXPECT_EQ(cues.last(), u"00:00:20,000->00:00:30,010|mark"_s); // swapped, not dropped
    SortCues(cues);
    EXPECT_EQ(cues,
        (CueList {
            u"0"_s, u"00:00:01,000|early"_s, u"00:00:09,000|late"_s, u"00:00:20,000->00:00:30,010|mark"_s}));

    const std::pair<QString, int> ids[] = {{u"SRT"_s, 1}, {u"utf"_s, 1}, {u"ass"_s, 2}, {u"sami"_s, 6},
        {u"stxt"_s, 99}, {u"dks"_s, 11}, {u"mkv"_s, -1}, {QString(), -1}};
    for (const auto &[extension, id] : ids)
        EXPECT_EQ(SubtitleFormatId(extension), id) << extension.toStdString();
}

TEST(CueList, CheckSubtitleTriesThePatternsInOrder)
{
    test::TempTree tree;
    const QString media = tree.writeFile(u"films/the clip.v2.mkv"_s, "x");
    const QString patterns = u"*.ssa; *.srt; *.ass"_s;
    EXPECT_EQ(CheckSubtitle(media, patterns), QString());
    const QString ass = tree.writeFile(u"films/the clip.v2.ass"_s, "x");
    EXPECT_EQ(CheckSubtitle(media, patterns), ass);
    const QString srt = tree.writeFile(u"films/the clip.v2.srt"_s, "x");
    EXPECT_EQ(CheckSubtitle(media, patterns), srt);
}

} // namespace
} // namespace qb::subtitle
