// ctlButton and its host window: interception of both, the window's size limits, the bars that
// move and size the window through the window system, and the host's events with their status texts.
#include "controls/ctl_button.h"

#include "controls/button_painter.h"

#include <QMouseEvent>
#include <QTimer>
#include <QWindow>
#include <QWindowStateChangeEvent>

#include <array>

namespace qb::controls {

namespace {

// What the host window is asked for: sizing, moving, activation, its state, and its showing (when
// the limits are given to the window system again).
constexpr std::array<QEvent::Type, 5> kHostAfter {QEvent::Resize, QEvent::Move, QEvent::WindowActivate,
    QEvent::WindowDeactivate, QEvent::WindowStateChange};

bool isBar(int mode)
{
    return mode == ctlButton::ucModeStatusBar || mode == ctlButton::ucModeDragBar;
}

} // namespace

bool ctlButton::event(QEvent *event)
{
    if (event->type() == QEvent::ParentChange && m_intercepting) {
        // A new container may mean a new host window.
        stopInterception();
        startInterception();
    }
    return QWidget::event(event);
}

void ctlButton::startInterception()
{
    if (m_intercepting)
        return;
    m_intercepting = true;
    Q_EMIT Status(QStringLiteral("Initailizing Subclassing"));
    zSubclass(this);
    zAddMsg(this, QEvent::MouseMove, MSG_AFTER);
    zAddMsg(this, QEvent::MouseButtonPress, MSG_BEFORE);
    QWidget *host = window();
    m_host = host != this ? host : nullptr;
    if (m_host) {
        zSubclass(m_host);
        for (const QEvent::Type type : kHostAfter)
            zAddMsg(m_host, type, MSG_AFTER);
        zAddMsg(m_host, QEvent::Show, MSG_BEFORE);
    }
    applySizeLimits();
}

void ctlButton::stopInterception()
{
    if (!m_intercepting)
        return;
    Q_EMIT Status(QStringLiteral("Terminating Subclassing"));
    m_intercepting = false;
    applySizeLimits(); // gives the host its own limits back
    zTerminate();
    m_host = nullptr;
    m_sizeMoveEnd->stop();
    m_sizing = false;
    m_moving = false;
    unsetCursor();
}

void ctlButton::applySizeLimits()
{
    QWidget *host = m_host;
    if (!host)
        return;
    if (m_intercepting && m_p.WindowSizeLimit) {
        if (!m_limitsSaved) {
            m_savedMinimum = host->minimumSize();
            m_savedMaximum = host->maximumSize();
            m_limitsSaved = true;
        }
        // The tracking sizes only; the maximised size and position stay the system's.
        host->setMaximumSize(m_p.WindowSizeMaxWidth, m_p.WindowSizeMaxHeight);
        host->setMinimumSize(m_p.WindowSizeMinWidth, m_p.WindowSizeMinHeight);
    } else if (m_limitsSaved) {
        host->setMinimumSize(m_savedMinimum);
        host->setMaximumSize(m_savedMaximum);
        m_limitsSaved = false;
    }
}

bool ctlButton::overGrip(const QPoint &at) const
{
    return m_p.StatusBarResize && !hostMaximized() && at.x() >= GripRect(size()).left();
}

bool ctlButton::requestSystemMove(QWidget *host)
{
    QWindow *handle = host ? host->windowHandle() : nullptr;
    return handle && handle->startSystemMove();
}

bool ctlButton::requestSystemResize(QWidget *host, Qt::Edges edges)
{
    QWindow *handle = host ? host->windowHandle() : nullptr;
    return handle && handle->startSystemResize(edges);
}

void ctlButton::hostSizeMove(bool sizing)
{
    if (sizing)
        m_sizing = true;
    else
        m_moving = true;
    m_sizeMoveEnd->start();
}

void ctlButton::endSizeMove()
{
    // The window system tells no end of its move or resize: a pause in the host's events is taken
    // for it.
    const bool sized = m_sizing;
    m_sizing = false;
    m_moving = false;
    Q_EMIT ExitSizeMove();
    Q_EMIT Status(
        QStringLiteral("Completed ") + (sized ? QStringLiteral("sizing.") : QStringLiteral("moving.")));
    if (sized)
        Q_EMIT ExitSized();
}

void ctlButton::zSubclass_Proc(bool bBefore, bool &bHandled, qintptr &lReturn, QObject *lng_hWnd, int &uMsg,
    QEvent *wParam, qintptr &lParam)
{
    Q_UNUSED(lReturn)
    Q_UNUSED(lParam)
    if (lng_hWnd == this) {
        auto *mouse = static_cast<QMouseEvent *>(wParam);
        const QPoint at = mouse->position().toPoint();
        if (uMsg == QEvent::MouseMove && !bBefore && isBar(m_p.Mode) && mouse->buttons() == Qt::NoButton) {
            if (overGrip(at))
                setCursor(Qt::SizeFDiagCursor);
            else
                unsetCursor();
        } else if (uMsg == QEvent::MouseButtonPress && bBefore) {
            if (!window()->isActiveWindow()) {
                Q_EMIT MouseActivate();
                Q_EMIT Status(QStringLiteral("Mouse Activate"));
            }
            if (isBar(m_p.Mode) && mouse->button() == Qt::LeftButton && m_host) {
                // The window system moves or sizes the window from here on; the press is its.
                const bool grip = overGrip(at);
                const bool taken = grip ? requestSystemResize(m_host, Qt::BottomEdge | Qt::RightEdge)
                                        : requestSystemMove(m_host);
                if (taken) {
                    hostSizeMove(grip);
                    bHandled = true;
                }
            }
        }
        return;
    }
    if (lng_hWnd != m_host)
        return;
    switch (uMsg) {
    case QEvent::Show:
        applySizeLimits();
        break;
    case QEvent::Resize:
        Q_EMIT Resize();
        Q_EMIT Status(QStringLiteral("Form is sizing..."));
        hostSizeMove(true);
        break;
    case QEvent::Move:
        Q_EMIT Status(QStringLiteral("Form is moving..."));
        Q_EMIT WindowPosChanged();
        Q_EMIT Status(QStringLiteral("Window Position Changed"));
        Q_EMIT Status(QStringLiteral("Form is move..."));
        hostSizeMove(false);
        break;
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
        Q_EMIT WindowActivated(uMsg == QEvent::WindowActivate);
        break;
    case QEvent::WindowStateChange: {
        const Qt::WindowStates before = static_cast<QWindowStateChangeEvent *>(wParam)->oldState();
        const Qt::WindowStates now = m_host->windowState();
        if ((now & Qt::WindowMinimized) && !(before & Qt::WindowMinimized)) {
            Q_EMIT WindowMINIMIZE();
            Q_EMIT Status(QStringLiteral("Window MINIMIZE"));
        } else if ((now & Qt::WindowMaximized) && !(before & Qt::WindowMaximized)) {
            Q_EMIT WindowMAXIMIZE();
            Q_EMIT Status(QStringLiteral("Window MAXIMIZE"));
            Q_EMIT ExitSized();
        }
        if (m_p.Mode == ucModeStatusBar && m_p.StatusBarResize)
            rerender(QStringLiteral("WindowState")); // the grip comes and goes
        break;
    }
    default:
        break;
    }
}

bool ctlButton::IsLayeredWindow(QWidget *hwnd) const
{
    return hwnd && hwnd->window()->property("qbLayered").toBool();
}

void ctlButton::SetLayeredWindow(QWidget *hwnd, bool bIsLayered, int Alpha)
{
    if (!hwnd)
        return;
    QWidget *top = hwnd->window();
    top->setProperty("qbLayered", bIsLayered);
    top->setWindowOpacity(bIsLayered ? std::clamp(Alpha, 0, 255) / 255.0 : 1.0);
}

} // namespace qb::controls
