// quillbox subtitle: conversions named by the destination's extension, sources with line feeds
// alone, and clear refusals.
#include "cli_run.h"

#include "support/temp_tree.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using qb::test::runQuillbox;

TEST(SubtitleCommand, ConvertsByExtensionAndRefusesWhatItCannot)
{
    qb::test::TempTree tree;
    const QString source = tree.writeFile(
        u"in.srt"_s, "1\n00:00:01,000 --> 00:00:02,500\nHello\n\n2\n00:00:03,000 --> 00:00:04,000\nBye\n\n");
    const qb::test::CliRun lrc = runQuillbox(
        {u"subtitle"_s, u"convert"_s, source, tree.path(u"out.lrc"_s), u"--offset"_s, u"1.5"_s});
    EXPECT_EQ(lrc.status, 0) << lrc.err.toStdString();
    const QByteArray written = qb::test::readAll(tree.path(u"out.lrc"_s));
    EXPECT_TRUE(written.contains("[00:02.50]Hello\r\n")) << written.toStdString();
    EXPECT_TRUE(written.contains("[00:04.50]Bye\r\n"));

    const qb::test::CliRun unknown
        = runQuillbox({u"subtitle"_s, u"convert"_s, source, tree.path(u"out.doc"_s)});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(unknown.err.contains(u"known extensions: txt, srt"_s)) << unknown.err.toStdString();
    const qb::test::CliRun missing
        = runQuillbox({u"subtitle"_s, u"convert"_s, tree.path(u"gone.srt"_s), tree.path(u"x.srt"_s)});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains(tree.path(u"gone.srt"_s) + u": no such file"_s));
    const QString words = tree.writeFile(u"words.srt"_s, "no cues here\nat all\n");
    EXPECT_EQ(runQuillbox({u"subtitle"_s, u"convert"_s, words, tree.path(u"y.srt"_s)}).status, 1);
    EXPECT_EQ(runQuillbox({u"subtitle"_s, u"convert"_s, source}).status, 2);
    EXPECT_EQ(
        runQuillbox({u"subtitle"_s, u"convert"_s, source, tree.path(u"z.ass"_s), u"--size"_s, u"wide"_s})
            .status,
        2);
    const qb::test::CliRun formats = runQuillbox({u"subtitle"_s, u"formats"_s});
    EXPECT_EQ(formats.status, 0);
    EXPECT_TRUE(formats.out.contains(u"smi,sami"_s));
}

} // namespace
