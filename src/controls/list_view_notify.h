// What the list window and its header tell the control: one event type, sent to the control's
// own widget, so that the control hears them through its message interception as a window hears
// its children's notifications.
#pragma once

#include <QEvent>
#include <QPoint>
#include <QString>

class QObject;

namespace qb::controls {

class ListNotifyEvent : public QEvent
{
public:
    enum Code {
        ItemChanged, // a row's state bits changed: Item, OldState, NewState
        GetInfoTip, // the list wants the tip of Item: the handler fills TipText
        DblClick, // a double click with the left button at Position
        RDblClick, // the same with the right button
        SetFocus, // the list got the focus
        HeaderItemClick, // a click on header item Item
        HeaderItemChanged, // header item Item changed (its width)
    };

    ListNotifyEvent(Code what, QObject *sender);

    // The event type, registered once.
    static QEvent::Type notifyType();

    Code code;
    QObject *from; // the list window or the header
    int Item = -1;
    int OldState = 0;
    int NewState = 0;
    QPoint Position; // in the list's viewport
    QString TipText;
};

} // namespace qb::controls
