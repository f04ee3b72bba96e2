// The media tool as the outside judge: what we write in the formats it reads comes back with the
// same cues and times, and what it writes we read with the same cues.
#include "subtitle/convert_subtitle.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QRegularExpression>
#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::subtitle {
namespace {

using test::TempTree;

const QByteArray kSource = "1\r\n00:00:01,000 --> 00:00:02,500\r\nHello\r\n\r\n"
                           "2\r\n00:00:03,250 --> 00:00:04,000\r\nSecond line\r\n\r\n"
                           "3\r\n00:01:05,500 --> 00:01:07,000\r\nThird\r\n\r\n";

struct Timing
{
    qint64 start = 0;
    qint64 end = 0; // the tool gives a last lyric line an end of some million hours
    bool operator==(const Timing &) const = default;
};

// A reading of numbered blocks of our own, independent of the converter's reader.
QList<Timing> timingsOf(const QByteArray &srt)
{
    static const QRegularExpression line(
        u"(\\d+):(\\d\\d):(\\d\\d)[,.](\\d\\d\\d) --> (\\d+):(\\d\\d):(\\d\\d)[,.](\\d\\d\\d)"_s);
    QList<Timing> timings;
    for (auto it = line.globalMatch(QString::fromUtf8(srt)); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const auto ms = [&](int first) {
            return ((m.captured(first).toLongLong() * 60 + m.captured(first + 1).toLongLong()) * 60
                       + m.captured(first + 2).toLongLong())
                * 1000
                + m.captured(first + 3).toLongLong();
        };
        timings.append({ms(1), ms(5)});
    }
    return timings;
}

QList<qint64> startsOf(const QList<Timing> &timings)
{
    QList<qint64> starts;
    for (const Timing &t : timings)
        starts.append(t.start);
    return starts;
}

class SubtitleOracle : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(u"ffmpeg"_s).isEmpty())
            GTEST_SKIP() << "ffmpeg is not installed";
        source = tree.writeFile(u"source.srt"_s, kSource);
    }

    // The media tool's own numbered-block reading of a file.
    QByteArray toolReading(const QString &file)
    {
        const QString back = tree.path(u"back.srt"_s);
        const test::ToolResult run
            = test::runTool(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, file, back});
        EXPECT_EQ(run.exitCode, 0) << file.toStdString() << ": " << run.output.toStdString();
        return test::readAll(back);
    }

    ConvertResult convert(const QString &from, const QString &to)
    {
        ConvertArguments job;
        job.sources = {from};
        job.destination = to;
        job.overwrite = true;
        job.style.screenWidth = 384;
        job.style.screenHeight = 288;
        return ConvertSubtitleFiles(job);
    }

    TempTree tree;
    QString source;
};

TEST_F(SubtitleOracle, WhatWeWriteTheToolReadsWithTheSameCues)
{
    const QList<qint64> starts {1000, 3250, 65500};
    // Every printed end is 10 ms short of the stored one.
    const QList<Timing> withEnds {{1000, 2490}, {3250, 3990}, {65500, 66990}};
    for (const QString &format : {u"srt"_s, u"ass"_s, u"ssa"_s, u"smi"_s, u"lrc"_s}) {
        const QString out = tree.path(u"ours."_s + format);
        ASSERT_TRUE(convert(source, out).written) << format.toStdString();
        const QList<Timing> read = timingsOf(toolReading(out));
        if (format == u"srt"_s || format == u"ass"_s || format == u"ssa"_s)
            EXPECT_EQ(read, withEnds) << format.toStdString();
        else
            EXPECT_EQ(startsOf(read), starts) << format.toStdString();
    }
}

TEST_F(SubtitleOracle, WhatTheToolWritesWeReadWithTheSameCues)
{
    for (const QString &format : {u"ass"_s, u"ssa"_s, u"lrc"_s}) {
        const QString theirs = tree.path(u"theirs."_s + format);
        const test::ToolResult run
            = test::runTool(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, source, theirs});
        ASSERT_EQ(run.exitCode, 0) << run.output.toStdString();
        // The tool writes line feeds alone on this system.
        const QString ours = tree.path(u"ours-from-"_s + format + u".srt"_s);
        ASSERT_TRUE(convert(theirs, ours).written) << format.toStdString();
        EXPECT_EQ(startsOf(timingsOf(test::readAll(ours))), (QList<qint64> {1000, 3250, 65500}))
            << format.toStdString() << "\n"
            << test::readAll(ours).toStdString();
    }
}

} // namespace
} // namespace qb::subtitle
