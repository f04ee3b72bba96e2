// The overlay documents: their exact text for the element combinations that matter, and the
// renderer of the media tool as the judge that what we write draws something, and only in time.
#include "subtitle/overlay_script.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::subtitle {
namespace {

OverlayElement element(bool enabled, const QString &text1, const QString &text2, double start, double end,
    const QString &font = {}, const QString &color1 = u"FFFFFF"_s, const QString &color2 = u"FFFFFF"_s)
{
    return {enabled, text1, text2, start, end, font, color1, color2};
}

WatermarkOverlay titleOnly()
{
    WatermarkOverlay overlay;
    overlay.title = element(true, u"Hello"_s, u"World"_s, 1, 4,
        u"Sans, 20, True, False, 0, False, False, 400"_s, u"00FFFF"_s, u"FF00FF"_s);
    return overlay;
}

TEST(WatermarkScript, WholeDocumentInBothForms)
{
    // 640x360 squeezes to 75%: the plate is drawn 853 wide to span the picture once squeezed.
    const QStringList plain = WatermarkScriptLines(titleOnly(), 640, 360, false);
    const QStringList expected {u"[Script Info]"_s, u"Title: QDK"_s, u"ScriptType: V4.00"_s,
        u"Original Script: Quillbox Desk"_s, u"Collisions: Reverse"_s, u"PlayResX: 640"_s, u"PlayResY: 360"_s,
        u"Timer: 100.0000"_s, QString(), u"WrapStyle: 2"_s, QString(), u"[v4 Styles]"_s,
        u"Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, TertiaryColour, BackColour, "
        u"Bold, "
        u"Italic, BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, AlphaLevel, Encoding"_s,
        u"Style: Default, Arial, 14, &HFFFFFF, &HFFFFFF, &H0, &H0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 0, 134"_s,
        QString(), u"[Events]"_s,
        u"Format: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text"_s,
        u"Dialogue: Marked=0, 0:00:01.00, 0:00:04.00, Default, , 0000, 0000, 0000, , {\\fscx75}{\\fad(1000, "
        u"1000)}{\\pos(320, 300)}{\\alpha&H9F&\\c&H000000&\\3c&H000000&}{\\p1}m 0 0 b 0 0 0 0 853 0 b 853 0 "
        u"853 "
        u"41 853 41 b 853 41 0 41 0 41 b 0 41 0 0 0 0 c{\\p0}"_s,
        u"Dialogue: Marked=0, 0:00:01.00, 0:00:04.00, Default, , 0000, 0000, 0000, , {\\fscx75}{\\fad(1000, "
        u"1000)}{\\pos(10, 297)}{\\an1}{\\fnSans\\fs20\\b1\\c&H00FFFF&}{\\b1}Hello\\N{\\c&HFF00FF&}World"_s};
    EXPECT_EQ(plain.join(u'\n').toStdString(), expected.join(u'\n').toStdString());

    const QStringList advanced = WatermarkScriptLines(titleOnly(), 640, 360, true);
    ASSERT_EQ(advanced.size(), expected.size());
    EXPECT_EQ(advanced.at(2), u"ScriptType: V4.00+"_s);
    EXPECT_EQ(advanced.at(11), u"[v4+ Styles]"_s);
    EXPECT_TRUE(
        advanced.at(12).contains(u"Italic, Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, Border"_s));
    EXPECT_TRUE(advanced.at(13).endsWith(u"0, 0, 0, 0, 100, 100, 0, 0, 1, 0, 0, 2, 0, 0, 0, 0, 134"_s));
    EXPECT_TRUE(advanced.at(17).startsWith(u"Dialogue: 0, 0:00:01.00, "_s));
}

TEST(WatermarkScript, WhichElementsAreDrawn)
{
    struct Case
    {
        const char *name;
        OverlayElement element;
        bool drawn;
    };
    const Case cases[] = {
        {"line 2 alone is text", element(true, {}, u"two"_s, 1, 2), true},
        {"both points 0 is the whole video", element(true, u"a"_s, {}, 0, 0), true},
        {"end before start is refused", element(true, u"a"_s, {}, 5, 2), false},
        {"equal points other than 0 are refused", element(true, u"a"_s, {}, 3, 3), false},
        {"no text", element(true, {}, {}, 1, 2), false},
        {"not enabled", element(false, u"a"_s, {}, 1, 2), false},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(OverlayElementDrawn(c.element), c.drawn) << c.name;
        WatermarkOverlay overlay;
        overlay.banner = c.element;
        EXPECT_EQ(WatermarkScriptLines(overlay, 320, 240, false).isEmpty(), !c.drawn) << c.name;
    }
}

TEST(WatermarkScript, BannerLogoMacrosAndTheWholeVideo)
{
    WatermarkOverlay overlay;
    overlay.sourceFile = u"/videos/holiday.trip.mp4"_s;
    overlay.now = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7));
    overlay.banner
        = {true, u"#FileName# on #Date# at #Time#"_s, {}, 0, 0, u"Serif, 16, False, True"_s, u"FFFFFF"_s};
    overlay.logo = {true, u"100%#"_s, u"#Tag"_s, 2, 9, u"Mono, 12, False, False, 0, True, True"_s,
        u"0000FF"_s, u"00FF00"_s};
    overlay.logoAlignment = 7;
    overlay.logoIndentation = 12;
    const QStringList lines = WatermarkScriptLines(overlay, 384, 288, false);
    ASSERT_EQ(lines.size(), 19);
    EXPECT_EQ(lines.at(17),
        u"Dialogue: Marked=0, 0:00:00.00, 9:59:59.99, Default, , 0000, 0000, 0010, Banner;15;0;70, "
        u"{\\fscx100}{\\fad(1000, 1000)}{\\an7}{\\c&HFFFFFF&\\fnSerif\\fs16}{\\i1}holiday.trip on 2026-03-04 "
        u"at "
        u"05:06:07"_s);
    // A "#" that opens no macro goes through the replaces unchanged.
    EXPECT_EQ(lines.at(18),
        u"Dialogue: Marked=0, 0:00:02.00, 0:00:09.00, Default, , 0012, 0012, 0012, , {\\fscx100}{\\fad(1000, "
        u"1000)}{\\an7}{\\c&H0000FF&\\fnMono\\fs12}{\\s1\\u1}100%#\\N{\\c&H00FF00&}#Tag"_s);
}

TEST(AvsSubtitleFile, UserLinesTaggedThenTitleLogoAndBanner)
{
    test::TempTree tree;
    AvsSubtitleOverlay overlay;
    overlay.userSubtitle = tree.writeFile(u"user.srt"_s,
        "1\r\n00:00:01,000 --> 00:00:02,000\r\nFirst\r\n\r\n2\r\n00:00:03,000 --> "
        "00:00:04,000\r\nSecond\r\n12\r\n");
    overlay.font = u"Sans, 18, True, False"_s;
    overlay.color = u"00FFFF"_s;
    overlay.border = u"101010"_s;
    overlay.align = 2;
    overlay.title = {true, u"Title"_s, u"Big, 30"_s, u"FFFFFF"_s, 5, u"00:00:00,000"_s, u"00:00:05,000"_s};
    overlay.logo = {true, u"Logo"_s, u"Small, 10"_s, u"0000FF"_s, 9, u"00:00:01,000"_s, u"00:00:09,000"_s};
    overlay.banner = {true, u"News"_s, u"Arial, 20"_s, u"00FF00"_s, 2, u"00:00:02,000"_s, u"00:00:08,000"_s};
    const QString tags = u"{\\b1\\i0\\fad(100,100)\\1c&H00FFFF\\3c&H101010\\fnSans\\fs18\\an2}"_s;
    const QStringList expected {u"1"_s, u"00:00:01,000 --> 00:00:02,000"_s, tags + u"First"_s, QString(),
        u"2"_s, u"00:00:03,000 --> 00:00:04,000"_s, tags + u"Second"_s, tags + u"12"_s, QString(), u"3"_s,
        u"00:00:00,000 --> 00:00:05,000"_s,
        u"{\\fad(1000,300)\\1c&HFFFFFF&\\3c&H101010\\fnBig\\fs30\\an5}Title"_s, QString(), u"4"_s,
        u"00:00:01,000 --> 00:00:09,000"_s,
        u"{\\fad(300,300)\\1c&H0000FF&\\3c&H101010\\fnSmall\\fs10\\an9}Logo"_s, QString(), u"5"_s,
        u"00:00:02,000 --> 00:00:08,000"_s,
        // Four characters of size 20 are taken as 80 wide: from 384 + 40 to -40, 28 down.
        u"{\\move(424, 28, -40, 28)\\1c&H00FF00&\\3c&H101010\\fnArial\\fs20}News"_s, QString()};
    EXPECT_EQ(AvsSubtitleLines(overlay).join(u'\n').toStdString(), expected.join(u'\n').toStdString());

    // Saving replaces whatever was there.
    const QString out = tree.writeFile(u"3.ssa"_s, QByteArray(5000, 'x'));
    overlay.userSubtitle.clear();
    overlay.logo.enabled = false;
    overlay.banner.text.clear();
    ASSERT_TRUE(SaveAvsSubtitleFile(out, overlay));
    EXPECT_EQ(test::readAll(out),
        "1\r\n00:00:00,000 --> "
        "00:00:05,000\r\n{\\fad(1000,300)\\1c&HFFFFFF&\\3c&H101010\\fnBig\\fs30\\an5}Title\r\n\r\n");
}

// Renders one frame of a small grey clip with the overlay burnt in, as raw RGB bytes.
QByteArray frameAt(const QString &overlay, double seconds, QString &warnings)
{
    const test::ToolResult run = test::runTool(u"ffmpeg"_s,
        {u"-v"_s, u"warning"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=c=gray:s=160x120:d=3:r=10"_s, u"-vf"_s,
            u"ass="_s + overlay, u"-ss"_s, QString::number(seconds), u"-frames:v"_s, u"1"_s, u"-f"_s,
            u"rawvideo"_s, u"-pix_fmt"_s, u"rgb24"_s, u"-y"_s, overlay + u".rgb"_s});
    warnings += run.output;
    if (run.exitCode != 0)
        return {};
    return test::readAll(overlay + u".rgb"_s);
}

TEST(WatermarkScript, TheMediaToolDrawsEachDocumentOnlyInItsTime)
{
    if (QStandardPaths::findExecutable(u"ffmpeg"_s).isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    test::TempTree tree;
    WatermarkOverlay overlay = titleOnly();
    overlay.title.start = 0;
    overlay.title.end = 2;
    overlay.logo = element(true, u"LOGO"_s, {}, 0, 2, u"Sans, 16"_s);
    for (const bool advanced : {false, true}) {
        const QString file = tree.path(advanced ? u"advanced.ass"_s : u"plain.ass"_s);
        ASSERT_TRUE(SaveWatermarkScript(file, overlay, 160, 120, advanced));
        QString warnings;
        const QByteArray inside = frameAt(file, 1.0, warnings);
        const QByteArray outside = frameAt(file, 2.5, warnings);
        ASSERT_EQ(inside.size(), 160 * 120 * 3) << warnings.toStdString();
        ASSERT_EQ(outside.size(), inside.size());
        EXPECT_TRUE(warnings.trimmed().isEmpty()) << warnings.toStdString();
        qsizetype changed = 0;
        for (qsizetype i = 0; i < inside.size(); ++i)
            changed += inside.at(i) != outside.at(i);
        // The plate alone darkens a band of the picture.
        EXPECT_GT(changed, 160 * 10) << (advanced ? "advanced" : "plain");
        // Outside its time nothing is drawn: the plain grey of the clip.
        EXPECT_EQ(outside.count(outside.at(0)), outside.size());
    }
}

} // namespace
} // namespace qb::subtitle
