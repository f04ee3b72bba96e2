// The thumbnail cell as it is painted: its geometry and colours, the picture drawn from its own
// corner, "Nothing" for an empty picture, the label cut to its file name and elided; and, through
// the control, which picture a row shows after inserts and removals.
#include "controls/ctl_list_view.h"
#include "controls/list_view_delegates.h"

#include <QApplication>
#include <QListView>
#include <QPainter>
#include <QStringListModel>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

TEST(ListViewPaint, CellGeometryFromTheIconRectangle)
{
    struct Case
    {
        QRect icon;
        int w, h, label;
        QRect frame, box, labelRect, text;
    };
    const std::vector<Case> cases = {
        {QRect(10, 20, 98, 112), 80, 80, 13, QRect(18, 24, 88, 88), QRect(22, 28, 80, 80),
            QRect(18, 114, 88, 17), QRect(20, 114, 84, 17)},
        {QRect(0, 0, 50, 64), 32, 32, 0, QRect(8, 4, 40, 40), QRect(12, 8, 32, 32), QRect(8, 46, 40, 4),
            QRect(10, 46, 36, 4)},
        {QRect(-5, 7, 1, 1), 125, 40, 13, QRect(3, 11, 133, 48), QRect(7, 15, 125, 40), QRect(3, 61, 133, 17),
            QRect(5, 61, 129, 17)},
    };
    for (const Case &c : cases) {
        const ThumbnailGeometry g = ThumbnailLayout(c.icon, c.w, c.h, c.label);
        EXPECT_EQ(g.frame, c.frame);
        EXPECT_EQ(g.box, c.box);
        EXPECT_EQ(g.label, c.labelRect);
        EXPECT_EQ(g.text, c.text);
    }
}

class FakeSource : public ThumbnailSource
{
public:
    QSize thumbnailSize() const override { return {40, 40}; }
    QSize cellSize() const override { return {58, 72 + labelHeightSet}; }
    void setLabelHeight(int height) override { labelHeightSet = height; }
    int labelHeight() const override { return labelHeightSet; }
    const QPixmap *picture(int, bool &missing) const override
    {
        missing = !slot.has_value();
        return missing ? nullptr : &*slot;
    }
    QString labelText(int) const override { return label; }
    bool rowSelected(int) const override { return selected; }

    int labelHeightSet = 0;
    std::optional<QPixmap> slot = QPixmap();
    QString label = u"ab"_s;
    bool selected = false;
};

class ListViewThumbnailPaint : public ::testing::Test
{
protected:
    ListViewThumbnailPaint()
        : model(QStringList {u"row"_s})
        , delegate(source)
    {
        palette.setColor(QPalette::Base, Qt::white);
        palette.setColor(QPalette::Text, Qt::black);
        palette.setColor(QPalette::Button, QColor(200, 200, 200));
        palette.setColor(QPalette::ButtonText, Qt::red);
        palette.setColor(QPalette::Highlight, Qt::blue);
        palette.setColor(QPalette::HighlightedText, Qt::yellow);
    }

    QImage paint(bool focused)
    {
        QImage image(cell, QImage::Format_ARGB32);
        image.fill(Qt::magenta);
        QStyleOptionViewItem option;
        option.rect = QRect(QPoint(0, 0), cell);
        option.palette = palette;
        option.font = QApplication::font();
        option.fontMetrics = QFontMetrics(option.font);
        option.state = QStyle::State_Enabled | (focused ? QStyle::State_HasFocus : QStyle::State_None);
        QPainter painter(&image);
        delegate.paint(&painter, option, model.index(0, 0));
        return image;
    }

    static int distance(QRgb a, const QColor &b)
    {
        return std::abs(qRed(a) - b.red()) + std::abs(qGreen(a) - b.green()) + std::abs(qBlue(a) - b.blue());
    }

    // Pixels of a rectangle nearer to one colour than to another.
    static int nearer(const QImage &image, const QRect &rect, const QColor &to, const QColor &than)
    {
        int count = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                if (distance(pixel, to) < distance(pixel, than))
                    ++count;
            }
        }
        return count;
    }

    // The cell's parts for 40 by 40 thumbnails and a label 13 high.
    const QRect frame {8, 4, 48, 48};
    const QRect box {12, 8, 40, 40};
    const QRect label {8, 54, 48, 17};
    const QRect text {10, 54, 44, 17};
    const QColor grey {200, 200, 200};
    QSize cell {58, 120};
    QStringListModel model;
    FakeSource source;
    ThumbnailDelegate delegate;
    QPalette palette;
};

TEST_F(ListViewThumbnailPaint, ThePainterSetsTheLabelHeight)
{
    paint(false);
    EXPECT_EQ(source.labelHeight(), 13);
}

TEST_F(ListViewThumbnailPaint, APictureIsDrawnAtItsOwnSizeFromItsCorner)
{
    QPixmap picture(60, 60);
    picture.fill(Qt::darkGreen);
    QPainter corner(&picture);
    corner.fillRect(0, 0, 40, 40, Qt::cyan); // only this part fits the 40 by 40 box
    corner.end();
    source.slot = picture;
    const QImage image = paint(false);
    EXPECT_EQ(nearer(image, box, Qt::cyan, Qt::darkGreen), box.width() * box.height());
    EXPECT_EQ(QColor(image.pixel(frame.left() + 2, frame.top() + 2)), grey);
}

TEST_F(ListViewThumbnailPaint, SelectionAndFocusChooseTheColours)
{
    struct Case
    {
        bool selected, focused;
        QColor frame, nothing, label, labelText;
    };
    const Case cases[] = {
        {false, false, grey, Qt::red, Qt::white, Qt::black},
        {false, true, grey, Qt::red, Qt::white, Qt::black},
        {true, false, grey, Qt::red, grey, Qt::red},
        {true, true, Qt::blue, Qt::yellow, Qt::blue, Qt::yellow},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(::testing::Message() << "selected " << c.selected << " focused " << c.focused);
        source.selected = c.selected;
        source.slot = QPixmap();
        const QImage image = paint(c.focused);
        EXPECT_EQ(QColor(image.pixel(frame.left() + 2, frame.top() + 2)), c.frame);
        // An empty picture shows "Nothing" over the frame's colour.
        EXPECT_GT(nearer(image, box, c.nothing, c.frame), 5);
        EXPECT_GT(nearer(image, box, c.frame, c.nothing), box.width() * box.height() / 2);
        // Inside the label, clear of the centred text; the style's focus frame may tint it a little.
        EXPECT_LT(distance(image.pixel(label.left() + 6, label.center().y()), c.label), 48);
        EXPECT_GT(nearer(image, text, c.labelText, c.label), 3);
    }
}

TEST_F(ListViewThumbnailPaint, ARowWithoutAPictureSlotDrawsNoWord)
{
    source.slot.reset();
    const QImage image = paint(false);
    EXPECT_EQ(nearer(image, box, grey, Qt::red), box.width() * box.height());
}

TEST_F(ListViewThumbnailPaint, TheLabelShowsTheNameAfterTheLastBackslash)
{
    source.label = u"ab"_s;
    const QImage plain = paint(false);
    source.label = u"some\\folder\\ab"_s;
    const QImage withFolder = paint(false);
    EXPECT_EQ(plain.copy(label), withFolder.copy(label));
    source.label = u"zz"_s;
    EXPECT_NE(paint(false).copy(label), plain.copy(label));
}

TEST_F(ListViewThumbnailPaint, ALongLabelIsElidedWithinTheCell)
{
    source.label = QString(200, u'W');
    const QImage image = paint(false);
    // Nothing of the text left or right of the label, though the painter doesn't clip.
    const QRect left(0, label.top(), label.left(), label.height());
    const QRect right(label.right() + 1, label.top(), cell.width() - label.right() - 1, label.height());
    EXPECT_EQ(nearer(image, left, Qt::magenta, Qt::black), left.width() * left.height());
    EXPECT_EQ(nearer(image, right, Qt::magenta, Qt::black), right.width() * right.height());
    EXPECT_GT(nearer(image, text, Qt::black, Qt::white), 10);
}

class OpenReportDelegate : public ReportDelegate
{
public:
    using ReportDelegate::initStyleOption;
    using ReportDelegate::ReportDelegate;
};

TEST(ListViewPaint, AHiddenSelectionShowsOnlyWhileTheListHasTheFocus)
{
    QStringListModel model(QStringList {u"row"_s});
    QWidget unfocused;
    bool hide = true;
    OpenReportDelegate delegate([&] { return hide; });
    const auto selectedAfter = [&] {
        QStyleOptionViewItem option;
        option.widget = &unfocused;
        option.state = QStyle::State_Selected;
        delegate.initStyleOption(&option, model.index(0, 0));
        return bool(option.state & QStyle::State_Selected);
    };
    EXPECT_FALSE(selectedAfter());
    hide = false;
    EXPECT_TRUE(selectedAfter());
}

// Through the control: the picture a row shows.
class ListViewPictures : public ::testing::Test
{
protected:
    void SetUp() override
    {
        list.resize(500, 300);
        ASSERT_TRUE(list.Initialize(QString(), u"|"_s, 0));
        list.SetThumbnailSize(40, 40);
        list.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    }

    static QPixmap solid(const QColor &colour)
    {
        QPixmap picture(40, 40);
        picture.fill(colour);
        return picture;
    }

    // The colour in the middle of a row's picture box.
    QColor shown(int row)
    {
        QApplication::processEvents();
        auto *view = list.hwnd()->findChild<QListView *>();
        const QRect cell = view->visualRect(view->model()->index(row, 0));
        const QImage image = view->viewport()->grab().toImage();
        return QColor(image.pixel(cell.topLeft() + QPoint(32, 28))); // inside the box at 12, 8
    }

    ctlListView list;
};

TEST_F(ListViewPictures, ARowInsertedFirstShowsThePictureOfTheLastPlace)
{
    ASSERT_TRUE(list.AddItem(u"a"_s, {}, solid(Qt::red)));
    ASSERT_TRUE(list.AddItem(u"b"_s, {}, solid(Qt::blue)));
    ASSERT_TRUE(list.AddItem(u"c"_s, {}, solid(Qt::green), 0));
    EXPECT_EQ(list.ItemText(0, 0), u"c"_s);
    EXPECT_EQ(shown(0), QColor(Qt::red));
    EXPECT_EQ(shown(1), QColor(Qt::blue));
    EXPECT_EQ(shown(2), QColor(Qt::green));
}

TEST_F(ListViewPictures, AFailedAddStillAppendsItsPictureAndARemovalTakesThePictureOfItsPlace)
{
    EXPECT_FALSE(list.AddItem(u"never"_s, {}, solid(Qt::yellow), -3));
    ASSERT_TRUE(list.AddItem(u"a"_s, {}, solid(Qt::red)));
    ASSERT_TRUE(list.AddItem(u"b"_s, {}, solid(Qt::blue)));
    EXPECT_EQ(shown(0), QColor(Qt::yellow));
    EXPECT_EQ(shown(1), QColor(Qt::red));
    ASSERT_TRUE(list.ItemRemove(0));
    EXPECT_EQ(list.ItemText(0, 0), u"b"_s);
    EXPECT_EQ(shown(0), QColor(Qt::red));
    EXPECT_TRUE(list.Clear());
    ASSERT_TRUE(list.AddItem(u"z"_s, {}, solid(Qt::cyan)));
    EXPECT_EQ(shown(0), QColor(Qt::cyan));
}

} // namespace
} // namespace qb::controls
