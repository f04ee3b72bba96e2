// The colours of the multi-mode control: conversion of its 0x00BBGGRR values and system colour
// references to screen colours, the shift and blend rules, and the tables that derive a whole colour
// set from one back colour (per look, per theme).
#pragma once

#include "controls/ctl_button_properties.h"

#include <QColor>

namespace qb::controls {

// A system colour reference (high bit set) as the plain colour the application's palette gives it;
// a plain colour comes back unchanged (the unused high byte cleared).
ButtonColor TranslateColor(ButtonColor color);

// The screen colour of a control colour.
QColor ToQColor(ButtonColor color);

// A screen colour as 0x00BBGGRR.
ButtonColor FromQColor(const QColor &color);

// Adds PercentInDecimal times 255 to each channel (after translating a system colour), rounds, and
// clamps at 0 for a negative percent, at 255 otherwise.
ButtonColor ShiftColor(ButtonColor Color, double PercentInDecimal);

// Per channel Color1 + Percent * (Color2 - Color1), rounded.
ButtonColor BlendColors(ButtonColor Color1, ButtonColor Color2, double Percent);

// Derives the hover, pressed, disabled, light, border, fade, progress and inner-line colours from
// BackColor by the general table, or by the exception table of style 27.
void DeriveColors(ButtonProperties &p);

// What writing BackColor does: when the value changes it is stored and the colours are derived again,
// by the general table with the small differences of the flat and the dark style families.
// False when the value was the same and nothing changed.
bool ApplyBackColor(ButtonProperties &p, ButtonColor color);

// What writing Style does: the look's outline, corners, foreground and back colour, then the derived
// colours.
void ApplyStyle(ButtonProperties &p, int style);

// The base colour of a theme: 0 to 16 (16 a random colour). False for any other theme.
bool ThemeBaseColor(int theme, ButtonColor &base);

// SetThemeColor's work on the colours: bColor other than -1 is the base whatever the theme, otherwise
// the theme's base. False (nothing changed) for theme and colour both -1 or an unknown theme.
bool ApplyThemeColor(ButtonProperties &p, int bThemeColor, qint64 bColor);

} // namespace qb::controls
