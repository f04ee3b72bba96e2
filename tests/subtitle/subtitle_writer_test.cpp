// The writers: every format printed from one cue list and compared byte for byte, then the rules
// they share (ends, skipped cues, text breaks) and the script format's styles and extra lines.
#include "subtitle/subtitle_writer.h"

#include <gtest/gtest.h>

#include <string>

using namespace Qt::StringLiterals;

namespace qb::subtitle {
namespace {

// A cue at 0 without an end, one with an end and a break, a blank one, one whose end was read
// as zero, and a last one without an end.
CueList SampleCues()
{
    return {QString(), u"00:00:00,000|Hi"_s, u"00:00:01,505->00:00:04,000|Ab\\Ncd"_s, u"00:00:04,000|   "_s,
        u"00:00:06,250->00:00:00,000|[Ef]\\ngh"_s, u"00:01:02,340| Bye "_s};
}

// The file as the converter writes it: every printed line ends with CR LF.
std::string Printed(int formatId, const CueList &cues, const WriterOptions &options = {})
{
    QString text;
    for (const QString &line : WriteSubtitle(formatId, cues, options))
        text += line + u"\r\n"_s;
    return text.toStdString();
}

TEST(SubtitleWriter, PlainTextKeepsEveryCueWithoutTimes)
{
    EXPECT_EQ(Printed(0, SampleCues()), "Hi\r\nAb\r\ncd\r\n\r\n[Ef]\r\ngh\r\nBye\r\n");
}

TEST(SubtitleWriter, NumberedBlocks)
{
    EXPECT_EQ(Printed(1, SampleCues()),
        "1\r\n00:00:00,000 --> 00:00:01,495\r\nHi\r\n\r\n"
        "2\r\n00:00:01,505 --> 00:00:03,990\r\nAb\r\ncd\r\n\r\n"
        "3\r\n00:00:06,250 --> 00:00:16,250\r\n[Ef]\r\ngh\r\n\r\n"
        "4\r\n00:01:02,340 --> 00:01:07,330\r\nBye\r\n\r\n");
}

TEST(SubtitleWriter, TimeTaggedLyrics)
{
    WriterOptions options;
    options.title = u"Tune"_s;
    options.composer = u"Ann"_s;
    EXPECT_EQ(Printed(3, SampleCues(), options),
        "[ti:Tune]\r\n[ar:]\r\n[al:]\r\n[by:Ann]\r\n"
        "[00:00.00]Hi\r\n[00:01.50]Ab cd\r\n[00:06.25][Ef] gh\r\n[01:02.34]Bye\r\n");
}

TEST(SubtitleWriter, KaraokeScriptSharesTheTimeAmongCharacters)
{
    // 1505 ms over two characters is 752.5, rounded to even.
    EXPECT_EQ(Printed(4, SampleCues()),
        "karaoke := CreateKaraokeObject;\r\nkaraoke.rows := 2;\r\nkaraoke.clear;\r\n"
        "karaoke.singer := '';\r\nkaraoke.songname := '';\r\nkaraoke.TimeOffset := 0;\r\n"
        "karaoke.AnimateColor := RGB(0,0,0);\r\nkaraoke.NormalColor := RGB(0,0,0);\r\n"
        "karaoke.Font('', 0, false);\r\n\r\n"
        "karaoke.add('00:00.000', '00:01.495', 'Hi', '752,752');\r\n"
        "karaoke.add('00:01.505', '00:03.990', 'Ab\\Ncd', '499,499,499,499,499');\r\n"
        "karaoke.add('00:06.250', '00:16.250', '[Ef]\\ngh', '-893,-893,-893,-893,-893,-893,-893');\r\n"
        "karaoke.add('01:02.340', '01:07.330', ' Bye ', '1667,1667,1667');\r\n");
}

TEST(SubtitleWriter, XmlLyrics)
{
    EXPECT_EQ(Printed(5, SampleCues()),
        "<?xml version=\"1.0\" encoding=\"gb2312\"?>\r\n<!-- QDK SubtitleConverter -->\r\n<Lyric>\r\n"
        "  <song>\r\n  </song>\r\n  <lines>\r\n"
        "    <line begin=\"00:00.00\">Hi</line>\r\n"
        "    <line begin=\"00:01.50\">Ab cd</line>\r\n"
        "    <line begin=\"00:06.25\">[Ef] gh</line>\r\n"
        "    <line begin=\"01:02.34\">Bye</line>\r\n"
        "  </lines>\r\n</Lyric>\r\n");
}

TEST(SubtitleWriter, Sami)
{
    EXPECT_EQ(Printed(6, SampleCues()),
        "<SAMI>\r\n<BODY>\r\n<sync start=0>Hi\r\n<sync start=1505>Ab cd\r\n<sync start=6250>[Ef] gh\r\n"
        "<sync start=62340>Bye\r\n</BODY>\r\n</SAMI>\r\n");
}

TEST(SubtitleWriter, CircledNumbersRoundHundredthsUp)
{
    EXPECT_EQ(Printed(7, SampleCues()),
        "⑩00000000⑿\r\nHi\r\n⑩00000151⑿\r\nAb cd\r\n⑩00000625⑿\r\n[Ef] gh\r\n⑩00006234⑿\r\nBye\r\n");
}

TEST(SubtitleWriter, MinuteSecondBlocks)
{
    EXPECT_EQ(Printed(8, SampleCues()),
        "00:00\r\nHi\r\n\r\n00:01\r\nAb cd\r\n\r\n00:06\r\n[Ef] gh\r\n\r\n01:02\r\nBye\r\n\r\n");
}

TEST(SubtitleWriter, TabularScript)
{
    EXPECT_EQ(Printed(9, SampleCues()),
        "$FontName\t\t\t=\tArial\r\n$FontSize\t\t\t=\t32\r\n$HorzAlign\t\t\t=\tCenter\r\n"
        "$VertAlign\t\t\t=\tbottom\r\n$Bold\t\t\t\t=\tTRUE\r\n$UnderLined\t\t\t=\tFALSE\r\n"
        "$Italic\t\t\t\t=\tFALSE\r\n$XOffset\t\t\t=\t0\r\n$YOffset\t\t\t=\t33\r\n"
        "$TextContrast\t\t\t=\t15\r\n$Outline1Contrast\t\t=\t15\r\n$Outline2Contrast\t\t=\t12\r\n"
        "$BackgroundContrast\t\t=\t0\r\n$ForceDisplay\t\t\t=\tTRUE\r\n$FadeIn\t\t\t\t=\t0\r\n"
        "$FadeOut\t\t\t=\t0\r\n$ColorIndex1\t\t\t=\t0   \r\n$ColorIndex2\t\t\t=\t0\r\n"
        "$ColorIndex3\t\t\t=\t8\r\n$ColorIndex4\t\t\t=\t0\r\n\r\n$TapeOffset\t\t\t=\tFALSE\r\n\r\n"
        "00:00:00:00\t,\t00:00:01:49\t,\tHi\r\n"
        "00:00:01:50\t,\t00:00:03:99\t,\tAb cd\r\n"
        "00:00:06:25\t,\t00:00:16:25\t,\t[Ef] gh\r\n"
        "00:01:02:34\t,\t00:01:07:33\t,\tBye\r\n");
}

TEST(SubtitleWriter, OneLineForm)
{
    EXPECT_EQ(Printed(10, SampleCues()),
        "{* VIPLAY SUBTITLE FILE *}\r\n00:00:00,000-00:00:01,495=Hi\r\n00:00:01,505-00:00:03,990=Ab cd\r\n"
        "00:00:06,250-00:00:16,250=[Ef] gh\r\n00:01:02,340-00:01:07,330=Bye\r\n");
}

TEST(SubtitleWriter, BracketPairs)
{
    EXPECT_EQ(Printed(11, SampleCues()),
        "[00:00:00]Hi\r\n[00:00:01]\r\n[00:00:01]Ab cd\r\n[00:00:03]\r\n"
        "[00:00:06][Ef] gh\r\n[00:00:16]\r\n[00:01:02]Bye\r\n[00:01:07]\r\n");
}

TEST(SubtitleWriter, CueListForm)
{
    EXPECT_EQ(Printed(99, SampleCues()),
        "00:00:00,000->00:00:01,495|Hi\r\n00:00:01,505->00:00:03,990|Ab\\Ncd\r\n"
        "00:00:06,250->00:00:16,250|[Ef]\\Ngh\r\n00:01:02,340->00:01:07,330|Bye\r\n");
}

WriterOptions ScriptOptions()
{
    WriterOptions options;
    options.screenWidth = 720;
    options.screenHeight = 576;
    options.fontName = u"Sans"_s;
    options.fontAlphaLevel = 128;
    options.fontEncoding = 134;
    return options;
}

const char kScriptHead[]
    = "[Script Info]\r\nTitle: QDK\r\nScriptType: V4.00\r\nOriginal Script: Quillbox Desk\r\n"
      "Collisions: Normal\r\nPlayResX: 720\r\nPlayResY: 576\r\nTimer: 100.0000\r\n\r\n"
      "[v4 Styles]\r\nFormat: Name,Fontname,Fontsize,PrimaryColour,SecondaryColour,"
      "TertiaryColour,BackColour,Bold,Italic,BorderStyle,Outline,Shadow,Alignment,MarginL,"
      "MarginR,MarginV,AlphaLevel,Encoding\r\n";

const char kEventsHead[]
    = "[Events]\r\nFormat: Marked,Start,End,Style,Name,MarginL,MarginR,MarginV,Effect,Text\r\n\r\n";

TEST(SubtitleWriter, ScriptWithoutEffectEndsWithBannerAndTitle)
{
    WriterOptions options = ScriptOptions();
    options.title = u"Big\r\nNight"_s;
    options.banner = u"Live"_s;
    options.fontBold = 1;
    options.fontOutline = 2;
    options.foreColor = 0xFF;
    options.effectColor = 0xFF00;
    // The last cue has no end and keeps the one read before it (zero): ten seconds.
    EXPECT_EQ(Printed(2, SampleCues(), options),
        std::string(kScriptHead)
            + "Style: Default0,Arial,18,&HFF,&HFFFFFF,&HFF00,&H0,0,0,1,0,0,2,15,15,20,128,134\r\n"
              "Style: Default2,Arial,28.8,&HFFFFFF,&H0,&H0,&H0,1,0,1,2,1,1,15,15,518.4,0,134\r\n"
              "Style: Default3,Arial,46.08,&HFFFFFF,&HFFFFFF,&H0,&H0,1,0,1,2,1,10,35,35,0,0,134\r\n\r\n"
            + kEventsHead
            + "Dialogue: Marked=0,0:00:00.00,0:00:01.49,Default0,,0000,0000,0000,,"
              "{\\b1\\i0\\bord2\\3c&HFF00}{\\fscx106}{\\an2}{\\fnSans}Hi\r\n"
              "Dialogue: Marked=0,0:00:01.50,0:00:03.99,Default0,,0000,0000,0000,,"
              "{\\b1\\i0\\bord2\\3c&HFF00}{\\fscx106}{\\an2}{\\fnSans}Ab\\Ncd\r\n"
              "Dialogue: Marked=0,0:00:06.25,0:00:16.25,Default0,,0000,0000,0000,,"
              "{\\b1\\i0\\bord2\\3c&HFF00}{\\fscx106}{\\an2}{\\fnSans}Ef\\Ngh\r\n"
              "Dialogue: Marked=0,0:01:02.34,0:01:12.34,Default0,,0000,0000,0000,,"
              "{\\b1\\i0\\bord2\\3c&HFF00}{\\fscx106}{\\an2}{\\fnSans}Bye\r\n"
              "Dialogue: Marked=0,0:00:03.00,0:02:00.00,Default2,,0000,0000,0000,Banner;30;0,"
              "{\\fad(5000,80)}{\\fn黑体}Live\r\n"
              "Dialogue: Marked=0,0:00:03.00,0:00:15.00,Default3,,0000,0000,0000,,"
              "{\\fad(500,80)}{\\fnSans}Big\\N\\N{\\fs40.32}Night\r\n");
}

TEST(SubtitleWriter, ScriptWithSweepEffect)
{
    WriterOptions options = ScriptOptions();
    options.fontSize = 15;
    options.fontItalic = 1;
    options.fontShadow = 3;
    options.effectStyle = 1;
    options.effectSpeed = 2;
    options.foreColor = 0xFFFFFF;
    options.effectColor = 0xFF0000;
    options.shadowColor = -1;
    options.align = 8;
    const std::string tags = "{\\b0\\i1\\shad3\\4c&HFFFFFFFF}";
    const std::string placing
        = "{\\fscx106}{\\an8}{\\fnSans}{\\t(0,1,\\fsp20)}{\\t(1,200,\\fsp1)}{\\fad(500,200)}";
    // Lead-ins: 3000 for the first cue, the gap to the one before (at most 3000) for the others.
    // Without a title there is no blank line before the events.
    EXPECT_EQ(Printed(2, SampleCues(), options),
        std::string(kScriptHead)
            + "Style: Default0,Arial,15,&HFFFFFF,&HFF0000,&H0,&HFFFFFFFF,0,0,1,0,0,1,15,15,42,128,134\r\n"
              "Style: Default1,Arial,15,&HFFFFFF,&HFF0000,&H0,&HFFFFFFFF,0,0,1,0,0,3,15,15,20,128,134\r\n"
            + kEventsHead + "Dialogue: Marked=0,0:00:00.00,0:00:01.49,Default1,,0000,0000,0000,," + tags
            + "{\\k300}" + placing + "{\\kf-37}H{\\kf-37}i\r\n"
            + "Dialogue: Marked=0,0:00:00.00,0:00:03.99,Default0,,0000,0000,0000,," + tags + "{\\k150}"
            + placing + "{\\kf21}A{\\kf21}b{\\kf21}\\{\\kf21}N{\\kf21}c{\\kf21}d\r\n"
            + "Dialogue: Marked=0,0:00:04.00,0:00:00.00,Default0,,0000,0000,0000,," + tags + "{\\k225}"
            + placing + "{\\kf467}E{\\kf467}f{\\kf467}\\{\\kf467}N{\\kf467}g{\\kf467}h\r\n"
            + "Dialogue: Marked=0,0:00:59.34,0:00:04.99,Default1,,0000,0000,0000,," + tags + "{\\k300}"
            + placing + "{\\kf885}B{\\kf885}y{\\kf885}e\r\n");
}

TEST(SubtitleWriter, UnknownDestinationIsAScript)
{
    const CueList cues {QString(), u"00:00:01,000->00:00:02,000|x"_s};
    EXPECT_EQ(Printed(42, cues, ScriptOptions()), Printed(2, cues, ScriptOptions()));
    EXPECT_NE(Printed(42, cues, ScriptOptions()).find("Dialogue: Marked=0,0:00:01.00,0:00:01.99,Default0,"),
        std::string::npos);
}

TEST(SubtitleWriter, NormalizeTrimsBlanksAndTurnsBothBreaks)
{
    struct Case
    {
        QString text;
        QString separator;
        QString expected;
    };
    const Case cases[] = {
        {u"  a\\Nb\\nc  "_s, u" "_s, u"a b c"_s},
        {u"a\\nb"_s, u"\r\n"_s, u"a\r\nb"_s},
        {u"a\\Nb"_s, u"\\N"_s, u"a\\Nb"_s},
        {u"\ta "_s, u"|"_s, u"\ta"_s}, // blanks only
        {u"   "_s, u" "_s, QString()},
    };
    for (const Case &c : cases)
        EXPECT_EQ(NormalizeCueText(c.text, c.separator), c.expected) << c.text.toStdString();
}

TEST(SubtitleWriter, PrintedEndsFollowTheSharedRules)
{
    struct Case
    {
        const char *name;
        CueList cues;
        std::string expected; // the cue-list form
    };
    const Case cases[] = {
        {"stored end of zero lasts ten seconds", {QString(), u"00:00:02,000->00:00:00,000|a"_s},
            "00:00:02,000->00:00:12,000|a\r\n"},
        {"stored end printed 10 ms short", {QString(), u"00:00:02,000->00:00:03,000|a"_s},
            "00:00:02,000->00:00:02,990|a\r\n"},
        {"last cue without end lasts five seconds", {QString(), u"00:00:02,000|a"_s},
            "00:00:02,000->00:00:06,990|a\r\n"},
        {"end taken from the next cue, even a blank one",
            {QString(), u"00:00:02,000|a"_s, u"00:00:04,500| "_s}, "00:00:02,000->00:00:04,490|a\r\n"},
        {"next cue's start at zero counts as no end", {QString(), u"00:00:02,000|a"_s, u"00:00:00,000|b"_s},
            "00:00:02,000->00:00:12,000|a\r\n00:00:00,000->00:00:04,990|b\r\n"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(Printed(99, c.cues), c.expected) << c.name;
}

TEST(SubtitleWriter, ScriptLastCueKeepsTheEndBeforeIt)
{
    const CueList cues {QString(), u"00:00:01,000->00:00:03,000|a"_s, u"00:00:05,000|b"_s};
    const std::string text = Printed(2, cues, ScriptOptions());
    EXPECT_NE(text.find("Dialogue: Marked=0,0:00:05.00,0:00:02.99,Default0,"), std::string::npos) << text;
    // A single cue without an end has none to keep.
    const std::string single = Printed(2, {QString(), u"00:00:05,000|b"_s}, ScriptOptions());
    EXPECT_NE(single.find("Dialogue: Marked=0,0:00:05.00,0:00:15.00,Default0,"), std::string::npos) << single;
}

TEST(SubtitleWriter, BlankCuesAreSkippedByEveryTimedWriter)
{
    const CueList cues {QString(), u"00:00:01,000|  "_s, u"00:00:02,000|"_s};
    for (const int id : {1, 5, 6, 7, 8, 10, 11, 99}) {
        const QStringList lines = WriteSubtitle(id, cues, {});
        for (const QString &line : lines)
            EXPECT_FALSE(line.contains(u"00:0"_s) || line.contains(u"sync"_s) || line.contains(u"⑩"_s))
                << id << ": " << line.toStdString();
    }
    EXPECT_EQ(WriteSubtitle(99, cues, {}), QStringList());
    EXPECT_EQ(WriteSubtitle(0, cues, {}), (QStringList {QString(), QString()}));
}

TEST(SubtitleWriter, KaraokeStylesAlternateAndCountDown)
{
    struct Case
    {
        const char *name;
        CueList cues;
        const char *countdown; // "" when none
    };
    const Case cases[] = {
        {"far from the start", {QString(), u"00:00:09,000|a"_s}, "0:00:01.00,0:00:06.00,Default0"},
        {"close to the start", {QString(), u"00:00:04,000|a"_s, u"00:00:06,000|b"_s},
            "0:00:00.00,0:00:01.00,Default1"},
        {"countdown clipped at zero", {QString(), u"00:00:06,000|a"_s}, "0:00:00.00,0:00:03.00,Default0"},
        {"no room", {QString(), u"00:00:03,000|a"_s}, ""},
    };
    for (const Case &c : cases) {
        WriterOptions options = ScriptOptions();
        options.effectStyle = 2;
        const QStringList lines = WriteSubtitle(2, c.cues, options);
        const QString tail
            = u",,0000,0000,0000,,{\\fad(80,150)}{\\fnSans}{\\k100}{\\ko50}..{\\ko50}..{\\ko50}.. "
              u"{\\ko50}>{\\ko50}>{\\ko50}>{\\ko50}>{\\ko50}>"_s;
        if (*c.countdown)
            EXPECT_EQ(lines.last(), u"Dialogue: Marked=0,"_s + QString::fromUtf8(c.countdown) + tail)
                << c.name;
        else
            EXPECT_FALSE(lines.last().endsWith(tail)) << c.name;
        // Odd cues take the lower row (Default1), even ones the upper.
        EXPECT_EQ(lines.filter(u"Default1,,0000,0000,0000,,{\\b0"_s).size(), c.cues.size() / 2) << c.name;
        EXPECT_EQ(lines.filter(u"Default0,,0000,0000,0000,,{\\b0"_s).size(), (c.cues.size() - 1) / 2)
            << c.name;
    }
}

TEST(SubtitleWriter, KaraokeScriptSourceUsesItsOwnTimings)
{
    WriterOptions options = ScriptOptions();
    options.effectStyle = 2;
    options.sourceFormatId = 4;
    // Syllable groups take the third field's durations in turn; a missing one keeps the last.
    const CueList grouped {QString(), u"00:00:01,000->00:00:02,000|[ab][cd][e]|'120, 250'"_s};
    EXPECT_EQ(
        WriteSubtitle(2, grouped, options).filter(u"{\\ko12}ab{\\ko25}cd{\\ko25}e|'120, 250'"_s).size(), 1);
    // As the karaoke reader stores it, without that field: every duration stays zero.
    const CueList read {QString(), u"00:00:01,000->00:00:00,000|[12]"_s};
    EXPECT_EQ(WriteSubtitle(2, read, options).filter(u"{\\fad(500,200)}"_s).value(0).section(u'}', -3),
        u"{\\ko0}1{\\ko0}2"_s);
}

} // namespace
} // namespace qb::subtitle
