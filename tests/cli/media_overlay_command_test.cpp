// quillbox media overlay and media avs: the documents they write, the job options they share, and
// their refusals, which leave no file behind.
#include "cli_run.h"

#include "support/temp_tree.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using qb::test::runQuillbox;

TEST(OverlayCommand, WritesEitherFormAndRefusesWhatItCannotDraw)
{
    qb::test::TempTree tree;
    const QString ass = tree.path(u"t.ass"_s);
    const qb::test::CliRun written = runQuillbox({u"media"_s, u"overlay"_s, ass, u"--title"_s, u"One"_s,
        u"Two"_s, u"--logo"_s, u"L"_s, u"--size"_s, u"640x360"_s, u"--from"_s, u"1"_s, u"--to"_s, u"3"_s});
    ASSERT_EQ(written.status, 0) << written.err.toStdString();
    const QByteArray text = qb::test::readAll(ass);
    EXPECT_TRUE(text.contains("ScriptType: V4.00+\r\n"));
    EXPECT_TRUE(text.contains("PlayResX: 640\r\nPlayResY: 360\r\n"));
    EXPECT_TRUE(text.contains("Dialogue: 0, 0:00:01.00, 0:00:03.00, Default, , 0010, 0010, 0010, ,"));
    EXPECT_TRUE(text.contains("One\\N{\\c&HFFFFFF&}Two"));
    const QString ssa = tree.path(u"t.ssa"_s);
    ASSERT_EQ(runQuillbox({u"media"_s, u"overlay"_s, ssa, u"--banner"_s, u"B"_s}).status, 0);
    EXPECT_TRUE(
        qb::test::readAll(ssa).contains("Dialogue: Marked=0, 0:00:00.00, 9:59:59.99, Default, , 0000"));

    struct Refusal
    {
        QStringList args;
        const char *says;
    };
    const QString out = tree.path(u"no.ass"_s);
    const Refusal refusals[] = {
        {{out, u"--banner"_s, u"B"_s, u"--from"_s, u"5"_s, u"--to"_s, u"2"_s}, "must come after the start"},
        {{out}, "nothing to draw"},
        {{tree.path(u"no.srt"_s), u"--logo"_s, u"L"_s}, "written as .ass or .ssa"},
        {{out, u"--logo"_s, u"L"_s, u"--size"_s, u"0x10"_s}, "--size takes WxH"},
        {{out, u"--title"_s}, "--title needs a text"},
    };
    for (const Refusal &r : refusals) {
        const qb::test::CliRun run = runQuillbox(QStringList {u"media"_s, u"overlay"_s} + r.args);
        EXPECT_EQ(run.status, 2) << r.says;
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(r.says))) << run.err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(out));
    EXPECT_FALSE(QFileInfo::exists(tree.path(u"no.srt"_s)));
}

TEST(AvsCommand, TheJobOptionsShapeTheScript)
{
    qb::test::TempTree tree;
    const QString source = tree.writeFile(u"clip.avi"_s, "not probed");
    const QString subtitle
        = tree.writeFile(u"words.srt"_s, "1\r\n00:00:01,000 --> 00:00:02,000\r\nHi\r\n\r\n");
    const QStringList job {u"media"_s, u"avs"_s, source, u"--core"_s, tree.path(u"no-tool"_s)};
    const qb::test::CliRun printed = runQuillbox(job
        + QStringList {u"--start"_s, u"0:01"_s, u"--end"_s, u"2.5"_s, u"--crop"_s, u"4,6,8,10"_s, u"--size"_s,
            u"320x240"_s, u"--subtitle"_s, subtitle, u"--set"_s, u"AVSVSFilterPath=/bin/sh"_s, u"--set"_s,
            u"AVSFlip=2"_s});
    ASSERT_EQ(printed.status, 0) << printed.err.toStdString();
    EXPECT_TRUE(printed.out.contains(u"\nSetMemoryMax(256)\nfr = DirectshowSource(\""_s + source
        + u"\").Framerate\nDirectshowSource(\""_s + source
        + u"\").Trim(Int(fr * 1), Int(fr * 2.5))\nLanczos4Resize(320, "
          u"240)\nVideoCrop()\nLoadPlugin(\"/bin/sh\")\n"
          u"TextSub(\""_s
        + subtitle
        + u"\")\nFlipVertical()\nreturn last\n\nfunction VideoCrop(clip a){\nCrop(a, 8,4,-10,-6)\n}\n"_s))
        << printed.out.toStdString();

    const QString script = tree.path(u"job.avs"_s);
    const qb::test::CliRun written = runQuillbox(job + QStringList {u"-o"_s, script});
    ASSERT_EQ(written.status, 0) << written.err.toStdString();
    EXPECT_TRUE(qb::test::readAll(script).endsWith("return last\r\n"));

    struct Refusal
    {
        QStringList args;
        const char *says;
    };
    const Refusal refusals[] = {
        {{u"--set"_s, u"Nope=1"_s}, "Nope is no property of a media job"},
        {{u"--set"_s, u"AVSFlip=left"_s}, "AVSFlip takes a value of type int, not left"},
        {{u"--subtitle"_s, tree.path(u"gone.srt"_s)}, "gone.srt: no such file"},
        {{u"--size"_s, u"big"_s}, "--size takes WxH"},
        {{u"--start"_s, u"soon"_s}, "soon is neither seconds nor a time"},
        {{u"--volume"_s}, "--volume needs N"},
        {{u"--crop"_s, u"1,2,3"_s}, "--crop takes TOP,BOTTOM,LEFT,RIGHT or auto"},
    };
    for (const Refusal &r : refusals) {
        const qb::test::CliRun run = runQuillbox(job + r.args);
        EXPECT_EQ(run.status, 2) << r.says;
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(r.says))) << run.err.toStdString();
    }
    EXPECT_EQ(runQuillbox({u"media"_s, u"avs"_s, tree.path(u"gone.avi"_s)}).status, 1);
}

} // namespace
