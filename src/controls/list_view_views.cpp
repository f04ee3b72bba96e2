// The report and thumbnail views of the list window.
#include "controls/list_view_views.h"

#include "controls/list_view_notify.h"
#include "controls/list_view_state.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QToolTip>

namespace qb::controls {

template<class View>
ListWindowView<View>::ListWindowView(ListFace face, QWidget *control, QWidget *parent)
    : View(parent)
    , m_face(face)
    , m_control(control)
{ }

template<class View>
void ListWindowView<View>::mousePressEvent(QMouseEvent *event)
{
    ListStateTracker::Gesture gesture(m_tracker);
    View::mousePressEvent(event);
}

template<class View>
void ListWindowView<View>::mouseMoveEvent(QMouseEvent *event)
{
    ListStateTracker::Gesture gesture(m_tracker);
    View::mouseMoveEvent(event);
}

template<class View>
void ListWindowView<View>::mouseReleaseEvent(QMouseEvent *event)
{
    ListStateTracker::Gesture gesture(m_tracker);
    View::mouseReleaseEvent(event);
}

template<class View>
void ListWindowView<View>::mouseDoubleClickEvent(QMouseEvent *event)
{
    {
        ListStateTracker::Gesture gesture(m_tracker);
        View::mouseDoubleClickEvent(event);
    }
    const bool right = event->button() == Qt::RightButton;
    if (!right && event->button() != Qt::LeftButton)
        return;
    ListNotifyEvent notify(right ? ListNotifyEvent::RDblClick : ListNotifyEvent::DblClick, this);
    notify.Position = event->position().toPoint();
    QCoreApplication::sendEvent(m_control, &notify);
}

template<class View>
void ListWindowView<View>::keyPressEvent(QKeyEvent *event)
{
    ListStateTracker::Gesture gesture(m_tracker);
    View::keyPressEvent(event);
}

template<class View>
void ListWindowView<View>::focusInEvent(QFocusEvent *event)
{
    View::focusInEvent(event);
    this->viewport()->update(); // a hidden selection shows again
    ListNotifyEvent notify(ListNotifyEvent::SetFocus, this);
    QCoreApplication::sendEvent(m_control, &notify);
}

template<class View>
void ListWindowView<View>::focusOutEvent(QFocusEvent *event)
{
    View::focusOutEvent(event);
    this->viewport()->update();
}

template<class View>
bool ListWindowView<View>::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        showTip(static_cast<QHelpEvent *>(event));
        return true;
    }
    return View::viewportEvent(event);
}

template<class View>
void ListWindowView<View>::showTip(QHelpEvent *event)
{
    const QModelIndex index = this->indexAt(event->pos());
    if (!index.isValid()) {
        QToolTip::hideText();
        event->ignore();
        return;
    }
    QString tip;
    if (m_face == ListFace::Thumbnails) {
        ListNotifyEvent notify(ListNotifyEvent::GetInfoTip, this);
        notify.Item = index.row();
        QCoreApplication::sendEvent(m_control, &notify);
        tip = notify.TipText;
        tip.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    } else {
        // A label cut short unfolds in the tip; one that fits needs none.
        const QString text = index.data(Qt::DisplayRole).toString();
        int room = this->visualRect(index).width()
            - 2 * (this->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
        if (!index.data(Qt::DecorationRole).isNull())
            room -= this->iconSize().width() + 4;
        if (this->fontMetrics().horizontalAdvance(text) > room)
            tip = text;
    }
    if (tip.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
        return;
    }
    QToolTip::showText(event->globalPos(), tip, this->viewport(), this->visualRect(index));
}

template class ListWindowView<QTableView>;
template class ListWindowView<QListView>;

} // namespace qb::controls
