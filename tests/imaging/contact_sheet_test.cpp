// The contact sheet's layout rule, where each frame lands, the backgrounds and the time points.
#include "imaging/contact_sheet.h"

#include <gtest/gtest.h>

namespace qb::imaging {
namespace {

QImage solid(QColor color)
{
    QImage image(8, 6, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

TEST(ContactSheet, GridMarginsAndHeaderMakeTheSize)
{
    SheetSettings s;
    s.columns = 3;
    s.rows = 2;
    s.frame = {40, 30};
    EXPECT_EQ(SheetSize(s), QSize(120, 60));
    s.edgeWidth = 6;
    s.borderIndentation = 4;
    s.header = {QStringLiteral("name"), QStringLiteral("size")};
    s.fontSize = 10;
    EXPECT_EQ(SheetHeaderHeight(s), 38);
    EXPECT_EQ(SheetSize(s), QSize(130, 108));
}

TEST(ContactSheet, FramesFillTheirCellsRowByRow)
{
    SheetSettings s;
    s.columns = 2;
    s.rows = 2;
    s.frame = {20, 10};
    s.edgeWidth = 4;
    s.backColor = 0x00FF00; // green as 0x00BBGGRR
    const QList<QImage> frames {
        solid(Qt::red), solid(Qt::blue), QImage(), solid(Qt::white), solid(Qt::black)};
    const QImage sheet = DrawContactSheet(frames, s);
    ASSERT_EQ(sheet.size(), QSize(44, 24));
    EXPECT_EQ(sheet.pixel(0, 0), qRgb(0, 255, 0)); // the margin
    EXPECT_EQ(sheet.pixel(2 + 10, 2 + 5), qRgb(255, 0, 0));
    EXPECT_EQ(sheet.pixel(22 + 10, 2 + 5), qRgb(0, 0, 255));
    EXPECT_EQ(sheet.pixel(2 + 10, 12 + 5), qRgb(0, 255, 0)); // a missing frame leaves its cell
    EXPECT_EQ(sheet.pixel(22 + 10, 12 + 5), qRgb(255, 255, 255));
    EXPECT_EQ(sheet.pixel(43, 23), qRgb(0, 255, 0)); // the fifth frame has no cell
}

TEST(ContactSheet, BackStylesAndShiftedColours)
{
    EXPECT_EQ(ShiftColor(0x10F0FF, 48), 0x40FFFF);
    EXPECT_EQ(ShiftColor(0x102030, -40), 0x000008);
    SheetSettings s;
    s.columns = 1;
    s.rows = 1;
    s.frame = {10, 10};
    s.edgeWidth = 40;
    s.backColor = 0x202020;
    const auto corners = [&](int style) {
        s.backStyle = style;
        const QImage sheet = DrawContactSheet({}, s);
        return std::make_tuple(sheet.pixel(0, 0), sheet.pixel(49, 0), sheet.pixel(0, 49));
    };
    const auto [flatA, flatB, flatC] = corners(3);
    EXPECT_TRUE(flatA == flatB && flatA == flatC);
    const auto [downA, downB, downC] = corners(1);
    EXPECT_EQ(downA, downB);
    EXPECT_LT(qRed(downA), qRed(downC));
    const auto [acrossA, acrossB, acrossC] = corners(2);
    EXPECT_EQ(acrossA, acrossC);
    EXPECT_LT(qRed(acrossA), qRed(acrossB));
}

TEST(ContactSheet, TimesInkTheLowerRightOfTheirCellsAndTheHeaderItsBand)
{
    SheetSettings s;
    s.columns = 2;
    s.rows = 1;
    s.frame = {120, 60};
    s.fontSize = 14;
    s.foreColor = 0x0000FF; // red
    s.header = {QStringLiteral("clip.mp4")};
    const QList<QImage> frames {solid(Qt::black), solid(Qt::black)};
    const auto redIn = [](const QImage &sheet, QRect box) {
        int count = 0;
        for (int y = box.top(); y <= box.bottom(); ++y)
            for (int x = box.left(); x <= box.right(); ++x)
                count += qRed(sheet.pixel(x, y)) > 200 && qGreen(sheet.pixel(x, y)) < 80;
        return count;
    };
    const int top = SheetHeaderHeight(s);
    const QImage plain = DrawContactSheet(frames, s);
    s.frameTimes = {QStringLiteral("00:00:01"), QStringLiteral("00:00:02")};
    const QImage timed = DrawContactSheet(frames, s);
    ASSERT_EQ(timed.size(), QSize(240, 60 + top));
    EXPECT_GT(redIn(plain, QRect(0, 0, 240, top)), 0); // the header
    for (int cell = 0; cell < 2; ++cell) {
        const QRect lowerRight(cell * 120 + 60, top + 30, 60, 30);
        const QRect upperLeft(cell * 120, top, 60, 30);
        EXPECT_EQ(redIn(plain, lowerRight), 0) << cell;
        EXPECT_GT(redIn(timed, lowerRight), 0) << cell;
        EXPECT_EQ(redIn(timed, upperLeft), 0) << cell;
    }
}

TEST(ContactSheet, TimePointsAvoidBothEnds)
{
    EXPECT_EQ(SheetTimePoints(10, 4), (QList<double> {2, 4, 6, 8}));
    EXPECT_EQ(SheetTimePoints(9, 1), (QList<double> {4.5}));
    EXPECT_EQ(SheetTimePoints(-1, 2), (QList<double> {0, 0}));
}

} // namespace
} // namespace qb::imaging
