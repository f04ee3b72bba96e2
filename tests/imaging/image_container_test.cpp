// The picture forms and the loader: PNG bytes both ways, flattening, the two-step loader with the
// layered format and a lying extension, the video branch, sizes and the rotate-and-flip codes.
#include "imaging/image_container.h"
#include "support/temp_tree.h"

#include <QBuffer>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

QImage sample()
{
    QImage image(3, 2, QImage::Format_ARGB32);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            image.setPixel(x, y, qRgba(40 * x, 100 * y, 7, x == 2 ? 0 : 255));
    return image;
}

QByteArray encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

TEST(ImageContainer, BytesAreWholePngFilesBothWays)
{
    const QByteArray png = ConvertImageToByte(sample());
    ASSERT_TRUE(png.startsWith("\x89PNG\r\n"));
    EXPECT_EQ(ConvertByteToImage(png).convertToFormat(QImage::Format_ARGB32), sample());
    EXPECT_EQ(GetImageSizeFromByte(png), QSize(3, 2));
    EXPECT_TRUE(ConvertImageToByte(QImage()).isEmpty());
    EXPECT_TRUE(ConvertByteToImage({}).isNull());
    EXPECT_FALSE(GetImageSizeFromByte("not a picture").isValid());

    // Flattened over the back colour, given as 0x00BBGGRR: the transparent column turns blue.
    const QImage flat = ConvertByteToStdPicture(png, 0xFF0000);
    ASSERT_FALSE(flat.isNull());
    EXPECT_EQ(flat.pixel(2, 0), qRgb(0, 0, 255));
    EXPECT_EQ(flat.pixel(1, 1), qRgb(40, 100, 7));
    EXPECT_TRUE(ConvertByteToStdPicture({}, 0).isNull());
}

TEST(ImageContainer, TheLoaderTriesTheNameThenTheBytesThenTheVideo)
{
    test::TempTree tree;
    const QString jpegNamedPng = tree.writeFile(u"photo.png"_s, encoded(sample(), "JPG"));
    const QString bmp = tree.writeFile(u"a.bmp"_s, encoded(sample(), "BMP"));
    const QString text = tree.writeFile(u"clip.mp4"_s, "no picture here");
    EXPECT_EQ(LoadImageToGdip(jpegNamedPng).size(), QSize(3, 2));
    EXPECT_EQ(LoadImageToGdip(bmp).size(), QSize(3, 2));
    EXPECT_EQ(LoadImageFileToByte(bmp), encoded(sample(), "BMP"));
    EXPECT_TRUE(LoadImageFileToByte(tree.path(u"gone.bmp"_s)).isEmpty());
    EXPECT_EQ(GetImageSize(bmp), QSize(3, 2));

    int grabbed = 0;
    const auto isVideo = [](const QString &name) { return name.endsWith(u".mp4"_s); };
    const auto grab = [&grabbed](const QString &) {
        ++grabbed;
        return QImage(16, 9, QImage::Format_RGB32);
    };
    EXPECT_EQ(LoadImageToGdip(text, isVideo, grab).size(), QSize(16, 9));
    EXPECT_EQ(grabbed, 1);
    // A picture is never handed to the video branch, and what is neither gives nothing.
    EXPECT_EQ(LoadImageToGdip(bmp, isVideo, grab).size(), QSize(3, 2));
    EXPECT_TRUE(LoadImageToGdip(tree.writeFile(u"x.txt"_s, "hello"), isVideo, grab).isNull());
    EXPECT_EQ(grabbed, 1);
}

TEST(ImageContainer, RotateAndFlipCodes)
{
    const QImage s = sample();
    struct Case
    {
        int code;
        QSize size;
        QPoint whereTopLeftGoes;
    };
    const Case cases[] = {
        {0, {3, 2}, {0, 0}}, {1, {2, 3}, {1, 0}}, // a quarter turn clockwise
        {2, {3, 2}, {2, 1}}, {3, {2, 3}, {0, 2}}, {4, {3, 2}, {2, 0}}, // mirrored
        {5, {2, 3}, {0, 0}}, {6, {3, 2}, {0, 1}}, {7, {2, 3}, {1, 2}},
        {9, {3, 2}, {0, 0}}, // unknown codes leave the picture
    };
    for (const Case &c : cases) {
        const QImage out = RotateFlip(s, c.code);
        ASSERT_EQ(out.size(), c.size) << c.code;
        EXPECT_EQ(out.pixel(c.whereTopLeftGoes), s.pixel(0, 0)) << c.code;
    }
}

} // namespace
} // namespace qb::imaging
