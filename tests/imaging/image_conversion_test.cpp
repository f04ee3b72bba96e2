// Picture conversion end to end: the size rules on real files, stitching, the canvas each format
// asks for, rotation, resolution and metadata, with ImageMagick's identify as the outside judge.
#include "imaging/image_conversion.h"
#include "imaging/jpeg_metadata.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

class Conversion : public ::testing::Test
{
protected:
    // A picture with a transparent right half, saved as PNG with a text key.
    QString source(const QString &name, QSize size = {400, 300})
    {
        QImage image(size, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width() / 2; ++x)
                image.setPixel(x, y, qRgb(200, 30, 30));
        image.setText(u"Author"_s, u"Quill"_s);
        const QString path = tree.path(name);
        image.save(path, "PNG");
        return path;
    }

    // identify's answer for a file, or "" without the tool.
    QString identify(const QString &file, const QString &format)
    {
        if (QStandardPaths::findExecutable(u"identify"_s).isEmpty())
            return {};
        return test::runTool(u"identify"_s, {u"-format"_s, format, file}).output.trimmed();
    }

    test::TempTree tree;
    ConversionSettings settings;
};

TEST_F(Conversion, SizeRulesOnFiles)
{
    const QString in = source(u"in.png"_s);
    struct Case
    {
        const char *size;
        QSize expected;
    };
    const Case cases[]
        = {{"800max", {400, 300}}, {"50%", {200, 150}}, {"0x300", {400, 300}}, {"200max", {200, 150}}};
    settings.encoderFormat = u"jpg"_s;
    for (const Case &c : cases) {
        settings.process.targetSize = QString::fromLatin1(c.size);
        const QString out = tree.path(u"out.jpg"_s);
        QString problem;
        ASSERT_TRUE(ImageConversion({in}, out, settings, {}, &problem)) << problem.toStdString();
        EXPECT_EQ(QImage(out).size(), c.expected) << c.size;
        const QString seen = identify(out, u"%m %wx%h"_s);
        if (!seen.isEmpty()) {
            EXPECT_EQ(seen, u"JPEG %1x%2"_s.arg(c.expected.width()).arg(c.expected.height()));
        }
    }
}

TEST_F(Conversion, FiveFilesStitchIntoTwoColumnsOfThreeRows)
{
    QStringList inputs;
    for (int i = 0; i < 5; ++i)
        inputs << source(u"tile%1.png"_s.arg(i), {60, 40});
    settings.encoderFormat = u"png"_s;
    settings.stitchingSize = u"30x20"_s;
    settings.backColor = 0xFF0000; // blue
    int reported = 0;
    ConversionHooks hooks;
    hooks.progress = [&reported](int done, int count) {
        EXPECT_EQ(count, 5);
        reported = done;
    };
    const QString out = tree.path(u"sheet.png"_s);
    ASSERT_TRUE(ImageConversion(inputs, out, settings, hooks));
    EXPECT_EQ(reported, 5);
    const QImage sheet(out);
    EXPECT_EQ(sheet.size(), QSize(60, 60));
    // The sixth tile is empty: transparent, as PNG keeps transparency.
    EXPECT_EQ(qAlpha(sheet.pixel(45, 50)), 0);
    EXPECT_EQ(QColor(sheet.pixel(5, 10)).red(), 200);
}

TEST_F(Conversion, TheCanvasFollowsTheFormat)
{
    const QString in = source(u"in.png"_s, {40, 20});
    settings.backColor = 0x00FF00; // green
    struct Case
    {
        const char *format;
        const char *file;
        bool transparentRight;
    };
    const Case cases[] = {{"png", "o.png", true}, {"jpg", "o.jpg", false}, {"gif_t", "o.gif", true},
        {"gif", "o2.gif", false}, {"bmp", "o.bmp", false}};
    for (const Case &c : cases) {
        settings.encoderFormat = QString::fromLatin1(c.format);
        const QString out = tree.path(QString::fromLatin1(c.file));
        ASSERT_TRUE(ImageConversion({in}, out, settings)) << c.format;
        const QImage back(out);
        ASSERT_EQ(back.size(), QSize(40, 20)) << c.format;
        const QColor right = back.pixelColor(30, 10);
        if (c.transparentRight) {
            EXPECT_EQ(right.alpha(), 0) << c.format;
        } else {
            EXPECT_EQ(right.alpha(), 255) << c.format;
            EXPECT_GT(right.green(), 200) << c.format;
            EXPECT_LT(right.red(), 60) << c.format;
        }
    }
}

TEST_F(Conversion, RotationResolutionAndMetadata)
{
    const QString in = source(u"in.png"_s, {40, 20});
    settings.encoderFormat = u"png"_s;
    settings.rotateFlip = 1;
    settings.dpiX = 300;
    settings.dpiY = 150;
    const QString out = tree.path(u"r.png"_s);
    ASSERT_TRUE(ImageConversion({in}, out, settings));
    const QImage back(out);
    EXPECT_EQ(back.size(), QSize(20, 40));
    EXPECT_EQ(back.text(u"Author"_s), u"Quill"_s);
    // PNG keeps pixels per metre: 300 and 150 dots per inch are 118.11 and 59.06 per centimetre.
    const QStringList seen = identify(out, u"%[resolution.x] %[resolution.y] %U"_s).split(u' ');
    if (seen.size() == 3) {
        EXPECT_NEAR(seen.at(0).toDouble(), 118.11, 0.02);
        EXPECT_NEAR(seen.at(1).toDouble(), 59.06, 0.02);
        EXPECT_EQ(seen.at(2), u"PixelsPerCentimeter"_s);
    }
}

TEST_F(Conversion, APhotographKeepsItsCameraBlock)
{
    // A camera block with one entry, the artist, in little-endian order.
    QByteArray payload("Exif\0\0II*\0\x08\0\0\0\x01\0\x3B\x01\x02\0\x06\0\0\0\x1A\0\0\0\0\0\0\0Quill\0", 38);
    QByteArray segment("\xFF\xE1");
    segment += char((payload.size() + 2) >> 8);
    segment += char((payload.size() + 2) & 0xFF);
    segment += payload;
    QImage photo(64, 48, QImage::Format_RGB32);
    photo.fill(Qt::darkGreen);
    const QString in = tree.path(u"camera.jpg"_s);
    ASSERT_TRUE(photo.save(in, "JPG"));
    ASSERT_TRUE(InsertJpegExif(in, segment));
    EXPECT_EQ(ReadJpegExif(test::readAll(in)), segment);
    EXPECT_EQ(QImage(in).size(), QSize(64, 48));

    settings.encoderFormat = u"jpg"_s;
    settings.process.targetSize = u"50%"_s;
    const QString out = tree.path(u"small.jpg"_s);
    ASSERT_TRUE(ImageConversion({in}, out, settings));
    EXPECT_EQ(ReadJpegExif(test::readAll(out)), segment);
    EXPECT_EQ(QImage(out).size(), QSize(32, 24));
    const QString artist = identify(out, u"%[EXIF:Artist]"_s);
    if (!artist.isEmpty()) {
        EXPECT_EQ(artist, u"Quill"_s);
    }
    // Other formats and the bytes of no JPEG carry nothing.
    EXPECT_TRUE(ReadJpegExif("GIF89a").isEmpty());
    EXPECT_TRUE(ReadJpegExif(QByteArray("\xFF\xD8\xFF\xE1\x7F\xFF", 6)).isEmpty());
    EXPECT_FALSE(InsertJpegExif(tree.writeFile(u"x.jpg"_s, "not a jpeg"), segment));
}

TEST_F(Conversion, WhatCannotBeDoneIsSaid)
{
    settings.encoderFormat = u"png"_s;
    QString problem;
    EXPECT_FALSE(ImageConversion({tree.path(u"gone.png"_s)}, tree.path(u"o.png"_s), settings, {}, &problem));
    EXPECT_TRUE(problem.contains(u"gone.png"_s));
    EXPECT_FALSE(
        ImageConversion({source(u"in.png"_s)}, tree.path(u"no/such/o.png"_s), settings, {}, &problem));
    EXPECT_TRUE(problem.contains(u"no such folder"_s));
    settings.stitchingSize = u"wide"_s;
    EXPECT_FALSE(ImageConversion(
        {source(u"a.png"_s), source(u"b.png"_s)}, tree.path(u"o.png"_s), settings, {}, &problem));
    EXPECT_TRUE(problem.contains(u"WxH"_s));
    EXPECT_FALSE(QFileInfo::exists(tree.path(u"o.png"_s)));
}

} // namespace
} // namespace qb::imaging
