// Test doubles for the multi-mode control: a control whose dialogs and window-system requests are
// answered by the test and whose ReDraw calls are logged, and a recorder of all its events in order.
#pragma once

#include "controls/ctl_button.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QStringList>

#include <ostream>

// Readable texts in the failure messages.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace qb::controls::testing {

class TestButton : public ctlButton
{
public:
    using ctlButton::ctlButton;

    QString SelectForFolder(QWidget *hwnd, const QString &Title, const QString &RootPath) override
    {
        dialogs.append(QStringLiteral("folder|%1|%2").arg(Title, RootPath));
        dialogHost = hwnd;
        return folderAnswer;
    }

    QStringList redraws; // the strStatus of every ReDraw that ran
    QList<double> valuesAtRedraw; // value at each of them
    QStringList dialogs; // "folder|title|root" or "file|title|folder|filter"
    QWidget *dialogHost = nullptr;
    QString folderAnswer;
    QString fileAnswer;
    QStringList systemRequests; // "move" or "resize:<edges>"
    bool windowSystemTakes = true;

    QString popupChoice; // the text of the menu item to choose
    QStringList popupItems; // "text", with [x] checked, [off] disabled, [default] bold, or "-"
    QPoint popupAt;

    int redrawsOf(const QString &status) const { return int(redraws.count(status)); }

protected:
    QString askOpenFileName(
        QWidget *host, const QString &title, const QString &folder, const QString &filter) override
    {
        dialogs.append(QStringLiteral("file|%1|%2|%3").arg(title, folder, filter));
        dialogHost = host;
        return fileAnswer;
    }
    bool requestSystemMove(QWidget *) override
    {
        systemRequests.append(QStringLiteral("move"));
        return windowSystemTakes;
    }
    bool requestSystemResize(QWidget *, Qt::Edges edges) override
    {
        systemRequests.append(QStringLiteral("resize:%1").arg(int(edges)));
        return windowSystemTakes;
    }
    QAction *execPopupMenu(QMenu &menu, const QPoint &globalPos) override
    {
        popupAt = globalPos;
        QAction *chosen = nullptr;
        for (QAction *action : menu.actions()) {
            if (action->isSeparator()) {
                popupItems << QStringLiteral("-");
                continue;
            }
            QString item = action->text();
            if (action->isChecked())
                item += QStringLiteral("[x]");
            if (!action->isEnabled())
                item += QStringLiteral("[off]");
            if (menu.defaultAction() == action)
                item += QStringLiteral("[default]");
            popupItems << item;
            if (action->text() == popupChoice)
                chosen = action;
        }
        return chosen;
    }
    void logRedraw(const QString &strStatus, bool) override
    {
        redraws.append(strStatus);
        valuesAtRedraw.append(value());
    }
};

// Every event of the control as "Name" or "Name(args)", in the order raised.
inline void RecordEvents(ctlButton &b, QStringList &log)
{
    auto num = [](auto v) { return QString::number(v); };
    QObject::connect(&b, &ctlButton::Click, [&log] { log << QStringLiteral("Click"); });
    QObject::connect(&b, &ctlButton::DblClick, [&log] { log << QStringLiteral("DblClick"); });
    QObject::connect(&b, &ctlButton::MouseEnter, [&log] { log << QStringLiteral("MouseEnter"); });
    QObject::connect(&b, &ctlButton::MouseLeave, [&log] { log << QStringLiteral("MouseLeave"); });
    QObject::connect(&b, &ctlButton::MouseDown, [&log, num](int button, int shift, float x, float y) {
        log << QStringLiteral("MouseDown(%1,%2,%3,%4)").arg(num(button), num(shift), num(x), num(y));
    });
    QObject::connect(&b, &ctlButton::MouseUp, [&log, num](int button, int shift, float x, float y) {
        log << QStringLiteral("MouseUp(%1,%2,%3,%4)").arg(num(button), num(shift), num(x), num(y));
    });
    QObject::connect(&b, &ctlButton::MouseWheel,
        [&log, num](int d) { log << QStringLiteral("MouseWheel(") + num(d) + u')'; });
    QObject::connect(&b, &ctlButton::MouseActivate, [&log] { log << QStringLiteral("MouseActivate"); });
    QObject::connect(&b, &ctlButton::KeyDown, [&log, num](int key, int shift) {
        log << QStringLiteral("KeyDown(%1,%2)").arg(num(key), num(shift));
    });
    QObject::connect(&b, &ctlButton::KeyPress,
        [&log, num](int key) { log << QStringLiteral("KeyPress(") + num(key) + u')'; });
    QObject::connect(&b, &ctlButton::KeyUp,
        [&log, num](int key, int shift) { log << QStringLiteral("KeyUp(%1,%2)").arg(num(key), num(shift)); });
    QObject::connect(&b, &ctlButton::ValueChange, [&log] { log << QStringLiteral("ValueChange"); });
    QObject::connect(&b, &ctlButton::CaptionChange, [&log] { log << QStringLiteral("CaptionChange"); });
    QObject::connect(&b, &ctlButton::SelectedChange, [&log] { log << QStringLiteral("SelectedChange"); });
    QObject::connect(&b, &ctlButton::InputError,
        [&log, num](int key) { log << QStringLiteral("InputError(") + num(key) + u')'; });
    QObject::connect(&b, qOverload<const QString &>(&ctlButton::Status),
        [&log](const QString &s) { log << QStringLiteral("Status(") + s + u')'; });
    QObject::connect(&b, &ctlButton::WindowPosChanged, [&log] { log << QStringLiteral("WindowPosChanged"); });
    QObject::connect(&b, &ctlButton::Resize, [&log] { log << QStringLiteral("Resize"); });
    QObject::connect(&b, &ctlButton::ExitSized, [&log] { log << QStringLiteral("ExitSized"); });
    QObject::connect(&b, &ctlButton::ExitSizeMove, [&log] { log << QStringLiteral("ExitSizeMove"); });
    QObject::connect(&b, &ctlButton::WindowActivated, [&log](bool on) {
        log << (on ? QStringLiteral("WindowActivated(1)") : QStringLiteral("WindowActivated(0)"));
    });
    QObject::connect(&b, &ctlButton::WindowMINIMIZE, [&log] { log << QStringLiteral("WindowMINIMIZE"); });
    QObject::connect(&b, &ctlButton::WindowMAXIMIZE, [&log] { log << QStringLiteral("WindowMAXIMIZE"); });
    QObject::connect(&b, &ctlButton::TimerInitailized, [&log] { log << QStringLiteral("TimerInitailized"); });
    QObject::connect(&b, &ctlButton::TimerElapsed,
        [&log, num](double t) { log << QStringLiteral("TimerElapsed(") + num(t) + u')'; });
    QObject::connect(&b, &ctlButton::TimerRemaining,
        [&log, num](double t) { log << QStringLiteral("TimerRemaining(") + num(t) + u')'; });
    QObject::connect(&b, &ctlButton::TimerTerminated, [&log] { log << QStringLiteral("TimerTerminated"); });
}

// Mouse events sent straight to a widget, through its event filters.
inline void SendMouse(QWidget *w, QEvent::Type type, Qt::MouseButton button, QPoint at,
    Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const Qt::MouseButtons held
        = type == QEvent::MouseButtonRelease ? Qt::MouseButtons() : Qt::MouseButtons(button);
    QMouseEvent event(type, QPointF(at), w->mapToGlobal(QPointF(at)), button, held, modifiers);
    QApplication::sendEvent(w, &event);
}

inline void SendClick(QWidget *w, Qt::MouseButton button, QPoint at)
{
    SendMouse(w, QEvent::MouseButtonPress, button, at);
    SendMouse(w, QEvent::MouseButtonRelease, button, at);
}

inline void SendEnter(QWidget *w, QPoint at)
{
    QEnterEvent event(QPointF(at), w->mapToGlobal(QPointF(at)), w->mapToGlobal(QPointF(at)));
    QApplication::sendEvent(w, &event);
}

inline void SendLeave(QWidget *w)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(w, &event);
}

} // namespace qb::controls::testing
