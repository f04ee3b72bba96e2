// Where the main window goes when a move or resize ends near the edges of the work area.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace qb::workbench {

inline constexpr int kDockThreshold = 30; // pixels

// The window's new top-left corner. screen: the whole screen's size; workArea: the part not
// taken by panels. An edge within the threshold (or beyond it) snaps to the work area; the right
// and bottom reserves count only when the work area starts at the screen's left or top edge.
QPoint DockedPosition(const QRect &window, const QSize &screen, const QRect &workArea);

} // namespace qb::workbench
