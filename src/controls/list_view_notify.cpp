// The notification event of the list window.
#include "controls/list_view_notify.h"

namespace qb::controls {

ListNotifyEvent::ListNotifyEvent(Code what, QObject *sender)
    : QEvent(notifyType())
    , code(what)
    , from(sender)
{ }

QEvent::Type ListNotifyEvent::notifyType()
{
    static const QEvent::Type type = QEvent::Type(QEvent::registerEventType());
    return type;
}

} // namespace qb::controls
