// Snapping the window to the work area's edges.
#include "workbench/window_docking.h"

namespace qb::workbench {

QPoint DockedPosition(const QRect &window, const QSize &screen, const QRect &workArea)
{
    const int t = kDockThreshold;
    const int left = window.x();
    const int top = window.y();
    QPoint docked = window.topLeft();

    const int l = workArea.left() == 0 ? 0 : workArea.left();
    if (left < t + l)
        docked.setX(l);
    // A panel on the left leaves the right edge at the screen's edge.
    const int r = workArea.left() == 0 ? screen.width() - (workArea.x() + workArea.width()) : 0;
    if (left > screen.width() - window.width() - r - t)
        docked.setX(screen.width() - window.width() - r);

    const int u = workArea.top() == 0 ? 0 : workArea.top();
    if (top < t + u)
        docked.setY(u);
    const int b = workArea.top() == 0 ? screen.height() - (workArea.y() + workArea.height()) : 0;
    if (top > screen.height() - window.height() - b - t)
        docked.setY(screen.height() - window.height() - b);
    return docked;
}

} // namespace qb::workbench
