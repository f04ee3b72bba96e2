// The drawing stages: frame, shadow, histogram, stitching, text lines and watermarks, each run on
// small pictures made here and judged by where their pixels land.
#include "imaging/drawing_colors.h"
#include "imaging/frame_stage.h"
#include "imaging/histogram_stage.h"
#include "imaging/shadow_stage.h"
#include "imaging/stitch_layout.h"
#include "imaging/text_marks.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

QImage Solid(int w, int h, QColor colour)
{
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    image.fill(colour);
    return image;
}

// Smallest rectangle of the pixels that pass; null when none does.
QRect InkBox(const QImage &image, const std::function<bool(QColor)> &ink)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (ink(image.pixelColor(x, y)))
                box |= QRect(x, y, 1, 1);
    return box;
}

TEST(DrawingColors, TextsReadAsLowByteRed)
{
    EXPECT_EQ(DrawingColor(u"&H0000FF"_s), QColor(255, 0, 0));
    EXPECT_EQ(DrawingColor(u" &hff0000& "_s, 7), QColor(0, 0, 255, 7));
    EXPECT_EQ(DrawingColor(u"00FF00"_s, 999), QColor(0, 255, 0));
    EXPECT_EQ(ColorTextToNumber(u"nothing"_s), 0);
    EXPECT_EQ(ColorTextToNumber(u"12FFFFFF"_s), 0xFFFFFF);
}

struct CornerCase
{
    int style;
    int at3; // alpha of the pixel three in from the corner along the diagonal
    int at6;
};

class FrameCorners : public ::testing::TestWithParam<CornerCase>
{
};

// Each corner on its own, mirrored: the other corners and the centre must keep the picture.
TEST_P(FrameCorners, CutsOnlyItsCornerByStyle)
{
    const CornerCase c = GetParam();
    for (int corner = 0; corner < 4; ++corner) {
        FrameSettings s;
        int *radius[] = {&s.radiusTL, &s.radiusTR, &s.radiusBL, &s.radiusBR};
        int *style[] = {&s.radiusStyleTL, &s.radiusStyleTR, &s.radiusStyleBL, &s.radiusStyleBR};
        *radius[corner] = 10;
        *style[corner] = c.style;
        QImage image = Solid(40, 40, Qt::blue);
        ApplyFrame(image, s);
        const bool right = corner == 1 || corner == 3;
        const bool bottom = corner >= 2;
        const auto alphaAt
            = [&](int d) { return image.pixelColor(right ? 39 - d : d, bottom ? 39 - d : d).alpha(); };
        SCOPED_TRACE(corner);
        EXPECT_EQ(alphaAt(0), 0);
        EXPECT_EQ(alphaAt(3), c.at3);
        EXPECT_EQ(alphaAt(6), c.at6);
        EXPECT_EQ(image.pixelColor(right ? 0 : 39, bottom ? 0 : 39), QColor(Qt::blue));
        EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::blue));
    }
}

INSTANTIATE_TEST_SUITE_P(Styles, FrameCorners,
    ::testing::Values(CornerCase {CornerArc, 255, 255}, CornerCase {CornerCut, 0, 255},
        CornerCase {CornerBite, 0, 0}, CornerCase {7, 255, 255}));

TEST(FrameStage, EdgeIndentationLeavesATransparentMargin)
{
    FrameSettings s;
    s.edgeIndentation = 5;
    QImage image = Solid(40, 30, Qt::blue);
    ApplyFrame(image, s);
    ASSERT_EQ(image.size(), QSize(40, 30));
    for (QPoint gone : {QPoint(4, 15), QPoint(35, 15), QPoint(20, 4), QPoint(20, 25)})
        EXPECT_EQ(image.pixelColor(gone).alpha(), 0) << gone.x() << "," << gone.y();
    for (QPoint kept : {QPoint(5, 15), QPoint(34, 15), QPoint(20, 5), QPoint(20, 24)})
        EXPECT_EQ(image.pixelColor(kept), QColor(Qt::blue)) << kept.x() << "," << kept.y();
}

TEST(FrameStage, BorderLiesAtItsIndentation)
{
    FrameSettings s;
    s.borderWidth = 2;
    s.borderIndentation = 3;
    s.borderColor = u"&H0000FF"_s;
    QImage image = Solid(40, 40, Qt::blue);
    ApplyFrame(image, s);
    for (int d : {3, 4}) {
        EXPECT_EQ(image.pixelColor(d, 20), QColor(Qt::red)) << d;
        EXPECT_EQ(image.pixelColor(39 - d, 20), QColor(Qt::red)) << d;
        EXPECT_EQ(image.pixelColor(20, d), QColor(Qt::red)) << d;
        EXPECT_EQ(image.pixelColor(20, 39 - d), QColor(Qt::red)) << d;
    }
    for (int d : {2, 5})
        EXPECT_EQ(image.pixelColor(d, 20), QColor(Qt::blue)) << d;

    s.borderAlpha = 0;
    QImage unseen = Solid(40, 40, Qt::blue);
    ApplyFrame(unseen, s);
    EXPECT_EQ(unseen.pixelColor(3, 20), QColor(Qt::blue));
}

TEST(FrameStage, DashStylesBreakTheLineEachTheirOwnWay)
{
    const auto topRow = [](int style) {
        FrameSettings s;
        s.borderWidth = 1;
        s.borderColor = u"0000FF"_s;
        s.borderDashStyle = style;
        QImage image = Solid(60, 60, Qt::blue);
        ApplyFrame(image, s);
        QList<QRgb> row;
        for (int x = 0; x < 60; ++x)
            row << image.pixel(x, 0);
        return row;
    };
    const QList<QRgb> solid = topRow(0);
    EXPECT_EQ(solid, QList<QRgb>(60, qRgb(255, 0, 0)));
    EXPECT_EQ(topRow(9), solid);
    QList<QList<QRgb>> seen {solid};
    for (int style = 1; style <= 4; ++style) {
        const QList<QRgb> row = topRow(style);
        EXPECT_TRUE(row.contains(qRgb(255, 0, 0))) << style;
        EXPECT_FALSE(seen.contains(row)) << style;
        seen << row;
    }
}

TEST(FrameStage, CornerGradientRunsFromStartToEnd)
{
    FrameSettings s;
    s.radiusTL = s.radiusBR = 10;
    s.radiusStartColor = 0x0000FF;
    s.radiusEndColor = 0x00FF00;
    s.radiusStartAlpha = s.radiusEndAlpha = 255;
    QImage image = Solid(40, 40, Qt::blue);
    ApplyFrame(image, s);
    const QColor start = image.pixelColor(0, 0);
    const QColor end = image.pixelColor(39, 39);
    EXPECT_GT(start.red(), 220);
    EXPECT_LT(start.green(), 35);
    EXPECT_GT(end.green(), 220);
    EXPECT_LT(end.red(), 35);
    EXPECT_EQ(image.pixelColor(39, 0), QColor(Qt::blue)); // no radius there
    EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::blue));
}

TEST(FrameStage, NothingAskedLeavesThePicture)
{
    QImage image = Solid(8, 8, Qt::green).convertToFormat(QImage::Format_RGB32);
    const QImage before = image;
    ApplyFrame(image, FrameSettings {});
    EXPECT_EQ(image, before);
    EXPECT_EQ(image.format(), QImage::Format_RGB32);
}

TEST(ShadowStage, GrowsByDepthWithShadowBottomRight)
{
    QImage image = Solid(20, 20, Qt::white);
    DropShadow(image, 6, u"&H0000FF"_s, 255);
    ASSERT_EQ(image.size(), QSize(26, 26));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(19, 19), QColor(Qt::white));
    const QColor shadow = image.pixelColor(23, 23);
    EXPECT_GT(shadow.alpha(), 128);
    EXPECT_GT(shadow.red(), 240);
    EXPECT_LT(shadow.green() + shadow.blue(), 16);
    EXPECT_EQ(image.pixelColor(0, 25).alpha(), 0);
    EXPECT_EQ(image.pixelColor(25, 0).alpha(), 0);

    QImage untouched = Solid(5, 5, Qt::white);
    DropShadow(untouched, 0, u"0"_s, 255);
    EXPECT_EQ(untouched.size(), QSize(5, 5));
}

TEST(ShadowStage, FollowsTheOpaqueShapeNotTheBox)
{
    QImage image = Solid(20, 20, Qt::transparent);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 10; ++x)
            image.setPixelColor(x, y, Qt::white);
    DropShadow(image, 4, u"000000"_s, 255);
    EXPECT_GT(image.pixelColor(10, 22).alpha(), 200);
    EXPECT_EQ(image.pixelColor(20, 22).alpha(), 0);
}

TEST(HistogramStage, EachPenPeaksAtItsChannelsValue)
{
    const QColor picture(200, 30, 60); // luminance 84
    QImage image = Solid(128, 128, picture);
    DrawHistogram(image);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 128; ++x)
            ASSERT_EQ(image.pixelColor(x, y), picture) << x << "," << y;
    const auto top = [&](QColor pen) { return InkBox(image, [&](QColor c) { return c == pen; }); };
    const QRect red = top(QColor(255, 0, 0));
    const QRect green = top(QColor(0, 255, 0));
    const QRect blue = top(QColor(0, 0, 255));
    const QRect grey = top(QColor(128, 128, 128));
    ASSERT_FALSE(red.isNull() || green.isNull() || blue.isNull() || grey.isNull());
    EXPECT_EQ(red.top(), green.top());
    EXPECT_EQ(red.top(), grey.top());
    // The spikes stand where their values lie, left to right: green 30, blue 60, grey 84, red 200.
    const auto peakX = [&](QColor pen, int row) {
        for (int x = 0; x < 128; ++x)
            if (image.pixelColor(x, row) == pen)
                return x;
        return -1;
    };
    const int row = red.top();
    EXPECT_LT(peakX(QColor(0, 255, 0), row), peakX(QColor(0, 0, 255), row));
    EXPECT_LT(peakX(QColor(0, 0, 255), row), peakX(QColor(128, 128, 128), row));
    EXPECT_LT(peakX(QColor(128, 128, 128), row), peakX(QColor(255, 0, 0), row));
    EXPECT_GT(InkBox(image, [](QColor c) { return c == QColor(Qt::white); }).width(), 60);

    QImage tiny = Solid(20, 20, picture);
    DrawHistogram(tiny);
    EXPECT_EQ(tiny, Solid(20, 20, picture));
}

TEST(StitchLayout, GridByTheRule)
{
    struct Row
    {
        int files, row, columns, rows;
    };
    for (const Row r :
        {Row {5, 0, 2, 3}, Row {1, 0, 1, 1}, Row {4, 0, 2, 2}, Row {7, 3, 3, 3}, Row {10, 0, 3, 4},
            Row {3, 0, 2, 2}, Row {2, 0, 1, 2}, Row {3, 10, 10, 1}, Row {201, 200, 200, 2}, Row {0, 0, 0, 0}})
        EXPECT_EQ(StitchGrid(r.files, r.row), QSize(r.columns, r.rows)) << r.files << " files, row " << r.row;
}

TEST(StitchLayout, TileSizeText)
{
    QSize size;
    ASSERT_TRUE(ParseTileSize(u"300x300"_s, size));
    EXPECT_EQ(size, QSize(300, 300));
    ASSERT_TRUE(ParseTileSize(u" 16 X 9 "_s, size));
    EXPECT_EQ(size, QSize(16, 9));
    for (const QString &bad :
        {u"300"_s, u"x300"_s, u"0x10"_s, u"-5x5"_s, u"axb"_s, u"1x2x3"_s, u"40000x1"_s, u""_s}) {
        EXPECT_FALSE(ParseTileSize(bad, size)) << bad.toStdString();
        EXPECT_EQ(size, QSize(16, 9));
    }
}

TEST(StitchLayout, TilesLandRowByRowFitted)
{
    const QList<QImage> pictures {Solid(20, 10, Qt::red), Solid(10, 10, Qt::green), Solid(40, 20, Qt::blue)};
    const QImage canvas = StitchTiles(pictures, QSize(20, 10), 2, 0xFFFFFF, 255);
    ASSERT_EQ(canvas.size(), QSize(40, 20));
    EXPECT_EQ(canvas.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(19, 9), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(25, 5), QColor(Qt::green)); // a square, centred in its tile
    EXPECT_EQ(canvas.pixelColor(34, 5), QColor(Qt::green));
    EXPECT_EQ(canvas.pixelColor(24, 5), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(35, 5), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(10, 15), QColor(Qt::blue)); // halved to fit
    EXPECT_EQ(canvas.pixelColor(30, 15), QColor(Qt::white)); // no fourth picture
    EXPECT_TRUE(StitchTiles(pictures, QSize(20, 10), 0, 0, 255).isNull());
    EXPECT_TRUE(StitchTiles(pictures, QSize(30000, 30000), 2, 0, 255).isNull());
}

TEST(TextMarks, FontStringFields)
{
    const QFont plain = FontFromString(DefaultFontString());
    EXPECT_EQ(plain.family(), u"Arial"_s);
    EXPECT_EQ(plain.pointSize(), 20);
    EXPECT_FALSE(plain.bold() || plain.italic() || plain.strikeOut() || plain.underline());
    EXPECT_EQ(plain.weight(), QFont::Normal);

    const QFont all = FontFromString(u"DejaVu Serif, 12.5, True, True, 134, True, True, 400"_s);
    EXPECT_EQ(all.family(), u"DejaVu Serif"_s);
    EXPECT_DOUBLE_EQ(all.pointSizeF(), 12.5);
    EXPECT_TRUE(all.bold() && all.italic() && all.strikeOut() && all.underline());
    EXPECT_EQ(FontFromString(u"A, 9, False, False, 0, False, False, 300"_s).weight(), QFont::Light);
    EXPECT_EQ(FontFromString(u"A, nine"_s).pointSize(), 20);
    EXPECT_EQ(FontFromString(u"A, -5"_s).pointSize(), 20);
    EXPECT_EQ(FontFromString(u"A, 5000"_s).pointSize(), 1000);
    EXPECT_EQ(FontFromString(u""_s).family(), u"Arial"_s);
}

class TextMarkAlign : public ::testing::TestWithParam<int>
{
};

TEST_P(TextMarkAlign, InkLandsInItsNinth)
{
    const int align = GetParam();
    QImage image = Solid(90, 90, Qt::black);
    TextMark mark;
    mark.enabled = true;
    mark.text = u"X"_s;
    mark.font = u"DejaVu Sans, 10, False, False, 0, False, False, 400"_s;
    mark.padding = 3;
    mark.align = align;
    ApplyWatermarks(image, mark, ImageMark {});
    const QRect ink = InkBox(image, [](QColor c) { return c.red() > 0; });
    ASSERT_FALSE(ink.isNull());
    const int column = align >= 1 && align <= 9 ? (align - 1) % 3 : 1;
    const int row = align >= 7 ? 0 : align >= 4 || align == 0 ? 1 : 2;
    EXPECT_TRUE(QRect(column * 30, row * 30, 30, 30).contains(ink))
        << ink.x() << "," << ink.y() << " " << ink.width() << "x" << ink.height();
}

INSTANTIATE_TEST_SUITE_P(Keypad, TextMarkAlign, ::testing::Range(0, 10));

TEST(TextMarks, ImageMarkFromAFileMadeOutside)
{
    test::TempTree tree;
    const QString file = tree.path(u"mark.png"_s);
    ASSERT_EQ(test::runTool(u"convert"_s, {u"-size"_s, u"8x8"_s, u"xc:red"_s, file}).exitCode, 0);
    ImageMark mark;
    mark.enabled = true;
    mark.file = file;
    mark.align = 3;
    mark.padding = 2;
    QImage image = Solid(60, 60, Qt::black);
    ApplyWatermarks(image, TextMark {}, mark);
    EXPECT_EQ(InkBox(image, [](QColor c) { return c.red() > 0; }), QRect(50, 50, 8, 8));
    EXPECT_EQ(image.pixelColor(53, 53), QColor(Qt::red));

    mark.alpha = 128;
    QImage faint = Solid(60, 60, Qt::black);
    ApplyWatermarks(faint, TextMark {}, mark);
    EXPECT_NEAR(faint.pixelColor(53, 53).red(), 128, 2);

    mark.file = tree.path(u"missing.png"_s);
    QImage kept = Solid(60, 60, Qt::black);
    ApplyWatermarks(kept, TextMark {}, mark);
    EXPECT_EQ(kept, Solid(60, 60, Qt::black));
}

TEST(TextMarks, TitleOnTopBottomBelowLongOnesCut)
{
    QImage image = Solid(200, 100, Qt::black);
    DrawTextLines(image, u"Top"_s, u"Bottom"_s, u"DejaVu Sans, 10, False, False, 0, False, False, 400"_s);
    const auto inkIn = [&](int from, int to) {
        return InkBox(image.copy(0, from, 200, to - from), [](QColor c) { return c.red() > 0; });
    };
    const QRect top = inkIn(0, 30);
    const QRect bottom = inkIn(70, 100);
    ASSERT_FALSE(top.isNull() || bottom.isNull());
    EXPECT_TRUE(inkIn(30, 70).isNull());
    EXPECT_NEAR(top.center().x(), 100, 3);
    EXPECT_NEAR(bottom.center().x(), 100, 3);

    QImage narrow = Solid(80, 60, Qt::black);
    DrawTextLines(narrow, u"A title far too long for so narrow a picture"_s, {});
    const QRect ink = InkBox(narrow, [](QColor c) { return c.red() > 0; });
    EXPECT_GT(ink.left(), 0);
    EXPECT_LT(ink.right(), 79);
}

TEST(TextMarks, StringImageIsTightAndInked)
{
    const QString font = u"DejaVu Sans, 20, False, False, 0, False, False, 400"_s;
    const QImage plain = CreateStringImage(u"Hi"_s, font, u"&H0000FF"_s, u"0"_s, 0, u"0"_s, 0);
    ASSERT_FALSE(plain.isNull());
    const QRect ink = InkBox(plain, [](QColor c) { return c.alpha() > 0; });
    EXPECT_LE(ink.left(), 1);
    EXPECT_LE(ink.top(), 1);
    EXPECT_GE(ink.right(), plain.width() - 2);
    EXPECT_GE(ink.bottom(), plain.height() - 2);
    EXPECT_FALSE(InkBox(plain, [](QColor c) { return c == QColor(Qt::red); }).isNull());
    EXPECT_TRUE(InkBox(plain, [](QColor c) { return c.alpha() > 200 && c.red() < 250; }).isNull());

    const QImage outlined = CreateStringImage(u"Hi"_s, font, u"&H0000FF"_s, u"&H00FF00"_s, 2, u"0"_s, 0);
    EXPECT_EQ(outlined.size(), plain.size() + QSize(4, 4));
    EXPECT_FALSE(InkBox(outlined, [](QColor c) { return c == QColor(Qt::green); }).isNull());
    EXPECT_FALSE(InkBox(outlined, [](QColor c) { return c == QColor(Qt::red); }).isNull());

    const QImage backed = CreateStringImage(u"Hi"_s, font, u"&H0000FF"_s, u"0"_s, 0, u"FFFFFF"_s, 255);
    EXPECT_TRUE(InkBox(backed, [](QColor c) { return c.alpha() < 255; }).isNull());
    EXPECT_TRUE(CreateStringImage({}, font, u"0"_s, u"0"_s, 0, u"0"_s, 0).isNull());
    EXPECT_TRUE(CreateStringImage(u"   "_s, font, u"0"_s, u"0"_s, 0, u"0"_s, 0).isNull());
}

} // namespace
} // namespace qb::imaging
