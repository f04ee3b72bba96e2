// Painting the thumbnail cells and the report rows of the list.
#include "controls/list_view_delegates.h"

#include "controls/list_view_text.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <qdrawutil.h>

namespace qb::controls {

ThumbnailGeometry ThumbnailLayout(
    const QRect &iconRect, int thumbnailWidth, int thumbnailHeight, int labelHeight)
{
    ThumbnailGeometry g;
    const int left = iconRect.left() + 8;
    const int top = iconRect.top() + 4;
    g.frame = QRect(left, top, thumbnailWidth + 8, thumbnailHeight + 8);
    g.box = QRect(left + 4, top + 4, thumbnailWidth, thumbnailHeight);
    const int labelTop = top + thumbnailHeight + 8 + 2;
    g.label = QRect(left, labelTop, thumbnailWidth + 8, labelHeight + 4);
    g.text = g.label.adjusted(2, 0, -2, 0);
    return g;
}

ThumbnailLook ThumbnailLookFor(bool selected, bool focused)
{
    const bool active = selected && focused;
    ThumbnailLook look {};
    look.frameFill = active ? QPalette::Highlight : QPalette::Button;
    look.emptyText = active ? QPalette::HighlightedText : QPalette::ButtonText;
    look.labelFill = !selected ? QPalette::Base : (focused ? QPalette::Highlight : QPalette::Button);
    look.labelText
        = !selected ? QPalette::Text : (focused ? QPalette::HighlightedText : QPalette::ButtonText);
    look.focusRect = focused;
    return look;
}

ThumbnailDelegate::ThumbnailDelegate(ThumbnailSource &source, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_source(source)
{ }

void ThumbnailDelegate::paint(
    QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const int row = index.row();
    m_source.setLabelHeight(kThumbnailLabelHeight);
    const QSize thumb = m_source.thumbnailSize();
    const ThumbnailGeometry g
        = ThumbnailLayout(option.rect, thumb.width(), thumb.height(), m_source.labelHeight());
    const bool focused = option.state & QStyle::State_HasFocus;
    const ThumbnailLook look = ThumbnailLookFor(m_source.rowSelected(row), focused);
    const QPalette &palette = option.palette;

    painter->save();
    painter->fillRect(g.frame, palette.brush(look.frameFill));
    qDrawShadePanel(painter, g.frame, palette, false, 1, nullptr);

    bool missing = false;
    const QPixmap *picture = m_source.picture(row, missing);
    if (!missing) {
        if (picture && !picture->isNull()) {
            // Drawn at its own size from its top-left corner: thumbnails come made to measure.
            painter->drawPixmap(g.box, *picture, QRect(QPoint(0, 0), g.box.size()));
        } else {
            painter->setPen(palette.color(look.emptyText));
            painter->drawText(
                g.box, Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, QStringLiteral("Nothing"));
        }
    }

    painter->fillRect(g.label, palette.brush(look.labelFill));
    if (look.focusRect) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = g.label;
        focus.state |= QStyle::State_KeyboardFocusChange;
        focus.backgroundColor = palette.color(look.labelFill);
        const QWidget *widget = option.widget;
        QStyle *style = widget ? widget->style() : QApplication::style();
        style->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, widget);
    }
    painter->setPen(palette.color(look.labelText));
    painter->setFont(option.font);
    const QString name = PathPart(m_source.labelText(row), QStringLiteral("\\"), 1);
    const QString shown = option.fontMetrics.elidedText(name, Qt::ElideRight, g.text.width());
    painter->drawText(g.text, Qt::AlignHCenter | Qt::AlignTop | Qt::TextSingleLine | Qt::TextDontClip, shown);
    painter->restore();
}

QSize ThumbnailDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const
{
    return m_source.cellSize();
}

ReportDelegate::ReportDelegate(std::function<bool()> hideSelection, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_hideSelection(std::move(hideSelection))
{ }

void ReportDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (m_hideSelection && m_hideSelection() && option->widget && !option->widget->hasFocus())
        option->state &= ~QStyle::State_Selected;
}

} // namespace qb::controls
