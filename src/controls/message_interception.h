// The interception contract of the controls: an owner hooks a window (any QObject), names the
// messages (event types) it wants to see before and/or after the window's own handling, and gets
// each of them through one callback, zSubclass_Proc. An event filter carries it: the before pass
// runs first and may mark the message handled, which keeps it from the window; otherwise the
// window handles it, and then the after pass sees the message and the window's result.
#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>

#include <vector>

namespace qb::controls {

// A message count of -1 matches every message.
inline constexpr int ALL_MESSAGES = -1;

// When a message is wanted: after the window's handling, before it, or both.
enum MsgWhen : int {
    MSG_AFTER = 1,
    MSG_BEFORE = 2,
    MSG_BEFORE_AND_AFTER = 3,
};

class MessageInterception
{
public:
    MessageInterception();
    virtual ~MessageInterception();
    MessageInterception(const MessageInterception &) = delete;
    MessageInterception &operator=(const MessageInterception &) = delete;

    // The one callback. bBefore: the before pass. bHandled (before pass): True keeps the message
    // from the window. lReturn: the result (the window's own: 1 when it handled the event).
    // lng_hWnd: the hooked window. uMsg: the event type. wParam: the event itself. lParam: 0.
    virtual void zSubclass_Proc(bool bBefore, bool &bHandled, qintptr &lReturn, QObject *lng_hWnd, int &uMsg,
        QEvent *wParam, qintptr &lParam)
        = 0;

    // Hooks a window; a window hooked already keeps its slot. False for no window.
    bool zSubclass(QObject *hWnd);
    // Adds a message (or ALL_MESSAGES) to the tables When names. Adding one twice keeps one entry.
    void zAddMsg(QObject *hWnd, int uMsg, int When);
    // Removes a message from the tables When names; false when it was in none of them.
    bool zDelMsg(QObject *hWnd, int uMsg, int When);
    // Unhooks a window and forgets its tables.
    void zUnSubclass(QObject *hWnd);
    // Unhooks every window, from the last slot to the first. The owner calls it before its
    // windows go; the destructor does it too.
    void zTerminate();
    // The slot of a window, or with add a free slot (or a new one at the end); searched from the
    // last slot to the first. -1 when there is none.
    int zIdx(QObject *hWnd, bool add);

    // The number of slots, free ones included, and the messages of a slot's tables, for checks.
    int slotCount() const { return int(m_entries.size()); }
    int beforeCount(QObject *hWnd);
    int afterCount(QObject *hWnd);

private:
    class Filter;
    struct SubclassEntry
    {
        QPointer<QObject> hWnd;
        Filter *filter = nullptr; // owned; let go through release()
        int AfterCount = 0;
        int BeforeCount = 0;
        std::vector<int> AfterTable;
        std::vector<int> BeforeTable;
    };

    static void addTo(int &count, std::vector<int> &table, int uMsg);
    static bool removeFrom(int &count, std::vector<int> &table, int uMsg);
    static bool matches(int count, const std::vector<int> &table, int uMsg);
    bool dispatch(int slot, Filter *filter, QObject *watched, QEvent *event);
    SubclassEntry *hooked(int slot, const Filter *filter, const QObject *watched);
    void release(SubclassEntry &entry);

    std::vector<SubclassEntry> m_entries;
    int m_dispatching = 0; // filters in use may not be deleted at once
};

} // namespace qb::controls
