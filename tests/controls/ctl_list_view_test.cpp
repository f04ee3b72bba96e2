// ctlListView as a host uses it: the inert control before Initialize, rows in and out, the cell
// and type rules, ItemIndex, the thumbnail table, searching, selection and the seven events from
// real mouse, key and drop gestures.
#include "controls/ctl_list_view.h"
#include "controls/list_view_model.h"
#include "controls/list_view_notify.h"

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QListView>
#include <QMimeData>
#include <QMimeDatabase>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>
#include <QToolTip>
#include <QUrl>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

class ListViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        list = std::make_unique<ctlListView>();
        list->resize(600, 400);
    }

    // A report list with columns, shown so that gestures reach it.
    void startReport(const QString &mask = {}, int columns = 4)
    {
        ASSERT_TRUE(list->Initialize(mask, u"|"_s, 1));
        for (int c = 0; c < columns; ++c)
            ASSERT_TRUE(list->AddColumn(c, u"C%1"_s.arg(c), 100));
        show();
    }

    void show()
    {
        list->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(list.get()));
    }

    void addRows(const QStringList &texts)
    {
        for (const QString &text : texts)
            ASSERT_TRUE(list->AddItem(text));
    }

    QTableView *report() const { return list->hwnd()->findChild<QTableView *>(); }
    QListView *thumbnails() const { return list->hwnd()->findChild<QListView *>(); }
    QAbstractItemModel *model() const { return report()->model(); }

    // The centre of a row's first cell in the report's viewport.
    QPoint reportCell(int row, int column = 0) const
    {
        return report()->visualRect(model()->index(row, column)).center();
    }

    QStringList firstCells() const
    {
        QStringList cells;
        for (int row = 0; row < list->Count(); ++row)
            cells << list->ItemText(row, 0);
        return cells;
    }

    std::unique_ptr<ctlListView> list;
};

TEST_F(ListViewTest, BeforeInitializeEveryWindowMemberIsInert)
{
    EXPECT_EQ(list->hwnd(), nullptr);
    EXPECT_FALSE(list->AddItem(u"a|b"_s, u"/x/a.txt"_s));
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(list->ItemText(0, 0), QString());
    EXPECT_FALSE(list->Clear());
    EXPECT_FALSE(list->ItemRemove(0));
    EXPECT_FALSE(list->ItemEnsureVisible(0));
    EXPECT_FALSE(list->AddColumn(0, u"x"_s, 10));
    // Integer answers are 0 without a list, not -1.
    EXPECT_EQ(list->ItemFindText(u"a"_s, -1, kFindString), 0);
    EXPECT_EQ(list->ItemFindState(-1, kNextAll), 0);
    EXPECT_EQ(list->ItemHitTest(1, 1), 0);
    EXPECT_EQ(list->ColumnWidth(0), 0);
    EXPECT_EQ(list->ColumnIcon(0), 0);
    EXPECT_FALSE(list->ItemSelected(0));
    list->setBorderStyle(1);
    EXPECT_EQ(list->BorderStyle(), 0);
    // These store nothing without a list.
    list->setHideSelection(true);
    list->setMultiSelect(true);
    list->setViewMode(1);
    EXPECT_FALSE(list->HideSelection());
    EXPECT_FALSE(list->MultiSelect());
    EXPECT_EQ(list->ViewMode(), 0);
    // Defaults of a new control.
    EXPECT_EQ(list->ItemIndex(), -1);
    EXPECT_EQ(list->ThumbnailWidth(), 80);
    EXPECT_EQ(list->ThumbnailHeight(), 80);
    // What doesn't touch the window works without one.
    list->SetThumbnailSize(10, 500);
    EXPECT_EQ(list->ThumbnailWidth(), 32);
    EXPECT_EQ(list->ThumbnailHeight(), 125);
    list->setItemIndex(4);
    EXPECT_EQ(list->ItemIndex(), 4);
    EXPECT_FALSE(list->ListViewSort(nullptr, 0, 1, 0));
    EXPECT_EQ(list->CompareByValue(5, 4, nullptr), 1);
}

TEST_F(ListViewTest, ASecondInitializeAnswersFalseAndBuildsNothing)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 1));
    QWidget *window = list->hwnd();
    ASSERT_NE(window, nullptr);
    const int children = int(list->findChildren<QStackedWidget *>().size());
    EXPECT_FALSE(list->Initialize(u"txt"_s, u"|"_s, 0));
    EXPECT_EQ(list->hwnd(), window);
    EXPECT_EQ(int(list->findChildren<QStackedWidget *>().size()), children);
    EXPECT_EQ(list->ViewMode(), 1);
    // The second mask was not taken: no type name for a txt file.
    ASSERT_TRUE(list->AddItem(u"a|"_s, u"/x/a.txt"_s));
    EXPECT_EQ(list->ItemText(0, 1), QString());
}

TEST_F(ListViewTest, AddItemFillsTheCellsFromTheBarJoinedText)
{
    startReport();
    ASSERT_TRUE(list->AddItem(u"name|folder\\|type|1,024|2024-05-01|/src/name"_s));
    EXPECT_EQ(list->Count(), 1);
    const QStringList expected
        = {u"name"_s, u"folder\\"_s, u"type"_s, u"1,024"_s, u"2024-05-01"_s, u"/src/name"_s};
    for (int c = 0; c < expected.size(); ++c)
        EXPECT_EQ(list->ItemText(0, c), expected[c]) << c;
    // Cells beyond the header's columns are kept and read back.
    EXPECT_EQ(list->ItemText(0, 5), u"/src/name"_s);
    EXPECT_EQ(list->ItemText(0, 6), QString());
    EXPECT_EQ(list->ItemText(2, 0), QString());
    EXPECT_EQ(list->ItemText(-1, 0), QString());
    EXPECT_EQ(list->ItemText(0, -1), QString());
    // The view shows the same text.
    EXPECT_EQ(model()->index(0, 1).data().toString(), u"folder\\"_s);
    // Without a mask no cell takes a type name.
    ASSERT_TRUE(list->AddItem(u"a.txt|"_s, u"/d/a.txt"_s));
    EXPECT_EQ(list->ItemText(1, 1), QString());
}

TEST_F(ListViewTest, AnEmptyLaterCellShowsTheTypeNameOfAMaskedExtension)
{
    startReport(u"txt|cab"_s);
    const QString typeName
        = QMimeDatabase().mimeTypeForFile(u"f.txt"_s, QMimeDatabase::MatchExtension).comment();
    ASSERT_FALSE(typeName.isEmpty());
    ASSERT_TRUE(list->AddItem(u"a.txt|"_s, u"/d/a.txt"_s));
    ASSERT_TRUE(list->AddItem(u"b.txt||x|"_s, u"/d/B.TXT"_s));
    ASSERT_TRUE(list->AddItem(u"c.doc|"_s, u"/d/c.doc"_s));
    ASSERT_TRUE(list->AddItem(u"d|"_s, QString()));
    EXPECT_EQ(list->ItemText(0, 1), typeName);
    EXPECT_EQ(list->ItemText(1, 1), typeName);
    EXPECT_EQ(list->ItemText(1, 2), u"x"_s);
    EXPECT_EQ(list->ItemText(1, 3), typeName);
    EXPECT_EQ(list->ItemText(2, 1), QString()); // not in the mask
    EXPECT_EQ(list->ItemText(3, 1), QString()); // no file
}

TEST_F(ListViewTest, RowsOfNoKnownIconShowImage3)
{
    startReport(u"txt|qqzzunknown"_s);
    struct Case
    {
        const char *file;
        bool fallback;
    };
    const std::vector<Case> cases = {
        {"/d/a.txt", false}, {"/d/A.TXT", false},
        {"/d/b.qqzzunknown", true}, // in the mask, but the desktop has no icon for it
        {"/d/c.png", true}, // not in the mask
        {"", true}, // no file
        {"/d/noext", true}, {"/d.txt/noext", true}, // the extension is what follows the last dot
    };
    for (const Case &c : cases)
        ASSERT_TRUE(list->AddItem(u"row"_s, QString::fromUtf8(c.file)));
    const int textImage = model()->index(0, 0).data(ListViewModel::ImageIndexRole).toInt();
    EXPECT_GE(textImage, ShellFileTypes::kFixedImages);
    for (int row = 0; row < int(cases.size()); ++row) {
        const int image = model()->index(row, 0).data(ListViewModel::ImageIndexRole).toInt();
        if (cases[size_t(row)].fallback)
            EXPECT_EQ(image, 3) << cases[size_t(row)].file;
        else
            EXPECT_EQ(image, textImage) << cases[size_t(row)].file;
        EXPECT_FALSE(model()->index(row, 0).data(Qt::DecorationRole).isNull()) << row;
    }
}

TEST_F(ListViewTest, InsertLocationPlacesTheRowAndItsStoredValue)
{
    startReport();
    addRows({u"a"_s, u"b"_s});
    ASSERT_TRUE(list->AddItem(u"first"_s, {}, {}, 0));
    ASSERT_TRUE(list->AddItem(u"middle"_s, {}, {}, 2));
    ASSERT_TRUE(list->AddItem(u"far"_s, {}, {}, 99)); // beyond the end: at the end
    EXPECT_EQ(firstCells(), (QStringList {u"first"_s, u"a"_s, u"middle"_s, u"b"_s, u"far"_s}));
    const auto param
        = [&](int row) { return model()->index(row, 0).data(ListViewModel::ParamRole).toLongLong(); };
    EXPECT_EQ(param(0), 0);
    EXPECT_EQ(param(1), 0);
    EXPECT_EQ(param(2), 2);
    EXPECT_EQ(param(3), 1);
    EXPECT_EQ(param(4), 4);
    // A negative place other than -1 takes no row.
    EXPECT_FALSE(list->AddItem(u"never"_s, {}, {}, -2));
    EXPECT_EQ(list->Count(), 5);
}

TEST_F(ListViewTest, HostileRowTextsGoInWhole)
{
    startReport();
    ASSERT_TRUE(list->AddItem(QString()));
    EXPECT_EQ(list->ItemText(0, 0), QString());
    const QString bars = QString(5000, u'|');
    ASSERT_TRUE(list->AddItem(bars));
    EXPECT_EQ(list->ItemText(1, 4999), QString());
    const QString longText = QString(100000, u'x');
    ASSERT_TRUE(list->AddItem(longText + u"|"_s + longText));
    EXPECT_EQ(list->ItemText(2, 0), longText); // no fixed buffer cuts it
    EXPECT_EQ(list->ItemText(2, 1), longText);
    ASSERT_TRUE(list->AddItem(u"nul"_s + QChar(u'\0') + u"tail|b"_s));
    EXPECT_EQ(list->ItemText(3, 0), u"nul"_s);
    EXPECT_EQ(list->ItemText(3, 1), u"b"_s);
    EXPECT_EQ(list->Count(), 4);
}

TEST_F(ListViewTest, ItemTextTrimsBlanksAtBothEnds)
{
    startReport();
    ASSERT_TRUE(list->AddItem(u"  padded  |   |\t tab "_s));
    EXPECT_EQ(list->ItemText(0, 0), u"padded"_s);
    EXPECT_EQ(list->ItemText(0, 1), QString());
    EXPECT_EQ(list->ItemText(0, 2), u"\t tab"_s);
    // The list itself keeps the blanks.
    EXPECT_EQ(model()->index(0, 0).data().toString(), u"  padded  "_s);
}

TEST_F(ListViewTest, ItemRemoveResetsItemIndexOnlyForThatRow)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    list->setItemIndex(2);
    EXPECT_TRUE(list->ItemRemove(0));
    EXPECT_EQ(list->ItemIndex(), 2); // left as it was, though the rows below moved up
    EXPECT_EQ(firstCells(), (QStringList {u"b"_s, u"c"_s, u"d"_s}));
    EXPECT_TRUE(list->ItemRemove(2));
    EXPECT_EQ(list->ItemIndex(), -1);
    EXPECT_EQ(firstCells(), (QStringList {u"b"_s, u"c"_s}));
    // Out of range: nothing removed, false, but an ItemIndex naming it still resets.
    list->setItemIndex(7);
    EXPECT_FALSE(list->ItemRemove(7));
    EXPECT_EQ(list->ItemIndex(), -1);
    EXPECT_FALSE(list->ItemRemove(-1));
    EXPECT_FALSE(list->ItemRemove(INT_MAX));
    EXPECT_EQ(list->Count(), 2);
}

TEST_F(ListViewTest, ClearEmptiesRowsAndResetsIndexButKeepsColumns)
{
    startReport();
    list->setColumnWidth(1, 140);
    addRows({u"a"_s, u"b"_s, u"c"_s});
    ASSERT_TRUE(list->ThumbnailInfo_SetData(0, QByteArray("x")));
    list->setItemSelected(1, true);
    ASSERT_EQ(list->ItemIndex(), 1);
    EXPECT_TRUE(list->Clear());
    EXPECT_EQ(list->Count(), 0);
    EXPECT_EQ(model()->rowCount(), 0);
    EXPECT_EQ(list->ItemIndex(), -1);
    QByteArray data("unchanged");
    EXPECT_FALSE(list->ThumbnailInfo_GetData(0, data));
    EXPECT_EQ(data, QByteArray("unchanged"));
    EXPECT_EQ(list->ColumnWidth(1), 140);
    EXPECT_TRUE(list->Clear()); // an empty list clears too
    addRows({u"z"_s});
    EXPECT_EQ(firstCells(), QStringList {u"z"_s});
}

TEST_F(ListViewTest, SortAndAHeaderClickLeaveTheRowsInPlace)
{
    startReport();
    addRows({u"b"_s, u"a"_s, u"c"_s});
    list->setItemSelected(2, true);
    QSignalSpy clicks(list.get(), &ctlListView::ItemClick);
    for (int column = -1; column < 5; ++column)
        EXPECT_FALSE(list->Sort(column));
    QHeaderView *header = report()->horizontalHeader();
    for (int column = 0; column < 3; ++column)
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
            QPoint(header->sectionViewportPosition(column) + 5, header->height() / 2));
    EXPECT_EQ(firstCells(), (QStringList {u"b"_s, u"a"_s, u"c"_s}));
    EXPECT_TRUE(list->ItemSelected(2));
    EXPECT_FALSE(list->ItemSelected(0));
    EXPECT_EQ(clicks.count(), 0);
    EXPECT_EQ(list->ItemIndex(), 2);
}

TEST_F(ListViewTest, ColumnIconKeepsItsNumberWhenHidden)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 0));
    ASSERT_TRUE(list->AddColumn(0, u"a"_s, 50));
    ASSERT_TRUE(list->AddColumn(1, u"b"_s, 50));
    EXPECT_EQ(list->ColumnIcon(0), 0);
    list->setColumnIcon(0, 5);
    list->setColumnIcon(1, 2);
    EXPECT_EQ(list->ColumnIcon(0), 5);
    list->setColumnIcon(0, -1); // hides the image, keeps the number
    EXPECT_EQ(list->ColumnIcon(0), 5);
    EXPECT_TRUE(list->Clear()); // writes -1 to the first four columns
    EXPECT_EQ(list->ColumnIcon(1), 2);
    list->setColumnIcon(7, 3); // no such column
    EXPECT_EQ(list->ColumnIcon(7), 0);
    list->setColumnIcon(-1, 3);
    EXPECT_EQ(list->ColumnIcon(-1), 0);
}

TEST_F(ListViewTest, ColumnsInsertAtTheirPlaceWithWidthAndAlignment)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 1));
    EXPECT_TRUE(list->AddColumn(0, u"name"_s, 120));
    EXPECT_TRUE(list->AddColumn(9, u"size"_s, 80, 1)); // beyond the end: at the end
    EXPECT_FALSE(list->AddColumn(-1, u"bad"_s, 80));
    EXPECT_EQ(model()->columnCount(), 2);
    EXPECT_EQ(model()->headerData(1, Qt::Horizontal).toString(), u"size"_s);
    EXPECT_EQ(list->ColumnWidth(0), 120);
    EXPECT_EQ(list->ColumnWidth(1), 80);
    EXPECT_EQ(list->ColumnWidth(2), 0);
    EXPECT_EQ(model()->headerData(1, Qt::Horizontal, Qt::TextAlignmentRole).value<Qt::Alignment>()
            & Qt::AlignHorizontal_Mask,
        Qt::AlignRight);
    list->setColumnWidth(0, 33);
    EXPECT_EQ(list->ColumnWidth(0), 33);
    list->setColumnWidth(0, INT_MAX);
    EXPECT_LE(list->ColumnWidth(0), 32767);
    EXPECT_TRUE(list->AddColumn(1, u"mid"_s, 10, 2));
    EXPECT_EQ(model()->headerData(1, Qt::Horizontal).toString(), u"mid"_s);
    EXPECT_EQ(list->ColumnWidth(2), 80);
}

TEST_F(ListViewTest, BorderStyleTakesOnlyZeroAndOne)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 1));
    EXPECT_EQ(list->BorderStyle(), 0);
    const std::vector<std::pair<int, int>> steps
        = {{1, 1}, {2, 1}, {-1, 1}, {0, 0}, {2, 0}, {INT_MAX, 0}, {1, 1}};
    for (const auto &[value, expected] : steps) {
        list->setBorderStyle(value);
        EXPECT_EQ(list->BorderStyle(), expected) << value;
    }
    EXPECT_NE(qobject_cast<QFrame *>(list->hwnd())->frameShape(), QFrame::NoFrame);
}

TEST_F(ListViewTest, ThumbnailSizeShapesTheCells)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 0));
    // A frame of 4 around the picture, a margin of 5 beside the frame, 24 and the label below.
    struct Case
    {
        int w, h;
        QSize icon;
        int gridWidth, gridHeightAtLeast;
    };
    const Case cases[] = {{10, 500, {40, 133}, 50, 157}, {64, 64, {72, 72}, 82, 96}};
    for (const Case &c : cases) {
        list->SetThumbnailSize(c.w, c.h);
        EXPECT_EQ(thumbnails()->iconSize(), c.icon);
        EXPECT_EQ(thumbnails()->gridSize().width(), c.gridWidth);
        EXPECT_GE(thumbnails()->gridSize().height(), c.gridHeightAtLeast);
    }
}

TEST_F(ListViewTest, ThumbnailBytesCoverTheRowsBeforeTheLatestAdd)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 0));
    QByteArray out("untouched");
    EXPECT_FALSE(list->ThumbnailInfo_SetTBIH(0, QByteArray("h")));
    addRows({u"a"_s}); // nothing to make at 0 rows
    EXPECT_FALSE(list->ThumbnailInfo_SetTBIH(0, QByteArray("h")));
    addRows({u"b"_s}); // made for row 0
    EXPECT_TRUE(list->ThumbnailInfo_SetTBIH(0, QByteArray("head")));
    EXPECT_TRUE(list->ThumbnailInfo_SetData(0, QByteArray("pixels")));
    EXPECT_FALSE(list->ThumbnailInfo_SetTBIH(1, QByteArray("h")));
    EXPECT_FALSE(list->ThumbnailInfo_SetData(-1, QByteArray("h")));
    EXPECT_TRUE(list->ThumbnailInfo_GetTBIH(0, out));
    EXPECT_EQ(out, QByteArray("head"));
    EXPECT_TRUE(list->ThumbnailInfo_GetData(0, out));
    EXPECT_EQ(out, QByteArray("pixels"));
    out = "untouched";
    EXPECT_FALSE(list->ThumbnailInfo_GetData(1, out));
    EXPECT_FALSE(list->ThumbnailInfo_GetTBIH(INT_MAX, out));
    EXPECT_EQ(out, QByteArray("untouched"));
    addRows({u"c"_s}); // made anew: what was stored is gone
    EXPECT_TRUE(list->ThumbnailInfo_GetData(0, out));
    EXPECT_EQ(out, QByteArray());
    EXPECT_TRUE(list->ThumbnailInfo_SetData(1, QByteArray("ok")));
    // Removing a row leaves the table alone.
    EXPECT_TRUE(list->ItemRemove(0));
    EXPECT_TRUE(list->ThumbnailInfo_GetData(1, out));
    EXPECT_EQ(out, QByteArray("ok"));
    // An add to a list emptied by removals makes no table: the old one stays as it was.
    ASSERT_TRUE(list->ItemRemove(0));
    ASSERT_TRUE(list->ItemRemove(0));
    addRows({u"d"_s});
    EXPECT_TRUE(list->ThumbnailInfo_GetData(1, out));
    EXPECT_EQ(out, QByteArray("ok"));
}

TEST_F(ListViewTest, ItemFindTextSearchesFirstCellsAfterTheStart)
{
    startReport();
    addRows({u"Alpha"_s, u"beta"_s, u"Alphabet"_s, u"  gamma"_s});
    struct Case
    {
        const char *text;
        int start, flags, expected;
    };
    const std::vector<Case> cases = {
        {"alpha", -1, kFindString, 0},
        {"alpha", 0, kFindString, -1},
        {"ALPHABET", 0, kFindString, 2},
        {"alpha", 0, kFindPartial, 2},
        {"alpha", 0, kFindSubstring, 2},
        {"alpha", 2, kFindPartial, -1},
        {"alpha", 2, kFindPartial | kFindWrap, 0},
        {"beta", 3, kFindString | kFindWrap, 1},
        {"beta", 1, kFindString | kFindWrap, 1}, // the wrap comes back to the start itself
        {"gamma", -1, kFindString, -1}, // the list's text has the blanks
        {"  gamma", -1, kFindString, 3},
        {"", -1, kFindPartial, 0},
        {"alpha", -2, kFindString, -1},
        {"alpha", 99, kFindString, -1},
        {"alpha", -1, 0, -1},
        {"alpha", -1, kFindNearestXY, -1},
        {"anything", -1, kFindParam, 0}, // the record's value is 0: the row stored with 0
        {"anything", 0, kFindParam, -1},
    };
    for (const Case &c : cases)
        EXPECT_EQ(list->ItemFindText(QString::fromUtf8(c.text), c.start, c.flags), c.expected)
            << c.text << " from " << c.start << " flags " << c.flags;
}

TEST_F(ListViewTest, ItemFindStateFindsTheNextRowWithTheWantedBits)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    list->setMultiSelect(true);
    list->setItemSelected(1, true);
    list->setItemSelected(3, true); // also takes the focus
    struct Case
    {
        int start, state, expected;
    };
    const std::vector<Case> cases = {
        {-1, kNextAll, 0},
        {2, kNextAll, 3},
        {3, kNextAll, -1},
        {-1, kNextSelected, 1},
        {1, kNextSelected, 3},
        {3, kNextSelected, -1},
        {-1, kNextFocused, 3},
        {-1, kNextFocused | kNextSelected, 3},
        {-1, kNextCut, -1},
        {-1, kNextDropHilited, -1},
        {-7, kNextSelected, 1},
        {0, kNextBelow, 1},
        {0, kNextBelow | kNextSelected, 1},
        {1, kNextBelow | kNextSelected, 3},
        {3, kNextAbove | kNextSelected, 1},
        {0, kNextAbove, -1},
        {3, kNextBelow, -1},
        {1, kNextToLeft, -1}, // nothing beside a report row
        {1, kNextToRight, -1},
        {-1, kNextBelow, -1},
    };
    for (const Case &c : cases)
        EXPECT_EQ(list->ItemFindState(c.start, c.state), c.expected) << c.start << " state " << c.state;
}

TEST_F(ListViewTest, ItemFindStateMovesAcrossTheThumbnailGrid)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 0));
    list->SetThumbnailSize(32, 32);
    show();
    for (int i = 0; i < 60; ++i)
        ASSERT_TRUE(list->AddItem(u"r%1"_s.arg(i)));
    QApplication::processEvents();
    QListView *view = thumbnails();
    const int top = view->visualRect(model()->index(0, 0)).top();
    int perLine = 1;
    while (perLine < 60 && view->visualRect(model()->index(perLine, 0)).top() == top)
        ++perLine;
    ASSERT_GT(perLine, 1);
    ASSERT_LT(perLine, 60);
    EXPECT_EQ(list->ItemFindState(0, kNextToRight), 1);
    EXPECT_EQ(list->ItemFindState(0, kNextToLeft), -1);
    EXPECT_EQ(list->ItemFindState(0, kNextBelow), perLine);
    EXPECT_EQ(list->ItemFindState(perLine + 1, kNextAbove), 1);
    EXPECT_EQ(list->ItemFindState(perLine - 1, kNextToRight), -1);
}

TEST_F(ListViewTest, ItemHitTestAnswersTheRowUnderAPointOfTheControl)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s});
    const QPoint inControl = report()->viewport()->mapTo(list.get(), reportCell(1));
    EXPECT_EQ(list->ItemHitTest(float(inControl.x()), float(inControl.y())), 1);
    const QPoint header = report()->horizontalHeader()->mapTo(list.get(), QPoint(5, 5));
    EXPECT_EQ(list->ItemHitTest(float(header.x()), float(header.y())), -1);
    EXPECT_EQ(list->ItemHitTest(5, 390), -1); // below the rows
    EXPECT_EQ(list->ItemHitTest(590, float(inControl.y())), -1); // right of the columns
    EXPECT_EQ(list->ItemHitTest(-10, -10), -1);
    EXPECT_EQ(list->ItemHitTest(NAN, 5), -1);
    EXPECT_EQ(list->ItemHitTest(INFINITY, 5), -1);
    EXPECT_EQ(list->ItemHitTest(3e30f, 3e30f), -1);
}

TEST_F(ListViewTest, SelectingARowFocusesItAndRaisesOneItemClick)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s});
    QSignalSpy clicks(list.get(), &ctlListView::ItemClick);
    list->setItemSelected(1, true);
    EXPECT_TRUE(list->ItemSelected(1));
    EXPECT_TRUE(list->ItemFocused(1));
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.at(0).at(0).toInt(), 1);
    EXPECT_EQ(list->ItemIndex(), 1);
    // Selected already: no change, no click.
    list->setItemSelected(1, true);
    EXPECT_EQ(clicks.count(), 1);
    // A single-selection list moves the selection.
    list->setItemSelected(2, true);
    EXPECT_FALSE(list->ItemSelected(1));
    EXPECT_FALSE(list->ItemFocused(1));
    EXPECT_EQ(clicks.count(), 2);
    EXPECT_EQ(list->ItemIndex(), 2);
    // Focus alone is a change but no click.
    list->setItemFocused(0, true);
    EXPECT_TRUE(list->ItemFocused(0));
    EXPECT_FALSE(list->ItemSelected(0));
    EXPECT_EQ(clicks.count(), 2);
    EXPECT_EQ(list->ItemIndex(), 0);
    list->setItemSelected(2, false);
    EXPECT_FALSE(list->ItemSelected(2));
    list->setItemFocused(0, false);
    EXPECT_FALSE(list->ItemFocused(0));
    // Out of range: nothing.
    list->setItemSelected(3, true);
    list->setItemSelected(-2, true);
    EXPECT_EQ(list->ItemFindState(-1, kNextSelected), -1);
    EXPECT_FALSE(list->ItemSelected(3));
}

TEST_F(ListViewTest, ItemMinusOneStandsForEveryRow)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s});
    list->setItemSelected(-1, true); // single selection: the last row stays
    EXPECT_FALSE(list->ItemSelected(0));
    EXPECT_TRUE(list->ItemSelected(2));
    list->setMultiSelect(true);
    list->setItemSelected(-1, true);
    for (int row = 0; row < 3; ++row)
        EXPECT_TRUE(list->ItemSelected(row)) << row;
    list->setItemSelected(-1, false);
    for (int row = 0; row < 3; ++row) {
        EXPECT_FALSE(list->ItemSelected(row)) << row;
        EXPECT_FALSE(list->ItemFocused(row)) << row;
    }
}

TEST_F(ListViewTest, AMouseClickOnARowRaisesItemClickAndSetsItemIndex)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s});
    QSignalSpy clicks(list.get(), &ctlListView::ItemClick);
    QTest::mouseClick(report()->viewport(), Qt::LeftButton, {}, reportCell(1, 2));
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.at(0).at(0).toInt(), 1);
    EXPECT_EQ(list->ItemIndex(), 1);
    EXPECT_TRUE(list->ItemSelected(1));
    QTest::mouseClick(report()->viewport(), Qt::LeftButton, {}, reportCell(2));
    ASSERT_EQ(clicks.count(), 2);
    EXPECT_EQ(clicks.at(1).at(0).toInt(), 2);
    EXPECT_EQ(list->ItemIndex(), 2);
    EXPECT_FALSE(list->ItemSelected(1));
    // The same row again changes nothing.
    QTest::mouseClick(report()->viewport(), Qt::LeftButton, {}, reportCell(2));
    EXPECT_EQ(clicks.count(), 2);
}

TEST_F(ListViewTest, ControlClickInAMultiSelectListUnselectsWithoutAClick)
{
    startReport();
    list->setMultiSelect(true);
    EXPECT_TRUE(list->MultiSelect());
    addRows({u"a"_s, u"b"_s, u"c"_s});
    QSignalSpy clicks(list.get(), &ctlListView::ItemClick);
    QTest::mouseClick(report()->viewport(), Qt::LeftButton, {}, reportCell(0));
    QTest::mouseClick(report()->viewport(), Qt::LeftButton, Qt::ControlModifier, reportCell(2));
    EXPECT_TRUE(list->ItemSelected(0));
    EXPECT_TRUE(list->ItemSelected(2));
    EXPECT_EQ(clicks.count(), 2);
    QTest::mouseClick(report()->viewport(), Qt::LeftButton, Qt::ControlModifier, reportCell(0));
    EXPECT_FALSE(list->ItemSelected(0));
    EXPECT_EQ(clicks.count(), 2);
    EXPECT_EQ(list->ItemIndex(), 0); // the row of the latest change
}

TEST_F(ListViewTest, RightPressOnARowRaisesItemRightClickAfterTheListSelectedIt)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s});
    std::vector<std::pair<int, bool>> heard;
    QObject::connect(list.get(), &ctlListView::ItemRightClick, list.get(),
        [&](int item) { heard.emplace_back(item, list->ItemSelected(item)); });
    QTest::mouseClick(report()->viewport(), Qt::RightButton, {}, reportCell(2));
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].first, 2);
    EXPECT_TRUE(heard[0].second);
    // On no row: nothing.
    QTest::mouseClick(
        report()->viewport(), Qt::RightButton, {}, QPoint(5, report()->viewport()->height() - 5));
    EXPECT_EQ(heard.size(), 1u);
    // A left press is not a right click.
    QTest::mouseClick(report()->viewport(), Qt::LeftButton, {}, reportCell(0));
    EXPECT_EQ(heard.size(), 1u);
}

TEST_F(ListViewTest, DoubleClicksOfEitherButtonOnARowRaiseItemDblClick)
{
    startReport();
    addRows({u"a"_s, u"b"_s});
    QSignalSpy doubles(list.get(), &ctlListView::ItemDblClick);
    QTest::mouseDClick(report()->viewport(), Qt::LeftButton, {}, reportCell(1));
    ASSERT_EQ(doubles.count(), 1);
    EXPECT_EQ(doubles.at(0).at(0).toInt(), 1);
    QTest::mouseDClick(report()->viewport(), Qt::RightButton, {}, reportCell(0));
    ASSERT_EQ(doubles.count(), 2);
    EXPECT_EQ(doubles.at(1).at(0).toInt(), 0);
    QTest::mouseDClick(
        report()->viewport(), Qt::LeftButton, {}, QPoint(5, report()->viewport()->height() - 5));
    EXPECT_EQ(doubles.count(), 2);
}

TEST_F(ListViewTest, KeyDownComesFirstAndAZeroKeyCodeSwallowsTheKey)
{
    startReport();
    addRows({u"a"_s, u"b"_s, u"c"_s});
    list->setItemSelected(0, true);
    std::vector<std::pair<int, int>> keys;
    bool swallow = true;
    QObject::connect(list.get(), &ctlListView::KeyDown, list.get(), [&](int &KeyCode, int &Shift) {
        keys.emplace_back(KeyCode, Shift);
        if (swallow)
            KeyCode = 0;
    });
    QTest::keyClick(report(), Qt::Key_Down);
    ASSERT_EQ(keys.size(), 1u);
    EXPECT_EQ(keys[0], std::make_pair(40, 0));
    EXPECT_TRUE(list->ItemFocused(0)); // the list never saw it
    swallow = false;
    QSignalSpy clicks(list.get(), &ctlListView::ItemClick);
    QTest::keyClick(report(), Qt::Key_Down);
    EXPECT_TRUE(list->ItemFocused(1));
    EXPECT_TRUE(list->ItemSelected(1));
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.at(0).at(0).toInt(), 1);
    EXPECT_EQ(list->ItemIndex(), 1);
    // The modifier keys go down first, each a key of its own.
    QTest::keyClick(report(), Qt::Key_Delete, Qt::ShiftModifier | Qt::ControlModifier);
    ASSERT_EQ(keys.size(), 5u);
    EXPECT_EQ(keys[2].first, 16);
    EXPECT_EQ(keys[3].first, 17);
    EXPECT_EQ(keys[4], std::make_pair(46, 3));
}

TEST_F(ListViewTest, ColumnResizeComesInReportViewOnly)
{
    startReport();
    QSignalSpy resized(list.get(), &ctlListView::ColumnResize);
    ASSERT_TRUE(list->AddColumn(4, u"new"_s, 70)); // a new column brings its width
    EXPECT_EQ(resized.count(), 0);
    list->setColumnWidth(2, 150);
    ASSERT_EQ(resized.count(), 1);
    EXPECT_EQ(resized.at(0).at(0).toInt(), 2);
    list->setViewMode(0);
    list->setColumnWidth(1, 150);
    EXPECT_EQ(resized.count(), 1);
}

TEST_F(ListViewTest, ResizeEventAndTheListFollowsTheControl)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 1));
    show();
    EXPECT_EQ(list->hwnd()->geometry(), list->rect());
    QSignalSpy resizes(list.get(), &ctlListView::Resize);
    list->resize(420, 310);
    EXPECT_GE(resizes.count(), 1);
    EXPECT_EQ(list->hwnd()->geometry(), QRect(0, 0, 420, 310));
}

TEST_F(ListViewTest, FocusGivenToTheControlGoesToTheList)
{
    startReport();
    QApplication::setActiveWindow(list.get());
    list->setFocus();
    EXPECT_TRUE(report()->hasFocus());
    list->setViewMode(0);
    EXPECT_TRUE(thumbnails()->hasFocus()); // the new face takes over the focus
}

TEST_F(ListViewTest, DropsOfLocalFilesRaiseOLEDragDropWhenDropModeIsOne)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 1));
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(u"/tmp/a.txt"_s)});
    QMimeData web;
    web.setUrls({QUrl(u"https://example.org/a"_s)});
    int heard = 0;
    const QMimeData *heardData = nullptr;
    int heardEffect = -1, heardButton = -1, heardShift = -1;
    float heardX = -1, heardY = -1;
    QObject::connect(list.get(), &ctlListView::OLEDragDrop, list.get(),
        [&](const QMimeData *Data, int &Effect, int &Button, int &Shift, float &x, float &y) {
            ++heard;
            heardData = Data;
            heardEffect = Effect;
            heardButton = Button;
            heardShift = Shift;
            heardX = x;
            heardY = y;
            Effect = 2; // the handler takes a move
        });
    // A drop goes to the widget that took the drag when it entered.
    const auto drop = [&](const QMimeData &data) {
        QDragEnterEvent enter(
            QPoint(30, 40), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::ShiftModifier);
        QCoreApplication::sendEvent(list.get(), &enter);
        QDropEvent event(
            QPointF(30, 40), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::ShiftModifier);
        QCoreApplication::sendEvent(list.get(), &event);
        return std::make_pair(event.isAccepted(), event.dropAction());
    };
    EXPECT_FALSE(list->acceptDrops()); // drop mode 0 to begin with
    drop(files);
    EXPECT_EQ(heard, 0);
    list->setOLEDropMode(1);
    EXPECT_TRUE(list->acceptDrops());
    const auto [accepted, action] = drop(files);
    ASSERT_EQ(heard, 1);
    EXPECT_EQ(heardData, &files);
    EXPECT_EQ(heardEffect, 3);
    EXPECT_EQ(heardButton, 1);
    EXPECT_EQ(heardShift, 1);
    EXPECT_FLOAT_EQ(heardX, 30);
    EXPECT_FLOAT_EQ(heardY, 40);
    EXPECT_TRUE(accepted);
    EXPECT_EQ(action, Qt::MoveAction);
    drop(web); // no local file
    EXPECT_EQ(heard, 1);
    list->setOLEDropMode(5); // ignored
    EXPECT_TRUE(list->acceptDrops());
    list->setOLEDropMode(0);
    EXPECT_FALSE(list->acceptDrops());
    drop(files);
    EXPECT_EQ(heard, 1);
}

TEST_F(ListViewTest, TheInfoTipIsComposedFromTheFirstFourCells)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 0));
    ASSERT_TRUE(list->AddItem(u" a.txt |sub\\|1,234|/src/a.txt|more"_s));
    ASSERT_TRUE(list->AddItem(u"文件甲.txt||5|/x"_s));
    const auto tipOf = [&](int row) {
        ListNotifyEvent notify(ListNotifyEvent::GetInfoTip, thumbnails());
        notify.Item = row;
        QCoreApplication::sendEvent(list.get(), &notify);
        return notify.TipText;
    };
    EXPECT_EQ(tipOf(0), u"a.txt\r\nsub\\\r\n1,234 bytes\r\n/src/a.txt"_s);
    // Multi-byte characters: as many bytes as characters, so the tail is lost.
    const QString full = u"文件甲.txt\r\n\r\n5 bytes\r\n/x"_s;
    const QString cut = tipOf(1);
    EXPECT_LT(cut.size(), full.size());
    EXPECT_TRUE(full.startsWith(cut));
    EXPECT_EQ(cut, u"文件甲.txt\r\n\r\n5 byt"_s); // 22 bytes for 22 characters
    // A row that isn't there gives the frame of the tip.
    EXPECT_EQ(tipOf(9), u"\r\n\r\n bytes\r\n"_s);
}

TEST_F(ListViewTest, ATipEventOverAThumbnailShowsTheInfoTip)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 0));
    show();
    ASSERT_TRUE(list->AddItem(u"a.txt|sub|12|/s/a.txt"_s));
    QApplication::processEvents();
    QListView *view = thumbnails();
    const QPoint at = view->visualRect(model()->index(0, 0)).center();
    QHelpEvent help(QEvent::ToolTip, at, view->viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(view->viewport(), &help);
    EXPECT_EQ(QToolTip::text(), u"a.txt\nsub\n12 bytes\n/s/a.txt"_s);
    QToolTip::hideText();
}

TEST_F(ListViewTest, AReportCellCutShortUnfoldsInItsTip)
{
    startReport();
    list->setColumnWidth(0, 120);
    addRows({u"a rather long name that cannot fit in this column|x"_s, u"ab|x"_s});
    // A tip that goes hides after a moment: wait for it, so that each question starts clean.
    const auto tipAt = [&](int row) {
        QToolTip::hideText();
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 3000));
        const QPoint at = reportCell(row);
        QHelpEvent help(QEvent::ToolTip, at, report()->viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(report()->viewport(), &help);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    EXPECT_EQ(tipAt(0), u"a rather long name that cannot fit in this column"_s);
    EXPECT_EQ(tipAt(1), QString());
}

class FontProbe : public ctlListView
{
public:
    using ctlListView::ApplyListFont;
    using ctlListView::LabelHeight;
};

TEST(ListViewFont, TheKeptReadyFontRoutineSetsTheListFontAndLabelHeight)
{
    FontProbe probe;
    ASSERT_TRUE(probe.Initialize(QString(), u"|"_s, 0));
    EXPECT_EQ(probe.LabelHeight(), 0); // nothing calls it by itself
    QFont font = probe.font();
    font.setPixelSize(21);
    probe.setFont(font);
    probe.ApplyListFont();
    EXPECT_EQ(probe.LabelHeight(), 21);
    EXPECT_EQ(probe.hwnd()->font().pixelSize(), 21);
}

TEST_F(ListViewTest, ManyRowsAddedWithRedrawOffReachTheViewsWhenItComesBack)
{
    startReport();
    constexpr int kRows = 20000;
    list->SetRedraw(false);
    for (int i = 0; i < kRows; ++i)
        ASSERT_TRUE(list->AddItem(u"f%1|d|t|%1"_s.arg(i), u"/p/f%1.dat"_s.arg(i)));
    EXPECT_EQ(list->Count(), kRows);
    EXPECT_EQ(list->ItemText(kRows - 1, 3), u"19999"_s);
    EXPECT_EQ(model()->rowCount(), 0);
    // A row put in the middle brings the waiting rows along first.
    ASSERT_TRUE(list->AddItem(u"inserted"_s, {}, {}, 500));
    EXPECT_EQ(model()->rowCount(), kRows + 1);
    EXPECT_EQ(list->ItemText(500, 0), u"inserted"_s);
    EXPECT_EQ(list->ItemText(501, 0), u"f500"_s);
    ASSERT_TRUE(list->AddItem(u"last"_s));
    list->SetRedraw(true);
    EXPECT_EQ(model()->rowCount(), kRows + 2);
    EXPECT_EQ(model()->index(kRows + 1, 0).data().toString(), u"last"_s);
    EXPECT_TRUE(list->hwnd()->updatesEnabled());
    // Everything still agrees at that size.
    EXPECT_EQ(list->ItemFindText(u"f19999"_s, -1, kFindString), kRows);
    EXPECT_TRUE(list->ItemEnsureVisible(kRows + 1));
    EXPECT_FALSE(list->ItemEnsureVisible(kRows + 2));
    list->setItemSelected(kRows, true);
    EXPECT_EQ(list->ItemFindState(-1, kNextSelected), kRows);
    EXPECT_TRUE(list->ItemRemove(0));
    EXPECT_EQ(list->ItemText(0, 0), u"f1"_s);
    EXPECT_TRUE(list->Clear());
    EXPECT_EQ(list->Count(), 0);
}

TEST_F(ListViewTest, AViewChangeShowsTheOtherFaceWithTheSameRowsAndSelection)
{
    startReport();
    auto *stack = qobject_cast<QStackedWidget *>(list->hwnd());
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(stack->currentWidget(), report());
    addRows({u"a"_s, u"b"_s});
    list->setItemSelected(1, true);
    list->setViewMode(0);
    EXPECT_EQ(list->ViewMode(), 0);
    EXPECT_EQ(stack->currentWidget(), thumbnails());
    EXPECT_TRUE(list->ItemSelected(1));
    EXPECT_EQ(thumbnails()->selectionModel(), report()->selectionModel());
    list->setViewMode(1);
    EXPECT_EQ(stack->currentWidget(), report());
    EXPECT_EQ(list->Count(), 2);
    EXPECT_TRUE(list->ItemSelected(1));
}

TEST_F(ListViewTest, SelectionOptionsAreStoredOnceTheListExists)
{
    ASSERT_TRUE(list->Initialize(QString(), u"|"_s, 1));
    list->setHideSelection(true);
    EXPECT_TRUE(list->HideSelection());
    list->setMultiSelect(true);
    EXPECT_EQ(report()->selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_EQ(thumbnails()->selectionMode(), QAbstractItemView::ExtendedSelection);
    list->setMultiSelect(false);
    EXPECT_EQ(report()->selectionMode(), QAbstractItemView::SingleSelection);
    list->setEnabled(false);
    EXPECT_FALSE(list->Enabled());
    EXPECT_FALSE(report()->isEnabled());
    list->setEnabled(true);
    EXPECT_TRUE(list->Enabled());
}

TEST_F(ListViewTest, ComparatorsReadTheArmedColumnOfTheirListAndAnswerItsOrders)
{
    startReport();
    addRows({u"r0|b|10|2024-01-02"_s, u"r1|A|9|2023-12-31"_s});
    QWidget *hwnd = list->hwnd();
    EXPECT_EQ(list->CompareByValue(2, 1, hwnd), 0); // not armed yet
    EXPECT_FALSE(list->ListViewSort(hwnd, 1, 0, 0));
    EXPECT_EQ(list->CompareByValue(2, 1, hwnd), 1);
    EXPECT_EQ(list->CompareByValue(qintptr(1) << 32, 0, hwnd), 0); // as 32-bit values
    EXPECT_EQ(list->CompareByValue(0xFFFFFFFF, 0, hwnd), -1);
    EXPECT_EQ(list->CompareByText(0, 1, hwnd), 1); // "b" after "A"
    EXPECT_EQ(list->CompareByText(0, 1, nullptr), 0); // another list: no texts
    EXPECT_FALSE(list->ListViewSort(hwnd, 2, -1, 0));
    EXPECT_EQ(list->CompareByNumber(0, 1, hwnd), -1); // 10 > 9, answered descending
    EXPECT_EQ(list->CompareByText(0, 1, hwnd), 1); // "10" < "9" as text
    EXPECT_FALSE(list->ListViewSort(hwnd, 3, 42, 0)); // the orders stay
    EXPECT_EQ(list->CompareByDate(0, 1, hwnd), -1);
    EXPECT_EQ(list->CompareByDate(0, 7, hwnd), -1); // a row that isn't there has no date
}

} // namespace
} // namespace qb::controls
