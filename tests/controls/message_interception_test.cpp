// The interception contract on real objects: the order of the passes, the handled rule, the
// tables, and hooking and unhooking.
#include "controls/message_interception.h"

#include <QCoreApplication>
#include <QStringList>
#include <QTimerEvent>

#include <gtest/gtest.h>

namespace qb::controls {
namespace {

// A window that counts the messages it handles itself.
class Window : public QObject
{
public:
    int handled = 0;

protected:
    bool event(QEvent *e) override
    {
        if (e->type() == QEvent::User || e->type() == QEvent::User + 1) {
            ++handled;
            return true;
        }
        return QObject::event(e);
    }
};

class Owner : public MessageInterception
{
public:
    void zSubclass_Proc(bool bBefore, bool &bHandled, qintptr &lReturn, QObject *lng_hWnd, int &uMsg,
        QEvent *wParam, qintptr &lParam) override
    {
        calls.append(QStringLiteral("%1:%2:%3")
                         .arg(bBefore ? QStringLiteral("before") : QStringLiteral("after"))
                         .arg(uMsg)
                         .arg(lReturn));
        EXPECT_EQ(wParam->type(), uMsg);
        EXPECT_EQ(lParam, 0);
        lastWindow = lng_hWnd;
        if (bBefore && handleBefore)
            bHandled = true;
        if (unhookInCallback)
            zUnSubclass(lng_hWnd);
    }

    QStringList calls;
    QObject *lastWindow = nullptr;
    bool handleBefore = false;
    bool unhookInCallback = false;
};

void send(QObject *to, int type)
{
    QEvent e {QEvent::Type(type)};
    QCoreApplication::sendEvent(to, &e);
}

const int kUser = QEvent::User;
const int kUnknown = 999; // a type no object handles

TEST(MessageInterception, BothTablesCallBeforeThenAfterWithTheWindowsResult)
{
    Window window;
    Owner owner;
    ASSERT_TRUE(owner.zSubclass(&window));
    owner.zAddMsg(&window, kUser, MSG_BEFORE_AND_AFTER);
    send(&window, kUser);
    EXPECT_EQ(owner.calls,
        (QStringList {QStringLiteral("before:%1:0").arg(kUser), QStringLiteral("after:%1:1").arg(kUser)}));
    EXPECT_EQ(window.handled, 1);
    EXPECT_EQ(owner.lastWindow, &window);
    // A message in no table goes to the window alone.
    send(&window, kUser + 1);
    EXPECT_EQ(owner.calls.size(), 2);
    EXPECT_EQ(window.handled, 2);
}

TEST(MessageInterception, HandledBeforeKeepsTheMessageFromTheWindow)
{
    Window window;
    Owner owner;
    owner.zSubclass(&window);
    owner.zAddMsg(&window, kUser, MSG_BEFORE_AND_AFTER);
    owner.handleBefore = true;
    send(&window, kUser);
    EXPECT_EQ(window.handled, 0);
    EXPECT_EQ(owner.calls, (QStringList {QStringLiteral("before:%1:0").arg(kUser)}));
}

TEST(MessageInterception, AfterOnlyAndBeforeOnly)
{
    Window window;
    Owner owner;
    owner.zSubclass(&window);
    owner.zAddMsg(&window, kUser, MSG_AFTER);
    owner.zAddMsg(&window, kUser + 1, MSG_BEFORE);
    send(&window, kUser);
    send(&window, kUser + 1);
    EXPECT_EQ(owner.calls,
        (QStringList {
            QStringLiteral("after:%1:1").arg(kUser), QStringLiteral("before:%1:0").arg(kUser + 1)}));
    EXPECT_EQ(window.handled, 2);
}

TEST(MessageInterception, TablesKeepOneEntryAndAllMessagesMatchesEverything)
{
    Window window;
    Owner owner;
    owner.zSubclass(&window);
    owner.zAddMsg(&window, kUser, MSG_BEFORE);
    owner.zAddMsg(&window, kUser, MSG_BEFORE);
    EXPECT_EQ(owner.beforeCount(&window), 1);
    owner.zAddMsg(&window, kUser + 1, MSG_BEFORE);
    EXPECT_EQ(owner.beforeCount(&window), 2);
    EXPECT_TRUE(owner.zDelMsg(&window, kUser, MSG_BEFORE));
    EXPECT_FALSE(owner.zDelMsg(&window, kUser, MSG_BEFORE));
    send(&window, kUser);
    EXPECT_TRUE(owner.calls.isEmpty());
    // The freed entry is used again.
    owner.zAddMsg(&window, kUser + 2, MSG_BEFORE);
    EXPECT_EQ(owner.beforeCount(&window), 2);

    owner.zAddMsg(&window, ALL_MESSAGES, MSG_AFTER);
    EXPECT_EQ(owner.afterCount(&window), ALL_MESSAGES);
    send(&window, kUser);
    send(&window, kUnknown);
    EXPECT_EQ(owner.calls,
        (QStringList {QStringLiteral("after:%1:1").arg(kUser), QStringLiteral("after:%1:0").arg(kUnknown)}));
}

TEST(MessageInterception, SlotsAreKeptReusedAndReleased)
{
    Window a;
    Window b;
    Owner owner;
    owner.zSubclass(&a);
    owner.zSubclass(&a);
    EXPECT_EQ(owner.slotCount(), 1);
    owner.zSubclass(&b);
    EXPECT_EQ(owner.zIdx(&b, false), 1);
    owner.zUnSubclass(&a);
    EXPECT_EQ(owner.zIdx(&a, false), -1);
    EXPECT_EQ(owner.zIdx(nullptr, true), 0); // the free slot
    {
        Window c;
        owner.zSubclass(&c);
        EXPECT_EQ(owner.zIdx(&c, false), 0);
    }
    // A window that went away leaves a free slot.
    EXPECT_EQ(owner.zIdx(nullptr, true), 0);
    owner.zAddMsg(&b, kUser, MSG_AFTER);
    owner.zTerminate();
    send(&b, kUser);
    EXPECT_TRUE(owner.calls.isEmpty());
    EXPECT_EQ(b.handled, 1);
    EXPECT_FALSE(owner.zSubclass(nullptr));
}

TEST(MessageInterception, UnhookingInsideTheCallbackIsSafe)
{
    Window window;
    Owner owner;
    owner.zSubclass(&window);
    owner.zAddMsg(&window, kUser, MSG_BEFORE_AND_AFTER);
    owner.unhookInCallback = true;
    send(&window, kUser);
    // The before pass unhooked it: the window still handles the message, no after pass follows.
    EXPECT_EQ(owner.calls.size(), 1);
    EXPECT_EQ(window.handled, 1);
    send(&window, kUser);
    EXPECT_EQ(owner.calls.size(), 1);
}

} // namespace
} // namespace qb::controls
