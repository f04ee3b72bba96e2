// Test doubles for the multi-mode control: a control whose dialogs and window-system requests are
// answered by the test and whose ReDraw calls are logged, a recorder of all its events in order, and
// the one table of its stored defaults.
#pragma once

#include "controls/ctl_button.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QStringList>

#include <ostream>
#include <utility>
#include <vector>

// Readable texts in the failure messages.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace qb::controls::testing {

using namespace Qt::StringLiterals;

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

// An event's arguments as the log writes them.
inline QString EventArgument(int v)
{
    return QString::number(v);
}
inline QString EventArgument(double v)
{
    return QString::number(v);
}
inline QString EventArgument(const QString &v)
{
    return v;
}

template<typename... Args>
void RecordEvent(ctlButton &b, QStringList &log, const char *name, void (ctlButton::*signal)(Args...))
{
    QObject::connect(&b, signal, [&log, name](Args... args) {
        const QStringList parts {EventArgument(args)...};
        const QString text = QString::fromLatin1(name);
        log << (parts.isEmpty() ? text : text + u'(' + parts.join(u',') + u')');
    });
}

inline void RecordEventList(ctlButton &, QStringList &) { }

template<typename Signal, typename... Rest>
void RecordEventList(ctlButton &b, QStringList &log, const char *name, Signal signal, Rest... rest)
{
    RecordEvent(b, log, name, signal);
    RecordEventList(b, log, rest...);
}

// Every event of the control as "Name" or "Name(args)", in the order raised.
inline void RecordEvents(ctlButton &b, QStringList &log)
{
    using B = ctlButton;
    RecordEventList(b, log, "Click", &B::Click, "DblClick", &B::DblClick, "MouseEnter", &B::MouseEnter,
        "MouseMove", &B::MouseMove, "MouseLeave", &B::MouseLeave, "MouseDown", &B::MouseDown, "MouseUp",
        &B::MouseUp, "MouseWheel", &B::MouseWheel, "MouseActivate", &B::MouseActivate, "KeyDown", &B::KeyDown,
        "KeyPress", &B::KeyPress, "KeyUp", &B::KeyUp, "ValueChange", &B::ValueChange, "CaptionChange",
        &B::CaptionChange, "SelectedChange", &B::SelectedChange, "InputError", &B::InputError, "Status",
        qOverload<const QString &>(&B::Status), "WindowPosChanged", &B::WindowPosChanged, "Resize",
        &B::Resize, "ExitSized", &B::ExitSized, "ExitSizeMove", &B::ExitSizeMove, "WindowActivated",
        &B::WindowActivated, "WindowMINIMIZE", &B::WindowMINIMIZE, "WindowMAXIMIZE", &B::WindowMAXIMIZE,
        "TimerInitailized", &B::TimerInitailized, "TimerElapsed", &B::TimerElapsed, "TimerRemaining",
        &B::TimerRemaining, "TimerTerminated", &B::TimerTerminated);
}

// Every stored property under its bag key, in the order a bag is read, with the value a new control
// starts with. Font and Icon have no fixed value: the font is the container's.
inline const std::vector<std::pair<QString, QVariant>> kStoredDefaults {{u"SubclassEnabled"_s, false},
    {u"Enabled"_s, true}, {u"Alignment"_s, 2}, {u"Caption"_s, QString()}, {u"CaptionComment"_s, QString()},
    {u"CaptionNullText"_s, QString()}, {u"CaptionAddText"_s, QString()}, {u"CaptionEffects"_s, 0},
    {u"Title"_s, QString()}, {u"TitleWidth"_s, 64}, {u"TextFormat"_s, 0}, {u"FileFilter"_s, u"*.*|*.*"_s},
    {u"CancelClear"_s, false}, {u"ComboBoxItems"_s, QString()}, {u"Checked"_s, false},
    {u"TransparentBack"_s, false}, {u"Transparent"_s, 0}, {u"TransparentHover"_s, 0},
    {u"TransparentPressed"_s, 0}, {u"TransparentDisable"_s, 0}, {u"Style"_s, 15},
    {u"StatusBarResize"_s, false}, {u"WindowSizeLimit"_s, false}, {u"WindowSizeMaxWidth"_s, 800},
    {u"WindowSizeMaxHeight"_s, 600}, {u"WindowSizeMinWidth"_s, 640}, {u"WindowSizeMinHeight"_s, 480},
    {u"ShowBorder"_s, 1}, {u"ShowCorner"_s, true}, {u"ShowLight"_s, false}, {u"ShowFocus"_s, false},
    {u"ShowEffect"_s, false}, {u"EffectSpeed"_s, 10}, {u"ShowDropDownSymbol"_s, 0},
    {u"ShowSeparator"_s, false}, {u"ShowInnerLine"_s, 0}, {u"InnerLineWidth"_s, 1},
    {u"InnerLinePadding"_s, 1}, {u"SmoothingCorner"_s, true}, {u"Mode"_s, 0},
    // The colours of back colour 0xD7C5C6 by the general table, as style 15 derives them.
    {u"ForeColor"_s, 0u}, {u"ForeColorHover"_s, 0u}, {u"ForeColorPressed"_s, 0u},
    {u"ForeColorDisable"_s, 0x808080u}, {u"BackColor"_s, 0xD7C5C6u}, {u"BackColorHover"_s, 0xE4D2D3u},
    {u"BackColorPressed"_s, 0xA49293u}, {u"BackColorDisable"_s, 0xF0DEE0u}, {u"LightColor"_s, 0xFFFFFFu},
    {u"BorderColor"_s, 0xC4B2B3u}, {u"BorderColorHover"_s, 0xD1BFC0u}, {u"BorderColorPressed"_s, 0x9E8C8Du},
    {u"BorderColorDisable"_s, 0xDECCCCu}, {u"FadeColor"_s, 0xF0DEE0u}, {u"FadeColorHover"_s, 0xFDEBEDu},
    {u"FadeColorPressed"_s, 0xBDABADu}, {u"FadeColorDisable"_s, 0xFFF8FAu}, {u"ProgressColor"_s, 0xA49293u},
    {u"InnerLineColor"_s, 0xFFFFFFu}, {u"IconSize"_s, 32}, {u"IconText"_s, QString()},
    {u"IconFontName"_s, u"Webdings"_s}, {u"Font"_s, QVariant()}, {u"Icon"_s, QVariant()}, {u"Status"_s, 0},
    {u"ID"_s, 0}, {u"TimerEnabled"_s, false}, {u"TimerDuration"_s, 1000}, {u"TimerInterval"_s, 10},
    {u"ThreadPriority"_s, 32}, {u"TimerType"_s, 0}, {u"TooltipType"_s, 1}, {u"ToolTipIcon"_s, 0},
    {u"TooltipTitle"_s, QString()}, {u"ToolTipString"_s, QString()}, {u"TooltipCentered"_s, false},
    {u"TooltipRightToLeft"_s, false}, {u"Max"_s, 100.0}, {u"Min"_s, 0.0}, {u"Value"_s, 0.0},
    {u"Refresh"_s, true}, {u"UseGDIPlus"_s, false}};

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
