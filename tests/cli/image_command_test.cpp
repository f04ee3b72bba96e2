// quillbox image: conversions by the destination's extension or --format, stitching, the options
// that shape the picture, info, and refusals that leave nothing behind.
#include "cli_run.h"

#include "support/temp_tree.h"

#include <QFileInfo>
#include <QImage>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using qb::test::runQuillbox;

QString picture(qb::test::TempTree &tree, const QString &name, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    const QString path = tree.path(name);
    image.save(path);
    return path;
}

TEST(ImageCommand, ConvertsStitchesAndDescribes)
{
    qb::test::TempTree tree;
    const QString in = picture(tree, u"in.png"_s, {400, 300});
    struct Case
    {
        QStringList options;
        const char *out;
        QSize size;
    };
    const Case cases[] = {
        {{u"--size"_s, u"50%"_s}, "a.jpg", {200, 150}},
        {{u"--size"_s, u"100max"_s, u"--rotate"_s, u"90"_s}, "b.png", {75, 100}},
        {{u"--format"_s, u"bmp"_s, u"--set"_s, u"ImageSize=0x60"_s}, "c.img", {80, 60}},
        {{u"--border"_s, u"3"_s, u"--quality"_s, u"40"_s}, "d.jpeg", {400, 300}},
    };
    for (const Case &c : cases) {
        const QString out = tree.path(QString::fromLatin1(c.out));
        const qb::test::CliRun run = runQuillbox(QStringList {u"image"_s, u"convert"_s, in, out} + c.options);
        ASSERT_EQ(run.status, 0) << c.out << ": " << run.err.toStdString();
        EXPECT_EQ(QImage(out).size(), c.size) << c.out;
    }
    const QString sheet = tree.path(u"sheet.png"_s);
    QStringList stitch {u"image"_s, u"convert"_s};
    for (int i = 0; i < 5; ++i)
        stitch << picture(tree, u"t%1.png"_s.arg(i), {50, 50});
    ASSERT_EQ(runQuillbox(stitch + QStringList {sheet, u"--set"_s, u"ImageStitchingSize=20x10"_s}).status, 0);
    EXPECT_EQ(QImage(sheet).size(), QSize(40, 30));

    const qb::test::CliRun info = runQuillbox({u"image"_s, u"info"_s, tree.path(u"a.jpg"_s)});
    EXPECT_EQ(info.status, 0);
    EXPECT_TRUE(info.out.contains(u": JPEG, 200x150, 32 bits a pixel"_s)) << info.out.toStdString();
}

TEST(ImageCommand, RefusalsSayWhyAndWriteNothing)
{
    qb::test::TempTree tree;
    const QString in = picture(tree, u"in.png"_s, {40, 30});
    const QString out = tree.path(u"o.jpg"_s);
    struct Case
    {
        QStringList args;
        int status;
        const char *says;
    };
    const Case cases[] = {
        {{u"convert"_s, in, out, u"--quality"_s, u"200"_s}, 2,
            "--quality takes a whole number from 0 to 100"},
        {{u"convert"_s, in, out, u"--rotate"_s, u"45"_s}, 2, "--rotate takes 0, 90, 180 or 270"},
        {{u"convert"_s, in, out, u"--set"_s, u"ImageNope=1"_s}, 2, "ImageNope is no property"},
        {{u"convert"_s, in}, 2, "needs a source and a destination"},
        {{u"convert"_s, in, tree.path(u"noext"_s)}, 2, "give the destination an extension"},
        {{u"convert"_s, tree.path(u"gone.png"_s), out}, 1, "gone.png: no such file"},
        {{u"convert"_s, tree.writeFile(u"text.png"_s, "not a picture"), out}, 1,
            "not a picture this program reads"},
        {{u"convert"_s, in, tree.path(u"o.tif"_s), u"--set"_s, u"TIFF_Compression=9"_s}, 1, "9"},
        {{u"info"_s, tree.path(u"text.png"_s)}, 1, "not a picture this program reads"},
    };
    for (const Case &c : cases) {
        const qb::test::CliRun run = runQuillbox(QStringList {u"image"_s} + c.args);
        EXPECT_EQ(run.status, c.status) << c.says;
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.says))) << c.says << ": " << run.err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(out));
    EXPECT_FALSE(QFileInfo::exists(tree.path(u"o.tif"_s)));
}

} // namespace
