// How the multi-mode control looks: the cached state pictures, the layers of the painter read back
// pixel by pixel, the window region, the platform-styled look and the fade.
#include "button_test_support.h"
#include "controls/button_painter.h"

#include <QProxyStyle>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

using testing::SendEnter;
using testing::SendLeave;
using testing::TestButton;

QColor at(const QImage &image, int x, int y)
{
    return image.pixelColor(x, y);
}

// A flat control without outline or text: every pixel is the state's back colour, grey 0xE6 in
// the normal state.
void makePlain(ctlButton &b, QSize size)
{
    b.setRefresh(false);
    b.resize(size);
    b.setStyle(10);
    b.setShowBorder(0);
    b.setRefresh(true);
}

const QColor kPlainBack(0xE6, 0xE6, 0xE6);

TEST(ButtonPainter, StateChangesShowCachedPicturesWithoutRendering)
{
    TestButton b;
    b.resize(120, 24);
    b.ReDraw(u"first"_s, 0, false, 10, true);
    const int renders = b.renderCount();
    SendEnter(&b, QPoint(3, 3));
    EXPECT_EQ(b.Image(), b.stateImage(1));
    b.setStatus(2);
    EXPECT_EQ(b.Image(), b.stateImage(2));
    SendLeave(&b);
    EXPECT_EQ(b.Image(), b.stateImage(0));
    EXPECT_EQ(b.renderCount(), renders);
    EXPECT_NE(b.stateImage(0), b.stateImage(1));
    EXPECT_NE(b.stateImage(1), b.stateImage(2));
    // The fourth picture of an enabled control is the completed click, which looks like hover.
    EXPECT_EQ(b.stateImage(3), b.stateImage(1));
}

TEST(ButtonPainter, StatesPaintTheirOwnBackColours)
{
    TestButton b;
    makePlain(b, QSize(60, 20));
    EXPECT_EQ(at(b.stateImage(0), 30, 10), kPlainBack);
    EXPECT_EQ(at(b.stateImage(1), 30, 10), QColor(0xF3, 0xF3, 0xF3));
    EXPECT_EQ(at(b.stateImage(2), 30, 10), QColor(0xB3, 0xB3, 0xB3));
    b.setEnabled(false);
    for (int state = 0; state < 4; ++state)
        EXPECT_EQ(at(b.stateImage(state), 30, 10), QColor(Qt::white)) << state;
}

TEST(ButtonPainter, ACheckedControlPaintsPressedInEveryState)
{
    TestButton b;
    b.resize(80, 24);
    b.setCaption(u"选中"_s);
    b.ReDraw(u"first"_s, 0, false, 10, true);
    const QImage pressed = b.stateImage(2);
    b.setChecked(true);
    for (int state = 0; state < 4; ++state)
        EXPECT_EQ(b.stateImage(state), pressed) << state;
}

TEST(ButtonPainter, TheProgressFillFollowsValueOverMax)
{
    TestButton b;
    makePlain(b, QSize(200, 20));
    b.setProgressColor(0x0000FF);
    const QColor red(255, 0, 0);
    b.setvalue(100);
    for (int x = 0; x < 200; ++x)
        ASSERT_EQ(at(b.stateImage(0), x, 10), red) << x;
    b.setvalue(50);
    EXPECT_EQ(at(b.stateImage(0), 99, 10), red);
    EXPECT_EQ(at(b.stateImage(0), 100, 10), kPlainBack);
    b.setMax(200); // the same value, half as far
    EXPECT_EQ(at(b.stateImage(0), 49, 10), red);
    EXPECT_EQ(at(b.stateImage(0), 50, 10), kPlainBack);
    b.setMin(40); // no part in the fill
    EXPECT_EQ(at(b.stateImage(0), 49, 10), red);
    b.setvalue(0);
    EXPECT_EQ(at(b.stateImage(0), 0, 10), kPlainBack);
}

TEST(ButtonPainter, TheRegionSquaresTheCornersShowBorderNames)
{
    const QSize size(40, 20);
    // Which corners stay square: top left, top right, bottom left, bottom right.
    struct Case
    {
        int showBorder;
        bool tl, tr, bl, br;
    };
    const Case cases[] = {
        {0, false, false, false, false},
        {1, false, false, false, false},
        {2, true, false, true, false},
        {3, true, true, false, false},
        {4, false, true, false, true},
        {5, false, false, true, true},
        {6, true, true, true, true},
        {7, true, true, true, true},
        {8, true, true, false, false},
        {9, false, false, false, false},
    };
    for (const Case &c : cases) {
        const QRegion region = WindowRegion(size, true, c.showBorder);
        SCOPED_TRACE(c.showBorder);
        EXPECT_EQ(region.contains(QPoint(0, 0)), c.tl);
        EXPECT_EQ(region.contains(QPoint(39, 0)), c.tr);
        EXPECT_EQ(region.contains(QPoint(0, 19)), c.bl);
        EXPECT_EQ(region.contains(QPoint(39, 19)), c.br);
        EXPECT_TRUE(region.contains(QPoint(1, 0)));
        EXPECT_TRUE(region.contains(QPoint(20, 10)));
    }
    EXPECT_EQ(WindowRegion(size, false, 1), QRegion(0, 0, 41, 21));

    TestButton b;
    b.resize(size);
    b.setShowBorder(2);
    EXPECT_EQ(b.windowRegion(), WindowRegion(size, true, 2));
    EXPECT_EQ(b.mask(), WindowRegion(size, true, 2));
    b.setShowCorner(false);
    EXPECT_EQ(b.windowRegion(), QRegion(0, 0, 41, 21));
    EXPECT_TRUE(b.mask().isEmpty()); // no mask: the whole rectangle
}

TEST(ButtonPainter, TheOutlineKeepsTheSidesShowBorderNames)
{
    struct Case
    {
        int showBorder;
        bool left, top, right, bottom;
    };
    const Case cases[] = {
        {1, true, true, true, true},
        {2, false, true, true, true},
        {3, true, false, true, true},
        {5, true, true, true, false},
        {8, false, true, false, false},
        {9, false, false, false, true},
    };
    for (const Case &c : cases) {
        TestButton b;
        b.setRefresh(false);
        b.resize(100, 24);
        b.setStyle(10); // flat, so the outline is the only other colour
        b.setShowBorder(c.showBorder);
        b.setBorderColor(0x00FF00);
        b.setRefresh(true);
        const QImage image = b.stateImage(0);
        const QColor green(0, 255, 0);
        SCOPED_TRACE(c.showBorder);
        EXPECT_EQ(at(image, 0, 12) == green, c.left);
        EXPECT_EQ(at(image, 50, 0) == green, c.top);
        EXPECT_EQ(at(image, 99, 12) == green, c.right);
        EXPECT_EQ(at(image, 50, 23) == green, c.bottom);
        EXPECT_NE(at(image, 50, 12), green);
    }
}

TEST(ButtonPainter, TheInnerLineIsInsetByItsPadding)
{
    TestButton b;
    makePlain(b, QSize(100, 24));
    b.setInnerLineColor(0x00FF00);
    b.setInnerLinePadding(2);
    b.setShowInnerLine(1);
    const QColor green(0, 255, 0);
    EXPECT_EQ(at(b.stateImage(0), 50, 2), green);
    EXPECT_EQ(at(b.stateImage(0), 2, 12), green);
    EXPECT_EQ(at(b.stateImage(0), 97, 12), green);
    EXPECT_EQ(at(b.stateImage(0), 50, 21), green);
    EXPECT_NE(at(b.stateImage(0), 50, 1), green);
    b.setShowInnerLine(3); // the top line alone
    EXPECT_EQ(at(b.stateImage(0), 50, 2), green);
    EXPECT_NE(at(b.stateImage(0), 2, 12), green);
    EXPECT_NE(at(b.stateImage(0), 50, 21), green);
    b.setInnerLineWidth(2);
    EXPECT_EQ(at(b.stateImage(0), 50, 3), green);
}

// Where the text's ink is: the first and last columns that differ from an empty control.
std::pair<int, int> inkColumns(const QImage &image, const QImage &empty)
{
    int first = -1;
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixel(x, y) != empty.pixel(x, y)) {
                if (first < 0)
                    first = x;
                last = x;
                break;
            }
        }
    }
    return {first, last};
}

TEST(ButtonPainter, CaptionTextFollowsAlignmentAndTheNullText)
{
    TestButton b;
    makePlain(b, QSize(300, 24));
    const QImage empty = b.stateImage(0);
    b.setCaption(u"Text"_s);
    b.setAlignment(0);
    const auto left = inkColumns(b.stateImage(0), empty);
    b.setAlignment(1);
    const auto right = inkColumns(b.stateImage(0), empty);
    b.setAlignment(2);
    const auto centre = inkColumns(b.stateImage(0), empty);
    ASSERT_GE(left.first, 0);
    EXPECT_LT(left.second, 100);
    EXPECT_GT(right.first, 200);
    EXPECT_GT(centre.first, 100);
    EXPECT_LT(centre.second, 200);
    // Added text and a comment make the line longer.
    b.setAlignment(0);
    b.setCaptionAddText(u" more"_s);
    const auto added = inkColumns(b.stateImage(0), empty);
    b.setCaptionComment(u"comment"_s);
    const auto commented = inkColumns(b.stateImage(0), empty);
    EXPECT_GT(added.second, left.second);
    EXPECT_GT(commented.second, added.second);
    // An empty caption shows the null text; with neither, nothing is drawn at all.
    b.setCaptionAddText(QString());
    b.setCaptionComment(QString());
    b.setCaption(QString());
    EXPECT_EQ(b.stateImage(0), empty);
    b.setCaptionNullText(u"请选择"_s);
    EXPECT_NE(b.stateImage(0), empty);
    b.setCaptionNullText(QString());
    b.setCaptionAddText(u"only added"_s);
    EXPECT_EQ(b.stateImage(0), empty);
}

TEST(ButtonPainter, SymbolZoneGripAndTitleHaveTheirPlaces)
{
    TestButton b;
    makePlain(b, QSize(200, 24));
    b.setBorderColor(0x00FF00);
    const QImage plain = b.stateImage(0);
    b.setShowDropDownSymbol(3);
    EXPECT_EQ(at(b.stateImage(0), 185, 12), QColor(0, 255, 0)); // the zone's separator
    const auto symbol = inkColumns(b.stateImage(0), plain);
    EXPECT_GE(symbol.first, 185);
    b.setShowDropDownSymbol(0);

    b.setMode(ctlButton::ucModeStatusBar);
    b.setStatusBarResize(true);
    EXPECT_EQ(b.gripRect(), QRect(184, 8, 16, 16));
    const auto grip = inkColumns(b.stateImage(0), plain);
    EXPECT_GE(grip.first, 184);
    b.setStatusBarResize(false);
    EXPECT_EQ(b.stateImage(0), plain);

    b.setMode(ctlButton::ucModeText);
    b.setTitle(u"T"_s);
    b.setTitleWidth(40);
    const auto title = inkColumns(b.stateImage(0), plain);
    EXPECT_GE(title.first, 0);
    EXPECT_LT(title.second, 40);
    EXPECT_EQ(CaptionRect(b.properties(), b.size(), false), QRect(44, 0, 152, 24));
}

TEST(ButtonPainter, TransparentBackShowsTheContainerInTheNormalState)
{
    QWidget container;
    container.resize(200, 100);
    QPalette palette = container.palette();
    palette.setColor(QPalette::Window, QColor(255, 0, 0));
    container.setPalette(palette);
    container.setAutoFillBackground(true);
    TestButton b(&container);
    b.setGeometry(20, 30, 100, 24);
    b.setTransparentBack(true);
    EXPECT_EQ(at(b.stateImage(0), 50, 12), QColor(255, 0, 0));
    EXPECT_NE(at(b.stateImage(1), 50, 12), QColor(255, 0, 0)); // hover paints its look
    b.setMode(ctlButton::ucModeStatusBar);
    EXPECT_EQ(at(b.stateImage(1), 50, 12), QColor(255, 0, 0)); // a bar shows the container always
}

// Notes what the platform style is asked to draw.
class RecordingStyle : public QProxyStyle
{
public:
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override
    {
        controls.append(element);
        QProxyStyle::drawControl(element, option, painter, widget);
    }
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
        const QWidget *widget) const override
    {
        primitives.append(element);
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
    mutable QList<ControlElement> controls;
    mutable QList<PrimitiveElement> primitives;
};

TEST(ButtonPainter, Style24UsesThePlatformStyleWithTheHeaderLookOnBars)
{
    RecordingStyle style;
    TestButton b;
    b.setStyle(static_cast<QStyle *>(&style));
    b.resize(120, 24);
    b.setStyle(24);
    EXPECT_TRUE(style.primitives.contains(QStyle::PE_PanelButtonCommand));
    EXPECT_FALSE(style.controls.contains(QStyle::CE_HeaderSection));
    style.primitives.clear();
    b.setMode(ctlButton::ucModeStatusBar);
    EXPECT_TRUE(style.controls.contains(QStyle::CE_HeaderSection));
    EXPECT_FALSE(style.primitives.contains(QStyle::PE_PanelButtonCommand));
    // The platform look has no inner line and no outline of ours.
    const QImage before = b.stateImage(0);
    b.setInnerLineColor(0x00FF00);
    b.setShowInnerLine(1);
    b.setShowBorder(1);
    EXPECT_EQ(b.stateImage(0), before);
}

TEST(ButtonPainter, TheFadeRunsOnlyWhenAskedAndEnabled)
{
    TestButton b;
    b.resize(80, 24);
    b.setShowEffect(true);
    b.ReDraw(u"first"_s, 0, false, 10, true);
    b.ReDraw(u"no effect"_s, 1, false, 10, false);
    EXPECT_EQ(b.fadeAlpha(), 255);
    EXPECT_EQ(b.Image(), b.stateImage(1));
    b.ReDraw(u"effect"_s, 2, true, 5, false);
    EXPECT_EQ(b.fadeAlpha(), 1);
    EXPECT_EQ(b.Image(), b.stateImage(1)); // the old picture until the first tick
    ASSERT_TRUE(QTest::qWaitFor([&] { return b.fadeAlpha() == 255; }, 3000));
    EXPECT_EQ(b.Image(), b.stateImage(2));
    // A status change fades by itself; a disabled control shows at once.
    b.setStatus(1);
    EXPECT_EQ(b.fadeAlpha(), 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return b.fadeAlpha() == 255; }, 3000));
    b.setEnabled(false);
    b.ReDraw(u"disabled"_s, 1, true, 5, false);
    EXPECT_EQ(b.fadeAlpha(), 255);
}

TEST(ButtonPainter, FadeStepsQuickenAsTheyGo)
{
    struct Case
    {
        int alpha, status, next;
    };
    const Case cases[] = {
        {1, 0, 3}, // 1 + round(2.06)
        {200, 0, 214}, // 200 + round(13.76)
        {1, 1, 3}, // 1 + round(2.24)
        {128, 1, 160}, // 128 + round(32.12)
        {100, 2, 130}, {240, 2, 255}, {250, 1, 255}, {128, 3, 160}, // a completed click fades like hover
    };
    for (const Case &c : cases)
        EXPECT_EQ(NextFadeAlpha(c.alpha, c.status), c.next) << c.alpha << " " << c.status;
}

TEST(ButtonPainter, AlignmentsThreeAndFourBreakWords)
{
    for (const int a : {0, 1, 2})
        EXPECT_EQ(AlignmentFlags(a) & (kTextSingleLine | kTextWordBreak), kTextSingleLine) << a;
    for (const int a : {3, 4})
        EXPECT_TRUE(AlignmentFlags(a) & kTextWordBreak) << a;
}

} // namespace
} // namespace qb::controls
