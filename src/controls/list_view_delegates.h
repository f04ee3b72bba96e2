// The painters of the list's items: the thumbnail cell (a framed picture over a one-line label,
// "Nothing" for an empty picture) and the report row that can hide its selection.
#pragma once

#include <QPalette>
#include <QPixmap>
#include <QRect>
#include <QStyledItemDelegate>

#include <functional>

namespace qb::controls {

// Where the parts of a thumbnail cell go, from the cell's icon rectangle.
struct ThumbnailGeometry
{
    QRect frame; // the raised frame around the picture
    QRect box; // the picture box, ThumbnailWidth by ThumbnailHeight
    QRect label; // the label under the frame
    QRect text; // the label's text, 2 pixels in from each side
};

ThumbnailGeometry ThumbnailLayout(
    const QRect &iconRect, int thumbnailWidth, int thumbnailHeight, int labelHeight);

// The palette roles of a thumbnail cell: window background and text for a plain cell, highlight
// for a selected cell of the focused row, button face for a selection without focus.
struct ThumbnailLook
{
    QPalette::ColorRole frameFill;
    QPalette::ColorRole emptyText; // the word "Nothing"
    QPalette::ColorRole labelFill;
    QPalette::ColorRole labelText;
    bool focusRect;
};

ThumbnailLook ThumbnailLookFor(bool selected, bool focused);

// The label text height the painter uses, in pixels.
inline constexpr int kThumbnailLabelHeight = 13;

// What the thumbnail painter reads of the control.
class ThumbnailSource
{
public:
    virtual ~ThumbnailSource() = default;
    virtual QSize thumbnailSize() const = 0;
    virtual QSize cellSize() const = 0;
    virtual void setLabelHeight(int height) = 0;
    virtual int labelHeight() const = 0;
    // The row's picture; missing when the row has no picture slot at all (nothing is drawn then),
    // nullptr or a null pixmap for an empty one.
    virtual const QPixmap *picture(int row, bool &missing) const = 0;
    virtual QString labelText(int row) const = 0;
    virtual bool rowSelected(int row) const = 0;
};

class ThumbnailDelegate : public QStyledItemDelegate
{
public:
    explicit ThumbnailDelegate(ThumbnailSource &source, QObject *parent = nullptr);

    void paint(
        QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    ThumbnailSource &m_source;
};

// Report rows; with hideSelection true, a list without the focus shows no selection.
class ReportDelegate : public QStyledItemDelegate
{
public:
    explicit ReportDelegate(std::function<bool()> hideSelection, QObject *parent = nullptr);

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    std::function<bool()> m_hideSelection;
};

} // namespace qb::controls
