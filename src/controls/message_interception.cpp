// The event filter behind the interception contract.
#include "controls/message_interception.h"

#include <algorithm>

namespace qb::controls {

class MessageInterception::Filter : public QObject
{
public:
    Filter(MessageInterception &owner, int slot)
        : m_owner(owner)
        , m_slot(slot)
    { }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (m_delivering || !m_owner.hooked(m_slot, this, watched))
            return false;
        return m_owner.dispatch(m_slot, this, watched, event);
    }

private:
    friend class MessageInterception;
    MessageInterception &m_owner;
    int m_slot;
    bool m_delivering = false; // the window's own handling runs inside the filter
};

MessageInterception::MessageInterception() = default;

MessageInterception::~MessageInterception()
{
    zTerminate();
}

bool MessageInterception::matches(int count, const std::vector<int> &table, int uMsg)
{
    if (count == 0)
        return false;
    if (count == ALL_MESSAGES)
        return true;
    return std::find(table.begin(), table.begin() + std::min<size_t>(size_t(count), table.size()), uMsg)
        != table.begin() + std::min<size_t>(size_t(count), table.size());
}

MessageInterception::SubclassEntry *MessageInterception::hooked(
    int slot, const Filter *filter, const QObject *watched)
{
    if (slot < 0 || slot >= int(m_entries.size()))
        return nullptr;
    SubclassEntry &entry = m_entries[size_t(slot)];
    return entry.filter == filter && entry.hWnd == watched ? &entry : nullptr;
}

bool MessageInterception::dispatch(int slot, Filter *filter, QObject *watched, QEvent *event)
{
    int uMsg = int(event->type());
    const SubclassEntry *entry = hooked(slot, filter, watched);
    const bool before = matches(entry->BeforeCount, entry->BeforeTable, uMsg);
    const bool after = matches(entry->AfterCount, entry->AfterTable, uMsg);
    if (!before && !after)
        return false;
    bool bHandled = false;
    qintptr lReturn = 0;
    qintptr lParam = 0;
    ++m_dispatching;
    if (before)
        zSubclass_Proc(true, bHandled, lReturn, watched, uMsg, event, lParam);
    bool consumed = bHandled;
    if (!bHandled && after) {
        // The window's own handling now, so that the after pass sees its result.
        filter->m_delivering = true;
        lReturn = watched->event(event) ? 1 : 0;
        filter->m_delivering = false;
        consumed = true;
        // The callback or the window may have unhooked it meanwhile.
        entry = hooked(slot, filter, watched);
        if (entry && matches(entry->AfterCount, entry->AfterTable, int(event->type())))
            zSubclass_Proc(false, bHandled, lReturn, watched, uMsg, event, lParam);
    }
    --m_dispatching;
    return consumed;
}

void MessageInterception::release(SubclassEntry &entry)
{
    // Counts first, so that a message arriving meanwhile goes straight to the window.
    entry.AfterCount = 0;
    entry.BeforeCount = 0;
    if (entry.filter) {
        if (entry.hWnd)
            entry.hWnd->removeEventFilter(entry.filter);
        if (m_dispatching > 0)
            entry.filter->deleteLater();
        else
            delete entry.filter;
    }
    entry = SubclassEntry {};
}

int MessageInterception::zIdx(QObject *hWnd, bool add)
{
    for (int i = int(m_entries.size()) - 1; i >= 0; --i) {
        QObject *slotWindow = m_entries[size_t(i)].hWnd;
        if (add ? slotWindow == nullptr : (hWnd != nullptr && slotWindow == hWnd))
            return i;
    }
    if (!add)
        return -1;
    m_entries.emplace_back();
    return int(m_entries.size()) - 1;
}

bool MessageInterception::zSubclass(QObject *hWnd)
{
    if (!hWnd)
        return false;
    if (zIdx(hWnd, false) >= 0)
        return true;
    const int slot = zIdx(hWnd, true);
    SubclassEntry &entry = m_entries[size_t(slot)];
    release(entry); // a slot freed by its window's end still has its filter
    entry.hWnd = hWnd;
    entry.filter = new Filter(*this, slot);
    hWnd->installEventFilter(entry.filter);
    return true;
}

void MessageInterception::addTo(int &count, std::vector<int> &table, int uMsg)
{
    if (uMsg == ALL_MESSAGES) {
        count = ALL_MESSAGES;
        return;
    }
    if (count == ALL_MESSAGES)
        return; // everything matches already
    for (int i = 0; i < count; ++i) {
        if (table[size_t(i)] == uMsg)
            return;
        if (table[size_t(i)] == 0) {
            table[size_t(i)] = uMsg;
            return;
        }
    }
    table.resize(size_t(count) + 1);
    table[size_t(count)] = uMsg;
    ++count;
}

bool MessageInterception::removeFrom(int &count, std::vector<int> &table, int uMsg)
{
    if (count == ALL_MESSAGES && uMsg == ALL_MESSAGES) {
        count = int(std::count_if(table.begin(), table.end(), [](int m) { return m != 0; }));
        table.erase(std::remove(table.begin(), table.end(), 0), table.end());
        return true;
    }
    for (int i = 0; i < std::max(count, 0); ++i) {
        if (table[size_t(i)] == uMsg) {
            table[size_t(i)] = 0; // the slot is reused by the next add
            return true;
        }
    }
    return false;
}

void MessageInterception::zAddMsg(QObject *hWnd, int uMsg, int When)
{
    const int slot = zIdx(hWnd, false);
    if (slot < 0)
        return;
    SubclassEntry &entry = m_entries[size_t(slot)];
    if (When & MSG_BEFORE)
        addTo(entry.BeforeCount, entry.BeforeTable, uMsg);
    if (When & MSG_AFTER)
        addTo(entry.AfterCount, entry.AfterTable, uMsg);
}

bool MessageInterception::zDelMsg(QObject *hWnd, int uMsg, int When)
{
    const int slot = zIdx(hWnd, false);
    if (slot < 0)
        return false;
    SubclassEntry &entry = m_entries[size_t(slot)];
    bool found = false;
    if (When & MSG_BEFORE)
        found = removeFrom(entry.BeforeCount, entry.BeforeTable, uMsg) || found;
    if (When & MSG_AFTER)
        found = removeFrom(entry.AfterCount, entry.AfterTable, uMsg) || found;
    return found;
}

void MessageInterception::zUnSubclass(QObject *hWnd)
{
    const int slot = zIdx(hWnd, false);
    if (slot >= 0)
        release(m_entries[size_t(slot)]);
}

void MessageInterception::zTerminate()
{
    for (int i = int(m_entries.size()) - 1; i >= 0; --i)
        release(m_entries[size_t(i)]);
}

int MessageInterception::beforeCount(QObject *hWnd)
{
    const int slot = zIdx(hWnd, false);
    return slot < 0 ? 0 : m_entries[size_t(slot)].BeforeCount;
}

int MessageInterception::afterCount(QObject *hWnd)
{
    const int slot = zIdx(hWnd, false);
    return slot < 0 ? 0 : m_entries[size_t(slot)].AfterCount;
}

} // namespace qb::controls
