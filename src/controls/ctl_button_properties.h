// Every persisted value of the multi-mode control in one gadget: the defaults live here, and the
// order of declaration is the order in which a property bag is read.
#pragma once

#include <QFont>
#include <QObject>
#include <QPixmap>
#include <QString>

namespace qb::controls {

// A colour as the control holds it: 0x00BBGGRR, or a system colour reference with the high bit set.
using ButtonColor = quint32;

inline constexpr ButtonColor kSystemColorFlag = 0x80000000u;
inline constexpr ButtonColor kSystemButtonText = 0x80000012u;
inline constexpr ButtonColor kDefaultBackColor = 0xD7C5C6u;

// Rounds half to even, as the classic conversions do; usable for constants.
constexpr double RoundHalfEvenConst(double x)
{
    const double whole = double(static_cast<long long>(x)); // towards zero
    const double fraction = x - whole;
    if (fraction > 0.5)
        return whole + 1;
    if (fraction < -0.5)
        return whole - 1;
    if (fraction == 0.5 || fraction == -0.5) {
        if (static_cast<long long>(whole) % 2 == 0)
            return whole;
        return fraction > 0 ? whole + 1 : whole - 1;
    }
    return whole;
}

// ShiftColor on a plain colour: each channel moves by Percent of 255 and is rounded; it stops at 0
// going down and at 255 going up. The shift is an amount, not a factor.
constexpr ButtonColor ShiftRgb(ButtonColor color, double percent)
{
    ButtonColor packed = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const double moved = RoundHalfEvenConst(double((color >> shift) & 0xFFu) + percent * 255.0);
        const double clamped = percent < 0 ? (moved < 0 ? 0 : moved) : (moved > 255 ? 255 : moved);
        packed |= ButtonColor(clamped) << shift;
    }
    return packed;
}

struct ButtonProperties
{
    Q_GADGET
    // Bag keys that differ from the property's name, and values stored narrower than they are held.
    Q_CLASSINFO("TitleWidth.bag", "int16")
    Q_CLASSINFO("Tooltip.key", "ToolTipString")
    Q_CLASSINFO("value.key", "Value")
    // Written in another place than read.
    Q_CLASSINFO("Refresh.writeAfter", "Enabled")
    Q_CLASSINFO("UseGDIPlus.writeAfter", "CancelClear")

    Q_PROPERTY(bool SubclassEnabled MEMBER SubclassEnabled)
    Q_PROPERTY(bool Enabled MEMBER Enabled)
    Q_PROPERTY(int Alignment MEMBER Alignment)
    Q_PROPERTY(QString Caption MEMBER Caption)
    Q_PROPERTY(QString CaptionComment MEMBER CaptionComment)
    Q_PROPERTY(QString CaptionNullText MEMBER CaptionNullText)
    Q_PROPERTY(QString CaptionAddText MEMBER CaptionAddText)
    Q_PROPERTY(int CaptionEffects MEMBER CaptionEffects)
    Q_PROPERTY(QString Title MEMBER Title)
    Q_PROPERTY(int TitleWidth MEMBER TitleWidth)
    Q_PROPERTY(int TextFormat MEMBER TextFormat)
    Q_PROPERTY(QString FileFilter MEMBER FileFilter)
    Q_PROPERTY(bool CancelClear MEMBER CancelClear)
    Q_PROPERTY(QString ComboBoxItems MEMBER ComboBoxItems)
    Q_PROPERTY(bool Checked MEMBER Checked)
    Q_PROPERTY(bool TransparentBack MEMBER TransparentBack)
    Q_PROPERTY(int Transparent MEMBER Transparent)
    Q_PROPERTY(int TransparentHover MEMBER TransparentHover)
    Q_PROPERTY(int TransparentPressed MEMBER TransparentPressed)
    Q_PROPERTY(int TransparentDisable MEMBER TransparentDisable)
    Q_PROPERTY(int Style MEMBER Style)
    Q_PROPERTY(bool StatusBarResize MEMBER StatusBarResize)
    Q_PROPERTY(bool WindowSizeLimit MEMBER WindowSizeLimit)
    Q_PROPERTY(int WindowSizeMaxWidth MEMBER WindowSizeMaxWidth)
    Q_PROPERTY(int WindowSizeMaxHeight MEMBER WindowSizeMaxHeight)
    Q_PROPERTY(int WindowSizeMinWidth MEMBER WindowSizeMinWidth)
    Q_PROPERTY(int WindowSizeMinHeight MEMBER WindowSizeMinHeight)
    Q_PROPERTY(int ShowBorder MEMBER ShowBorder)
    Q_PROPERTY(bool ShowCorner MEMBER ShowCorner)
    Q_PROPERTY(bool ShowLight MEMBER ShowLight)
    Q_PROPERTY(bool ShowFocus MEMBER ShowFocus)
    Q_PROPERTY(bool ShowEffect MEMBER ShowEffect)
    Q_PROPERTY(int EffectSpeed MEMBER EffectSpeed)
    Q_PROPERTY(int ShowDropDownSymbol MEMBER ShowDropDownSymbol)
    Q_PROPERTY(bool ShowSeparator MEMBER ShowSeparator)
    Q_PROPERTY(int ShowInnerLine MEMBER ShowInnerLine)
    Q_PROPERTY(int InnerLineWidth MEMBER InnerLineWidth)
    Q_PROPERTY(int InnerLinePadding MEMBER InnerLinePadding)
    Q_PROPERTY(bool SmoothingCorner MEMBER SmoothingCorner)
    Q_PROPERTY(int Mode MEMBER Mode)
    Q_PROPERTY(uint ForeColor MEMBER ForeColor)
    Q_PROPERTY(uint ForeColorHover MEMBER ForeColorHover)
    Q_PROPERTY(uint ForeColorPressed MEMBER ForeColorPressed)
    Q_PROPERTY(uint ForeColorDisable MEMBER ForeColorDisable)
    Q_PROPERTY(uint BackColor MEMBER BackColor)
    Q_PROPERTY(uint BackColorHover MEMBER BackColorHover)
    Q_PROPERTY(uint BackColorPressed MEMBER BackColorPressed)
    Q_PROPERTY(uint BackColorDisable MEMBER BackColorDisable)
    Q_PROPERTY(uint LightColor MEMBER LightColor)
    Q_PROPERTY(uint BorderColor MEMBER BorderColor)
    Q_PROPERTY(uint BorderColorHover MEMBER BorderColorHover)
    Q_PROPERTY(uint BorderColorPressed MEMBER BorderColorPressed)
    Q_PROPERTY(uint BorderColorDisable MEMBER BorderColorDisable)
    Q_PROPERTY(uint FadeColor MEMBER FadeColor)
    Q_PROPERTY(uint FadeColorHover MEMBER FadeColorHover)
    Q_PROPERTY(uint FadeColorPressed MEMBER FadeColorPressed)
    Q_PROPERTY(uint FadeColorDisable MEMBER FadeColorDisable)
    Q_PROPERTY(uint ProgressColor MEMBER ProgressColor)
    Q_PROPERTY(uint InnerLineColor MEMBER InnerLineColor)
    Q_PROPERTY(int IconSize MEMBER IconSize)
    Q_PROPERTY(QString IconText MEMBER IconText)
    Q_PROPERTY(QString IconFontName MEMBER IconFontName)
    Q_PROPERTY(QFont Font MEMBER Font)
    Q_PROPERTY(QPixmap Icon READ icon WRITE setIcon) // pictures have no equality for MEMBER
    Q_PROPERTY(int Status MEMBER Status)
    Q_PROPERTY(int ID MEMBER ID)
    Q_PROPERTY(bool TimerEnabled MEMBER TimerEnabled)
    Q_PROPERTY(int TimerDuration MEMBER TimerDuration)
    Q_PROPERTY(int TimerInterval MEMBER TimerInterval)
    Q_PROPERTY(int ThreadPriority MEMBER ThreadPriority)
    Q_PROPERTY(int TimerType MEMBER TimerType)
    Q_PROPERTY(int TooltipType MEMBER TooltipType)
    Q_PROPERTY(int ToolTipIcon MEMBER ToolTipIcon)
    Q_PROPERTY(QString TooltipTitle MEMBER TooltipTitle)
    Q_PROPERTY(QString Tooltip MEMBER Tooltip)
    Q_PROPERTY(bool TooltipCentered MEMBER TooltipCentered)
    Q_PROPERTY(bool TooltipRightToLeft MEMBER TooltipRightToLeft)
    Q_PROPERTY(double Max MEMBER Max)
    Q_PROPERTY(double Min MEMBER Min)
    Q_PROPERTY(double value MEMBER value)
    Q_PROPERTY(bool Refresh MEMBER Refresh)
    Q_PROPERTY(bool UseGDIPlus MEMBER UseGDIPlus)

public:
    bool SubclassEnabled = false;
    bool Enabled = true;
    int Alignment = 2;
    QString Caption;
    QString CaptionComment;
    QString CaptionNullText;
    QString CaptionAddText;
    int CaptionEffects = 0;
    QString Title;
    int TitleWidth = 64;
    int TextFormat = 0;
    QString FileFilter = QStringLiteral("*.*|*.*");
    bool CancelClear = false;
    QString ComboBoxItems;
    bool Checked = false;
    bool TransparentBack = false;
    int Transparent = 0;
    int TransparentHover = 0;
    int TransparentPressed = 0;
    int TransparentDisable = 0;
    int Style = 15;
    bool StatusBarResize = false;
    bool WindowSizeLimit = false;
    int WindowSizeMaxWidth = 800;
    int WindowSizeMaxHeight = 600;
    int WindowSizeMinWidth = 640;
    int WindowSizeMinHeight = 480;
    int ShowBorder = 1;
    bool ShowCorner = true;
    bool ShowLight = false;
    bool ShowFocus = false;
    bool ShowEffect = false;
    int EffectSpeed = 10;
    int ShowDropDownSymbol = 0;
    bool ShowSeparator = false;
    int ShowInnerLine = 0;
    int InnerLineWidth = 1;
    int InnerLinePadding = 1;
    bool SmoothingCorner = true;
    int Mode = 0;
    ButtonColor ForeColor = 0;
    ButtonColor ForeColorHover = 0;
    ButtonColor ForeColorPressed = 0;
    ButtonColor ForeColorDisable = 0x808080u;
    // The derived colours of the default BackColor, by the table in button_colors.cpp.
    ButtonColor BackColor = kDefaultBackColor;
    ButtonColor BackColorHover = ShiftRgb(kDefaultBackColor, 0.05);
    ButtonColor BackColorPressed = ShiftRgb(kDefaultBackColor, -0.2);
    ButtonColor BackColorDisable = ShiftRgb(kDefaultBackColor, 0.1);
    ButtonColor LightColor = ShiftRgb(kDefaultBackColor, 0.5);
    ButtonColor BorderColor = ShiftRgb(kDefaultBackColor, -0.075);
    ButtonColor BorderColorHover = ShiftRgb(ShiftRgb(kDefaultBackColor, -0.075), 0.05);
    ButtonColor BorderColorPressed = ShiftRgb(ShiftRgb(ShiftRgb(kDefaultBackColor, -0.075), 0.05), -0.2);
    ButtonColor BorderColorDisable = ShiftRgb(ShiftRgb(kDefaultBackColor, -0.075), 0.1);
    ButtonColor FadeColor = ShiftRgb(kDefaultBackColor, 0.1);
    ButtonColor FadeColorHover = ShiftRgb(ShiftRgb(kDefaultBackColor, 0.1), 0.05);
    ButtonColor FadeColorPressed = ShiftRgb(ShiftRgb(kDefaultBackColor, 0.1), -0.2);
    ButtonColor FadeColorDisable = ShiftRgb(ShiftRgb(kDefaultBackColor, 0.1), 0.1);
    ButtonColor ProgressColor = ShiftRgb(kDefaultBackColor, -0.2);
    ButtonColor InnerLineColor = ShiftRgb(kDefaultBackColor, 0.5);
    int IconSize = 32;
    QString IconText;
    QString IconFontName = QStringLiteral("Webdings");
    QFont Font;
    QPixmap Icon;
    QPixmap icon() const { return Icon; }
    void setIcon(const QPixmap &picture) { Icon = picture; }
    int Status = 0;
    int ID = 0; // a host's private number; no public property
    bool TimerEnabled = false;
    int TimerDuration = 1000;
    int TimerInterval = 10;
    int ThreadPriority = 32;
    int TimerType = 0;
    int TooltipType = 1;
    int ToolTipIcon = 0;
    QString TooltipTitle;
    QString Tooltip;
    bool TooltipCentered = false;
    bool TooltipRightToLeft = false;
    double Max = 100;
    double Min = 0;
    double value = 0;
    bool Refresh = true;
    bool UseGDIPlus = false;
};

} // namespace qb::controls
