// The readers, each fed a small file of its format line by line as a conversion feeds it: what
// they store, the odd rules of some formats, and lines they must survive.
#include "subtitle/subtitle_reader.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// Readable failures for the cue lists.
static void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace qb::subtitle {
namespace {

// Splits at CR LF, drops the piece behind the last CR LF and strips CR and LF from each line.
CueList readFile(int formatId, const QString &fileText, int destinationId = 2, const CueWindow &window = {})
{
    ReaderState state;
    state.destinationId = destinationId;
    CueList cues = EmptyCueList();
    const QStringList pieces = fileText.split(u"\r\n"_s);
    const qsizetype visited = pieces.size() - 1;
    for (qsizetype i = 0; i < visited; ++i) {
        QString line = pieces.at(i);
        line.remove(u'\r').remove(u'\n');
        ReadSubtitleLine(formatId, line, i == visited - 1, state, cues, window);
    }
    EXPECT_EQ(cues.value(0), QString()) << "element 0 is no cue and stays untouched";
    return cues.mid(1);
}

struct Case
{
    const char *name;
    int formatId;
    QString file;
    CueList expected;
    int destinationId = 2;
};

void runCases(std::initializer_list<Case> cases)
{
    for (const Case &c : cases)
        EXPECT_EQ(readFile(c.formatId, c.file, c.destinationId), c.expected) << c.name;
}

TEST(SubtitleReader, PlainTextAndTheStoredForm)
{
    runCases({
        {"every visited line is a cue at zero; the last piece is not read", 0, u"a\r\n\r\nb\r\nunread"_s,
            {u"00:00:00,000->00:00:00,000|a"_s, u"00:00:00,000->00:00:00,000|"_s,
                u"00:00:00,000->00:00:00,000|b"_s}},
        {"stored form: time and text around the first bar", 99,
            u"00:00:01,000->00:00:02,000|Hello\r\n00:00:03,000|a|b\r\nno bar\r\n|no time\r\n"_s,
            {u"00:00:01,000->00:00:02,000|Hello"_s, u"00:00:03,000|a|b"_s}},
    });
}

TEST(SubtitleReader, NumberedBlocks)
{
    runCases({
        {"blocks join their lines, lose tags and end at a blank line or the last line", 1,
            u"1\r\n00:00:01,000 --> 00:00:02,500\r\nHello <i>there</i>\r\nsecond\r\n\r\n2\r\n"
            u"00:00:03,000-->00:00:04,000\r\nLast\r\n"_s,
            {u"00:00:01,000->00:00:02,500|Hello there\\Nsecond"_s, u"00:00:03,000->00:00:04,000|Last"_s}},
        {"text outside a block and blank lines without a time store nothing", 1, u"stray\r\n\r\n\r\n7\r\n"_s,
            {}},
        {"a block whose text is the unread last piece is lost", 1,
            u"1\r\n00:00:01,000 --> 00:00:02,000\r\nLost"_s, {}},
        {"a time line as the last line stores nothing", 1, u"1\r\n00:00:01,000 --> 00:00:02,000\r\n"_s, {}},
    });
}

TEST(SubtitleReader, StrictNumberedBlocksMakeOneCuePerTextLine)
{
    runCases({
        {"each text line is its own cue", 91,
            u"1\r\n00:00:01,000 --> 00:00:02,000\r\nA <b>x</b>\r\nB\r\n\r\n2\r\n00:00:03,000 --> "
            u"00:00:04,000\r\n"
            u"C\r\n\r\n"_s,
            {u"00:00:01,000->00:00:02,000|A x"_s, u"00:00:01,000->00:00:02,000|B"_s,
                u"00:00:03,000->00:00:04,000|C"_s}},
        {"a number before the blank line is text", 91, u"1\r\n00:00:01,000 --> 00:00:02,000\r\n42\r\n\r\n"_s,
            {u"00:00:01,000->00:00:02,000|42"_s}},
        {"a leading blank line and a number on the time line restart the block", 91,
            u"\r\n1\r\n00:00:05,000 --> 00:00:06,000\r\nA\r\n"_s, {u"00:00:05,000->00:00:06,000|A"_s}},
        {"a time line without the spaced arrow keeps the previous start", 91,
            u"1\r\n00:00:01,000 --> 00:00:02,000\r\nA\r\n\r\n2\r\n00:00:05,000-->00:00:06,000\r\nB\r\n"_s,
            {u"00:00:01,000->00:00:02,000|A"_s, u"00:00:01,000->00:00:02,000|B"_s}},
    });
}

TEST(SubtitleReader, ScriptTakesItsColumnsFromTheFormatLine)
{
    const QString script
        = u"[Script Info]\r\nTitle: x\r\n[V4+ Styles]\r\nFormat: Name, Fontname, Fontsize\r\n"
          u"Style: Default,Arial,20\r\n[Events]\r\n"
          u"Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\r\n"
          u"Dialogue: 0,0:00:01.00,0:00:02.50,Default,,0,0,0,,Hello, {\\b1}world{\\b0}\r\n"
          u"dialogue: 0,0:00:03.00,0:00:04.00,Default,,0,0,0,,<i>b</i>\r\n"
          u"Dialogue: 0,0:00:05.00\r\n"_s;
    runCases({
        {"a script destination keeps tags and commas", 2, script,
            {u"00:00:01,000->00:00:02,500|Hello, {\\b1}world{\\b0}"_s,
                u"00:00:03,000->00:00:04,000|<i>b</i>"_s}},
        {"other destinations lose the tags", 2, script,
            {u"00:00:01,000->00:00:02,500|Hello, world"_s, u"00:00:03,000->00:00:04,000|b"_s}, 1},
        {"columns in any order and case", 2,
            u"Format: Marked, END, Start, Style, Text\r\nDialogue: Marked=0,0:00:09.00,0:00:07.00,Default,Hi, there\r\n"_s,
            {u"00:00:07,000->00:00:09,000|Hi, there"_s}},
        {"a dialogue before any format line is skipped", 2,
            u"Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,Hi\r\n"_s, {}},
    });
}

TEST(SubtitleReader, TimeTaggedLyrics)
{
    runCases({
        {"header tags land at zero without text; several tags share one text", 3,
            u"[ti:Song]\r\n[00:01.00][00:05.50]Chorus <b>line</b>\r\n[00:02.00]Verse\r\nno tags\r\n"_s,
            {u"00:00:00,000|"_s, u"00:00:01,000|Chorus line"_s, u"00:00:05,500|Chorus line"_s,
                u"00:00:02,000|Verse"_s}},
        {"brackets the wrong way round give an empty time", 3, u"]x[\r\n"_s, {}},
    });
}

TEST(SubtitleReader, TimeTaggedLyricsBoundWhatOneLineStores)
{
    QString many;
    for (int i = 0; i < 200; ++i)
        many += u"[00:01.00]"_s;
    EXPECT_EQ(readFile(3, many + u"la\r\n"_s).size(), 200);
    // Thousands of tags in front of a long text would copy it thousands of times.
    QString hostile;
    for (int i = 0; i < 20000; ++i)
        hostile += u"[0]"_s;
    hostile += QString(5000, u'x');
    EXPECT_EQ(readFile(3, hostile + u"\r\n"_s).size(), 0);
}

TEST(SubtitleReader, KaraokeStoresTheTimingListAsTheText)
{
    runCases({
        // The end is read from "00:03.00|Hello": its fields shift, so 3 becomes minutes.
        {"the end is read with the line text behind it; the timing list is the text", 4,
            u"karaoke.add('00:01.00', '00:03.00', 'Hello', '500,1500');\r\n"
            u"KARAOKE.ADD('00:04.00', '00:05.00', 'Bye (x)', '<x>100</x>');  \r\n"_s,
            {u"00:00:01,000->00:03:00,000|500,1500"_s, u"00:00:04,000->00:05:00,000|100"_s}},
        {"calls with missing arguments are skipped", 4,
            u"karaoke.add(\r\nkaraoke.add();\r\nkaraoke.add('00:06.00', '00:07.00');\r\n"_s, {}},
    });
}

TEST(SubtitleReader, XmlLyricCountsQuotesOnFromTheFirst)
{
    runCases({
        // The second quote after the first one: a lone begin attribute gives no time.
        {"a line with one attribute stores nothing", 5, u"<line begin=\"00:01.00\">Hi</line>\r\n"_s, {}},
        // The time is what stands up to the opening quote of "end", read as hours and minutes.
        {"with more quotes the time runs over the attribute", 5,
            u"<line begin=\"00:01.00\" end=\"x\"><span>Hel</span></line>\r\n<lines>\r\n"_s,
            {u"00:01:00,000|Hel"_s}},
    });
}

TEST(SubtitleReader, SamiAndCircledNumbersReadBareNumbersAsSeconds)
{
    runCases({
        {"sync values are seconds; text lines continue the last cue", 6,
            u"stray\r\n<SAMI>\r\n<SYNC Start=1000><P Class=KRCC>Hello\r\n<br>world &nbsp;\r\n   \r\n"
            u"<sync start=2500><p>Next\r\n"_s,
            {u"00:16:40,000|Helloworld "_s, u"00:41:40,000|Next"_s}},
        {"a ten-digit sync value still reads as seconds", 6, u"<SYNC Start=1234567890><P>x\r\n"_s,
            {u"342935:31:30,000|x"_s}},
        {"a sync without a value is at zero", 6, u"<sync><p>x\r\n"_s, {u"00:00:00,000|x"_s}},
        {"circled tags are tens of seconds; earlier text is lost", 7,
            u"lost\r\n\u246912\u247F\r\n<b>Hi</b>\r\n there\r\n\u24693.5\u247F tail\r\n\r\nx\r\n"_s,
            {u"00:02:00,000|Hi there"_s, u"00:00:35,000|x"_s}},
    });
}

TEST(SubtitleReader, MinuteSecondBlocks)
{
    runCases({
        {"a bare mm:ss line starts a cue, other lines join it as they are", 8,
            u"note\r\n01:30\r\nLine one\r\n<i>tag</i>\r\n1:30\r\n02:05 \r\n10:00\r\n\r\n"_s,
            {u"00:01:30,000|Line one<i>tag</i>1:3002:05 "_s, u"00:10:00,000|"_s}},
    });
}

TEST(SubtitleReader, TabularOneLineAndBracketForms)
{
    runCases({
        {"tabular: the third field is the text, later commas cut it", 9,
            u"$FontName = Arial\r\n00:00:01:50 , 00:00:03:00 , Hello <b>you</b>, and more\r\n"
            u"00:00:04:00,00:00:05:00\r\n0:00:06:00,0:00:07:00,short hour\r\n"_s,
            {u"00:00:01,500->00:00:03,000|Hello you"_s}},
        {"one-line form: times left of the equals sign", 10,
            u"{* SUBTITLE FILE *}\r\n00:00:01,000-00:00:02,000=Hello {x}there\r\n"
            u"00:00:03,000 - 00:00:04,000 = a=b \r\n00:00:05,000 no equals\r\n00:00:06,000=Start only\r\n"_s,
            {u"00:00:01,000->00:00:02,000|Hello there"_s, u"00:00:03,000->00:00:04,000|a=b"_s,
                u"00:00:06,000|Start only"_s}},
        {"bracket pairs: a start without its end is replaced by the next start", 11,
            u"[00:00:01]Hello <i>there</i>\r\n[00:00:03]\r\n[00:00:04]orphan\r\n[00:00:05]Next\r\n"
            u"[00:00:06]\r\nnot a tag\r\n[broken\r\n"_s,
            {u"00:00:01,000->00:00:03,000|Hello there"_s, u"00:00:05,000->00:00:06,000|Next"_s}},
        {"bracket pairs: a start line alone stores nothing", 11, u"[00:00:01]Alone\r\n"_s, {}},
        {"bracket pairs: a second end tag closes nothing", 11,
            u"[00:00:01]A\r\n[00:00:02]\r\n[00:00:09] \r\n[]\r\n"_s, {u"00:00:01,000->00:00:02,000|A"_s}},
    });
}

TEST(SubtitleReader, ReadersStoreThroughTheWindow)
{
    EXPECT_EQ(readFile(99, u"00:00:12,000->00:00:25,000|x\r\n00:00:30,000|late\r\n"_s, 2, {10, 20, 0, false}),
        (CueList {u"00:00:02,000->00:00:10,000|x"_s}));
    EXPECT_EQ(readFile(0, u"a\r\n"_s, 2, {10, 20, 0, false}), CueList {});
}

TEST(SubtitleReader, HostileLinesAreSkippedWithoutHarm)
{
    const QString huge = QString(300000, u'[') + QString(300000, u']') + u"-->"_s + QString(100000, u'|');
    const QStringList lines = {QString(), u" "_s, u"\t"_s, huge, u"-->"_s, u" --> "_s, u"|"_s, u"[]"_s,
        u"]]]]"_s, u"karaoke.add("_s, u"karaoke.add(''', ''', ''', ''');"_s, u"<sync"_s, u"<sync=>"_s,
        u"\u2469\u247F"_s, u"\u247F1\u2469"_s, u"Format:"_s, u"Format: start,end"_s, u"Dialogue:"_s,
        u"Dialogue: ,,,,,,,,,,,,"_s, u"line begin="_s, u"99:99:99,999 --> ab:cd"_s, u"99:99:99:99,,,"_s,
        u"99:99:99,999-=-"_s, u"[99:99:99]x"_s, u"[]"_s, u"1"_s, u"<SYNC Start=1e308>"_s,
        u"<SYNC Start=-5>x"_s, u"\u246999999999999999999\u247F"_s};
    const QString file = lines.join(u"\r\n"_s) + u"\r\n"_s;
    for (int id : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 91, 99}) {
        const CueList cues = readFile(id, file);
        EXPECT_LE(cues.size(), lines.size()) << id;
        // What is stored stays in proportion to what was read.
        qsizetype stored = 0;
        for (const QString &cue : cues)
            stored += cue.size();
        EXPECT_LE(stored, 2 * file.size() + 64 * cues.size()) << id;
    }
    EXPECT_EQ(readFile(42, file), CueList {}) << "an unknown format reads nothing";
}

} // namespace
} // namespace qb::subtitle
