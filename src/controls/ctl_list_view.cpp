// ctlListView: the list window, its rows, pictures and thumbnail bytes, and its events.
#include "controls/ctl_list_view.h"

#include "controls/input_codes.h"
#include "controls/list_view_delegates.h"
#include "controls/list_view_model.h"
#include "controls/list_view_notify.h"
#include "controls/list_view_state.h"
#include "controls/list_view_text.h"
#include "controls/list_view_views.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QFontInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QStackedWidget>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <limits>

namespace qb::controls {

namespace {

// Widest column the header is asked to hold; wider requests would overflow its running total.
constexpr int kMaxColumnWidth = 32767;

} // namespace

// What the thumbnail painter reads of the control.
class ctlListView::Thumbnails : public ThumbnailSource
{
public:
    explicit Thumbnails(ctlListView &owner)
        : m_owner(owner)
    { }

    QSize thumbnailSize() const override { return {m_owner.m_thumbnailWidth, m_owner.m_thumbnailHeight}; }
    QSize cellSize() const override
    {
        return m_owner.m_thumbnails ? m_owner.m_thumbnails->gridSize() : QSize();
    }
    void setLabelHeight(int height) override { m_owner.m_labelHeight = height; }
    int labelHeight() const override { return m_owner.m_labelHeight; }
    const QPixmap *picture(int row, bool &missing) const override
    {
        missing = row < 0 || size_t(row) >= m_owner.m_itemPictures.size();
        return missing ? nullptr : &m_owner.m_itemPictures[size_t(row)];
    }
    QString labelText(int row) const override { return m_owner.ItemText(row, 0); }
    // Asked directly: the same answer as "the next selected row after row - 1 is row", without a
    // scan through every unselected row below.
    bool rowSelected(int row) const override { return m_owner.ItemSelected(row); }

private:
    ctlListView &m_owner;
};

ctlListView::ctlListView(QWidget *parent)
    : QWidget(parent)
{
    // The control passes the focus on to the list; Tab goes to the list directly.
    setFocusPolicy(Qt::NoFocus);
}

ctlListView::~ctlListView()
{
    if (m_initialized) {
        zTerminate();
        m_initialized = false;
    }
    if (m_list) {
        m_report->setTracker(nullptr);
        m_thumbnails->setTracker(nullptr);
        delete m_tracker;
        m_tracker = nullptr;
        delete m_list;
        m_list = nullptr;
        delete m_model;
        m_model = nullptr;
    }
    m_itemPictures.clear();
}

bool ctlListView::Initialize(const QString &FormatsMask, const QString &MaskSeparator, int ViewMode)
{
    if (m_initialized)
        return false;
    m_viewMode = ViewMode;
    if (!CreateListView(FormatsMask, MaskSeparator))
        return false;
    m_initialized = true;
    zSubclass(this);
    zAddMsg(this, QEvent::FocusIn, MSG_AFTER);
    zAddMsg(this, QEvent::MouseButtonPress, MSG_AFTER); // the control activated by the mouse
    zAddMsg(this, ListNotifyEvent::notifyType(), MSG_AFTER);
    zAddMsg(this, QEvent::Resize, MSG_AFTER);
    for (QAbstractItemView *view :
        {static_cast<QAbstractItemView *>(m_report), static_cast<QAbstractItemView *>(m_thumbnails)}) {
        // Right presses on the before side: an after hook would hand the press to the viewport
        // itself and bypass the view's own handling; the press is passed to the view from there.
        zSubclass(view->viewport());
        zAddMsg(view->viewport(), QEvent::MouseButtonPress, MSG_BEFORE);
        // Keys reach the focused list, not the control: KeyDown is heard there, before the list
        // acts on the key, so that a handler can swallow it.
        zSubclass(view);
        zAddMsg(view, QEvent::KeyPress, MSG_BEFORE);
    }
    return true;
}

bool ctlListView::CreateListView(const QString &FormatsMask, const QString &MaskSeparator)
{
    m_list = new QStackedWidget(this);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setGeometry(rect());

    m_shell = std::make_unique<ShellFileTypes>();
    m_model = new ListViewModel(this);
    m_model->setImageList(&m_shell->icons());
    m_thumbnailSource = std::make_unique<Thumbnails>(*this);

    m_thumbnails = new ThumbnailView(ListFace::Thumbnails, this, m_list);
    m_report = new ReportView(ListFace::Report, this, m_list);

    m_report->setModel(m_model);
    m_report->setFrameShape(QFrame::NoFrame);
    m_report->setSelectionBehavior(QAbstractItemView::SelectRows); // full-row selection
    m_report->setSelectionMode(QAbstractItemView::SingleSelection);
    m_report->setShowGrid(true);
    m_report->setWordWrap(false);
    m_report->setSortingEnabled(false);
    m_report->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_report->setTabKeyNavigation(false);
    m_report->setIconSize(QSize(16, 16));
    m_report->setTextElideMode(Qt::ElideRight);
    m_report->setItemDelegate(new ReportDelegate([this] { return m_hideSelection; }, m_report));
    QHeaderView *rows = m_report->verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(std::max(18, m_report->fontMetrics().height() + 4));
    m_header = m_report->horizontalHeader();
    m_header->setSectionsClickable(true);
    m_header->setHighlightSections(false);
    m_header->setStretchLastSection(false);
    m_header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);

    // One selection model for both faces, so a view change keeps the selection.
    m_thumbnails->setModel(m_model);
    QItemSelectionModel *own = m_thumbnails->selectionModel();
    m_thumbnails->setSelectionModel(m_report->selectionModel());
    delete own;
    m_thumbnails->setFrameShape(QFrame::NoFrame);
    m_thumbnails->setViewMode(QListView::ListMode);
    m_thumbnails->setFlow(QListView::LeftToRight);
    m_thumbnails->setWrapping(true);
    m_thumbnails->setResizeMode(QListView::Adjust);
    m_thumbnails->setMovement(QListView::Static);
    m_thumbnails->setUniformItemSizes(true);
    m_thumbnails->setSelectionMode(QAbstractItemView::SingleSelection);
    m_thumbnails->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_thumbnails->setItemDelegate(new ThumbnailDelegate(*m_thumbnailSource, m_thumbnails));

    m_list->addWidget(m_thumbnails);
    m_list->addWidget(m_report);

    m_tracker = new ListStateTracker(
        m_report->selectionModel(),
        [this](int row, int oldState, int newState) { notifyItemChanged(row, oldState, newState); }, this);
    m_report->setTracker(m_tracker);
    m_thumbnails->setTracker(m_tracker);

    connect(m_header, &QHeaderView::sectionClicked, this, [this](int section) {
        ListNotifyEvent notify(ListNotifyEvent::HeaderItemClick, m_header);
        notify.Item = section;
        QCoreApplication::sendEvent(this, &notify);
    });
    connect(m_header, &QHeaderView::sectionResized, this, [this](int section, int, int) {
        if (m_addingColumn)
            return; // a new column's width comes with it
        ListNotifyEvent notify(ListNotifyEvent::HeaderItemChanged, m_header);
        notify.Item = section;
        QCoreApplication::sendEvent(this, &notify);
    });

    // The header's image list comes with a thumbnail start. The thumbnail cells are sized in
    // every start, so that a list switched to thumbnails later looks the same.
    m_hasColumnImageList = m_viewMode == 0;
    buildThumbnailCells();

    // Every start has the small image list (m_shell); a mask adds the types it names.
    m_fileTypes = BuildFileTypes(
        FormatsMask, MaskSeparator, [this](const QString &extension) { return m_shell->lookup(extension); });

    // Colours: the views keep the palette's window and window-text colours.
    applyViewFace();
    m_list->show();
    return true;
}

void ctlListView::buildThumbnailCells()
{
    // The cell reserves the frame around the picture; the spacing adds the margins and the label.
    m_thumbnails->setIconSize(QSize(m_thumbnailWidth + 8, m_thumbnailHeight + 8));
    m_thumbnails->setGridSize(QSize(m_thumbnailWidth + 18, m_thumbnailHeight + m_labelHeight + 32));
}

void ctlListView::applyViewFace()
{
    // 0 is the thumbnail grid; every other mode is the report.
    QAbstractItemView *wanted = currentView();
    QWidget *before = m_list->currentWidget();
    const bool hadFocus = before && before != wanted && before->hasFocus();
    m_list->setCurrentWidget(wanted);
    if (hadFocus)
        wanted->setFocus(Qt::OtherFocusReason);
}

QAbstractItemView *ctlListView::currentView() const
{
    if (!m_list)
        return nullptr;
    return m_viewMode == 0 ? static_cast<QAbstractItemView *>(m_thumbnails)
                           : static_cast<QAbstractItemView *>(m_report);
}

QAbstractItemView *ctlListView::viewOf(QObject *object) const
{
    if (!m_list || !object)
        return nullptr;
    if (object == m_report || object == m_report->viewport())
        return m_report;
    if (object == m_thumbnails || object == m_thumbnails->viewport())
        return m_thumbnails;
    return nullptr;
}

int ctlListView::rowAt(QAbstractItemView *view, const QPoint &viewportPos) const
{
    if (!view || !view->viewport()->rect().contains(viewportPos))
        return -1;
    const QModelIndex index = view->indexAt(viewportPos);
    return index.isValid() ? index.row() : -1;
}

void ctlListView::SetRedraw(bool bRedraw)
{
    if (!m_list)
        return;
    m_tracker->mute();
    m_model->hold(!bRedraw);
    m_tracker->unmute();
    m_list->setUpdatesEnabled(bRedraw);
}

void ctlListView::RefreshItems(int ItemFirst, int ItemLast)
{
    if (!m_list)
        return;
    QAbstractItemView *view = currentView();
    const int first = std::max(ItemFirst, 0);
    const int last = std::min(ItemLast, m_model->rowCount() - 1);
    if (first > last)
        return;
    if (last - first > 256) {
        view->viewport()->update();
        return;
    }
    const int lastColumn = m_model->columnCount() - 1;
    for (int row = first; row <= last; ++row) {
        const QRect rect
            = view->visualRect(m_model->index(row, 0)) | view->visualRect(m_model->index(row, lastColumn));
        if (!rect.isEmpty())
            view->viewport()->update(rect);
    }
}

bool ctlListView::Clear()
{
    if (!m_list)
        return false;
    m_tracker->mute();
    m_model->clearRows();
    m_tracker->unmute();
    m_thumbnailInfos.clear();
    m_thumbnailUpper = -1;
    m_itemPictures = {};
    for (int column = 0; column < 4; ++column)
        setColumnIcon(column, -1);
    m_sortColumn = -1;
    m_sortedColumn = -1;
    m_itemIndex = -1;
    return true;
}

bool ctlListView::SortByColumn(int, bool)
{
    // Rows keep the order they were added in, whatever column is asked for.
    return false;
}

bool ctlListView::Sort(int ColumnID)
{
    return SortByColumn(ColumnID, false);
}

bool ctlListView::AddItem(
    const QString &ItemsText, const QString &FileName, const QPixmap &pic, int InsertLocation)
{
    if (!m_list)
        return false;
    const int count = Count();
    // The thumbnail table is made anew for the rows already there, empty: callers store the bytes
    // after the rows are in. With no rows yet there is nothing to make.
    if (count > 0) {
        m_thumbnailInfos.clear();
        m_thumbnailUpper = count - 1;
    }
    const int row = InsertLocation != -1 ? InsertLocation : count;
    FileTypeRecord type;
    if (!FileName.isEmpty())
        type = FindFileType(m_fileTypes, FileName);
    const int image
        = FileName.isEmpty() || type.IconIndex == 0 ? ShellFileTypes::kFallbackImage : type.IconIndex;
    m_tracker->mute();
    const int at
        = m_model->insertRow(row, ComposeItemTexts(ItemsText, type.TypeName), image, std::min(row, count));
    m_tracker->unmute();
    if (at >= 0)
        m_model->setRowFile(at, FileName);
    // Appended whatever the position: a row put in the middle shows the last picture's slot.
    m_itemPictures.push_back(pic);
    return at >= 0;
}

bool ctlListView::ItemRemove(int Item)
{
    if (!m_list)
        return false;
    m_tracker->mute();
    const bool removed = m_model->removeRowAt(Item);
    m_tracker->unmute();
    if (Item >= 0 && size_t(Item) < m_itemPictures.size())
        m_itemPictures.erase(m_itemPictures.begin() + Item);
    if (m_itemIndex == Item)
        m_itemIndex = -1;
    return removed;
}

bool ctlListView::ItemEnsureVisible(int Item)
{
    if (!m_list || Item < 0 || Item >= Count())
        return false;
    m_model->publish();
    currentView()->scrollTo(m_model->index(Item, 0), QAbstractItemView::EnsureVisible);
    return true;
}

int ctlListView::ItemFindText(const QString &Text, int StartItem, int Coincidence)
{
    if (!m_list)
        return 0;
    if (StartItem < -1)
        return -1;
    const bool partial = Coincidence & (kFindPartial | kFindSubstring);
    const bool byText = partial || (Coincidence & kFindString);
    const bool byParam = Coincidence & kFindParam;
    if (!byText && !byParam)
        return -1; // nearest-point searches need a point the find record isn't given
    const auto matches = [&](int row) {
        if (byText) {
            const QString cell = m_model->cellText(row, 0);
            return partial ? cell.startsWith(Text, Qt::CaseInsensitive)
                           : cell.compare(Text, Qt::CaseInsensitive) == 0;
        }
        return m_model->rowParam(row) == 0; // the record's value, which nothing sets
    };
    const int total = Count();
    for (int row = StartItem + 1; row < total; ++row) {
        if (matches(row))
            return row;
    }
    if (Coincidence & kFindWrap) {
        for (int row = 0; row <= std::min(StartItem, total - 1); ++row) {
            if (matches(row))
                return row;
        }
    }
    return -1;
}

int ctlListView::stepFrom(int row, int direction) const
{
    const int total = m_model->rowCount();
    if (row < 0 || row >= total)
        return -1;
    if (m_viewMode != 0) {
        // The report is one column of rows: nothing lies to either side.
        if (direction == kNextAbove)
            return row - 1;
        if (direction == kNextBelow)
            return row + 1 < total ? row + 1 : -1;
        return -1;
    }
    const QRect cell = m_thumbnails->visualRect(m_model->index(row, 0));
    if (cell.isEmpty())
        return -1;
    const QSize grid = m_thumbnails->gridSize();
    QPoint next = cell.center();
    switch (direction) {
    case kNextAbove:
        next.ry() -= grid.height();
        break;
    case kNextBelow:
        next.ry() += grid.height();
        break;
    case kNextToLeft:
        next.rx() -= grid.width();
        break;
    default:
        next.rx() += grid.width();
        break;
    }
    const QModelIndex neighbour = m_thumbnails->indexAt(next);
    return neighbour.isValid() && neighbour.row() != row ? neighbour.row() : -1;
}

int ctlListView::ItemFindState(int StartItem, int State)
{
    if (!m_list)
        return 0;
    const int wanted = State & (kNextFocused | kNextSelected | kNextCut | kNextDropHilited);
    // Rows are never cut or drop targets here, so asking for either finds nothing.
    const auto matches = [&](int row) { return (m_tracker->state(row) & wanted) == wanted; };
    int direction = 0;
    for (const int d : {kNextAbove, kNextBelow, kNextToLeft, kNextToRight}) {
        if (State & d) {
            direction = d;
            break;
        }
    }
    if (direction != 0) {
        m_model->publish();
        for (int row = stepFrom(StartItem, direction); row >= 0; row = stepFrom(row, direction)) {
            if (matches(row))
                return row;
        }
        return -1;
    }
    const int total = Count();
    for (int row = std::max(StartItem, -1) + 1; row < total; ++row) {
        if (matches(row))
            return row;
    }
    return -1;
}

int ctlListView::ItemHitTest(float x, float y)
{
    if (!m_list)
        return 0;
    // Pixels are the container's scale here; a point far outside hits nothing.
    if (!std::isfinite(x) || !std::isfinite(y) || std::fabs(x) > 1e9f || std::fabs(y) > 1e9f)
        return -1;
    QAbstractItemView *view = currentView();
    const QPoint inControl(int(std::lround(x)), int(std::lround(y)));
    return rowAt(view, view->viewport()->mapFrom(this, inControl));
}

ThumbnailInfoRecord *ctlListView::thumbnailInfo(int Index)
{
    if (Index < 0 || Index > m_thumbnailUpper)
        return nullptr;
    return &m_thumbnailInfos[Index];
}

bool ctlListView::ThumbnailInfo_SetTBIH(int Index, const QByteArray &aTBIH)
{
    ThumbnailInfoRecord *record = thumbnailInfo(Index);
    if (record)
        record->aTBIH = aTBIH;
    return record != nullptr;
}

bool ctlListView::ThumbnailInfo_SetData(int Index, const QByteArray &aData)
{
    ThumbnailInfoRecord *record = thumbnailInfo(Index);
    if (record)
        record->aData = aData;
    return record != nullptr;
}

bool ctlListView::ThumbnailInfo_GetTBIH(int Index, QByteArray &aTBIH) const
{
    if (Index < 0 || Index > m_thumbnailUpper)
        return false;
    const auto found = m_thumbnailInfos.find(Index);
    aTBIH = found == m_thumbnailInfos.end() ? QByteArray() : found->second.aTBIH;
    return true;
}

bool ctlListView::ThumbnailInfo_GetData(int Index, QByteArray &aData) const
{
    if (Index < 0 || Index > m_thumbnailUpper)
        return false;
    const auto found = m_thumbnailInfos.find(Index);
    aData = found == m_thumbnailInfos.end() ? QByteArray() : found->second.aData;
    return true;
}

void ctlListView::SetThumbnailSize(int New_Width, int New_Height)
{
    m_thumbnailWidth = ClampThumbnailSide(New_Width);
    m_thumbnailHeight = ClampThumbnailSide(New_Height);
    if (m_list)
        buildThumbnailCells();
}

int ctlListView::ColumnIcon(int ColumnID) const
{
    return m_list ? m_model->columnImage(ColumnID) : 0;
}

void ctlListView::setColumnIcon(int ColumnID, int Icon)
{
    if (!m_list || ColumnID < 0 || ColumnID >= m_model->columnTotal())
        return;
    int format = (m_model->columnFormat(ColumnID) & kAlignMask) | kHeaderString | kHeaderBitmapOnRight;
    if (m_hasColumnImageList && Icon >= 0)
        format |= kHeaderImage;
    m_model->setColumnHeader(ColumnID, format, Icon, Icon >= 0);
}

int ctlListView::ColumnWidth(int ColumnID) const
{
    if (!m_list || ColumnID < 0 || ColumnID >= m_model->columnTotal())
        return 0;
    return m_header->sectionSize(ColumnID);
}

void ctlListView::setColumnWidth(int ColumnID, int Width)
{
    if (!m_list || ColumnID < 0 || ColumnID >= m_model->columnTotal())
        return;
    if (Width < 0)
        m_report->resizeColumnToContents(ColumnID);
    else
        m_header->resizeSection(ColumnID, std::min(Width, kMaxColumnWidth));
}

QString ctlListView::ItemText(int Item, int ColumnID) const
{
    if (!m_list)
        return {};
    return TrimSpaces(m_model->cellText(Item, ColumnID));
}

QString ctlListView::ItemFile(int Item) const
{
    return m_list ? m_model->rowFile(Item) : QString();
}

QString ctlListView::ItemTag(int Item) const
{
    return m_list ? m_model->rowTag(Item) : QString();
}

bool ctlListView::setItemTag(int Item, const QString &Tag)
{
    return m_list && m_model->setRowTag(Item, Tag);
}

bool ctlListView::ItemSelected(int Item) const
{
    return m_list && (m_tracker->state(Item) & kStateSelected);
}

void ctlListView::setItemSelected(int Item, bool Selected)
{
    if (!m_list || Item < -1 || Item >= Count())
        return;
    m_model->publish();
    QItemSelectionModel *selection = m_report->selectionModel();
    const int total = m_model->rowCount();
    ListStateTracker::Gesture gesture(m_tracker);
    if (Item == -1) {
        // Every row. A single-selection list keeps the last one, as one row after another would.
        if (!Selected) {
            selection->clearSelection();
            selection->clearCurrentIndex();
        } else if (total > 0) {
            const QModelIndex last = m_model->index(total - 1, 0);
            selection->setCurrentIndex(last, QItemSelectionModel::NoUpdate);
            if (m_multiSelect)
                selection->select(QItemSelection(m_model->index(0, 0), last),
                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
            else
                selection->select(last, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        }
        return;
    }
    const QModelIndex index = m_model->index(Item, 0);
    if (Selected) {
        selection->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        selection->select(index,
            (m_multiSelect ? QItemSelectionModel::Select : QItemSelectionModel::ClearAndSelect)
                | QItemSelectionModel::Rows);
    } else {
        selection->select(index, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
        if (selection->currentIndex().row() == Item)
            selection->clearCurrentIndex();
    }
}

bool ctlListView::ItemFocused(int Item) const
{
    return m_list && (m_tracker->state(Item) & kStateFocused);
}

void ctlListView::setItemFocused(int Item, bool Focused)
{
    if (!m_list || Item < -1 || Item >= Count())
        return;
    m_model->publish();
    QItemSelectionModel *selection = m_report->selectionModel();
    ListStateTracker::Gesture gesture(m_tracker);
    if (Item == -1) {
        if (!Focused)
            selection->clearCurrentIndex();
        else if (m_model->rowCount() > 0)
            selection->setCurrentIndex(
                m_model->index(m_model->rowCount() - 1, 0), QItemSelectionModel::NoUpdate);
        return;
    }
    if (Focused)
        selection->setCurrentIndex(m_model->index(Item, 0), QItemSelectionModel::NoUpdate);
    else if (selection->currentIndex().row() == Item)
        selection->clearCurrentIndex();
}

int ctlListView::BorderStyle() const
{
    return m_list && m_list->frameShape() != QFrame::NoFrame ? 1 : 0;
}

void ctlListView::setBorderStyle(int New_BorderStyle)
{
    if (!m_list)
        return;
    if (New_BorderStyle == 0)
        m_list->setFrameStyle(QFrame::NoFrame);
    else if (New_BorderStyle == 1)
        m_list->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
}

int ctlListView::Count() const
{
    return m_list ? m_model->totalRows() : 0;
}

void ctlListView::setOLEDropMode(int Mode)
{
    if (Mode != 0 && Mode != 1)
        return;
    m_dropMode = Mode;
    setAcceptDrops(Mode == 1);
}

void ctlListView::setHideSelection(bool value)
{
    if (!m_list)
        return;
    m_hideSelection = value;
    m_report->viewport()->update();
}

void ctlListView::setMultiSelect(bool value)
{
    if (!m_list)
        return;
    m_multiSelect = value;
    const auto mode = value ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection;
    m_report->setSelectionMode(mode);
    m_thumbnails->setSelectionMode(mode);
}

void ctlListView::setViewMode(int value)
{
    if (!m_list || value == m_viewMode)
        return;
    m_viewMode = value;
    applyViewFace();
    if (m_sortColumn != -1 && m_sortColumn != m_sortedColumn) {
        m_sortedColumn = m_sortColumn;
        SortByColumn(m_sortColumn, true);
    }
}

QWidget *ctlListView::hwnd() const
{
    return m_list;
}

bool ctlListView::AddColumn(int lColumn, const QString &sText, int lWidth, int lAlign)
{
    if (!m_list)
        return false;
    const int at = m_model->insertColumnAt(lColumn, sText, lAlign);
    if (at < 0)
        return false;
    m_addingColumn = true;
    m_header->resizeSection(at, std::clamp(lWidth, 0, kMaxColumnWidth));
    m_addingColumn = false;
    return true;
}

bool ctlListView::ListViewSort(QWidget *, int Column, int SortOrder, int)
{
    ArmSortContext(m_sortContext, Column, SortOrder);
    return false;
}

QString ctlListView::SortItemText(QWidget *list, qintptr row) const
{
    if (!m_list || list != m_list || row < 0 || row > std::numeric_limits<int>::max())
        return {};
    return m_model->cellText(int(row), m_sortContext.Column);
}

int ctlListView::CompareByValue(qintptr lParam1, qintptr lParam2, QWidget *) const
{
    return OrderedAnswer(m_sortContext, CompareValues(qint32(lParam1), qint32(lParam2)));
}

int ctlListView::CompareByText(qintptr lParam1, qintptr lParam2, QWidget *hWnd) const
{
    return OrderedAnswer(
        m_sortContext, CompareTexts(SortItemText(hWnd, lParam1), SortItemText(hWnd, lParam2)));
}

int ctlListView::CompareByNumber(qintptr lParam1, qintptr lParam2, QWidget *hWnd) const
{
    return OrderedAnswer(
        m_sortContext, CompareNumbers(SortItemText(hWnd, lParam1), SortItemText(hWnd, lParam2)));
}

int ctlListView::CompareByDate(qintptr lParam1, qintptr lParam2, QWidget *hWnd) const
{
    return OrderedAnswer(
        m_sortContext, CompareDates(SortItemText(hWnd, lParam1), SortItemText(hWnd, lParam2)));
}

void ctlListView::ApplyListFont()
{
    if (!m_list)
        return;
    const QFont listFont = font();
    m_list->setFont(listFont);
    m_labelHeight = QFontInfo(listFont).pixelSize();
}

void ctlListView::notifyItemChanged(int row, int oldState, int newState)
{
    ListNotifyEvent notify(ListNotifyEvent::ItemChanged, currentView());
    notify.Item = row;
    notify.OldState = oldState;
    notify.NewState = newState;
    QCoreApplication::sendEvent(this, &notify);
}

void ctlListView::zSubclass_Proc(
    bool bBefore, bool &bHandled, qintptr &lReturn, QObject *lng_hWnd, int &uMsg, QEvent *wParam, qintptr &)
{
    if (!m_initialized || !m_list)
        return;
    if (lng_hWnd == this) {
        if (bBefore)
            return;
        if (uMsg == QEvent::Resize)
            m_list->setGeometry(rect());
        else if (uMsg == QEvent::FocusIn)
            currentView()->setFocus(static_cast<QFocusEvent *>(wParam)->reason());
        else if (uMsg == QEvent::MouseButtonPress)
            OnListActivate();
        else if (uMsg == ListNotifyEvent::notifyType())
            onNotify(*static_cast<ListNotifyEvent *>(wParam), bHandled, lReturn);
        return;
    }
    QAbstractItemView *view = viewOf(lng_hWnd);
    if (!view || !bBefore)
        return;
    if (uMsg == QEvent::KeyPress && lng_hWnd == view) {
        const auto *key = static_cast<QKeyEvent *>(wParam);
        int KeyCode = VirtualKeyCode(key->key(), key->modifiers());
        if (KeyCode == 0)
            return;
        int Shift = ShiftState(key->modifiers());
        Q_EMIT KeyDown(KeyCode, Shift);
        if (KeyCode == 0) {
            bHandled = true;
            lReturn = 1;
        }
        return;
    }
    if (uMsg == QEvent::MouseButtonPress && lng_hWnd == view->viewport()) {
        auto *mouse = static_cast<QMouseEvent *>(wParam);
        if (mouse->button() != Qt::RightButton || m_inRightPress)
            return;
        // The list acts on the press first (it selects the row under it), then the event.
        m_inRightPress = true;
        QCoreApplication::sendEvent(view->viewport(), mouse);
        m_inRightPress = false;
        bHandled = true;
        lReturn = 1;
        const int row = rowAt(view, mouse->position().toPoint());
        if (row != -1)
            Q_EMIT ItemRightClick(row);
    }
}

void ctlListView::onNotify(ListNotifyEvent &notify, bool &bHandled, qintptr &)
{
    switch (notify.code) {
    case ListNotifyEvent::HeaderItemClick:
        if (Count() > 1) {
            SortByColumn(notify.Item, false);
            m_sortedColumn = -1;
        }
        break;
    case ListNotifyEvent::HeaderItemChanged:
        if (m_viewMode == 1)
            Q_EMIT ColumnResize(notify.Item);
        break;
    case ListNotifyEvent::GetInfoTip: {
        const int row = notify.Item;
        const QString tip
            = ComposeTipText(ItemText(row, 0), ItemText(row, 1), ItemText(row, 2), ItemText(row, 3));
        if (!tip.isEmpty())
            notify.TipText = TipBufferText(tip);
        bHandled = true;
        break;
    }
    case ListNotifyEvent::ItemChanged:
        if (notify.OldState == 0 && (notify.NewState & kStateSelected))
            Q_EMIT ItemClick(notify.Item);
        m_itemIndex = notify.Item;
        break;
    case ListNotifyEvent::SetFocus:
        OnListActivate();
        break;
    case ListNotifyEvent::DblClick:
    case ListNotifyEvent::RDblClick: {
        const int row = rowAt(viewOf(notify.from), notify.Position);
        if (row != -1)
            Q_EMIT ItemDblClick(row);
        break;
    }
    }
}

void ctlListView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    Q_EMIT Resize();
}

bool ctlListView::acceptsDrag(const QMimeData *data) const
{
    if (m_dropMode != 1 || !data || !data->hasUrls())
        return false;
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); });
}

void ctlListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (acceptsDrag(event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void ctlListView::dragMoveEvent(QDragMoveEvent *event)
{
    if (acceptsDrag(event->mimeData()))
        event->acceptProposedAction();
    else
        event->ignore();
}

void ctlListView::dropEvent(QDropEvent *event)
{
    if (!acceptsDrag(event->mimeData())) {
        event->ignore();
        return;
    }
    int Effect = DropEffectOf(event->possibleActions());
    int Button = ButtonState(event->buttons());
    int Shift = ShiftState(event->modifiers());
    float x = float(event->position().x());
    float y = float(event->position().y());
    Q_EMIT OLEDragDrop(event->mimeData(), Effect, Button, Shift, x, y);
    // The handler leaves the effects it takes; the first of copy, move and link is the action.
    const Qt::DropAction action = DropActionOf(Effect);
    if (action == Qt::IgnoreAction) {
        event->ignore();
        return;
    }
    event->setDropAction(action);
    event->accept();
}

} // namespace qb::controls
