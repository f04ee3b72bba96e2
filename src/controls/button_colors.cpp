// Colour conversion, the shift and blend rules, and the derivation tables of the multi-mode control.
#include "controls/button_colors.h"

#include "controls/small_int_set.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QPalette>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>

namespace qb::controls {

namespace {

using ColorField = ButtonColor ButtonProperties::*;

// The system colour indices as palette colours. Index: the low byte of the reference.
struct SystemColor
{
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

constexpr std::array<SystemColor, 31> kSystemColors {{
    {QPalette::Active, QPalette::Mid}, // 0 scroll bar
    {QPalette::Active, QPalette::Dark}, // 1 desktop
    {QPalette::Active, QPalette::Highlight}, // 2 active caption
    {QPalette::Inactive, QPalette::Mid}, // 3 inactive caption
    {QPalette::Active, QPalette::Window}, // 4 menu
    {QPalette::Active, QPalette::Base}, // 5 window
    {QPalette::Active, QPalette::Shadow}, // 6 window frame
    {QPalette::Active, QPalette::WindowText}, // 7 menu text
    {QPalette::Active, QPalette::Text}, // 8 window text
    {QPalette::Active, QPalette::HighlightedText}, // 9 caption text
    {QPalette::Active, QPalette::Button}, // 10 active border
    {QPalette::Inactive, QPalette::Button}, // 11 inactive border
    {QPalette::Active, QPalette::Dark}, // 12 application workspace
    {QPalette::Active, QPalette::Highlight}, // 13 highlight
    {QPalette::Active, QPalette::HighlightedText}, // 14 highlight text
    {QPalette::Active, QPalette::Button}, // 15 button face
    {QPalette::Active, QPalette::Dark}, // 16 button shadow
    {QPalette::Disabled, QPalette::Text}, // 17 grey text
    {QPalette::Active, QPalette::ButtonText}, // 18 button text
    {QPalette::Inactive, QPalette::WindowText}, // 19 inactive caption text
    {QPalette::Active, QPalette::Light}, // 20 button highlight
    {QPalette::Active, QPalette::Shadow}, // 21 3D dark shadow
    {QPalette::Active, QPalette::Midlight}, // 22 3D light
    {QPalette::Active, QPalette::ToolTipText}, // 23 tooltip text
    {QPalette::Active, QPalette::ToolTipBase}, // 24 tooltip back
    {QPalette::Active, QPalette::Button}, // 25 unused
    {QPalette::Active, QPalette::Link}, // 26 hot light
    {QPalette::Active, QPalette::Highlight}, // 27 active caption gradient
    {QPalette::Inactive, QPalette::Mid}, // 28 inactive caption gradient
    {QPalette::Active, QPalette::Highlight}, // 29 menu highlight
    {QPalette::Active, QPalette::Window}, // 30 menu bar
}};

// One derived colour: target = ShiftColor(source, shift); a shift of 0 copies the source as it is.
struct Derivation
{
    ColorField target;
    ColorField source;
    double shift;
};

using P = ButtonProperties;

// The general table, in order: later rows read what earlier rows wrote.
constexpr std::array<Derivation, 14> kGeneral {{
    {&P::BackColorHover, &P::BackColor, 0.05},
    {&P::BackColorPressed, &P::BackColor, -0.2},
    {&P::BackColorDisable, &P::BackColor, 0.1},
    {&P::LightColor, &P::BackColor, 0.5},
    {&P::BorderColor, &P::BackColor, -0.075},
    {&P::BorderColorHover, &P::BorderColor, 0.05},
    {&P::BorderColorPressed, &P::BorderColorHover, -0.2},
    {&P::BorderColorDisable, &P::BorderColor, 0.1},
    {&P::FadeColor, &P::BackColor, 0.1},
    {&P::FadeColorHover, &P::FadeColor, 0.05},
    {&P::FadeColorPressed, &P::FadeColor, -0.2},
    {&P::FadeColorDisable, &P::FadeColor, 0.1},
    {&P::ProgressColor, &P::BackColor, -0.2},
    {&P::InnerLineColor, &P::BackColor, 0.5},
}};

// Style 27, a dark strip: every derived colour is the back colour but for these.
constexpr std::array<Derivation, 14> kStyle27 {{
    {&P::BackColorHover, &P::BackColor, 0.05},
    {&P::BackColorPressed, &P::BackColor, -0.1},
    {&P::BackColorDisable, &P::BackColor, 0},
    {&P::LightColor, &P::BackColor, 0},
    {&P::BorderColor, &P::BackColor, 0},
    {&P::BorderColorHover, &P::BackColor, 0},
    {&P::BorderColorPressed, &P::BackColor, 0},
    {&P::BorderColorDisable, &P::BackColor, 0},
    {&P::FadeColor, &P::BackColor, 0},
    {&P::FadeColorHover, &P::BackColor, 0},
    {&P::FadeColorPressed, &P::BackColor, 0},
    {&P::FadeColorDisable, &P::BackColor, 0},
    {&P::ProgressColor, &P::BackColor, -0.1},
    {&P::InnerLineColor, &P::BackColor, 0.5},
}};

// A different shift for one target of the general table, used when BackColor is written.
struct ShiftOverride
{
    ColorField target;
    double shift;
};

// The flat looks (0, 10, 18, 25, 26) press and fill more softly and need a stronger outline; the
// dark and white looks (5, 7, 20, 23) press softly and outline strongly too.
constexpr std::array<ShiftOverride, 3> kFlatFamily {{
    {&P::BackColorPressed, -0.1},
    {&P::BorderColor, -0.35},
    {&P::ProgressColor, -0.1},
}};
constexpr std::array<ShiftOverride, 2> kContrastFamily {{
    {&P::BackColorPressed, -0.1},
    {&P::BorderColor, -0.35},
}};

constexpr quint32 kFlatStyles = SmallIntSet({0, 10, 18, 25, 26});
constexpr quint32 kContrastStyles = SmallIntSet({5, 7, 20, 23});

void derive(ButtonProperties &p, std::span<const Derivation> table, std::span<const ShiftOverride> overrides)
{
    for (const Derivation &row : table) {
        double shift = row.shift;
        for (const ShiftOverride &o : overrides) {
            if (o.target == row.target)
                shift = o.shift;
        }
        p.*row.target = shift == 0 ? p.*row.source : ShiftColor(p.*row.source, shift);
    }
}

// The looks' outline, corners and colours.
struct StyleColors
{
    quint32 styles;
    bool showCorner;
    ButtonColor foreColor;
    ButtonColor backColor;
};

const StyleColors kStyleColors[] = {
    {SmallIntSet({0, 10, 18, 25, 26}), false, kSystemButtonText, 0xE6E6E6},
    {SmallIntSet({5}), true, 0xFFFFFF, 0x776455},
    {SmallIntSet({7}), true, 0xFFFFFF, 0x101010},
    {SmallIntSet({20, 23}), true, kSystemButtonText, 0xFFFFFF},
    {SmallIntSet({27}), false, 0xFFFFFF, 0x202020},
    {SmallIntSet({1}), true, kSystemButtonText, 0xE7EBEC},
    {SmallIntSet({2}), true, kSystemButtonText, 0xDBEEF3},
    {SmallIntSet({3}), true, kSystemButtonText, 0xF0DEDF},
    {SmallIntSet({4}), true, kSystemButtonText, 0xEBDCD0},
    {SmallIntSet({6}), true, kSystemButtonText, 0xAF9E9F},
    {SmallIntSet({8}), true, kSystemButtonText, 0xE6E6E6},
    {SmallIntSet({9}), true, kSystemButtonText, 0xF8ECD0},
    {SmallIntSet({11, 16, 21}), true, kSystemButtonText, 0xE1D6D5},
    {SmallIntSet({12}), true, kSystemButtonText, 0xC0C0C0},
    {SmallIntSet({13, 19, 22}), true, kSystemButtonText, 0xE0E0E0},
    {SmallIntSet({14}), true, kSystemButtonText, 0x999999},
    {SmallIntSet({17}), true, kSystemButtonText, 0xE5B793},
};
const StyleColors kOtherStyles {0, true, kSystemButtonText, kDefaultBackColor}; // 15, 24 and the rest

// SetThemeColor's own derivation: shifts of the base, the fade family of the fade colour.
constexpr std::array<Derivation, 10> kTheme {{
    {&P::BackColorHover, &P::BackColor, 0.05},
    {&P::BackColorPressed, &P::BackColor, -0.2},
    {&P::LightColor, &P::BackColor, 0.5},
    {&P::BorderColorHover, &P::BackColor, -0.2},
    {&P::BorderColorPressed, &P::BackColor, -0.3},
    {&P::FadeColor, &P::BackColor, 0.1},
    {&P::FadeColorHover, &P::FadeColor, 0.05},
    {&P::FadeColorPressed, &P::FadeColor, -0.2},
    {&P::FadeColorDisable, &P::FadeColor, 0.1},
    {&P::ProgressColor, &P::BackColor, -0.2},
}};

constexpr std::array<ButtonColor, 16> kThemeBases {
    0xE6E6E6,
    0xE7EBEC,
    0xDBEEF3,
    0xCAB8B9,
    0xFDECE0,
    0xDEEDE8,
    ShiftRgb(0xD4D4D4, 0.06), // 6
    0xFFD1AD,
    0xBAD6D4,
    0xE1D6D5,
    0xFCE1CA,
    0xBAD6D4,
    ShiftRgb(0xBA9EA0, 0.15), // 12
    0x66B5FF,
    0xC79166,
    0x999999,
};
constexpr int kRandomTheme = 16;

} // namespace

ButtonColor TranslateColor(ButtonColor color)
{
    if (!(color & kSystemColorFlag))
        return color & 0xFFFFFFu;
    const ButtonColor index = color & 0xFFFFu;
    if (index >= kSystemColors.size())
        return 0;
    const SystemColor &entry = kSystemColors[index];
    return FromQColor(QGuiApplication::palette().color(entry.group, entry.role));
}

QColor ToQColor(ButtonColor color)
{
    const ButtonColor rgb = TranslateColor(color);
    return QColor(int(rgb & 0xFF), int((rgb >> 8) & 0xFF), int((rgb >> 16) & 0xFF));
}

ButtonColor FromQColor(const QColor &color)
{
    const QColor c = color.toRgb();
    return ButtonColor(c.red()) | ButtonColor(c.green()) << 8 | ButtonColor(c.blue()) << 16;
}

ButtonColor ShiftColor(ButtonColor Color, double PercentInDecimal)
{
    return ShiftRgb(TranslateColor(Color), PercentInDecimal);
}

ButtonColor BlendColors(ButtonColor Color1, ButtonColor Color2, double Percent)
{
    const ButtonColor a = TranslateColor(Color1);
    const ButtonColor b = TranslateColor(Color2);
    ButtonColor packed = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const double from = double((a >> shift) & 0xFF);
        const double to = double((b >> shift) & 0xFF);
        const double mixed = std::clamp(RoundHalfEvenConst(from + Percent * (to - from)), 0.0, 255.0);
        packed |= ButtonColor(mixed) << shift;
    }
    return packed;
}

void DeriveColors(ButtonProperties &p)
{
    derive(
        p, p.Style == 27 ? std::span<const Derivation>(kStyle27) : std::span<const Derivation>(kGeneral), {});
}

bool ApplyBackColor(ButtonProperties &p, ButtonColor color)
{
    if (p.BackColor == color)
        return false;
    p.BackColor = color;
    if (p.Style == 27)
        derive(p, kStyle27, {});
    else if (InSmallIntSet(p.Style, kFlatStyles))
        derive(p, kGeneral, kFlatFamily);
    else if (InSmallIntSet(p.Style, kContrastStyles))
        derive(p, kGeneral, kContrastFamily);
    else
        derive(p, kGeneral, {});
    return true;
}

void ApplyStyle(ButtonProperties &p, int style)
{
    p.Style = style;
    p.ShowBorder = style == 27 ? 0 : 1;
    const StyleColors *look = &kOtherStyles;
    for (const StyleColors &row : kStyleColors) {
        if (InSmallIntSet(style, row.styles)) {
            look = &row;
            break;
        }
    }
    p.ShowCorner = look->showCorner;
    p.ForeColor = look->foreColor;
    p.ForeColorHover = look->foreColor;
    p.ForeColorPressed = look->foreColor;
    p.BackColor = look->backColor;
    DeriveColors(p);
}

bool ThemeBaseColor(int theme, ButtonColor &base)
{
    if (theme >= 0 && theme < int(kThemeBases.size())) {
        base = kThemeBases[size_t(theme)];
        return true;
    }
    if (theme == kRandomTheme) {
        QRandomGenerator random {quint32(QDateTime::currentMSecsSinceEpoch())};
        base = ButtonColor(random.generateDouble() * 16777215.0);
        return true;
    }
    return false;
}

bool ApplyThemeColor(ButtonProperties &p, int bThemeColor, qint64 bColor)
{
    ButtonColor base = 0;
    if (bColor != -1)
        base = ButtonColor(bColor);
    else if (bThemeColor == -1 || !ThemeBaseColor(bThemeColor, base))
        return false;
    p.BackColor = base;
    derive(p, kTheme, {});
    return true;
}

} // namespace qb::controls
