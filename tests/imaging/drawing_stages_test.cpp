// The drawing stages on small pictures made here, judged by where their pixels land.
#include "imaging/drawing_colors.h"
#include "imaging/frame_stage.h"
#include "imaging/histogram_stage.h"
#include "imaging/shadow_stage.h"
#include "imaging/stitch_layout.h"
#include "imaging/text_marks.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <set>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

const QString kSans10 = u"DejaVu Sans, 10, False, False, 0, False, False, 400"_s;

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

QRect InkBox(const QImage &image, QColor pen)
{
    return InkBox(image, [&](QColor c) { return c == pen; });
}

QRect RedInk(const QImage &image)
{
    return InkBox(image, [](QColor c) { return c.red() > 0; });
}

QImage Framed(const FrameSettings &s, int w = 40, int h = 40)
{
    QImage image = Solid(w, h, Qt::blue);
    ApplyFrame(image, s);
    return image;
}

TEST(DrawingColors, TextsReadAsLowByteRed)
{
    EXPECT_EQ(DrawingColor(u"&H0000FF"_s), QColor(255, 0, 0));
    EXPECT_EQ(DrawingColor(u" &hff0000& "_s, 7), QColor(0, 0, 255, 7));
    EXPECT_EQ(DrawingColor(u"00FF00"_s, 999), QColor(0, 255, 0));
    EXPECT_EQ(ColorTextToNumber(u"nothing"_s), 0);
    EXPECT_EQ(ColorTextToNumber(u"12FFFFFF"_s), 0xFFFFFF);
}

// Each corner on its own, mirrored; the opposite corner and the centre keep the picture.
TEST(FrameStage, EachCornerCutsByItsStyle)
{
    struct Case
    {
        int style, at3, at6; // alpha three and six in along the diagonal
    };
    for (const Case c :
        {Case {CornerArc, 255, 255}, Case {CornerCut, 0, 255}, Case {CornerBite, 0, 0}, Case {7, 255, 255}}) {
        for (int corner = 0; corner < 4; ++corner) {
            SCOPED_TRACE(::testing::Message() << "style " << c.style << ", corner " << corner);
            FrameSettings s;
            *std::array {&s.radiusTL, &s.radiusTR, &s.radiusBL, &s.radiusBR}[corner] = 10;
            *std::array {&s.radiusStyleTL, &s.radiusStyleTR, &s.radiusStyleBL, &s.radiusStyleBR}[corner]
                = c.style;
            const QImage image = Framed(s);
            const bool right = corner % 2, bottom = corner >= 2;
            const auto alphaAt
                = [&](int d) { return image.pixelColor(right ? 39 - d : d, bottom ? 39 - d : d).alpha(); };
            EXPECT_EQ(alphaAt(0), 0);
            EXPECT_EQ(alphaAt(3), c.at3);
            EXPECT_EQ(alphaAt(6), c.at6);
            EXPECT_EQ(image.pixelColor(right ? 0 : 39, bottom ? 0 : 39), QColor(Qt::blue));
            EXPECT_EQ(image.pixelColor(20, 20), QColor(Qt::blue));
        }
    }
}

TEST(FrameStage, EdgeIndentationLeavesATransparentMargin)
{
    const QImage image = Framed({.edgeIndentation = 5}, 40, 30);
    ASSERT_EQ(image.size(), QSize(40, 30));
    for (QPoint gone : {QPoint(4, 15), QPoint(35, 15), QPoint(20, 4), QPoint(20, 25)})
        EXPECT_EQ(image.pixelColor(gone).alpha(), 0) << gone.x() << "," << gone.y();
    for (QPoint kept : {QPoint(5, 15), QPoint(34, 15), QPoint(20, 5), QPoint(20, 24)})
        EXPECT_EQ(image.pixelColor(kept), QColor(Qt::blue)) << kept.x() << "," << kept.y();
}

TEST(FrameStage, BorderLiesAtItsIndentation)
{
    FrameSettings s {.borderWidth = 2, .borderColor = u"&H0000FF"_s, .borderIndentation = 3};
    const QImage image = Framed(s);
    for (int d : {2, 3, 4, 5}) {
        const QColor line = d == 3 || d == 4 ? QColor(Qt::red) : QColor(Qt::blue);
        EXPECT_EQ(image.pixelColor(d, 20), line) << d;
        EXPECT_EQ(image.pixelColor(39 - d, 20), line) << d;
        EXPECT_EQ(image.pixelColor(20, d), line) << d;
        EXPECT_EQ(image.pixelColor(20, 39 - d), line) << d;
    }
    s.borderAlpha = 0;
    EXPECT_EQ(Framed(s).pixelColor(3, 20), QColor(Qt::blue));
}

TEST(FrameStage, DashStylesBreakTheLineEachTheirOwnWay)
{
    const auto topRow = [](int style) {
        const QImage image
            = Framed({.borderWidth = 1, .borderColor = u"0000FF"_s, .borderDashStyle = style}, 60, 60);
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(0));
        return QList<QRgb>(row, row + 60);
    };
    const QList<QRgb> solid = topRow(0);
    EXPECT_EQ(solid, QList<QRgb>(60, qRgb(255, 0, 0)));
    EXPECT_EQ(topRow(9), solid);
    std::set<QList<QRgb>> seen {solid};
    for (int style = 1; style <= 4; ++style) {
        const QList<QRgb> row = topRow(style);
        EXPECT_TRUE(row.contains(qRgb(255, 0, 0)) && seen.insert(row).second) << style;
    }
}

TEST(FrameStage, CornerGradientRunsFromStartToEnd)
{
    FrameSettings s;
    s.radiusTL = s.radiusBR = 10;
    s.radiusStartColor = 0x0000FF;
    s.radiusEndColor = 0x00FF00;
    s.radiusStartAlpha = s.radiusEndAlpha = 255;
    const QImage image = Framed(s);
    const QColor start = image.pixelColor(0, 0), end = image.pixelColor(39, 39);
    EXPECT_TRUE(start.red() > 220 && start.green() < 35) << start.name().toStdString();
    EXPECT_TRUE(end.green() > 220 && end.red() < 35) << end.name().toStdString();
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

TEST(ShadowStage, GrowsByDepthFollowingTheOpaqueShape)
{
    QImage image = Solid(20, 20, Qt::white);
    DropShadow(image, 6, u"&H0000FF"_s, 255);
    ASSERT_EQ(image.size(), QSize(26, 26));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(19, 19), QColor(Qt::white));
    const QColor shadow = image.pixelColor(23, 23);
    EXPECT_TRUE(shadow.alpha() > 128 && shadow.red() > 240 && shadow.green() + shadow.blue() < 16);
    EXPECT_EQ(image.pixelColor(0, 25).alpha(), 0);
    EXPECT_EQ(image.pixelColor(25, 0).alpha(), 0);

    QImage untouched = Solid(5, 5, Qt::white);
    DropShadow(untouched, 0, u"0"_s, 255);
    EXPECT_EQ(untouched.size(), QSize(5, 5));

    // Only the left half shows, so only it casts a shadow.
    QImage half = Solid(20, 20, Qt::transparent);
    QPainter(&half).fillRect(0, 0, 10, 20, Qt::white);
    DropShadow(half, 4, u"000000"_s, 255);
    EXPECT_GT(half.pixelColor(10, 22).alpha(), 200);
    EXPECT_EQ(half.pixelColor(20, 22).alpha(), 0);
}

TEST(HistogramStage, EachPenPeaksAtItsChannelsValue)
{
    const QColor picture(200, 30, 60); // grey 84
    QImage image = Solid(128, 128, picture);
    DrawHistogram(image);
    EXPECT_TRUE(InkBox(image.copy(0, 0, 128, 64), [&](QColor c) { return c != picture; }).isNull());
    // The spikes reach one row, left to right by value: green 30, blue 60, grey 84, red 200.
    const int top = InkBox(image, QColor(255, 0, 0)).top();
    int last = -1;
    for (const QColor pen :
        {QColor(0, 255, 0), QColor(0, 0, 255), QColor(128, 128, 128), QColor(255, 0, 0)}) {
        const QRect ink = InkBox(image, pen);
        ASSERT_FALSE(ink.isNull()) << pen.name().toStdString();
        EXPECT_EQ(ink.top(), top) << pen.name().toStdString();
        const int peak = InkBox(image.copy(0, top, 128, 1), pen).left();
        EXPECT_GT(peak, last) << pen.name().toStdString();
        last = peak;
    }
    EXPECT_GT(InkBox(image, QColor(Qt::white)).width(), 60);

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
    // The square green one centred in its tile, the blue one halved to fit, no fourth picture.
    const std::pair<QPoint, Qt::GlobalColor> expected[]
        = {{{0, 0}, Qt::red}, {{19, 9}, Qt::red}, {{25, 5}, Qt::green}, {{34, 5}, Qt::green},
            {{24, 5}, Qt::white}, {{35, 5}, Qt::white}, {{10, 15}, Qt::blue}, {{30, 15}, Qt::white}};
    for (const auto &[at, colour] : expected)
        EXPECT_EQ(canvas.pixelColor(at), QColor(colour)) << at.x() << "," << at.y();
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

// Keypad alignment: 7 8 9 along the top, 1 2 3 along the bottom, 0 (or 5) in the middle.
TEST(TextMarks, TextMarkInkLandsInItsNinth)
{
    for (int align = 0; align <= 9; ++align) {
        QImage image = Solid(90, 90, Qt::black);
        ApplyWatermarks(
            image, {.enabled = true, .text = u"X"_s, .font = kSans10, .align = align, .padding = 3}, {});
        const QRect ink = RedInk(image);
        const int column = align >= 1 ? (align - 1) % 3 : 1;
        const int row = align >= 7 ? 0 : align >= 4 || align == 0 ? 1 : 2;
        EXPECT_FALSE(ink.isNull()) << align;
        EXPECT_TRUE(QRect(column * 30, row * 30, 30, 30).contains(ink)) << align;
    }
}

TEST(TextMarks, ImageMarkFromAFileMadeOutside)
{
    test::TempTree tree;
    const QString file = tree.path(u"mark.png"_s);
    ASSERT_EQ(test::runTool(u"convert"_s, {u"-size"_s, u"8x8"_s, u"xc:red"_s, file}).exitCode, 0);
    ImageMark mark {.enabled = true, .file = file, .align = 3, .padding = 2};
    const auto marked = [&] {
        QImage image = Solid(60, 60, Qt::black);
        ApplyWatermarks(image, TextMark {}, mark);
        return image;
    };
    EXPECT_EQ(RedInk(marked()), QRect(50, 50, 8, 8));
    EXPECT_EQ(marked().pixelColor(53, 53), QColor(Qt::red));
    mark.alpha = 128;
    EXPECT_NEAR(marked().pixelColor(53, 53).red(), 128, 2);
    mark.file = tree.path(u"missing.png"_s);
    EXPECT_EQ(marked(), Solid(60, 60, Qt::black));
}

TEST(TextMarks, TitleOnTopBottomBelowLongOnesCut)
{
    QImage image = Solid(200, 100, Qt::black);
    DrawTextLines(image, u"Top"_s, u"Bottom"_s, kSans10);
    const QRect top = RedInk(image.copy(0, 0, 200, 30));
    const QRect bottom = RedInk(image.copy(0, 70, 200, 30));
    ASSERT_FALSE(top.isNull() || bottom.isNull());
    EXPECT_TRUE(RedInk(image.copy(0, 30, 200, 40)).isNull());
    EXPECT_NEAR(top.center().x(), 100, 3);
    EXPECT_NEAR(bottom.center().x(), 100, 3);

    QImage narrow = Solid(80, 60, Qt::black);
    DrawTextLines(narrow, u"A title far too long for so narrow a picture"_s, {});
    const QRect ink = RedInk(narrow);
    EXPECT_GT(ink.left(), 0);
    EXPECT_LT(ink.right(), 79);
}

TEST(TextMarks, StringImageIsTightAndInked)
{
    const QString font = u"DejaVu Sans, 20, False, False, 0, False, False, 400"_s;
    const QImage plain = CreateStringImage(u"Hi"_s, font, u"&H0000FF"_s, u"0"_s, 0, u"0"_s, 0);
    ASSERT_FALSE(plain.isNull());
    const QRect ink = InkBox(plain, [](QColor c) { return c.alpha() > 0; });
    EXPECT_TRUE(ink.left() <= 1 && ink.top() <= 1);
    EXPECT_TRUE(ink.right() >= plain.width() - 2 && ink.bottom() >= plain.height() - 2);
    EXPECT_FALSE(InkBox(plain, QColor(Qt::red)).isNull());
    EXPECT_TRUE(InkBox(plain, [](QColor c) { return c.alpha() > 200 && c.red() < 250; }).isNull());

    const QImage outlined = CreateStringImage(u"Hi"_s, font, u"&H0000FF"_s, u"&H00FF00"_s, 2, u"0"_s, 0);
    EXPECT_EQ(outlined.size(), plain.size() + QSize(4, 4));
    EXPECT_FALSE(InkBox(outlined, QColor(Qt::green)).isNull());
    EXPECT_FALSE(InkBox(outlined, QColor(Qt::red)).isNull());

    const QImage backed = CreateStringImage(u"Hi"_s, font, u"&H0000FF"_s, u"0"_s, 0, u"FFFFFF"_s, 255);
    EXPECT_TRUE(InkBox(backed, [](QColor c) { return c.alpha() < 255; }).isNull());
    EXPECT_TRUE(CreateStringImage({}, font, u"0"_s, u"0"_s, 0, u"0"_s, 0).isNull());
    EXPECT_TRUE(CreateStringImage(u"   "_s, font, u"0"_s, u"0"_s, 0, u"0"_s, 0).isNull());
}

} // namespace
} // namespace qb::imaging
