// ctlListView: the reusable list control of the workbench. One model of rows shown as a report
// with columns or as a grid of framed thumbnails; a table of known file types for type names and
// icons; per-row pictures and opaque thumbnail bytes; and seven plain events made of what the
// list window reports. Rows and columns count from 0.
#pragma once

#include "controls/list_view_file_types.h"
#include "controls/list_view_sort.h"
#include "controls/list_view_text.h"
#include "controls/message_interception.h"

#include <QByteArray>
#include <QPixmap>
#include <QWidget>

#include <map>
#include <memory>
#include <vector>

class QAbstractItemView;
class QHeaderView;
class QListView;
class QMimeData;
class QStackedWidget;
class QTableView;

namespace qb::controls {

class ListViewModel;
class ListStateTracker;
class ListNotifyEvent;
template<class View>
class ListWindowView;

// Opaque thumbnail bytes a caller keeps with a row: a bitmap header and its pixel data. The
// control never reads them.
struct ThumbnailInfoRecord
{
    QByteArray aTBIH;
    QByteArray aData;
    void *reserved = nullptr; // a slot nothing fills
};

// Flags of ItemFindText (the find record's flags, passed on as given).
inline constexpr int kFindParam = 0x0001;
inline constexpr int kFindString = 0x0002;
inline constexpr int kFindSubstring = 0x0004;
inline constexpr int kFindPartial = 0x0008;
inline constexpr int kFindWrap = 0x0020;
inline constexpr int kFindNearestXY = 0x0040;

// Flags of ItemFindState: state bits wanted, and the direction to search in.
inline constexpr int kNextAll = 0x0000;
inline constexpr int kNextFocused = 0x0001;
inline constexpr int kNextSelected = 0x0002;
inline constexpr int kNextCut = 0x0004;
inline constexpr int kNextDropHilited = 0x0008;
inline constexpr int kNextAbove = 0x0100;
inline constexpr int kNextBelow = 0x0200;
inline constexpr int kNextToLeft = 0x0400;
inline constexpr int kNextToRight = 0x0800;

class ctlListView : public QWidget, public MessageInterception
{
    Q_OBJECT
    Q_PROPERTY(int ThumbnailWidth READ ThumbnailWidth)
    Q_PROPERTY(int ThumbnailHeight READ ThumbnailHeight)
    Q_PROPERTY(int ItemIndex READ ItemIndex WRITE setItemIndex)
    Q_PROPERTY(int BorderStyle READ BorderStyle WRITE setBorderStyle)
    Q_PROPERTY(int Count READ Count)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(bool HideSelection READ HideSelection WRITE setHideSelection)
    Q_PROPERTY(bool MultiSelect READ MultiSelect WRITE setMultiSelect)
    Q_PROPERTY(int ViewMode READ ViewMode WRITE setViewMode)
    Q_PROPERTY(QWidget *hwnd READ hwnd)

public:
    explicit ctlListView(QWidget *parent = nullptr);
    ~ctlListView() override;

    // Creates the list window on the first call: FormatsMask lists the extensions whose type
    // names and icons the rows use, split at MaskSeparator; ViewMode 0 shows thumbnails, 1 the
    // report. True when the list exists; a later call does nothing and answers false.
    bool Initialize(const QString &FormatsMask, const QString &MaskSeparator, int ViewMode);
    // Painting of the list on (true) or off; rows added while it is off reach the views at once
    // when it comes back on.
    void SetRedraw(bool bRedraw);
    // Repaints the rows ItemFirst..ItemLast.
    void RefreshItems(int ItemFirst, int ItemLast);
    // Removes every row, picture and thumbnail record; resets the header icons of the first
    // four columns, the sort columns and ItemIndex.
    bool Clear();
    // Rows keep their insertion order: always false.
    bool Sort(int ColumnID);
    // Adds a row: ItemsText holds the cells joined by "|" (an empty cell after the first shows
    // the type name of FileName); FileName gives the icon; pic the thumbnail, appended to the
    // pictures whatever InsertLocation (-1: at the end) says. True when the row went in.
    bool AddItem(const QString &ItemsText, const QString &FileName = {}, const QPixmap &pic = {},
        int InsertLocation = -1);
    // Removes a row, and the picture of that number whether or not the row was there. ItemIndex
    // becomes -1 when it named the row. True when the row was there.
    bool ItemRemove(int Item);
    // Scrolls the row into view; false outside the rows.
    bool ItemEnsureVisible(int Item);
    // The next row after StartItem (-1: from the first) whose first cell matches Text by the
    // flags in Coincidence (kFindString exact, kFindPartial/kFindSubstring a prefix, kFindWrap
    // from the start again, kFindParam the row's stored value 0), case-insensitively; -1 for none.
    int ItemFindText(const QString &Text, int StartItem, int Coincidence);
    // The next row after StartItem (-1: from the first) whose state holds the kNext* state bits
    // of State, in the kNext* direction if one is given; -1 for none.
    int ItemFindState(int StartItem, int State);
    // The row at x, y (pixels in the control); -1 for none.
    int ItemHitTest(float x, float y);
    // Thumbnail bytes of row Index. False, with nothing changed, for an Index the table doesn't
    // hold: the table covers the rows that were there before the latest AddItem, and each
    // AddItem empties it.
    bool ThumbnailInfo_SetTBIH(int Index, const QByteArray &aTBIH);
    bool ThumbnailInfo_GetTBIH(int Index, QByteArray &aTBIH) const;
    bool ThumbnailInfo_SetData(int Index, const QByteArray &aData);
    bool ThumbnailInfo_GetData(int Index, QByteArray &aData) const;
    int ThumbnailWidth() const { return m_thumbnailWidth; }
    int ThumbnailHeight() const { return m_thumbnailHeight; }
    // Each side is clamped to 32..125; the thumbnail cells follow.
    void SetThumbnailSize(int New_Width, int New_Height);
    // The header image number of a column. Writing a negative Icon hides the image and keeps
    // the number.
    int ColumnIcon(int ColumnID) const;
    void setColumnIcon(int ColumnID, int Icon);
    // Column width in pixels; writing a negative width fits the column to its contents.
    int ColumnWidth(int ColumnID) const;
    void setColumnWidth(int ColumnID, int Width);
    // A cell's text without blanks at either end; "" outside the rows and columns.
    QString ItemText(int Item, int ColumnID) const;
    // The FileName a row was added with, exactly, whatever its cells show; "" outside the rows.
    QString ItemFile(int Item) const;
    // A text of the host's own kept with a row and never shown (e.g. the exact name a file gets
    // elsewhere); "" and false outside the rows.
    QString ItemTag(int Item) const;
    bool setItemTag(int Item, const QString &Tag);
    // The row the list last reported a change of; writing only stores it.
    int ItemIndex() const { return m_itemIndex; }
    void setItemIndex(int Index) { m_itemIndex = Index; }
    // Selecting a row also focuses it; Item -1 stands for every row.
    bool ItemSelected(int Item) const;
    void setItemSelected(int Item, bool Selected);
    bool ItemFocused(int Item) const;
    void setItemFocused(int Item, bool Focused);
    // 1 with a sunken border around the list, 0 without; other values are ignored.
    int BorderStyle() const;
    void setBorderStyle(int New_BorderStyle);
    int Count() const;
    // 1 takes drops of files (OLEDragDrop), 0 takes none; other values are ignored.
    void setOLEDropMode(int Mode);
    bool Enabled() const { return isEnabled(); }
    bool HideSelection() const { return m_hideSelection; }
    void setHideSelection(bool value);
    bool MultiSelect() const { return m_multiSelect; }
    void setMultiSelect(bool value);
    int ViewMode() const { return m_viewMode; }
    void setViewMode(int value);
    // The list window (nullptr before Initialize).
    QWidget *hwnd() const;
    // Inserts a column at lColumn (clamped to the end) with its title, width in pixels and
    // alignment (0 left, 1 right, 2 centre). True when it went in.
    bool AddColumn(int lColumn, const QString &sText, int lWidth, int lAlign = 0);
    // Arms the comparators for Column in SortOrder (0 ascending, 1 or -1 the answer for
    // "greater"); sorts nothing and answers false.
    bool ListViewSort(QWidget *hListView, int Column, int SortOrder, int SortType);

    // The comparators, kept ready for a sort callback: first and second row value, and the list.
    // Each answers the armed order for greater, less, or 0.
    int CompareByValue(qintptr lParam1, qintptr lParam2, QWidget *hWnd) const;
    int CompareByText(qintptr lParam1, qintptr lParam2, QWidget *hWnd) const;
    int CompareByNumber(qintptr lParam1, qintptr lParam2, QWidget *hWnd) const;
    int CompareByDate(qintptr lParam1, qintptr lParam2, QWidget *hWnd) const;

    void zSubclass_Proc(bool bBefore, bool &bHandled, qintptr &lReturn, QObject *lng_hWnd, int &uMsg,
        QEvent *wParam, qintptr &lParam) override;

Q_SIGNALS:
    void OLEDragDrop(const QMimeData *Data, int &Effect, int &Button, int &Shift, float &x, float &y);
    // KeyCode set to 0 keeps the key from the list.
    void KeyDown(int &KeyCode, int &Shift);
    void ItemClick(int Item);
    void ItemDblClick(int Item);
    void ItemRightClick(int Item);
    void ColumnResize(int Column);
    void Resize();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

    // Called when the list is activated by the mouse or gets the focus; nothing to do today.
    virtual void OnListActivate() { }
    // Gives the list the control's font and takes its pixel height as the label height. Kept
    // ready: the list keeps its default font today.
    void ApplyListFont();
    int LabelHeight() const { return m_labelHeight; }

private:
    class Thumbnails;

    bool CreateListView(const QString &FormatsMask, const QString &MaskSeparator);
    void buildThumbnailCells();
    void applyViewFace();
    bool SortByColumn(int column, bool toggle);
    QString SortItemText(QWidget *list, qintptr row) const;
    QAbstractItemView *currentView() const;
    QAbstractItemView *viewOf(QObject *object) const;
    int rowAt(QAbstractItemView *view, const QPoint &viewportPos) const;
    int stepFrom(int row, int direction) const;
    void onNotify(ListNotifyEvent &notify, bool &bHandled, qintptr &lReturn);
    void notifyItemChanged(int row, int oldState, int newState);
    bool acceptsDrag(const QMimeData *data) const;
    ThumbnailInfoRecord *thumbnailInfo(int Index);

    // The control's state.
    bool m_hideSelection = false;
    bool m_multiSelect = false;
    int m_viewMode = 0;
    int m_thumbnailWidth = kThumbnailDefaultSide;
    int m_thumbnailHeight = kThumbnailDefaultSide;
    std::vector<QPixmap> m_itemPictures; // picture k belongs to row k
    bool m_initialized = false;
    QStackedWidget *m_list = nullptr; // the list window
    QHeaderView *m_header = nullptr;
    std::vector<FileTypeRecord> m_fileTypes;
    // Thumbnail bytes: the table covers 0..m_thumbnailUpper (-1: not allocated); rows never
    // written take no room.
    std::map<int, ThumbnailInfoRecord> m_thumbnailInfos;
    int m_thumbnailUpper = -1;
    bool m_hasColumnImageList = false; // made with a thumbnail start only
    int m_labelHeight = 0;
    int m_sortColumn = -1;
    int m_sortedColumn = -1;
    int m_itemIndex = -1;
    SortContext m_sortContext;

    // The Qt parts of the list window.
    std::unique_ptr<ShellFileTypes> m_shell;
    ListViewModel *m_model = nullptr;
    ListWindowView<QTableView> *m_report = nullptr;
    ListWindowView<QListView> *m_thumbnails = nullptr;
    ListStateTracker *m_tracker = nullptr;
    std::unique_ptr<Thumbnails> m_thumbnailSource;
    int m_dropMode = 0;
    bool m_inRightPress = false;
    bool m_addingColumn = false;
};

} // namespace qb::controls
