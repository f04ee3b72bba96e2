// The colour rules of the multi-mode control: shift, blend, system colours, and the derived colour
// sets of styles, back colour writes and themes, checked against values worked out by hand.
#include "controls/button_colors.h"

#include <QGuiApplication>
#include <QPalette>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qb::controls {
namespace {

// Colours as 0xBBGGRR texts, for readable failures.
std::vector<std::string> Hex(const std::vector<ButtonColor> &colors)
{
    std::vector<std::string> texts;
    for (const ButtonColor c : colors)
        texts.push_back(QString::number(c, 16).toStdString());
    return texts;
}

TEST(ButtonColors, ShiftAddsAFixedAmountRoundsHalfToEvenAndClamps)
{
    struct Case
    {
        ButtonColor color;
        double percent;
        ButtonColor expected;
    };
    const Case cases[] = {
        {0x102030, 0.1, 0x2A3A4A}, // 48+25.5 -> 74, 32+25.5 -> 58, 16+25.5 -> 42
        {0xFF00FF, 0.1, 0xFF1AFF}, // 255 stays, 0+25.5 -> 26
        {0x0A0A0A, -0.1, 0x000000}, // 10-25.5 stops at 0
        {0xFFFFFF, 0.5, 0xFFFFFF},
        {0xD7C5C6, 0.05, 0xE4D2D3},
        {0xD7C5C6, -0.2, 0xA49293},
        {0xCAB8B9, -0.3, 0x7E6C6C}, // 185-76.5 = 108.5 -> 108, 202-76.5 = 125.5 -> 126
        {0x123456, 0, 0x123456},
    };
    for (const Case &c : cases)
        EXPECT_EQ(ShiftColor(c.color, c.percent), c.expected) << std::hex << c.color << " " << c.percent;
}

TEST(ButtonColors, BlendMixesEachChannelLinearly)
{
    EXPECT_EQ(BlendColors(0x000000, 0xFFFFFF, 0.5), 0x808080u); // 127.5 -> 128
    EXPECT_EQ(BlendColors(0x0000FF, 0xFF0000, 0.25), 0x4000BFu); // red 191.25, blue 63.75
    EXPECT_EQ(BlendColors(0x123456, 0x654321, 0), 0x123456u);
    EXPECT_EQ(BlendColors(0x123456, 0x654321, 1), 0x654321u);
}

TEST(ButtonColors, SystemColourReferencesComeFromThePalette)
{
    const QPalette palette = QGuiApplication::palette();
    EXPECT_EQ(
        TranslateColor(kSystemButtonText), FromQColor(palette.color(QPalette::Active, QPalette::ButtonText)));
    EXPECT_EQ(TranslateColor(0x80000005), FromQColor(palette.color(QPalette::Active, QPalette::Base)));
    EXPECT_EQ(ToQColor(0x80000005), palette.color(QPalette::Active, QPalette::Base).toRgb());
    EXPECT_EQ(TranslateColor(0x8000FFFF), 0u); // no such system colour
    // A plain colour is read as 0x00BBGGRR.
    EXPECT_EQ(ToQColor(0x0000FF), QColor(255, 0, 0));
    EXPECT_EQ(ToQColor(0xFF0000), QColor(0, 0, 255));
    EXPECT_EQ(FromQColor(QColor(0x12, 0x34, 0x56)), 0x563412u);
    // Shifting a system colour shifts what it stands for.
    EXPECT_EQ(ShiftColor(0x80000005, -0.1), ShiftColor(TranslateColor(0x80000005), -0.1));
}

// Back, hover, pressed, disable, light; the outline's four; the fade's four; progress, inner line.
std::vector<std::string> DerivedSet(const ButtonProperties &p)
{
    return Hex({p.BackColor, p.BackColorHover, p.BackColorPressed, p.BackColorDisable, p.LightColor,
        p.BorderColor, p.BorderColorHover, p.BorderColorPressed, p.BorderColorDisable, p.FadeColor,
        p.FadeColorHover, p.FadeColorPressed, p.FadeColorDisable, p.ProgressColor, p.InnerLineColor});
}

TEST(ButtonColors, StyleTablesSetTheLookAndDeriveEveryColour)
{
    // The full derived set of a style, as written out by hand from its back colour.
    struct Case
    {
        int style;
        bool showCorner;
        int showBorder;
        ButtonColor fore;
        std::vector<ButtonColor> colors; // in the order of DerivedSet
    };
    const Case cases[] = {
        // 15, the default: 0xD7C5C6 is red 198, green 197, blue 215.
        {15, true, 1, kSystemButtonText,
            {0xD7C5C6, 0xE4D2D3, 0xA49293, 0xF0DEE0, 0xFFFFFF, 0xC4B2B3, 0xD1BFC0, 0x9E8C8D, 0xDECCCC,
                0xF0DEE0, 0xFDEBED, 0xBDABAD, 0xFFF8FA, 0xA49293, 0xFFFFFF}},
        // 5: dark blue-grey with white text; disable 110.5 -> 110, 125.5 -> 126, 144.5 -> 144.
        {5, true, 1, 0xFFFFFF,
            {0x776455, 0x847162, 0x443122, 0x907E6E, 0xF6E4D4, 0x645142, 0x715E4F, 0x3E2B1C, 0x7E6A5C,
                0x907E6E, 0x9D8B7B, 0x5D4B3B, 0xAA9888, 0x443122, 0xF6E4D4}},
        // 27: a dark strip; everything but hover, pressed, progress and inner line is the back colour.
        {27, false, 0, 0xFFFFFF,
            {0x202020, 0x2D2D2D, 0x060606, 0x202020, 0x202020, 0x202020, 0x202020, 0x202020, 0x202020,
                0x202020, 0x202020, 0x202020, 0x202020, 0x060606, 0xA0A0A0}},
        // 0: flat grey without rounded corners.
        {0, false, 1, kSystemButtonText,
            {0xE6E6E6, 0xF3F3F3, 0xB3B3B3, 0xFFFFFF, 0xFFFFFF, 0xD3D3D3, 0xE0E0E0, 0xADADAD, 0xECECEC,
                0xFFFFFF, 0xFFFFFF, 0xCCCCCC, 0xFFFFFF, 0xB3B3B3, 0xFFFFFF}},
        // 12: silver; disable 217.5 -> 218.
        {12, true, 1, kSystemButtonText,
            {0xC0C0C0, 0xCDCDCD, 0x8D8D8D, 0xDADADA, 0xFFFFFF, 0xADADAD, 0xBABABA, 0x878787, 0xC6C6C6,
                0xDADADA, 0xE7E7E7, 0xA7A7A7, 0xF4F4F4, 0x8D8D8D, 0xFFFFFF}},
    };
    // 24 and the styles outside the table take the colours of 15.
    for (const int style : {24, 99}) {
        ButtonProperties p;
        ApplyStyle(p, style);
        EXPECT_TRUE(p.ShowCorner);
        EXPECT_EQ(DerivedSet(p), Hex(cases[0].colors)) << style;
    }
    for (const Case &c : cases) {
        ButtonProperties p;
        // Earlier writes are overwritten by the style.
        p.ForeColor = 0x111111;
        p.BackColor = 0x222222;
        p.BorderColor = 0x333333;
        p.ShowCorner = !c.showCorner;
        ApplyStyle(p, c.style);
        SCOPED_TRACE(c.style);
        EXPECT_EQ(p.Style, c.style);
        EXPECT_EQ(p.ShowCorner, c.showCorner);
        EXPECT_EQ(p.ShowBorder, c.showBorder);
        EXPECT_EQ(Hex({p.ForeColor, p.ForeColorHover, p.ForeColorPressed}), Hex({c.fore, c.fore, c.fore}));
        EXPECT_EQ(DerivedSet(p), Hex(c.colors));
    }
}

TEST(ButtonColors, WritingBackColourDerivesByTheStyleFamily)
{
    struct Case
    {
        int style;
        ButtonColor pressed, border, borderHover, progress, light;
    };
    // Back colour 0xF0F0F0 (240 in each channel).
    const Case cases[] = {
        {15, 0xBDBDBD, 0xDDDDDD, 0xEAEAEA, 0xBDBDBD, 0xFFFFFF}, // the general table
        {0, 0xD6D6D6, 0x979797, 0xA4A4A4, 0xD6D6D6, 0xFFFFFF}, // flat: -0.1 pressed, -0.35 outline
        {7, 0xD6D6D6, 0x979797, 0xA4A4A4, 0xBDBDBD, 0xFFFFFF}, // contrast: progress as the general table
        {27, 0xD6D6D6, 0xF0F0F0, 0xF0F0F0, 0xD6D6D6, 0xF0F0F0}, // the strip: the rest is the back colour
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.style);
        ButtonProperties p;
        ApplyStyle(p, c.style);
        EXPECT_TRUE(ApplyBackColor(p, 0xF0F0F0));
        EXPECT_EQ(p.BackColor, 0xF0F0F0u);
        EXPECT_EQ(p.BackColorHover, 0xFDFDFDu);
        EXPECT_EQ(p.BackColorPressed, c.pressed);
        EXPECT_EQ(p.BorderColor, c.border);
        EXPECT_EQ(p.BorderColorHover, c.borderHover);
        EXPECT_EQ(p.ProgressColor, c.progress);
        EXPECT_EQ(p.LightColor, c.light);
    }
    // The same value again changes nothing, so a hand-set colour survives it.
    ButtonProperties p;
    p.BorderColor = 0x010203;
    EXPECT_FALSE(ApplyBackColor(p, p.BackColor));
    EXPECT_EQ(p.BorderColor, 0x010203u);
}

TEST(ButtonColors, ThemesGiveABaseAndTheirOwnDerivation)
{
    ButtonColor base = 0;
    const std::pair<int, ButtonColor> bases[]
        = {{0, 0xE6E6E6}, {3, 0xCAB8B9}, {6, 0xE3E3E3}, {12, 0xE0C4C6}, {13, 0x66B5FF}, {15, 0x999999}};
    for (const auto &[theme, expected] : bases) {
        ASSERT_TRUE(ThemeBaseColor(theme, base)) << theme;
        EXPECT_EQ(base, expected) << theme;
    }
    ASSERT_TRUE(ThemeBaseColor(16, base));
    EXPECT_LE(base, 0xFFFFFFu);
    EXPECT_FALSE(ThemeBaseColor(17, base));
    EXPECT_FALSE(ThemeBaseColor(-2, base));

    ButtonProperties p;
    p.BorderColor = 0x010101;
    p.BackColorDisable = 0x020202;
    ASSERT_TRUE(ApplyThemeColor(p, 3, -1));
    EXPECT_EQ(p.BackColor, 0xCAB8B9u);
    EXPECT_EQ(p.BackColorHover, 0xD7C5C6u);
    EXPECT_EQ(p.BackColorPressed, 0x978586u);
    EXPECT_EQ(p.LightColor, 0xFFFFFFu);
    EXPECT_EQ(p.BorderColorHover, 0x978586u); // of the base, not of the outline
    EXPECT_EQ(p.BorderColorPressed, 0x7E6C6Cu);
    EXPECT_EQ(p.FadeColor, 0xE4D2D2u);
    EXPECT_EQ(p.FadeColorHover, 0xF1DFDFu);
    EXPECT_EQ(p.FadeColorPressed, 0xB19F9Fu);
    EXPECT_EQ(p.FadeColorDisable, 0xFEECECu); // 228+25.5 = 253.5 -> 254, 210+25.5 = 235.5 -> 236
    EXPECT_EQ(p.ProgressColor, 0x978586u);
    EXPECT_EQ(p.BorderColor, 0x010101u); // left alone
    EXPECT_EQ(p.BackColorDisable, 0x020202u);

    // A colour other than -1 is the base whatever the theme; both -1 do nothing.
    ASSERT_TRUE(ApplyThemeColor(p, 5, 0x102030));
    EXPECT_EQ(p.BackColor, 0x102030u);
    ASSERT_TRUE(ApplyThemeColor(p, -1, 0x203040));
    EXPECT_EQ(p.BackColor, 0x203040u);
    EXPECT_FALSE(ApplyThemeColor(p, -1, -1));
    EXPECT_FALSE(ApplyThemeColor(p, 40, -1));
    EXPECT_EQ(p.BackColor, 0x203040u);
}

} // namespace
} // namespace qb::controls
