// The per-row state of the list (focused, selected) as the list reports it: one change a row from
// its state before a gesture to its state after, where the selection model reports the focus and
// the selection apart. A click on a new row is thus one change from nothing to focused and
// selected, which is what the control's ItemClick listens for.
#pragma once

#include <QItemSelection>
#include <QItemSelectionModel>
#include <QObject>

#include <functional>
#include <map>

namespace qb::controls {

// Row state bits, numbered as the list's interface numbers them.
inline constexpr int kStateFocused = 1;
inline constexpr int kStateSelected = 2;

class ListStateTracker : public QObject
{
public:
    using Notify = std::function<void(int row, int oldState, int newState)>;

    ListStateTracker(QItemSelectionModel *selection, Notify notify, QObject *parent = nullptr);

    // The row's state now (0 outside the rows).
    int state(int row) const;

    // A gesture: changes inside it are gathered and reported at its end, each touched row once,
    // the rows that lose state first and the focused row last. Gestures nest.
    void begin();
    void end();

    // Changes of the rows themselves (insertion, removal, clearing) report nothing; afterwards
    // the focused row is taken as it stands.
    void mute();
    void unmute();

    class Gesture
    {
    public:
        explicit Gesture(ListStateTracker *tracker)
            : m_tracker(tracker)
        {
            if (m_tracker)
                m_tracker->begin();
        }
        ~Gesture()
        {
            if (m_tracker)
                m_tracker->end();
        }
        Gesture(const Gesture &) = delete;
        Gesture &operator=(const Gesture &) = delete;

    private:
        ListStateTracker *m_tracker;
    };

private:
    bool selected(int row) const;
    int currentRow() const;
    void touch(int row, int oldState);
    void onCurrentChanged(const QModelIndex &current);
    void onSelectionChanged(const QItemSelection &selected, const QItemSelection &deselected);
    void flush();

    QItemSelectionModel *m_selection;
    Notify m_notify;
    std::map<int, int> m_pending; // row to its state before the gesture
    int m_depth = 0;
    int m_muted = 0;
    int m_reportedFocus = -1; // the focused row as last reported
};

} // namespace qb::controls
