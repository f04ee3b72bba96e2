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

TEST(ListViewPaint, CellColoursBySelectionAndFocus)
{
    struct Case
    {
        bool selected, focused;
        QPalette::ColorRole frame, empty, labelFill, labelText;
    };
    const std::vector<Case> cases = {
        {false, false, QPalette::Button, QPalette::ButtonText, QPalette::Base, QPalette::Text},
        {false, true, QPalette::Button, QPalette::ButtonText, QPalette::Base, QPalette::Text},
        {true, false, QPalette::Button, QPalette::ButtonText, QPalette::Button, QPalette::ButtonText},
        {true, true, QPalette::Highlight, QPalette::HighlightedText, QPalette::Highlight,
            QPalette::HighlightedText},
    };
    for (const Case &c : cases) {
        const ThumbnailLook look = ThumbnailLookFor(c.selected, c.focused);
        EXPECT_EQ(look.frameFill, c.frame) << c.selected << c.focused;
        EXPECT_EQ(look.emptyText, c.empty) << c.selected << c.focused;
        EXPECT_EQ(look.labelFill, c.labelFill) << c.selected << c.focused;
        EXPECT_EQ(look.labelText, c.labelText) << c.selected << c.focused;
        EXPECT_EQ(look.focusRect, c.focused);
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
    QString label = QStringLiteral("ab");
    bool selected = false;
};

class ListViewThumbnailPaint : public ::testing::Test
{
protected:
    ListViewThumbnailPaint()
        : model(QStringList {QStringLiteral("row")})
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

    ThumbnailGeometry geometry() const { return ThumbnailLayout(QRect(QPoint(0, 0), cell), 40, 40, 13); }

    // Pixels of a rectangle nearer to one colour than to another.
    static int nearer(const QImage &image, const QRect &rect, const QColor &to, const QColor &than)
    {
        const auto distance = [](QRgb a, const QColor &b) {
            return std::abs(qRed(a) - b.red()) + std::abs(qGreen(a) - b.green())
                + std::abs(qBlue(a) - b.blue());
        };
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
    const QRect box = geometry().box;
    EXPECT_EQ(nearer(image, box, Qt::cyan, Qt::darkGreen), box.width() * box.height());
    EXPECT_EQ(QColor(image.pixel(geometry().frame.left() + 2, geometry().frame.top() + 2)),
        palette.color(QPalette::Button));
}

TEST_F(ListViewThumbnailPaint, AnEmptyPictureShowsNothingInButtonText)
{
    source.slot = QPixmap();
    const QImage image = paint(false);
    const QRect box = geometry().box;
    EXPECT_GT(nearer(image, box, Qt::red, QColor(200, 200, 200)), 5); // the word
    EXPECT_GT(nearer(image, box, QColor(200, 200, 200), Qt::red), box.width() * box.height() / 2);
}

TEST_F(ListViewThumbnailPaint, ARowWithoutAPictureSlotDrawsNoWord)
{
    source.slot.reset();
    const QImage image = paint(false);
    const QRect box = geometry().box;
    EXPECT_EQ(nearer(image, box, QColor(200, 200, 200), Qt::red), box.width() * box.height());
}

TEST_F(ListViewThumbnailPaint, SelectedAndFocusedUsesTheHighlight)
{
    source.selected = true;
    source.slot = QPixmap();
    const QImage image = paint(true);
    const ThumbnailGeometry g = geometry();
    EXPECT_EQ(QColor(image.pixel(g.frame.left() + 2, g.frame.top() + 2)), QColor(Qt::blue));
    // Inside the label, clear of the centred text; the style's focus frame may tint it a little.
    const QColor label = image.pixel(g.label.left() + 6, g.label.center().y());
    EXPECT_LT(std::abs(label.red()) + std::abs(label.green()) + std::abs(label.blue() - 255), 48);
    EXPECT_GT(nearer(image, g.box, Qt::yellow, Qt::blue), 5); // "Nothing" in highlighted text
}

TEST_F(ListViewThumbnailPaint, SelectedWithoutFocusUsesTheButtonFace)
{
    source.selected = true;
    const QImage image = paint(false);
    const ThumbnailGeometry g = geometry();
    EXPECT_EQ(QColor(image.pixel(g.label.left() + 3, g.label.center().y())), QColor(200, 200, 200));
    EXPECT_EQ(QColor(image.pixel(g.frame.left() + 2, g.frame.top() + 2)), QColor(200, 200, 200));
}

TEST_F(ListViewThumbnailPaint, AnUnselectedLabelHasTheWindowBackground)
{
    const QImage image = paint(false);
    const ThumbnailGeometry g = geometry();
    EXPECT_EQ(QColor(image.pixel(g.label.left() + 3, g.label.center().y())), QColor(Qt::white));
    EXPECT_GT(nearer(image, g.label, Qt::black, Qt::white), 3); // the label text
}

TEST_F(ListViewThumbnailPaint, TheLabelShowsTheNameAfterTheLastBackslash)
{
    source.label = QStringLiteral("ab");
    const QImage plain = paint(false);
    source.label = QStringLiteral("some\\folder\\ab");
    const QImage withFolder = paint(false);
    const QRect label = geometry().label;
    EXPECT_EQ(plain.copy(label), withFolder.copy(label));
    source.label = QStringLiteral("zz");
    EXPECT_NE(paint(false).copy(label), plain.copy(label));
}

TEST_F(ListViewThumbnailPaint, ALongLabelIsElidedWithinTheCell)
{
    source.label = QString(200, u'W');
    const QImage image = paint(false);
    const ThumbnailGeometry g = geometry();
    // Nothing of the text left or right of the label, though the painter doesn't clip.
    const QRect left(0, g.label.top(), g.label.left(), g.label.height());
    const QRect right(
        g.label.right() + 1, g.label.top(), cell.width() - g.label.right() - 1, g.label.height());
    EXPECT_EQ(nearer(image, left, Qt::magenta, Qt::black), left.width() * left.height());
    EXPECT_EQ(nearer(image, right, Qt::magenta, Qt::black), right.width() * right.height());
    EXPECT_GT(nearer(image, g.text, Qt::black, Qt::white), 10);
}

class OpenReportDelegate : public ReportDelegate
{
public:
    using ReportDelegate::initStyleOption;
    using ReportDelegate::ReportDelegate;
};

TEST(ListViewPaint, AHiddenSelectionShowsOnlyWhileTheListHasTheFocus)
{
    QStringListModel model(QStringList {QStringLiteral("row")});
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
        ASSERT_TRUE(list.Initialize(QString(), QStringLiteral("|"), 0));
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
        return QColor(image.pixel(ThumbnailLayout(cell, 40, 40, 13).box.center()));
    }

    ctlListView list;
};

TEST_F(ListViewPictures, ARowInsertedFirstShowsThePictureOfTheLastPlace)
{
    ASSERT_TRUE(list.AddItem(QStringLiteral("a"), {}, solid(Qt::red)));
    ASSERT_TRUE(list.AddItem(QStringLiteral("b"), {}, solid(Qt::blue)));
    ASSERT_TRUE(list.AddItem(QStringLiteral("c"), {}, solid(Qt::green), 0));
    EXPECT_EQ(list.ItemText(0, 0), QStringLiteral("c"));
    EXPECT_EQ(shown(0), QColor(Qt::red));
    EXPECT_EQ(shown(1), QColor(Qt::blue));
    EXPECT_EQ(shown(2), QColor(Qt::green));
}

TEST_F(ListViewPictures, AFailedAddStillAppendsItsPictureAndARemovalTakesThePictureOfItsPlace)
{
    EXPECT_FALSE(list.AddItem(QStringLiteral("never"), {}, solid(Qt::yellow), -3));
    ASSERT_TRUE(list.AddItem(QStringLiteral("a"), {}, solid(Qt::red)));
    ASSERT_TRUE(list.AddItem(QStringLiteral("b"), {}, solid(Qt::blue)));
    EXPECT_EQ(shown(0), QColor(Qt::yellow));
    EXPECT_EQ(shown(1), QColor(Qt::red));
    ASSERT_TRUE(list.ItemRemove(0));
    EXPECT_EQ(list.ItemText(0, 0), QStringLiteral("b"));
    EXPECT_EQ(shown(0), QColor(Qt::red));
    EXPECT_TRUE(list.Clear());
    ASSERT_TRUE(list.AddItem(QStringLiteral("z"), {}, solid(Qt::cyan)));
    EXPECT_EQ(shown(0), QColor(Qt::cyan));
}

} // namespace
} // namespace qb::controls
