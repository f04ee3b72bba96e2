// The encoders: every format written, read back by Qt where it can and judged by ImageMagick.
#include "imaging/gif_encoder.h"
#include "imaging/image_encoder.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using ::testing::StartsWith;

namespace qb::imaging {
namespace {

QImage drawn(int width, int height, const std::function<QRgb(int x, int y)> &colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, colour(x, y));
    return image;
}

// Every pixel different, so a swapped channel or a shifted row shows.
QImage gradient(int w = 24, int h = 16)
{
    return drawn(w, h, [=](int x, int y) { return qRgb(x * 255 / w, y * 255 / h, (x * 7 + y * 13) % 256); });
}

// How far the means of 8 x 8 blocks lie apart, per block and channel. Error diffusion keeps the
// local means where single pixels stray; nearest colours alone do not.
double meanBlockError(const QImage &a, const QImage &b)
{
    const QImage other = b.convertToFormat(QImage::Format_RGB32);
    if (other.size() != a.size())
        return 255;
    qint64 total = 0;
    for (int by = 0; by + 8 <= a.height(); by += 8)
        for (int bx = 0; bx + 8 <= a.width(); bx += 8)
            for (int shift : {16, 8, 0}) {
                int sum = 0;
                for (int y = by; y < by + 8; ++y)
                    for (int x = bx; x < bx + 8; ++x)
                        sum += int((a.pixel(x, y) >> shift) & 0xFF)
                            - int((other.pixel(x, y) >> shift) & 0xFF);
                total += qAbs(sum);
            }
    return double(total) / (64.0 * 3 * (a.width() / 8) * (a.height() / 8));
}

std::string identify(const QString &file, const QString &format = u"%m %w %h %z %C %r %k"_s)
{
    const test::ToolResult r = test::runTool(u"identify"_s, {u"-format"_s, format, file});
    return (r.exitCode == 0 ? r.output.trimmed() : u"failed: "_s + r.output).toStdString();
}

// The picture as ImageMagick decodes it, through raw RGBA bytes; null when it cannot.
QImage decoded(const QString &file, QSize size)
{
    const QString raw = file + u".rgba"_s;
    const bool done
        = test::runTool(u"convert"_s, {file, u"-depth"_s, u"8"_s, u"rgba:"_s + raw}).exitCode == 0;
    const QByteArray bytes = done ? test::readAll(raw) : QByteArray();
    QFile::remove(raw);
    if (bytes.size() != size.width() * size.height() * 4)
        return {};
    return QImage(reinterpret_cast<const uchar *>(bytes.constData()), size.width(), size.height(),
        QImage::Format_RGBA8888)
        .convertToFormat(QImage::Format_ARGB32);
}

EncodeSettings tiff(int depth, int compression)
{
    EncodeSettings settings {u"tif"_s};
    settings.tiffColorDepth = depth;
    settings.tiffCompression = compression;
    return settings;
}

TEST(ImageEncoder, EachFormatIsWhatItsNameSays)
{
    struct Case
    {
        const char *names;
        const char *identified;
        bool qtReads;
    };
    const Case cases[] = {{"jpg JPG jpeg", "JPEG 24 16 8 JPEG DirectClass sRGB", true},
        {"png", "PNG 24 16 8 Zip DirectClass sRGB", true}, {"gif", "GIF 24 16 8 LZW PseudoClass sRGB", true},
        {"tif TIFF", "TIFF 24 16 8 LZW DirectClass sRGB", false},
        {"xyz bmp", "BMP3 24 16 8 None DirectClass sRGB", true}};
    test::TempTree tree;
    const QImage picture = gradient();
    for (const Case &c : cases) {
        for (const QString &name : QString::fromLatin1(c.names).split(u' ')) {
            SCOPED_TRACE(name.toStdString());
            const QString file = tree.path(u"picture-"_s + name);
            QString problem;
            ASSERT_TRUE(SaveImageToFile(picture, file, {name}, &problem)) << problem.toStdString();
            EXPECT_THAT(identify(file), StartsWith(c.identified));
            EXPECT_EQ(QImage(file).size(), c.qtReads ? picture.size() : QSize(0, 0));
        }
    }
    // The lossless ones come back exactly.
    EXPECT_EQ(QImage(tree.path(u"picture-png"_s)).convertToFormat(QImage::Format_RGB32), picture);
    EXPECT_EQ(QImage(tree.path(u"picture-xyz"_s)).convertToFormat(QImage::Format_RGB32), picture);
    EXPECT_EQ(
        decoded(tree.path(u"picture-tif"_s), picture.size()), picture.convertToFormat(QImage::Format_ARGB32));
}

TEST(ImageEncoder, FormatsWithoutAlphaLayThePictureOverBlack)
{
    QImage picture(2, 1, QImage::Format_ARGB32);
    picture.setPixel(0, 0, qRgba(200, 100, 50, 128));
    picture.setPixel(1, 0, qRgba(255, 255, 255, 0));
    test::TempTree tree;
    ASSERT_TRUE(SaveImageToFile(picture, tree.path(u"a.bmp"_s), {u"bmp"_s}));
    ASSERT_TRUE(SaveImageToFile(picture, tree.path(u"a.png"_s), {u"png"_s}));
    const QImage back(tree.path(u"a.bmp"_s));
    EXPECT_NEAR(qRed(back.pixel(0, 0)), 100, 1);
    EXPECT_NEAR(qGreen(back.pixel(0, 0)), 50, 1);
    EXPECT_NEAR(qBlue(back.pixel(0, 0)), 25, 1);
    EXPECT_EQ(back.pixel(1, 0), qRgb(0, 0, 0));
    // PNG keeps it.
    EXPECT_EQ(QImage(tree.path(u"a.png"_s)).convertToFormat(QImage::Format_ARGB32).pixel(0, 0),
        qRgba(200, 100, 50, 128));
}

TEST(ImageEncoder, JpegQualityChangesTheSizeAndIsKeptInRange)
{
    test::TempTree tree;
    const QImage picture = gradient(128, 96);
    const QString low = tree.path(u"low.jpg"_s), high = tree.path(u"high.jpg"_s);
    ASSERT_TRUE(SaveImageToFile(picture, low, {u"jpg"_s, 10}));
    ASSERT_TRUE(SaveImageToFile(picture, high, {u"jpg"_s, 95}));
    EXPECT_LT(QFileInfo(low).size() * 2, QFileInfo(high).size());
    EXPECT_EQ(identify(high, u"%Q"_s), "95");
    QString problem;
    EXPECT_FALSE(SaveImageToFile(picture, tree.path(u"over.jpg"_s), {u"jpeg"_s, 101}, &problem));
    EXPECT_TRUE(problem.contains(u"101"_s)) << problem.toStdString();
    EXPECT_FALSE(QFile::exists(tree.path(u"over.jpg"_s)));
}

TEST(ImageEncoder, GifPaletteIsDiffusedOverThePicture)
{
    test::TempTree tree;
    const QImage picture = drawn(256, 256, [](int x, int y) { return qRgb(x, y, 128); });
    const QString file = tree.path(u"many.gif"_s);
    ASSERT_TRUE(SaveImageToFile(picture, file, {u"gif"_s}));
    EXPECT_GT(std::atoi(identify(file, u"%k"_s).c_str()), 128);
    // Plain nearest colours miss the blocks' means by about 1.5.
    EXPECT_LT(meanBlockError(picture, QImage(file)), 0.8);
}

TEST(ImageEncoder, GifTransparencyColourPicksItsPaletteEntry)
{
    struct Case
    {
        const char *name;
        qint32 colour;
        int redAlpha, blueAlpha;
    };
    const Case cases[] = {{"blue", 0x00FF0000, 255, 0}, {"red", 0x000000FF, 0, 255}, {"none", -1, 255, 255},
        {"absent", 0x0000FF00, 255, 255}};
    const QImage picture = drawn(10, 6, [](int x, int) { return x < 5 ? qRgb(255, 0, 0) : qRgb(0, 0, 255); });
    test::TempTree tree;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QString file = tree.path(QString::fromLatin1(c.name) + u".gif"_s);
        ASSERT_TRUE(
            SaveImageToFile(picture, file, {.encoderFormat = u"gif"_s, .gifTransparencyColor = c.colour}));
        // Two colours need no approximation, and the transparent one keeps its colour.
        const QImage back = decoded(file, picture.size());
        EXPECT_EQ(back.pixel(0, 0), qRgba(255, 0, 0, c.redAlpha));
        EXPECT_EQ(back.pixel(9, 5), qRgba(0, 0, 255, c.blueAlpha));
        EXPECT_EQ(QImage(file).hasAlphaChannel(), c.redAlpha == 0 || c.blueAlpha == 0);
    }
}

TEST(ImageEncoder, TheFirstEqualPaletteEntryBecomesTransparent)
{
    const QList<QRgb> palette {qRgb(1, 2, 3), qRgb(255, 255, 255), qRgb(1, 2, 3)};
    EXPECT_EQ(TransparentPaletteIndex(palette, 0x00030201), 0);
    EXPECT_EQ(TransparentPaletteIndex(palette, 0x00FFFFFF), 1);
    EXPECT_EQ(TransparentPaletteIndex(palette, -1), -1); // not the white it would mask to
}

TEST(ImageEncoder, TiffDepthsAndCompressions)
{
    struct Case
    {
        int depth, compression;
        const char *identified;
    };
    const Case cases[] = {{1, 2, "1 LZW min-is-white DirectClass Gray"},
        {4, 2, "4 LZW palette PseudoClass sRGB"}, {8, 2, "8 LZW palette PseudoClass sRGB"},
        {24, 2, "8 LZW RGB DirectClass sRGB"}, {32, 2, "8 LZW RGB DirectClass sRGB Matte"},
        {24, 3, "1 Fax min-is-white DirectClass Gray"}, {24, 4, "1 Group4 min-is-white DirectClass Gray"},
        {24, 5, "1 RLE min-is-white DirectClass Gray"}, {24, 6, "8 None RGB DirectClass sRGB"}};
    // In one bit red is darker than the middle grey and turns black, the light yellow white.
    const QImage picture
        = drawn(10, 6, [](int x, int y) { return x == y ? qRgb(255, 0, 0) : qRgb(255, 255, 160); });
    QImage translucent = picture.convertToFormat(QImage::Format_ARGB32);
    translucent.setPixel(3, 2, qRgba(10, 20, 30, 40));
    const QImage blackAndWhite
        = drawn(10, 6, [](int x, int y) { return x == y ? qRgb(0, 0, 0) : qRgb(255, 255, 255); });
    test::TempTree tree;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.identified);
        const QString file = tree.path(u"%1-%2.tif"_s.arg(c.depth).arg(c.compression));
        const QImage &saved = c.depth == 32 ? translucent : picture;
        ASSERT_TRUE(SaveImageToFile(saved, file, tiff(c.depth, c.compression)));
        EXPECT_EQ(identify(file, u"%m %w %h %z %C %[tiff:photometric] %r"_s),
            "TIFF 10 6 " + std::string(c.identified));
        const QImage &expected = c.identified[0] == '1' ? blackAndWhite : saved;
        EXPECT_EQ(decoded(file, picture.size()), expected.convertToFormat(QImage::Format_ARGB32));
    }

    // Sixteen greys for a ramp of 256 are dithered (bands would miss by about 2.8).
    const QImage ramp = drawn(256, 256, [](int x, int) { return qRgb(x, x, x); });
    const QString grey = tree.path(u"ramp.tif"_s);
    ASSERT_TRUE(SaveImageToFile(ramp, grey, tiff(4, 2)));
    EXPECT_LT(meanBlockError(ramp, decoded(grey, ramp.size())), 1.2);
}

TEST(ImageEncoder, RefusedOrFailedSavesLeaveNothingBehind)
{
    const std::pair<EncodeSettings, const char *> cases[] = {{tiff(24, 7), "compression 7"},
        {tiff(24, 1), "compression 1"}, {tiff(16, 2), "colour depth 16"}, {tiff(0, 6), "colour depth 0"}};
    test::TempTree tree;
    const QString existing = tree.writeFile(u"kept.tif"_s, "earlier");
    for (const auto &[settings, says] : cases) {
        QString problem;
        EXPECT_FALSE(SaveImageToFile(gradient(), tree.path(u"new.tif"_s), settings, &problem));
        EXPECT_TRUE(problem.contains(QString::fromLatin1(says)) && problem.contains(u"accepted"_s))
            << problem.toStdString();
        EXPECT_FALSE(SaveImageToFile(gradient(), existing, settings));
    }
    EXPECT_EQ(test::readAll(existing), QByteArray("earlier"));
    QString problem;
    EXPECT_FALSE(SaveImageToFile(gradient(), tree.path(u"missing/a.png"_s), {u"png"_s}, &problem));
    EXPECT_FALSE(problem.isEmpty());
    EXPECT_FALSE(SaveImageToFile(QImage(), tree.path(u"empty.png"_s), {u"png"_s}));
    EXPECT_FALSE(SaveImageToFile(
        QImage(65536, 1, QImage::Format_RGB32), tree.path(u"wide.gif"_s), {u"gif"_s}, &problem));
    EXPECT_TRUE(problem.contains(u"65535"_s)) << problem.toStdString();
    EXPECT_EQ(QDir(tree.root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
        QStringList {u"kept.tif"_s});
    // A good save replaces it.
    ASSERT_TRUE(SaveImageToFile(gradient(), existing, {u"tif"_s}));
    EXPECT_EQ(identify(existing, u"%m"_s), "TIFF");
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
