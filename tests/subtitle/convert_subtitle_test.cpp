// The conversion frame on files: which sources and lines are read, the destination's rules, the
// events, the script conversions, and nothing written when nothing was read.
#include "subtitle/convert_subtitle.h"
#include "support/temp_tree.h"
#include "util/code_page.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::subtitle {
namespace {

using test::TempTree;

const QByteArray kSrt = "1\r\n00:00:01,000 --> 00:00:02,000\r\nfirst\r\n\r\n2\r\n00:00:03,000 --> "
                        "00:00:04,500\r\nsecond\r\n\r\n";

class Convert : public ::testing::Test
{
protected:
    ConvertResult run(const QStringList &sources, const QString &destination)
    {
        job.sources = sources;
        job.destination = destination;
        return ConvertSubtitleFiles(
            job, {[this](int code, const QString &text) { statuses << u"%1:%2"_s.arg(code).arg(text); }, {}});
    }

    TempTree tree;
    ConvertArguments job;
    QStringList statuses;
};

TEST_F(Convert, SourcesAreReadInOrderAndTheDestinationIsWritten)
{
    const QString a = tree.writeFile(u"a.srt"_s, kSrt);
    const QString missing = tree.path(u"missing.srt"_s);
    const ConvertResult result = run({missing, a}, tree.path(u"out/b.srt"_s));
    ASSERT_TRUE(result.written);
    EXPECT_EQ(test::readAll(tree.path(u"out/b.srt"_s)),
        "1\r\n00:00:01,000 --> 00:00:01,990\r\nfirst\r\n\r\n2\r\n00:00:03,000 --> "
        "00:00:04,490\r\nsecond\r\n\r\n");
    // The missing source is skipped without a word; the written one is announced last.
    EXPECT_EQ(statuses, (QStringList {u"0:"_s + a, u"1:"_s + a, u"2:"_s + tree.path(u"out/b.srt"_s)}));
    EXPECT_EQ(result.started.size(), 8);
}

TEST_F(Convert, WhatEndsAConversionWithoutOutput)
{
    const QString good = tree.writeFile(u"good.srt"_s, kSrt);
    struct Case
    {
        const char *name;
        QStringList sources;
    };
    const Case cases[] = {
        {"one line without a line end", {tree.writeFile(u"one.srt"_s, "00:00:01,000 --> 00:00:02,000")}},
        {"line feeds alone, without a line end",
            {tree.writeFile(u"lf.srt"_s, "1\n00:00:01,000 --> 00:00:02,000")}},
        {"an unknown source after a good one", {good, tree.writeFile(u"x.mkv"_s, "1\r\n2\r\n")}},
        {"an empty source", {tree.writeFile(u"empty.srt"_s, "")}},
        {"no cue read", {tree.writeFile(u"nocue.srt"_s, "just words\r\nmore\r\n")}},
        {"no sources at all", {}},
    };
    for (const Case &c : cases) {
        const QString out = tree.path(u"none.srt"_s);
        EXPECT_FALSE(run(c.sources, out).written) << c.name;
        EXPECT_FALSE(QFileInfo::exists(out)) << c.name;
    }
}

TEST_F(Convert, TheLastLineWithoutALineEndIsNotRead)
{
    // Line feeds alone end the lines of a file that has no CR LF, as files written here do.
    for (const QByteArray &text : {QByteArray("one\r\ntwo\r\nthree"), QByteArray("one\ntwo\nthree")}) {
        const QString source = tree.writeFile(u"s.txt"_s, text);
        ASSERT_TRUE(run({source}, tree.path(u"s-out.txt"_s)).written);
        EXPECT_EQ(test::readAll(tree.path(u"s-out.txt"_s)), "one\r\ntwo\r\n");
    }
}

TEST_F(Convert, DestinationRules)
{
    const QString source = tree.writeFile(u"s.srt"_s, kSrt);
    // An unknown extension writes the script format.
    ASSERT_TRUE(run({source}, tree.path(u"script.xyz"_s)).written);
    EXPECT_TRUE(test::readAll(tree.path(u"script.xyz"_s)).contains("Dialogue:"));
    // Without overwrite an existing name is numbered; the suffix replaces the extension.
    const QString taken = tree.writeFile(u"taken.srt"_s, "keep");
    const ConvertResult numbered = run({source}, taken);
    ASSERT_TRUE(numbered.written);
    EXPECT_NE(numbered.destination, taken);
    EXPECT_EQ(test::readAll(taken), "keep");
    job.overwrite = true;
    job.fileNameSuffix = u"utf"_s;
    const ConvertResult suffixed = run({source}, tree.path(u"deep/new/name.srt"_s));
    EXPECT_EQ(suffixed.destination, tree.path(u"deep/new/name.utf"_s));
    EXPECT_TRUE(QFileInfo::exists(suffixed.destination));
}

TEST_F(Convert, TheWantedTextFormatAndTheScriptConversions)
{
    // Big5 bytes that a GBK reading misread come out simplified.
    QByteArray big5 = "1\r\n00:00:01,000 --> 00:00:02,000\r\n";
    big5 += util::EncodeCodePage(u"電影開始"_s, 950) + "\r\n\r\n";
    const QString source = tree.writeFile(u"big5.srt"_s, big5);
    job.internalCodeConversion = 1;
    job.encodeFormat = 1; // UTF-8 with its mark
    ASSERT_TRUE(run({source}, tree.path(u"gb.srt"_s)).written);
    const QByteArray written = test::readAll(tree.path(u"gb.srt"_s));
    EXPECT_TRUE(written.startsWith("\xEF\xBB\xBF"));
    EXPECT_TRUE(QString::fromUtf8(written).contains(u"电影开始"_s)) << written.toStdString();
}

TEST_F(Convert, SourcesInEveryTextFormatAreRead)
{
    const QString text = u"1\r\n00:00:01,000 --> 00:00:02,000\r\n你好 world\r\n\r\n"_s;
    QByteArray utf16le("\xFF\xFE");
    QByteArray utf16be("\xFE\xFF");
    for (const QChar c : text) {
        utf16le += char(c.unicode() & 0xFF);
        utf16le += char(c.unicode() >> 8);
        utf16be += char(c.unicode() >> 8);
        utf16be += char(c.unicode() & 0xFF);
    }
    const std::pair<const char *, QByteArray> sources[] = {
        {"utf-8", text.toUtf8()},
        {"utf-8 with its mark", "\xEF\xBB\xBF" + text.toUtf8()},
        {"utf-16 le", utf16le},
        {"utf-16 be", utf16be},
        {"gbk", util::EncodeCodePage(text, 936)},
    };
    job.overwrite = true;
    job.encodeFormat = 1;
    for (const auto &[name, bytes] : sources) {
        const QString source = tree.writeFile(u"enc.srt"_s, bytes);
        ASSERT_TRUE(run({source}, tree.path(u"enc-out.txt"_s)).written) << name;
        EXPECT_EQ(test::readAll(tree.path(u"enc-out.txt"_s)), "\xEF\xBB\xBF" + u"你好 world\r\n"_s.toUtf8())
            << name;
    }
}

} // namespace
} // namespace qb::subtitle
