// ctlButton: creation, the properties and their rules, persistence, the timer and the tooltip.
#include "controls/ctl_button.h"

#include "controls/button_colors.h"
#include "controls/button_property_bag.h"
#include "controls/ctl_button_children.h"
#include "util/number_text.h"
#include "util/process_priority.h"

#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSettings>
#include <QTimer>

#include <sys/resource.h>

namespace qb::controls {

namespace {

bool fitsTimeMask(const QString &text)
{
    static const QRegularExpression mask(QStringLiteral("^[0-9]{2}:[0-9]{2}:[0-9]{2},[0-9]{3}$"));
    return mask.match(text).hasMatch();
}

int byteValue(int value)
{
    return std::clamp(value, 0, 255);
}

QStringList comboItems(const QString &items)
{
    return items.split(u'|');
}

} // namespace

ctlButton::ctlButton(QWidget *parent)
    : QWidget(parent)
{
    m_p.Font = QWidget::font(); // the container's font
    setMouseTracking(true);

    m_combo = new ButtonComboBox(this);
    m_combo->setObjectName(QStringLiteral("cmbCombo"));
    m_combo->setFrame(false);
    m_combo->hide();
    m_text = new QLineEdit(this);
    m_text->setObjectName(QStringLiteral("txtText"));
    m_text->setFrame(false);
    m_text->hide();
    m_text->installEventFilter(this);
    m_combo->installEventFilter(this);
    connect(m_combo, &QComboBox::activated, this, &ctlButton::comboChosen);
    connect(m_combo, &ButtonComboBox::popupHidden, this, [this] { m_combo->hide(); });

    m_fadeTimer = new QTimer(this);
    m_fadeTimer->setObjectName(QStringLiteral("tmrTimer"));
    connect(m_fadeTimer, &QTimer::timeout, this, &ctlButton::fadeTick);
    m_flashTimer = new QTimer(this);
    m_flashTimer->setObjectName(QStringLiteral("tmrTimerFlash"));
    connect(m_flashTimer, &QTimer::timeout, this, &ctlButton::flashTick);
    m_userTimer = new QTimer(this);
    connect(m_userTimer, &QTimer::timeout, this, &ctlButton::timerTick);
    m_sizeMoveEnd = new QTimer(this);
    m_sizeMoveEnd->setSingleShot(true);
    m_sizeMoveEnd->setInterval(400);
    connect(m_sizeMoveEnd, &QTimer::timeout, this, &ctlButton::endSizeMove);

    applyFocusPolicy();
    applyTooltip();
}

ctlButton::~ctlButton()
{
    m_userTimer->stop();
    m_fadeTimer->stop();
    m_flashTimer->stop();
    if (m_intercepting) {
        // Only what is intercepted has an end to report. The host may be on its way out too: its
        // limits stay as they are.
        Q_EMIT Status(QStringLiteral("Terminating Subclassing"));
        m_intercepting = false;
    }
    zTerminate();
}

QSize ctlButton::sizeHint() const
{
    return QSize(120, 28);
}

template<typename T>
void ctlButton::assignAndRender(T ButtonProperties::*field, const T &value, const char *name)
{
    if (m_p.*field == value)
        return;
    m_p.*field = value;
    rerender(QString::fromLatin1(name));
}

void ctlButton::rerender(const QString &why)
{
    ReDraw(why, m_p.Status, false, m_p.EffectSpeed, true);
}

void ctlButton::setSubclassEnabled(bool on)
{
    if (m_p.SubclassEnabled == on)
        return;
    m_p.SubclassEnabled = on;
    if (on)
        startInterception();
    else
        stopInterception();
}

void ctlButton::setEnabled(bool on)
{
    m_p.Enabled = on;
    QWidget::setEnabled(on);
    rerender(QStringLiteral("Enabled"));
}

void ctlButton::setRefresh(bool on)
{
    m_p.Refresh = on;
    if (on)
        rerender(QStringLiteral("Refresh"));
}

void ctlButton::setStatus(int status)
{
    if (m_p.Status == status)
        return;
    m_p.Status = status;
    ReDraw(QStringLiteral("Status"), status, true, m_p.EffectSpeed, false);
}

void ctlButton::setAlignment(int alignment)
{
    assignAndRender(&ButtonProperties::Alignment, alignment, "Alignment");
}

void ctlButton::setCaption(const QString &text)
{
    if (m_p.TextFormat == kTextFormatTime && !fitsTimeMask(text))
        return;
    m_p.Caption = text;
    if (m_p.Refresh)
        Q_EMIT ValueChange();
    Q_EMIT CaptionChange();
    setStatus(0);
    rerender(QStringLiteral("Caption"));
}

void ctlButton::setCaptionComment(const QString &text)
{
    assignAndRender(&ButtonProperties::CaptionComment, text, "CaptionComment");
}

void ctlButton::setCaptionNullText(const QString &text)
{
    assignAndRender(&ButtonProperties::CaptionNullText, text, "CaptionNullText");
}

void ctlButton::setCaptionAddText(const QString &text)
{
    assignAndRender(&ButtonProperties::CaptionAddText, text, "CaptionAddText");
}

void ctlButton::setTitle(const QString &text)
{
    assignAndRender(&ButtonProperties::Title, text, "Title");
}

void ctlButton::setTitleWidth(int width)
{
    assignAndRender(&ButtonProperties::TitleWidth, width, "TitleWidth");
}

void ctlButton::setShowCorner(bool on)
{
    assignAndRender(&ButtonProperties::ShowCorner, on, "ShowCorner");
}

void ctlButton::setShowLight(bool on)
{
    assignAndRender(&ButtonProperties::ShowLight, on, "ShowLight");
}

void ctlButton::setShowFocus(bool on)
{
    assignAndRender(&ButtonProperties::ShowFocus, on, "ShowFocus");
}

void ctlButton::setShowBorder(int shape)
{
    assignAndRender(&ButtonProperties::ShowBorder, shape, "ShowBorder");
}

void ctlButton::setShowDropDownSymbol(int symbol)
{
    assignAndRender(&ButtonProperties::ShowDropDownSymbol, symbol, "ShowDropDownSymbol");
}

void ctlButton::setShowSeparator(bool on)
{
    assignAndRender(&ButtonProperties::ShowSeparator, on, "ShowSeparator");
}

void ctlButton::setShowInnerLine(int sides)
{
    assignAndRender(&ButtonProperties::ShowInnerLine, sides, "ShowInnerLine");
}

void ctlButton::setInnerLineWidth(int width)
{
    assignAndRender(&ButtonProperties::InnerLineWidth, width, "InnerLineWidth");
}

void ctlButton::setInnerLinePadding(int padding)
{
    assignAndRender(&ButtonProperties::InnerLinePadding, padding, "InnerLinePadding");
}

void ctlButton::setSmoothingCorner(bool on)
{
    assignAndRender(&ButtonProperties::SmoothingCorner, on, "SmoothingCorner");
}

void ctlButton::setTransparentBack(bool on)
{
    assignAndRender(&ButtonProperties::TransparentBack, on, "TransparentBack");
}

void ctlButton::setTransparent(int alpha)
{
    const int value = byteValue(alpha);
    m_p.Transparent = value;
    m_p.TransparentHover = value;
    m_p.TransparentPressed = value;
    m_p.TransparentDisable = value;
}

void ctlButton::setTransparentHover(int alpha)
{
    m_p.TransparentHover = byteValue(alpha);
}

void ctlButton::setTransparentPressed(int alpha)
{
    m_p.TransparentPressed = byteValue(alpha);
}

void ctlButton::setTransparentDisable(int alpha)
{
    m_p.TransparentDisable = byteValue(alpha);
}

void ctlButton::setStyle(int style)
{
    ApplyStyle(m_p, style);
    rerender(QStringLiteral("Style"));
}

void ctlButton::setStatusBarResize(bool on)
{
    assignAndRender(&ButtonProperties::StatusBarResize, on, "StatusBarResize");
}

void ctlButton::setWindowSizeLimit(bool on)
{
    m_p.WindowSizeLimit = on;
    applySizeLimits();
}

void ctlButton::setWindowSizeMaxWidth(int pixels)
{
    m_p.WindowSizeMaxWidth = pixels;
    applySizeLimits();
}

void ctlButton::setWindowSizeMaxHeight(int pixels)
{
    m_p.WindowSizeMaxHeight = pixels;
    applySizeLimits();
}

void ctlButton::setWindowSizeMinWidth(int pixels)
{
    m_p.WindowSizeMinWidth = pixels;
    applySizeLimits();
}

void ctlButton::setWindowSizeMinHeight(int pixels)
{
    m_p.WindowSizeMinHeight = pixels;
    applySizeLimits();
}

void ctlButton::setMode(int mode)
{
    m_p.Mode = mode;
    if (mode == ucModeButton)
        ClearSiblingChecks(false);
    if (mode == ucModeStatusBar || mode == ucModeDragBar)
        m_p.ShowCorner = false;
    if (mode != ucModeText)
        m_text->hide();
    if (mode != ucModeCombo)
        m_combo->hide();
    applyFocusPolicy();
    rerender(QStringLiteral("Mode"));
}

void ctlButton::setUseGDIPlus(bool on)
{
    assignAndRender(&ButtonProperties::UseGDIPlus, on, "UseGDIPlus");
}

void ctlButton::setChecked(bool on)
{
    assignAndRender(&ButtonProperties::Checked, on, "Checked");
}

void ctlButton::setForeColor(uint color)
{
    assignAndRender(&ButtonProperties::ForeColor, color, "ForeColor");
}

void ctlButton::setForeColorHover(uint color)
{
    assignAndRender(&ButtonProperties::ForeColorHover, color, "ForeColorHover");
}

void ctlButton::setForeColorPressed(uint color)
{
    assignAndRender(&ButtonProperties::ForeColorPressed, color, "ForeColorPressed");
}

void ctlButton::setForeColorDisable(uint color)
{
    assignAndRender(&ButtonProperties::ForeColorDisable, color, "ForeColorDisable");
}

void ctlButton::setBackColor(uint color)
{
    if (ApplyBackColor(m_p, color))
        rerender(QStringLiteral("BackColor"));
}

void ctlButton::setBackColorHover(uint color)
{
    assignAndRender(&ButtonProperties::BackColorHover, color, "BackColorHover");
}

void ctlButton::setBackColorPressed(uint color)
{
    assignAndRender(&ButtonProperties::BackColorPressed, color, "BackColorPressed");
}

void ctlButton::setBackColorDisable(uint color)
{
    assignAndRender(&ButtonProperties::BackColorDisable, color, "BackColorDisable");
}

void ctlButton::setLightColor(uint color)
{
    assignAndRender(&ButtonProperties::LightColor, color, "LightColor");
}

void ctlButton::setBorderColor(uint color)
{
    assignAndRender(&ButtonProperties::BorderColor, color, "BorderColor");
}

void ctlButton::setBorderColorHover(uint color)
{
    assignAndRender(&ButtonProperties::BorderColorHover, color, "BorderColorHover");
}

void ctlButton::setBorderColorPressed(uint color)
{
    assignAndRender(&ButtonProperties::BorderColorPressed, color, "BorderColorPressed");
}

void ctlButton::setBorderColorDisable(uint color)
{
    assignAndRender(&ButtonProperties::BorderColorDisable, color, "BorderColorDisable");
}

void ctlButton::setFadeColor(uint color)
{
    assignAndRender(&ButtonProperties::FadeColor, color, "FadeColor");
}

void ctlButton::setFadeColorHover(uint color)
{
    assignAndRender(&ButtonProperties::FadeColorHover, color, "FadeColorHover");
}

void ctlButton::setFadeColorPressed(uint color)
{
    assignAndRender(&ButtonProperties::FadeColorPressed, color, "FadeColorPressed");
}

void ctlButton::setFadeColorDisable(uint color)
{
    assignAndRender(&ButtonProperties::FadeColorDisable, color, "FadeColorDisable");
}

void ctlButton::setProgressColor(uint color)
{
    assignAndRender(&ButtonProperties::ProgressColor, color, "ProgressColor");
}

void ctlButton::setInnerLineColor(uint color)
{
    assignAndRender(&ButtonProperties::InnerLineColor, color, "InnerLineColor");
}

void ctlButton::setIcon(const QPixmap &icon)
{
    m_p.Icon = icon;
    rerender(QStringLiteral("Icon"));
}

void ctlButton::setIconSize(int size)
{
    assignAndRender(&ButtonProperties::IconSize, size, "IconSize");
}

void ctlButton::setIconText(const QString &glyphs)
{
    assignAndRender(&ButtonProperties::IconText, glyphs, "IconText");
}

void ctlButton::setIconFontName(const QString &name)
{
    assignAndRender(&ButtonProperties::IconFontName, name, "IconFontName");
}

void ctlButton::setFont(const QFont &font)
{
    m_p.Font = font;
    QWidget::setFont(font);
    rerender(QStringLiteral("Font"));
}

void ctlButton::setTimerEnabled(bool on)
{
    m_p.TimerEnabled = on;
    if (on) {
        m_userTimer->start(std::max(1, m_p.TimerInterval));
        Q_EMIT TimerInitailized();
    } else {
        m_userTimer->stop();
        m_timerCount = 0;
        Q_EMIT TimerTerminated();
    }
}

void ctlButton::setTimerInterval(int milliseconds)
{
    m_p.TimerInterval = milliseconds;
    if (m_userTimer->isActive())
        m_userTimer->setInterval(std::max(1, milliseconds));
}

void ctlButton::timerTick()
{
    // The count runs faster than the ticks, as it always has: 1.6 times the interval a tick.
    if (m_timerCount < m_p.TimerDuration) {
        m_timerCount = std::min<double>(
            m_timerCount + util::RoundHalfEven(1.6 * m_p.TimerInterval), double(m_p.TimerDuration));
        const double shown = m_p.TimerType == 1 ? m_p.TimerDuration - m_timerCount : m_timerCount;
        if (m_p.TimerType == 1)
            Q_EMIT TimerRemaining(shown);
        else
            Q_EMIT TimerElapsed(shown);
        Q_EMIT Status(QStringLiteral("Timer: ") + QString::number(qint64(shown)));
    }
    if (m_timerCount >= m_p.TimerDuration)
        setTimerEnabled(false);
}

void ctlButton::setThreadPriority(int priorityClass)
{
    m_p.ThreadPriority = priorityClass;
    // A class the user may not raise to is refused by the system; the value stays stored.
    setpriority(PRIO_PROCESS, 0, util::NiceForPriorityClass(priorityClass));
}

void ctlButton::setTooltipType(int type)
{
    m_p.TooltipType = type;
    applyTooltip();
}

void ctlButton::setToolTipIcon(int icon)
{
    m_p.ToolTipIcon = icon;
    applyTooltip();
}

void ctlButton::setTooltipTitle(const QString &text)
{
    m_p.TooltipTitle = text;
    applyTooltip();
}

void ctlButton::setTooltip(const QString &text)
{
    m_p.Tooltip = text;
    applyTooltip();
}

void ctlButton::setTooltipCentered(bool on)
{
    m_p.TooltipCentered = on;
    applyTooltip();
}

void ctlButton::setTooltipRightToLeft(bool on)
{
    m_p.TooltipRightToLeft = on;
    applyTooltip();
}

void ctlButton::applyTooltip()
{
    // Type 0 shows none; the others show the text under its title, centred or right to left as
    // asked. The icon kinds are kept for hosts but the desktop's tooltip has no icon.
    if (m_p.TooltipType == 0 || (m_p.Tooltip.isEmpty() && m_p.TooltipTitle.isEmpty())) {
        setToolTip(QString());
        return;
    }
    QString html = QStringLiteral("<div");
    if (m_p.TooltipCentered)
        html += QStringLiteral(" align=\"center\"");
    if (m_p.TooltipRightToLeft)
        html += QStringLiteral(" dir=\"rtl\"");
    html += u'>';
    if (!m_p.TooltipTitle.isEmpty())
        html += QStringLiteral("<b>") + m_p.TooltipTitle.toHtmlEscaped() + QStringLiteral("</b><br>");
    html += m_p.Tooltip.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>")) + QStringLiteral("</div>");
    setToolTip(html);
}

void ctlButton::applyFocusPolicy()
{
    const bool bar = m_p.Mode == ucModeStatusBar || m_p.Mode == ucModeDragBar;
    setFocusPolicy(bar ? Qt::NoFocus : Qt::StrongFocus);
}

void ctlButton::setMax(double end)
{
    if (m_p.value > end)
        m_p.value = end;
    m_p.Max = end;
    rerender(QStringLiteral("Max"));
}

void ctlButton::setMin(double start)
{
    m_p.Min = start;
    rerender(QStringLiteral("Min"));
}

void ctlButton::setvalue(double position)
{
    if (position == m_p.value)
        return;
    double x = position;
    if (x == -1)
        x = m_p.Max; // -1 asks for a full bar
    else if (x < 0)
        x = 0;
    if (x > m_p.Max)
        x = m_p.Max;
    const double from = m_p.value;
    if (x - from >= 2) {
        // The fill grows in eight steps that stop one short of the goal.
        const double step = (x - from - 1) / 8;
        for (int i = 0; i < 8 && m_p.value < x; ++i) {
            m_p.value += step;
            ReDraw(QStringLiteral("Value_For...Next"), m_p.Status, false, m_p.EffectSpeed, true);
        }
    }
    m_p.value = x;
    rerender(QStringLiteral("value"));
    Q_EMIT ValueChange();
}

int ctlButton::ListIndex() const
{
    if (!m_p.ComboBoxItems.contains(u'|'))
        return -1;
    const QStringList items = comboItems(m_p.ComboBoxItems);
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i) == m_p.Caption)
            return i;
    }
    return -1;
}

void ctlButton::setListIndex(int index)
{
    const QStringList items = comboItems(m_p.ComboBoxItems);
    if (index < 0 || index >= items.size())
        return;
    m_p.Caption = items.at(index);
    rerender(QStringLiteral("ListIndex"));
}

int ctlButton::ListCount() const
{
    if (!m_p.ComboBoxItems.contains(u'|'))
        return 0;
    return int(comboItems(m_p.ComboBoxItems).size());
}

bool ctlButton::TextBoxVisible() const
{
    return m_text->isVisibleTo(this);
}

uint ctlButton::ShiftColor(uint Color, double PercentInDecimal) const
{
    return qb::controls::ShiftColor(Color, PercentInDecimal);
}

void ctlButton::SetThemeColor(int bThemeColor, qint64 bColor)
{
    if (ApplyThemeColor(m_p, bThemeColor, bColor))
        rerender(QStringLiteral("SetThemeColor"));
}

void ctlButton::About()
{
    QMessageBox::about(this, QStringLiteral("ctlButton"),
        QStringLiteral("ctlButton\n\nOne control for buttons, check and option buttons, text and list "
                       "fields, folder and file pickers, status bars and drag bars, in 28 looks."));
}

void ctlButton::ReadProperties(const PropertyBag &bag)
{
    ButtonProperties defaults;
    defaults.Font = parentWidget() ? parentWidget()->font() : QWidget::font();
    const bool wasIntercepting = m_intercepting;
    qb::controls::ReadProperties(m_p, bag, defaults);
    QWidget::setEnabled(m_p.Enabled);
    QWidget::setFont(m_p.Font);
    applyTooltip();
    applyFocusPolicy();
    if (m_p.TimerEnabled != m_userTimer->isActive())
        setTimerEnabled(m_p.TimerEnabled);
    ReDraw(QStringLiteral("UserControl_ReadProperties"), m_p.Status, false, m_p.EffectSpeed, true);
    if (m_p.SubclassEnabled && !wasIntercepting)
        startInterception();
    else if (!m_p.SubclassEnabled && wasIntercepting)
        stopInterception();
    else
        applySizeLimits();
}

void ctlButton::WriteProperties(PropertyBag &bag) const
{
    qb::controls::WriteProperties(m_p, bag);
}

} // namespace qb::controls
