// The helper methods of the multi-mode control's public surface: the menu, the picture helpers,
// window transparency and the shadow on the container.
#include "button_test_support.h"

#include <QGraphicsDropShadowEffect>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

using testing::TestButton;

TEST(ButtonMethods, PopupMenuBuildsTheItemsAndReturnsTheChosenIndex)
{
    TestButton b;
    b.resize(100, 20);
    b.popupChoice = u"粘贴"_s;
    const int chosen = b.PopupMenu(u"复制|粘贴|-|删除|全选"_s, 1, u"0"_s, u"3"_s, u"4"_s, 10, 5, true);
    EXPECT_EQ(chosen, 1);
    EXPECT_EQ(b.popupItems,
        (QStringList {u"复制[x]"_s, u"粘贴[default]"_s, u"-"_s, u"删除[off]"_s, u"全选[off]"_s}));
    EXPECT_EQ(b.popupAt, b.mapToGlobal(QPoint(10, 5)));
    // Screen coordinates, and nothing chosen.
    b.popupChoice.clear();
    b.popupItems.clear();
    EXPECT_EQ(b.PopupMenu(u"a|b"_s, -1, QString(), QString(), QString(), 300, 200, false), -1);
    EXPECT_EQ(b.popupAt, QPoint(300, 200));
    EXPECT_EQ(b.popupItems, (QStringList {u"a"_s, u"b"_s}));
}

TEST(ButtonMethods, PaintImageMasksFadesAndCastsAShadow)
{
    QImage source(4, 4, QImage::Format_RGB32);
    source.fill(QColor(0, 0, 255));
    source.setPixelColor(1, 1, QColor(0, 255, 0));
    QImage target(20, 20, QImage::Format_RGB32);
    target.fill(Qt::white);
    TestButton b;
    b.PaintImage(source, &target, 2, 2, 0, 0, 255, 0x00FF00, 0x000000, 255, 10, 10);
    EXPECT_EQ(target.pixelColor(2, 2), QColor(0, 0, 255));
    EXPECT_EQ(target.pixelColor(3, 3), QColor(Qt::white)); // the mask colour let the back through
    EXPECT_EQ(target.pixelColor(12, 12), QColor(Qt::black)); // the shadow, moved by 10, 10
    EXPECT_EQ(target.pixelColor(13, 13), QColor(Qt::white)); // the shadow has the masked hole too
    EXPECT_EQ(target.pixelColor(8, 8), QColor(Qt::white));
    // Half the opacity over white, scaled into a larger rectangle.
    target.fill(Qt::white);
    b.PaintImage(source, &target, 0, 0, 8, 8, 128);
    const QColor half = target.pixelColor(6, 6);
    EXPECT_NEAR(half.red(), 127, 2);
    EXPECT_EQ(half.blue(), 255);
}

TEST(ButtonMethods, DrawCircleDIBPaintsASoftDisc)
{
    QImage target(41, 41, QImage::Format_RGB32);
    target.fill(Qt::white);
    TestButton b;
    b.DrawCircleDIB(&target, QImage(), 0, 0, 41, 41, 255, 0x0000FF);
    const QColor centre = target.pixelColor(20, 20);
    EXPECT_GE(centre.red(), 250);
    EXPECT_LE(centre.green(), 10);
    EXPECT_EQ(target.pixelColor(0, 0), QColor(Qt::white));
    const QColor middle = target.pixelColor(30, 20);
    EXPECT_GT(middle.green(), centre.green()); // fading out towards the edge
}

TEST(ButtonMethods, PicturesLayeredWindowsAndTheShadow)
{
    QWidget window;
    window.resize(60, 40);
    TestButton b(&window);
    b.setGeometry(0, 0, 60, 20);
    EXPECT_EQ(b.hDCToPicture(&window, 5, 5, 10, 8).size(), QSize(10, 8));
    EXPECT_TRUE(b.hDCToPicture(nullptr, 0, 0, 1, 1).isNull());

    EXPECT_FALSE(b.IsLayeredWindow(&b));
    b.SetLayeredWindow(&b, true, 128);
    EXPECT_TRUE(b.IsLayeredWindow(&window));
    EXPECT_NEAR(window.windowOpacity(), 128 / 255.0, 0.01);
    b.SetLayeredWindow(&window, false, 128);
    EXPECT_FALSE(b.IsLayeredWindow(&b));
    EXPECT_EQ(window.windowOpacity(), 1.0);

    b.DrawShadowToContainer(8, 0x000080, 200, 255);
    const auto *shadow = qobject_cast<QGraphicsDropShadowEffect *>(b.graphicsEffect());
    ASSERT_NE(shadow, nullptr);
    EXPECT_EQ(shadow->blurRadius(), 8);
    EXPECT_EQ(shadow->color(), QColor(128, 0, 0, 200));
    b.DrawShadowToContainer(0, 0, 0, 0);
    EXPECT_EQ(b.graphicsEffect(), nullptr);
    EXPECT_FALSE(b.ShellOpen()); // no caption, nothing to open
}

} // namespace
} // namespace qb::controls
