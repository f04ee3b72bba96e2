// Tool output to status events, position, total and speed: each rule, in its order.
#include "engine/console_scan.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <limits>

using namespace qb::engine;

namespace {

struct Outcome
{
    QStringList events; // "code:text"
    ScanState state;
};

Outcome scan(const QString &chunk, ScanState state = {}, const ScanContext &context = {})
{
    Outcome outcome;
    ScanToolOutput(chunk, state, context,
        [&](int code, const QString &text) { outcome.events << QString::number(code) + u':' + text; });
    outcome.state = state;
    return outcome;
}

TEST(ConsoleScan, FatalPhrasesInTheirOrder)
{
    const ScanContext c;
    EXPECT_EQ(
        scan(QStringLiteral(
                 "Automatic encoder selection failed Encoder (codec x) not found for output stream #0:0"))
            .events,
        QStringList {QStringLiteral("11:Encoder (codec x) not found for output stream #0:0")});
    EXPECT_EQ(scan(QStringLiteral("Unknown encoder 'libfoo'")).events,
        QStringList {QStringLiteral("11:Unknown encoder 'libfoo'")});
    EXPECT_EQ(scan(QStringLiteral("[x] Can not resample 6 channels")).events,
        QStringList {QStringLiteral("11:") + c.StringContent16 + QStringLiteral(" 6 channels")});
    EXPECT_EQ(scan(QStringLiteral("Resampling with input channels greater than 2 unsupported.")).events,
        QStringList {QStringLiteral("11:") + c.StringContent20});
    EXPECT_EQ(scan(QStringLiteral("Error while opening encoder for output stream #0:0")).events,
        QStringList {
            QStringLiteral("11:maybe incorrect parameters such as bit_rate, rate, width or height")});
    EXPECT_EQ(scan(QStringLiteral("x: Unknown input or output format: y")).events,
        QStringList {QStringLiteral("11:x: ") + c.StringContent19 + QStringLiteral(": y")});
    EXPECT_EQ(scan(QStringLiteral("Output file #0 does not contain any stream")).events,
        QStringList {QStringLiteral("11:") + c.StringContent14});
    EXPECT_EQ(
        scan(QStringLiteral("Adjusting chunk start time to previous random access at 1.5 sec, more")).events,
        QStringList {QStringLiteral("11:Adjusting chunk start time to previous random access at 1.5 sec")});
    EXPECT_EQ(scan(QStringLiteral("Invalid pixel aspect ratio 0/1 here")).events,
        QStringList {QStringLiteral("11:Invalid pixel aspect ratio 0/1")});
    // The first phrase wins over a later one in the same chunk.
    EXPECT_EQ(scan(QStringLiteral("Unknown encoder x; Invalid pixel aspect ratio 0/1")).events.size(), 1);
    EXPECT_TRUE(scan(QStringLiteral("Unknown encoder x; Invalid pixel aspect ratio 0/1"))
                    .events[0]
                    .startsWith(QStringLiteral("11:Unknown")));
}

TEST(ConsoleScan, AllZeroProgressIsSearchingHoweverSpaced)
{
    for (const QString &chunk :
        {QStringLiteral("frame=    0 fps=0.0 q=0.0 size=       0kB time=00:00:00.00 bitrate=N/A"),
            QStringLiteral("frame=0 fps=0 q=0 size=0kB time=00:00:00.00\r")}) {
        const Outcome o = scan(chunk, {5, 60, 7});
        EXPECT_EQ(o.events.size(), 1);
        EXPECT_TRUE(o.events[0].startsWith(QStringLiteral("9:")));
        EXPECT_EQ(o.state.value, 5); // progress untouched
    }
}

TEST(ConsoleScan, EncoderProgressLine)
{
    ScanContext c;
    c.Duration = 10;
    const Outcome o = scan(QStringLiteral("frame=  231 fps= 45 q=28.0 size=    4864kB time=00:00:09.26 "
                                          "bitrate=4300.8kbits/s speed=1.81x    \r"),
        {}, c);
    EXPECT_TRUE(o.events.isEmpty());
    EXPECT_EQ(o.state.value, 9); // whole seconds
    EXPECT_EQ(o.state.FPSSpeed, 45);
    EXPECT_EQ(o.state.Max, 10); // from the probed length
    // A line that doesn't begin with "frame=" has no speed.
    EXPECT_EQ(
        scan(QStringLiteral("size=  100kB time=00:01:02.00 bitrate=1k"), {0, 99, 33}).state.FPSSpeed, 0);
    EXPECT_EQ(scan(QStringLiteral("size=  100kB time=00:01:02.00 bitrate=1k"), {0, 99, 33}).state.value, 62);
}

TEST(ConsoleScan, UnknownTimeLeavesThePositionAndSearches)
{
    const Outcome o
        = scan(QStringLiteral("frame=1 fps=3 q=1 size=1kB time=10000000000 bitrate=1"), {4, 50, 2});
    EXPECT_EQ(
        o.events, QStringList {QStringLiteral("9:frame=1 fps=3 q=1 size=1kB time=10000000000 bitrate=1")});
    EXPECT_EQ(o.state.value, 4);
    EXPECT_EQ(o.state.FPSSpeed, 2);
}

TEST(ConsoleScan, TotalFromRangeAndInputs)
{
    const QString progress = QStringLiteral("frame=1 fps=1 q=1 size=1kB time=00:00:01.00 bitrate=1");
    ScanContext range;
    range.TimeStartPoint = 10;
    range.TimeEndPoint = 40;
    range.Duration = 500;
    EXPECT_EQ(scan(progress, {}, range).state.Max, 30);
    ScanContext joined = range;
    joined.FileInfo = QStringLiteral("a.mp4|b.mp4|c.mp4");
    EXPECT_EQ(scan(progress, {}, joined).state.Max, 90);
    // A total already set stays.
    EXPECT_EQ(scan(progress, {0, 77, 0}, range).state.Max, 77);
}

TEST(ConsoleScan, DurationHeader)
{
    const QString header = QStringLiteral("  Duration: 00:01:00.00, start: 0.000000, bitrate: 5464 kb/s");
    ScanContext two;
    two.FileInfo = QStringLiteral("a|b");
    Outcome o = scan(header, {}, two);
    EXPECT_EQ(o.state.Max, 120); // two inputs of 60 s, no range
    EXPECT_EQ(o.events,
        QStringList {QStringLiteral("6:Duration: 00:01:00.00, start: 0.000000, bitrate: 5464 kb/s")});
    // A second header with the total set changes nothing but is passed on.
    o = scan(header, {0, 33, 0}, two);
    EXPECT_EQ(o.state.Max, 33);
    EXPECT_EQ(o.events.size(), 1);
    // With a command line of the host's own, the length alone.
    ScanContext own = two;
    own.CommandLine = QStringLiteral("ffmpeg -i a");
    EXPECT_EQ(scan(header, {}, own).state.Max, 60);
}

TEST(ConsoleScan, StartLineWithoutDurationAddsOneSecond)
{
    const Outcome o = scan(QStringLiteral("Stream: 00:00:20.00, start: 0.5"));
    EXPECT_EQ(o.state.Max, 21);
    EXPECT_EQ(o.events.size(), 1);
}

TEST(ConsoleScan, PercentageTools)
{
    struct Case
    {
        QString line;
        double value;
    };
    const Case cases[] = {{QStringLiteral("Encoded 120 frames (42%)"), 42},
        {QStringLiteral("Splitting (17/100)"), 17}, {QStringLiteral("ISO File Writing: |====| (55/100)"), 55},
        {QStringLiteral("x Processing file (63%) y"), 63}, {QStringLiteral("Progress: 77.5%"), 77.5},
        {QStringLiteral("Reading packet no 5"), 3}};
    for (const Case &c : cases) {
        const Outcome o = scan(c.line, {3, 0, 9});
        EXPECT_EQ(o.state.Max, 100) << c.line.toStdString();
        EXPECT_EQ(o.state.value, c.value) << c.line.toStdString();
        EXPECT_EQ(o.state.FPSSpeed, 0);
        EXPECT_TRUE(o.events.isEmpty());
    }
}

TEST(ConsoleScan, MEncoderPositionLine)
{
    const QString pos = QStringLiteral("Pos:  12.3s    308f (25%) 42.50fps Trem:   0min");
    Outcome o = scan(pos);
    EXPECT_EQ(o.state.Max, 100);
    EXPECT_EQ(o.state.value, 25);
    EXPECT_EQ(o.state.FPSSpeed, 42);
    ScanContext known;
    known.Duration = 50;
    o = scan(pos, {}, known);
    EXPECT_EQ(o.state.Max, 50);
    EXPECT_DOUBLE_EQ(o.state.value, 12.3);
    known.TimeEndPoint = 20;
    EXPECT_EQ(scan(pos, {}, known).state.Max, 20);
}

TEST(ConsoleScan, SpeedsBeyondTheFieldAreClamped)
{
    // Found by the fuzzer: a speed of 27 digits must not overflow the field.
    EXPECT_EQ(scan(QStringLiteral("Pos: 1s 3f (7%) 7777777777777777777777777777fps")).state.FPSSpeed,
        std::numeric_limits<long>::max());
    EXPECT_EQ(
        scan(QStringLiteral("frame=1 fps=99999999999999999999999 q=1 size=1kB time=00:00:01.00 bitrate=1"))
            .state.FPSSpeed,
        std::numeric_limits<long>::max());
    EXPECT_EQ(
        scan(QStringLiteral("frame=1 fps=-5 q=1 size=1kB time=00:00:01.00 bitrate=1")).state.FPSSpeed, 0);
}

TEST(ConsoleScan, CabinetMakerLines)
{
    Outcome o = scan(QStringLiteral(" 42.17% - docs\\readme.txt (3 of 10)\r\n"), {10, 0, 5});
    EXPECT_EQ(o.state.Max, 100);
    EXPECT_DOUBLE_EQ(o.state.value, 42.17);
    EXPECT_EQ(o.state.FPSSpeed, 0);
    EXPECT_EQ(o.events, QStringList {QStringLiteral("1: 42.17% - docs\\readme.txt (3 of 10)\r\n")});
    // A line that goes back keeps the old position but still reports.
    o = scan(QStringLiteral(" 12.00% - a.txt (1 of 10)"), {50, 100, 0});
    EXPECT_EQ(o.state.value, 50);
    EXPECT_EQ(o.events.size(), 1);
    // The folder flush and error lines are ignored.
    EXPECT_TRUE(scan(QStringLiteral("100.00% [flushing current folder]\r\n")).events.isEmpty());
    EXPECT_TRUE(scan(QStringLiteral("makecab: error: cannot find 'x'")).events.isEmpty());
}

TEST(ConsoleScan, AnythingElseIsInformation)
{
    EXPECT_EQ(scan(QStringLiteral("  Stream #0:0: Video: h264\r\n")).events,
        QStringList {QStringLiteral("6:Stream #0:0: Video: h264")});
    EXPECT_TRUE(scan(QString()).events.isEmpty());
    EXPECT_TRUE(scan(QStringLiteral("\r\n")).events.isEmpty());
}

TEST(ConsoleScan, GetStringCuts)
{
    EXPECT_EQ(GetString(QStringLiteral("a TIME=12 b"), QStringLiteral("time="), QStringLiteral(" ")),
        QStringLiteral("12"));
    EXPECT_EQ(GetString(QStringLiteral("abc(42%)"), QStringLiteral("("), QStringLiteral("%")),
        QStringLiteral("42"));
    EXPECT_EQ(GetString(QStringLiteral(" lead: x"), QString(), QStringLiteral(":")), QStringLiteral("lead"));
    EXPECT_EQ(
        GetString(QStringLiteral("key= tail "), QStringLiteral("key="), QString()), QStringLiteral("tail"));
    EXPECT_EQ(GetString(QStringLiteral("no field"), QStringLiteral("x="), QStringLiteral(" ")), QString());
    EXPECT_EQ(GetString(QStringLiteral("end time=5"), QStringLiteral("time="), QStringLiteral(" ")),
        QStringLiteral("5"));
    // Before is searched exactly: case matters there.
    EXPECT_EQ(GetString(QStringLiteral("a=1Xb x"), QStringLiteral("a="), QStringLiteral("x")),
        QStringLiteral("1Xb"));
}

} // namespace
