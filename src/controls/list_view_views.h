// The two faces of the list window over one model: the report table and the thumbnail grid. Each
// gathers the state changes of a user gesture into one report a row, and tells the control of
// double clicks, focus and tips with notification events.
#pragma once

#include <QListView>
#include <QTableView>

namespace qb::controls {

class ListStateTracker;

enum class ListFace {
    Report, // tips unfold a cut label
    Thumbnails, // tips ask the control for the row's info tip
};

template<class View>
class ListWindowView : public View
{
public:
    ListWindowView(ListFace face, QWidget *control, QWidget *parent = nullptr);

    void setTracker(ListStateTracker *tracker) { m_tracker = tracker; }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    void showTip(QHelpEvent *event);

    ListFace m_face;
    QWidget *m_control; // gets the notifications
    ListStateTracker *m_tracker = nullptr;
};

using ReportView = ListWindowView<QTableView>;
using ThumbnailView = ListWindowView<QListView>;

extern template class ListWindowView<QTableView>;
extern template class ListWindowView<QListView>;

} // namespace qb::controls
