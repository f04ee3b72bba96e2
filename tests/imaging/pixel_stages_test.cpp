// The pixel stages on small pictures: exact where a stage is exact, elsewhere what it must leave
// alone and which way it must move.
#include "imaging/blur_stage.h"
#include "imaging/placement_stage.h"
#include "imaging/tone_stage.h"
#include "imaging/torn_edge_stage.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <set>

namespace qb::imaging {
namespace {

QImage noise(int w, int h)
{
    std::mt19937 random(1);
    QImage image(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, random() | 0x20000000); // never fully transparent
    return image;
}

QImage painted(QImage image, const QRect &area, QRgb colour)
{
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            image.setPixel(x, y, colour);
    return image;
}

QImage plain(int w, int h, QRgb colour)
{
    return painted(QImage(w, h, QImage::Format_ARGB32), QRect(0, 0, w, h), colour);
}

// Pixels that differ inside (or, with outside, beyond) the area.
int changed(const QImage &a, const QImage &b, const QRect &area, bool outside = false)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            count += area.contains(x, y) != outside && a.pixel(x, y) != b.pixel(x, y);
    return count;
}

TEST(ToneStage, NoToneAndTwoNegativesGiveThePictureBack)
{
    const QImage image = noise(9, 7);
    EXPECT_EQ(AdjustBrightnessContrast(image, 0, 0), image);
    EXPECT_EQ(InvertImage(InvertImage(image)), image);
    EXPECT_EQ(InvertImage(plain(2, 2, qRgba(10, 20, 30, 40))).pixel(1, 1), qRgba(245, 235, 225, 40));
    // Any picture form comes back as straight colour.
    EXPECT_EQ(InvertImage(image.convertToFormat(QImage::Format_RGB32)).format(), QImage::Format_ARGB32);
}

TEST(ToneStage, BrightnessAndContrastAtTheirEnds)
{
    QImage ramp(256, 1, QImage::Format_ARGB32);
    for (int v = 0; v < 256; ++v)
        ramp.setPixel(v, 0, qRgba(v, 255 - v, v / 2, v));
    const struct
    {
        int brightness, contrast;
        bool (*fits)(int in, int out);
    } cases[] = {{255, 0, [](int, int out) { return out == 255; }},
        {-9999, 0, [](int, int out) { return out == 0; }}, {0, -100, [](int, int out) { return out == 128; }},
        {0, 100, [](int in, int out) { return out == (in >= 128 ? 255 : 0); }},
        {0, 40, [](int in, int out) { return in < 128 ? out <= in : out >= in; }},
        {0, -40, [](int in, int out) { return in < 128 ? out >= in : out <= in; }},
        {30, 0, [](int in, int out) { return out == std::min(in + 30, 255); }}};
    for (const auto &c : cases) {
        const QImage out = AdjustBrightnessContrast(ramp, c.brightness, c.contrast);
        for (int v = 0; v < 256; ++v) {
            const QRgb in = ramp.pixel(v, 0), p = out.pixel(v, 0);
            ASSERT_EQ(qAlpha(p), v);
            ASSERT_TRUE(c.fits(qRed(in), qRed(p)) && c.fits(qGreen(in), qGreen(p)))
                << c.brightness << ", " << c.contrast << " at " << v;
        }
    }
}

TEST(ToneStage, SharpeningSteepensAnEdgeAndNothingElse)
{
    const QImage image
        = painted(plain(20, 6, qRgba(60, 60, 60, 255)), QRect(10, 0, 10, 6), qRgba(200, 200, 200, 255));
    const QImage out = SharpenImage(image);
    EXPECT_LT(qRed(out.pixel(9, 3)), 60);
    EXPECT_GT(qRed(out.pixel(10, 3)), 200);
    EXPECT_EQ(changed(out, image, QRect(6, 0, 8, 6), true), 0) << "beyond the kernel's reach";
    EXPECT_EQ(SharpenImage(plain(5, 5, qRgba(1, 2, 3, 200))), plain(5, 5, qRgba(1, 2, 3, 200)));
    // What cannot be seen lends no colour, whatever colour it keeps.
    for (const QRgb hidden : {qRgba(0, 0, 0, 0), qRgba(255, 255, 255, 0)}) {
        const QImage half = painted(plain(12, 4, qRgba(90, 90, 90, 255)), QRect(6, 0, 6, 4), hidden);
        EXPECT_EQ(changed(SharpenImage(half), half, QRect(0, 0, 6, 4)), 0) << hidden;
    }
}

TEST(BlurStage, OnlyTheRectangleChanges)
{
    const QImage image = noise(30, 20);
    const QRect area(5, 4, 10, 8);
    const QImage out = BlurRectangle(image, 5, 4, 10, 8, 4, false);
    EXPECT_EQ(changed(out, image, area, true), 0);
    EXPECT_GT(changed(out, image, area), 70);
    EXPECT_EQ(BlurRectangle(image, 5, 4, 10, 8, -4, false), out) << "the radius is taken as it stands";
    EXPECT_EQ(BlurRectangle(image, 5, 4, 10, 8, INT_MIN, true), BlurRectangle(image, 5, 4, 10, 8, 255, true));
    EXPECT_EQ(BlurRectangle(image, 5, 4, 0, 8, 4, true), image);
    EXPECT_EQ(BlurRectangle(image, 5, 4, 10, -1, 4, true), image);
    EXPECT_EQ(BlurRectangle(image, 5, 4, 10, 8, 0, true), image);
    EXPECT_EQ(BlurRectangle(image, 30, 0, 10, 8, 4, true), image);
    EXPECT_EQ(BlurRectangle(image, -5, -5, 2147483647, 2147483647, 3, true),
        BlurRectangle(image, 0, 0, 30, 20, 3, true))
        << "clipped to the picture";
    EXPECT_EQ(ImageBlur(image, 3), BlurRectangle(image, 0, 0, 30, 20, 3, true));
}

TEST(BlurStage, EdgesExpandedOrTransparent)
{
    const QImage image = plain(30, 24, qRgba(40, 120, 220, 255));
    EXPECT_EQ(ImageBlur(image, 7), image) << "copies of the edge keep a plain picture plain";
    const QImage faded = BlurRectangle(image, 0, 0, 30, 24, 7, false);
    EXPECT_LT(qAlpha(faded.pixel(0, 0)), qAlpha(faded.pixel(0, 6)));
    EXPECT_LT(qAlpha(faded.pixel(0, 6)), 255);
    EXPECT_EQ(faded.pixel(15, 12), image.pixel(15, 12)) << "beyond reach of the sides";
    for (const QPoint p : {QPoint(0, 0), QPoint(29, 23), QPoint(3, 0)}) {
        const QRgb q = faded.pixel(p);
        EXPECT_NEAR(qRed(q), 40, 1);
        EXPECT_NEAR(qGreen(q), 120, 1);
        EXPECT_NEAR(qBlue(q), 220, 1) << "thinned out, not darkened";
    }
}

TEST(BlurStage, ADotSpreadsEvenlyAndNoFurtherThanTheRadiusAndTwo)
{
    const QImage image
        = painted(plain(21, 21, qRgba(0, 0, 0, 255)), QRect(10, 10, 1, 1), qRgba(255, 255, 255, 255));
    const QImage out = ImageBlur(image, 4);
    EXPECT_EQ(changed(out, image, QRect(4, 4, 13, 13), true), 0);
    EXPECT_GT(qRed(out.pixel(6, 10)), 0) << "reaches at least the radius";
    for (int d = 0; d <= 6; ++d) {
        EXPECT_EQ(out.pixel(10 + d, 10), out.pixel(10 - d, 10));
        EXPECT_EQ(out.pixel(10, 10 + d), out.pixel(10 + d, 10));
        EXPECT_GE(qRed(out.pixel(10 + d, 10)), qRed(out.pixel(11 + d, 10)));
    }
}

TEST(PlacementStage, CutRectangles)
{
    struct Case
    {
        int x, y, w, h, style;
        QRect expect;
    };
    const Case cases[] = {{10, 20, 30, 40, 1, {10, 20, 30, 40}}, {10, 20, 30, 40, 3, {10, 20, 30, 40}},
        {10, 20, 30, 40, 0, {}}, {10, 20, 30, 40, 7, {}}, {-1, 20, 30, 40, 1, {}}, {10, 20, 30, -1, 3, {}},
        {-5, 0, 30, 40, 1, {0, 0, 30, 40}}, {90, 70, 30, 40, 1, {90, 70, 10, 10}},
        {0, 0, 2147483647, 2147483647, 1, {0, 0, 100, 80}}, {100, 0, 5, 5, 1, {}}, {10, 10, 0, 5, 1, {}}};
    for (const Case &c : cases)
        EXPECT_EQ(CutRectangle(c.x, c.y, c.w, c.h, c.style, {100, 80}), c.expect) << c.x << "," << c.style;
}

TEST(PlacementStage, CanvasColourIsBlueGreenRed)
{
    const QImage canvas = CreateCanvas(3, 2, 0x00332211, 128);
    ASSERT_EQ(canvas.size(), QSize(3, 2));
    EXPECT_EQ(canvas.pixel(2, 1), qRgba(0x11, 0x22, 0x33, 128));
    EXPECT_EQ(CreateCanvas(1, 1, qint32(0xFF0000FF), 300).pixel(0, 0), qRgba(255, 0, 0, 255));
    EXPECT_TRUE(CreateCanvas(0, 5, 0, 255).isNull());
}

TEST(PlacementStage, WhereEachMethodPutsThePicture)
{
    const QRgb back = qRgba(1, 2, 3, 255), red = qRgba(255, 0, 0, 255), green = qRgba(0, 255, 0, 255),
               blue = qRgba(0, 0, 255, 255);
    // Three bands: red, green twice as wide, blue.
    const QImage picture
        = painted(painted(plain(400, 200, green), QRect(0, 0, 100, 200), red), QRect(300, 0, 100, 200), blue);
    const auto place = [&](int style, QRect cut = {}) {
        return PlacePicture(picture, 100, 100, style, cut, 0x030201, 255, 5);
    };

    const QImage stretched = place(0);
    ASSERT_EQ(stretched.size(), QSize(100, 100));
    EXPECT_EQ(stretched.pixel(0, 0), red);
    EXPECT_EQ(stretched.pixel(50, 99), green);
    EXPECT_EQ(stretched.pixel(99, 50), blue);

    const QImage fitted = place(6);
    EXPECT_EQ(PlanPlacement(picture.size(), {100, 100}, 6, {}, 0).target, QRect(0, 25, 100, 50));
    EXPECT_EQ(fitted.pixel(50, 24), back);
    EXPECT_EQ(fitted.pixel(50, 75), back);
    EXPECT_EQ(fitted.pixel(5, 25), red);
    EXPECT_EQ(fitted.pixel(95, 74), blue);

    EXPECT_EQ(place(7), plain(100, 100, green)) << "the middle square, the bands cropped away";
    EXPECT_EQ(place(1, QRect(300, 50, 20, 10)), plain(100, 100, blue));
    EXPECT_EQ(place(1), stretched) << "without a cut, the whole picture";
    EXPECT_EQ(place(42), stretched);

    // Transparent parts of the picture show the canvas.
    const QImage clear = PlacePicture(plain(4, 4, qRgba(9, 9, 9, 0)), 8, 8, 0, {}, 0x030201, 255, 0);
    EXPECT_EQ(clear, plain(8, 8, back));
}

TEST(PlacementStage, TheRandomFamilyMovesOnlyOnItsSidesAndRepeatsWithItsSeed)
{
    const QSize wide(400, 200), tall(200, 400), square(100, 100);
    struct Case
    {
        int style;
        QSize picture;
        QRect cut;
        bool moves;
    };
    const Case cases[]
        = {{2, wide, {}, true}, {2, tall, {}, false}, {4, wide, {}, false}, {4, tall, {}, true},
            {5, wide, {}, true}, {5, tall, {}, true}, {3, wide, QRect(0, 100, 400, 100), true}};
    for (const Case &c : cases) {
        std::set<int> places;
        for (quint32 seed = 0; seed < 40; ++seed) {
            const Placement p = PlanPlacement(c.picture, square, c.style, c.cut, seed);
            const QRect area = c.cut.isEmpty() ? QRect(QPoint(0, 0), c.picture) : c.cut;
            ASSERT_EQ(p.target, QRect(QPoint(0, 0), square));
            ASSERT_EQ(p.source.size(),
                QSize(area.height(), area.height()).boundedTo(QSize(area.width(), area.width())));
            ASSERT_TRUE(area.contains(p.source)) << c.style;
            places.insert(p.source.x() + p.source.y());
            EXPECT_EQ(p.source, PlanPlacement(c.picture, square, c.style, c.cut, seed).source);
        }
        EXPECT_EQ(places.size() > 10, c.moves) << c.style << " " << c.picture.width();
    }
    const QImage picture = noise(40, 20);
    EXPECT_EQ(
        PlacePicture(picture, 10, 10, 5, {}, 0, 255, 77), PlacePicture(picture, 10, 10, 5, {}, 0, 255, 77));
    EXPECT_EQ(PlacePicture(picture, 10, 10, 5, {}, 0, 255).size(), QSize(10, 10));
}

TEST(TornEdgeStage, TheRimGoesTheMiddleStays)
{
    const QImage image = noise(60, 40);
    EXPECT_EQ(TearEdges(image, 0), image);
    const QImage torn = TearEdges(image, 6, 3);
    EXPECT_EQ(changed(torn, image, QRect(6, 6, 48, 28), false), 0);
    int rimLeft = 0, partly = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 60; ++x) {
            const QRgb p = torn.pixel(x, y), q = image.pixel(x, y);
            ASSERT_EQ(p & 0xFFFFFF, q & 0xFFFFFF) << "colour stays";
            ASSERT_LE(qAlpha(p), qAlpha(q));
            if (x == 0 || y == 0 || x == 59 || y == 39)
                rimLeft += qAlpha(p);
            partly += qAlpha(p) > 0 && qAlpha(p) < qAlpha(q);
        }
    EXPECT_EQ(rimLeft, 0);
    EXPECT_GT(partly, 20) << "a soft, ragged line";
    EXPECT_EQ(TearEdges(image, 6, 3), torn);
    EXPECT_EQ(TearEdges(image, -6, 3), torn);
    EXPECT_NE(TearEdges(image, 6, 4), torn);
    EXPECT_EQ(TearEdges(image, INT_MIN, 3), TearEdges(image, 1000, 3));
    EXPECT_EQ(changed(TearEdges(image, 1000, 3), image, QRect(10, 10, 40, 20)), 0)
        << "a quarter of the shorter side";
}

} // namespace
} // namespace qb::imaging
