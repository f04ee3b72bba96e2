// Row state changes of the list, gathered per gesture.
#include "controls/list_view_state.h"

#include <vector>

namespace qb::controls {

ListStateTracker::ListStateTracker(QItemSelectionModel *selection, Notify notify, QObject *parent)
    : QObject(parent)
    , m_selection(selection)
    , m_notify(std::move(notify))
{
    connect(m_selection, &QItemSelectionModel::currentChanged, this,
        [this](const QModelIndex &current, const QModelIndex &) { onCurrentChanged(current); });
    connect(m_selection, &QItemSelectionModel::selectionChanged, this, &ListStateTracker::onSelectionChanged);
    m_reportedFocus = currentRow();
}

bool ListStateTracker::selected(int row) const
{
    const QAbstractItemModel *model = m_selection->model();
    return model && row >= 0 && row < model->rowCount() && m_selection->isSelected(model->index(row, 0));
}

int ListStateTracker::currentRow() const
{
    const QModelIndex current = m_selection->currentIndex();
    return current.isValid() ? current.row() : -1;
}

int ListStateTracker::state(int row) const
{
    return (selected(row) ? kStateSelected : 0) | (row >= 0 && row == currentRow() ? kStateFocused : 0);
}

void ListStateTracker::begin()
{
    ++m_depth;
}

void ListStateTracker::end()
{
    if (m_depth > 0 && --m_depth == 0)
        flush();
}

void ListStateTracker::mute()
{
    ++m_muted;
}

void ListStateTracker::unmute()
{
    if (m_muted > 0 && --m_muted == 0) {
        m_pending.clear();
        m_reportedFocus = currentRow();
    }
}

void ListStateTracker::touch(int row, int oldState)
{
    if (row >= 0)
        m_pending.try_emplace(row, oldState);
}

void ListStateTracker::onCurrentChanged(const QModelIndex &current)
{
    if (m_muted > 0)
        return;
    // Selection changes of the same gesture come after this one, so "selected" is still the
    // state before it unless the row was touched already.
    if (m_reportedFocus >= 0)
        touch(m_reportedFocus, (selected(m_reportedFocus) ? kStateSelected : 0) | kStateFocused);
    if (current.isValid()) {
        const int row = current.row();
        touch(row, (selected(row) ? kStateSelected : 0) | (row == m_reportedFocus ? kStateFocused : 0));
    }
    if (m_depth == 0)
        flush();
}

void ListStateTracker::onSelectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    if (m_muted > 0)
        return;
    const auto touchAll = [this](const QItemSelection &ranges, int selectedBefore) {
        for (const QItemSelectionRange &range : ranges) {
            for (int row = range.top(); row <= range.bottom(); ++row)
                touch(row, selectedBefore | (row == m_reportedFocus ? kStateFocused : 0));
        }
    };
    touchAll(selected, 0);
    touchAll(deselected, kStateSelected);
    if (m_depth == 0)
        flush();
}

void ListStateTracker::flush()
{
    if (m_pending.empty())
        return;
    const int focus = currentRow();
    std::map<int, int> pending;
    pending.swap(m_pending);
    m_reportedFocus = focus;
    std::vector<std::pair<int, int>> order(pending.begin(), pending.end());
    // The focused row last, so that the last report names the row the user is on.
    const auto focused = pending.find(focus);
    if (focused != pending.end()) {
        order.erase(order.begin() + std::distance(pending.begin(), focused));
        order.emplace_back(focused->first, focused->second);
    }
    for (const auto &[row, before] : order) {
        const int after = state(row);
        if (after != before && m_notify)
            m_notify(row, before, after);
    }
}

} // namespace qb::controls
