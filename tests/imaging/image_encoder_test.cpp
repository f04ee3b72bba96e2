// The picture encoders: each format written, read back by Qt where it reads it and judged by
// ImageMagick from outside; the TIFF compressions and depths, the GIF palette and its transparent
// colour, and saves that must fail leaving nothing behind.
#include "imaging/gif_encoder.h"
#include "imaging/image_encoder.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QDir>
#include <QImageReader>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

// Every pixel different, so a swapped channel or a shifted row shows.
QImage gradient(int width = 24, int height = 16)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 255 / width, y * 255 / height, (x * 7 + y * 13) % 256));
    }
    return image;
}

// Red on the left half, blue on the right.
QImage twoColours()
{
    QImage image(10, 6, QImage::Format_RGB32);
    image.fill(qRgb(255, 0, 0));
    for (int y = 0; y < 6; ++y) {
        for (int x = 5; x < 10; ++x)
            image.setPixel(x, y, qRgb(0, 0, 255));
    }
    return image;
}

// 256 x 256: red across and green down, or a grey ramp across.
QImage ramp(bool grey)
{
    QImage image(256, 256, QImage::Format_RGB32);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x)
            image.setPixel(x, y, grey ? qRgb(x, x, x) : qRgb(x, y, 128));
    }
    return image;
}

// How far the means of 8 x 8 blocks lie apart, on average over blocks and channels. Error
// diffusion keeps local means where single pixels stray; nearest colours alone do not.
double meanBlockError(const QImage &a, const QImage &b)
{
    const QImage other = b.convertToFormat(QImage::Format_RGB32);
    if (other.size() != a.size())
        return 255;
    qint64 total = 0;
    for (int by = 0; by + 8 <= a.height(); by += 8) {
        for (int bx = 0; bx + 8 <= a.width(); bx += 8) {
            int sums[3] = {};
            for (int y = by; y < by + 8; ++y) {
                for (int x = bx; x < bx + 8; ++x) {
                    const QRgb p = a.pixel(x, y);
                    const QRgb q = other.pixel(x, y);
                    sums[0] += qRed(p) - qRed(q);
                    sums[1] += qGreen(p) - qGreen(q);
                    sums[2] += qBlue(p) - qBlue(q);
                }
            }
            total += qAbs(sums[0]) + qAbs(sums[1]) + qAbs(sums[2]);
        }
    }
    return double(total) / (64.0 * 3 * (a.width() / 8) * (a.height() / 8));
}

QString identify(const QString &file, const QString &format = u"%m %w %h %z %C %r %k"_s)
{
    const test::ToolResult r = test::runTool(u"identify"_s, {u"-format"_s, format, file});
    return r.exitCode == 0 ? r.output.trimmed() : u"failed: "_s + r.output;
}

// The pixels as ImageMagick decodes them, in the raw layout named ("rgba", "rgb", "gray"), through
// a file beside the picture since the output is binary.
QByteArray decoded(const QString &file, const QString &layout)
{
    const QString raw = file + u"."_s + layout;
    const test::ToolResult r
        = test::runTool(u"convert"_s, {file, u"-depth"_s, u"8"_s, layout + u":"_s + raw});
    const QByteArray bytes = r.exitCode == 0 ? test::readAll(raw) : QByteArray();
    QFile::remove(raw);
    return bytes;
}

// The value of one SHORT tag of the first directory of a little-endian TIFF file; -1 if absent.
int tiffTag(const QByteArray &file, quint16 tag)
{
    if (!file.startsWith("II*"))
        return -1;
    const auto at16 = [&](qsizetype i) { return qFromLittleEndian<quint16>(file.constData() + i); };
    const qsizetype ifd = qFromLittleEndian<quint32>(file.constData() + 4);
    for (int i = 0; ifd + 2 <= file.size() && i < at16(ifd); ++i) {
        const qsizetype entry = ifd + 2 + i * 12;
        if (entry + 12 > file.size())
            return -1;
        if (at16(entry) == tag)
            return at16(entry + 8);
    }
    return -1;
}

bool save(const QImage &image, const QString &file, EncodeSettings settings, QString *problem = nullptr)
{
    return SaveImageToFile(image, file, settings, problem);
}

TEST(ImageEncoder, EachFormatIsWhatItsNameSays)
{
    struct Case
    {
        const char *format;
        const char *identified;
        const char *qtFormat; // what Qt detects when reading it back, empty when Qt cannot
    };
    const Case cases[] = {
        {"jpg", "JPEG 24 16 8 JPEG DirectClass sRGB", "jpeg"},
        {"JPG", "JPEG 24 16 8 JPEG DirectClass sRGB", "jpeg"},
        {"jpeg", "JPEG 24 16 8 JPEG DirectClass sRGB", "jpeg"},
        {"png", "PNG 24 16 8 Zip DirectClass sRGB", "png"},
        {"gif", "GIF 24 16 8 LZW PseudoClass sRGB", "gif"},
        {"tif", "TIFF 24 16 8 LZW DirectClass sRGB", ""},
        {"TIFF", "TIFF 24 16 8 LZW DirectClass sRGB", ""},
        {"xyz", "BMP3 24 16 8 None DirectClass sRGB", "bmp"},
        {"bmp", "BMP3 24 16 8 None DirectClass sRGB", "bmp"},
    };
    test::TempTree tree;
    const QImage picture = gradient();
    for (const Case &c : cases) {
        const QString file = tree.path(u"picture-"_s + QString::fromLatin1(c.format));
        QString problem;
        ASSERT_TRUE(save(picture, file, {QString::fromLatin1(c.format)}, &problem)) << problem.toStdString();
        EXPECT_TRUE(identify(file).startsWith(QString::fromLatin1(c.identified)))
            << c.format << ": " << identify(file).toStdString();
        QImageReader reader(file);
        EXPECT_EQ(reader.format(), QByteArray(c.qtFormat)) << c.format;
        if (*c.qtFormat) {
            EXPECT_EQ(reader.read().size(), picture.size()) << c.format;
        }
    }
    // The lossless ones come back exactly.
    EXPECT_EQ(QImage(tree.path(u"picture-png"_s)).convertToFormat(QImage::Format_RGB32), picture);
    EXPECT_EQ(QImage(tree.path(u"picture-xyz"_s)).convertToFormat(QImage::Format_RGB32), picture);
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
    EXPECT_EQ(decoded(tree.path(u"picture-tif"_s), u"rgb"_s),
        QByteArray(reinterpret_cast<const char *>(rgb.constBits()), rgb.sizeInBytes()));
}

TEST(ImageEncoder, FormatsWithoutAlphaLayThePictureOverBlack)
{
    QImage picture(2, 1, QImage::Format_ARGB32);
    picture.setPixel(0, 0, qRgba(200, 100, 50, 128));
    picture.setPixel(1, 0, qRgba(255, 255, 255, 0));
    test::TempTree tree;
    const QString bmp = tree.path(u"a.bmp"_s);
    ASSERT_TRUE(save(picture, bmp, {u"bmp"_s}));
    const QImage back(bmp);
    EXPECT_NEAR(qRed(back.pixel(0, 0)), 100, 1);
    EXPECT_NEAR(qGreen(back.pixel(0, 0)), 50, 1);
    EXPECT_NEAR(qBlue(back.pixel(0, 0)), 25, 1);
    EXPECT_EQ(back.pixel(1, 0), qRgb(0, 0, 0));
    // PNG keeps it.
    const QString png = tree.path(u"a.png"_s);
    ASSERT_TRUE(save(picture, png, {u"png"_s}));
    EXPECT_EQ(QImage(png).convertToFormat(QImage::Format_ARGB32).pixel(0, 0), qRgba(200, 100, 50, 128));
}

TEST(ImageEncoder, JpegQualityChangesTheSizeAndIsKeptInRange)
{
    test::TempTree tree;
    const QImage picture = gradient(128, 96);
    ASSERT_TRUE(save(picture, tree.path(u"low.jpg"_s), {u"jpg"_s, 10}));
    ASSERT_TRUE(save(picture, tree.path(u"high.jpg"_s), {u"jpg"_s, 95}));
    EXPECT_LT(QFileInfo(tree.path(u"low.jpg"_s)).size() * 2, QFileInfo(tree.path(u"high.jpg"_s)).size());
    EXPECT_EQ(identify(tree.path(u"high.jpg"_s), u"%Q"_s), u"95"_s);
    QString problem;
    EXPECT_FALSE(save(picture, tree.path(u"over.jpg"_s), {u"jpeg"_s, 101}, &problem));
    EXPECT_TRUE(problem.contains(u"101"_s)) << problem.toStdString();
    EXPECT_FALSE(QFile::exists(tree.path(u"over.jpg"_s)));
}

TEST(ImageEncoder, GifHasAtMost256ColoursDiffusedOverThePicture)
{
    test::TempTree tree;
    const QImage picture = ramp(false);
    const QString file = tree.path(u"many.gif"_s);
    ASSERT_TRUE(save(picture, file, {u"gif"_s}));
    EXPECT_LE(identify(file, u"%k"_s).toInt(), 256);
    EXPECT_GT(identify(file, u"%k"_s).toInt(), 128);
    // Plain nearest colours miss the blocks' means by about 1.5.
    EXPECT_LT(meanBlockError(picture, QImage(file)), 0.8);
}

TEST(ImageEncoder, GifTransparencyColourPicksItsPaletteEntry)
{
    struct Case
    {
        const char *name;
        qint32 colour;
        int redAlpha;
        int blueAlpha;
    };
    const Case cases[] = {
        {"blue", 0x00FF0000, 255, 0},
        {"red", 0x000000FF, 0, 255},
        {"none", -1, 255, 255},
        {"a colour the picture lacks", 0x0000FF00, 255, 255},
    };
    test::TempTree tree;
    for (const Case &c : cases) {
        const QString file = tree.path(QString::fromLatin1(c.name) + u".gif"_s);
        EncodeSettings settings {u"gif"_s};
        settings.gifTransparencyColor = c.colour;
        ASSERT_TRUE(save(twoColours(), file, settings)) << c.name;
        const QByteArray rgba = decoded(file, u"rgba"_s);
        ASSERT_EQ(rgba.size(), 10 * 6 * 4) << c.name;
        EXPECT_EQ(quint8(rgba.at(3)), c.redAlpha) << c.name; // x 0
        EXPECT_EQ(quint8(rgba.at(9 * 4 + 3)), c.blueAlpha) << c.name; // x 9
        // The colours themselves are exact: two colours need no approximation.
        EXPECT_EQ(rgba.left(3), QByteArray("\xFF\0\0", 3)) << c.name;
        EXPECT_EQ(rgba.mid(9 * 4, 3), QByteArray("\0\0\xFF", 3)) << c.name;
        EXPECT_EQ(QImage(file).hasAlphaChannel(), c.redAlpha == 0 || c.blueAlpha == 0) << c.name;
    }
}

TEST(ImageEncoder, TheFirstEqualPaletteEntryBecomesTransparent)
{
    const QList<QRgb> palette {qRgb(1, 2, 3), qRgb(9, 9, 9), qRgb(1, 2, 3)};
    EXPECT_EQ(TransparentPaletteIndex(palette, 0x00030201), 0);
    EXPECT_EQ(TransparentPaletteIndex(palette, 0x00090909), 1);
    EXPECT_EQ(TransparentPaletteIndex(palette, 0x00010203), -1); // red and blue the other way round
    EXPECT_EQ(TransparentPaletteIndex(palette, -1), -1);
}

TEST(ImageEncoder, TiffCompressionsMapToTheirTiffCodes)
{
    struct Case
    {
        int compression;
        int tiffCode;
        const char *identified;
    };
    const Case cases[] = {
        {2, 5, "TIFF 10 6 8 LZW"},
        {3, 3, "TIFF 10 6 1 Fax"},
        {4, 4, "TIFF 10 6 1 Group4"},
        {5, 2, "TIFF 10 6 1 RLE"},
        {6, 1, "TIFF 10 6 8 None"},
    };
    test::TempTree tree;
    // Red is darker than the middle grey and becomes black; a light yellow becomes white.
    QImage picture(10, 6, QImage::Format_RGB32);
    picture.fill(qRgb(255, 255, 160));
    for (int y = 0; y < 6; ++y)
        picture.setPixel(y, y, qRgb(255, 0, 0));
    for (const Case &c : cases) {
        const QString file = tree.path(u"c%1.tif"_s.arg(c.compression));
        EncodeSettings settings {u"tiff"_s};
        settings.tiffCompression = c.compression;
        QString problem;
        ASSERT_TRUE(save(picture, file, settings, &problem)) << c.compression << problem.toStdString();
        EXPECT_EQ(tiffTag(test::readAll(file), 259), c.tiffCode) << c.compression;
        EXPECT_TRUE(identify(file).startsWith(QString::fromLatin1(c.identified)))
            << identify(file).toStdString();
        if (c.tiffCode == 5 || c.tiffCode == 1)
            continue;
        const QByteArray grey = decoded(file, u"gray"_s);
        ASSERT_EQ(grey.size(), 60);
        int wrong = 0;
        for (int i = 0; i < 60; ++i)
            wrong += quint8(grey.at(i)) != (i % 10 == i / 10 ? 0 : 255);
        EXPECT_EQ(wrong, 0) << c.compression;
    }
}

TEST(ImageEncoder, TiffDepths)
{
    struct Case
    {
        int depth;
        const char *identified;
        int maxColours;
    };
    const Case cases[] = {
        {1, "TIFF 24 16 1 LZW", 2},
        {4, "TIFF 24 16 4 LZW PseudoClass sRGB", 16},
        {8, "TIFF 24 16 8 LZW PseudoClass sRGB", 256},
        {24, "TIFF 24 16 8 LZW DirectClass sRGB", 24 * 16},
        {32, "TIFF 24 16 8 LZW DirectClass sRGB Matte", 24 * 16},
    };
    test::TempTree tree;
    QImage picture = gradient().convertToFormat(QImage::Format_ARGB32);
    picture.setPixel(3, 2, qRgba(10, 20, 30, 40));
    for (const Case &c : cases) {
        const QString file = tree.path(u"d%1.tif"_s.arg(c.depth));
        EncodeSettings settings {u"tif"_s};
        settings.tiffColorDepth = c.depth;
        ASSERT_TRUE(save(picture, file, settings)) << c.depth;
        EXPECT_TRUE(identify(file).startsWith(QString::fromLatin1(c.identified)))
            << identify(file).toStdString();
        EXPECT_LE(identify(file, u"%k"_s).toInt(), c.maxColours) << c.depth;
        const QByteArray bytes = test::readAll(file);
        EXPECT_EQ(tiffTag(bytes, 277), c.depth / 8 > 1 ? c.depth / 8 : 1) << c.depth; // samples per pixel
        if (c.depth <= 8) {
            EXPECT_EQ(tiffTag(bytes, 258), c.depth); // bits per sample
            EXPECT_EQ(tiffTag(bytes, 262), c.depth == 1 ? 0 : 3); // min-is-white or palette
        }
    }
    const QImage rgba = picture.convertToFormat(QImage::Format_RGBA8888);
    EXPECT_EQ(decoded(tree.path(u"d32.tif"_s), u"rgba"_s),
        QByteArray(reinterpret_cast<const char *>(rgba.constBits()), rgba.sizeInBytes()));

    // Sixteen greys for a ramp of 256 are dithered (bands would miss by about 2.8).
    const QString grey = tree.path(u"ramp.tif"_s);
    EncodeSettings settings {u"tif"_s};
    settings.tiffColorDepth = 4;
    ASSERT_TRUE(save(ramp(true), grey, settings));
    const QByteArray rgb = decoded(grey, u"rgb"_s);
    ASSERT_EQ(rgb.size(), 256 * 256 * 3);
    const QImage back(
        reinterpret_cast<const uchar *>(rgb.constData()), 256, 256, 256 * 3, QImage::Format_RGB888);
    EXPECT_LT(meanBlockError(ramp(true), back), 1.2);
}

TEST(ImageEncoder, RefusedOrFailedSavesLeaveNothingBehind)
{
    struct Case
    {
        int depth;
        int compression;
        const char *says;
    };
    const Case cases[] = {
        {24, 7, "compression 7"},
        {24, 1, "compression 1"},
        {16, 2, "colour depth 16"},
        {0, 6, "colour depth 0"},
    };
    test::TempTree tree;
    const QString existing = tree.writeFile(u"kept.tif"_s, "earlier");
    for (const Case &c : cases) {
        EncodeSettings settings {u"tif"_s};
        settings.tiffColorDepth = c.depth;
        settings.tiffCompression = c.compression;
        QString problem;
        EXPECT_FALSE(save(gradient(), tree.path(u"new.tif"_s), settings, &problem));
        EXPECT_TRUE(problem.contains(QString::fromLatin1(c.says))) << problem.toStdString();
        EXPECT_TRUE(problem.contains(u"accepted"_s)) << problem.toStdString();
        EXPECT_FALSE(save(gradient(), existing, settings));
    }
    EXPECT_EQ(test::readAll(existing), QByteArray("earlier"));
    QString problem;
    EXPECT_FALSE(save(gradient(), tree.path(u"missing/a.png"_s), {u"png"_s}, &problem));
    EXPECT_FALSE(problem.isEmpty());
    EXPECT_FALSE(save(QImage(), tree.path(u"empty.png"_s), {u"png"_s}));
    EXPECT_FALSE(
        save(QImage(65536, 1, QImage::Format_RGB32), tree.path(u"wide.gif"_s), {u"gif"_s}, &problem));
    EXPECT_TRUE(problem.contains(u"65535"_s)) << problem.toStdString();
    EXPECT_EQ(QDir(tree.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
        QStringList {u"kept.tif"_s});
    // A good save replaces it.
    ASSERT_TRUE(save(gradient(), existing, {u"tif"_s}));
    EXPECT_EQ(identify(existing, u"%m"_s), u"TIFF"_s);
}

TEST(ImageEncoder, StatusTexts)
{
    EXPECT_EQ(GdiplusStatusText(0), u"OK."_s);
    EXPECT_EQ(GdiplusStatusText(7), u"Win32 Error."_s);
    EXPECT_EQ(GdiplusStatusText(14), u"FontFamily Not Found."_s);
    EXPECT_EQ(GdiplusStatusText(21), u"Profile Not Found."_s);
    EXPECT_EQ(GdiplusStatusText(22), u"Unknown GDI+ Error."_s);
    EXPECT_EQ(GdiplusStatusText(-1), u"Unknown GDI+ Error."_s);
}

} // namespace
} // namespace qb::imaging
