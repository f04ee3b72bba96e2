// The character a key types.
#include "controls/button_keys.h"

#include <QKeyEvent>

namespace qb::controls {

int KeyAsciiOf(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Tab:
        return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Escape:
        return 27;
    default:
        break;
    }
    const QString text = event.text();
    if (text.isEmpty())
        return 0;
    return text.at(0).unicode();
}

} // namespace qb::controls
