// Keys, mouse buttons, modifier states and drop effects as the controls' events number them, from
// what Qt reports.
#pragma once

#include <Qt>

namespace qb::controls {

// Modifier bits of the events: 1 Shift, 2 Control, 4 Alt.
inline constexpr int kShiftBit = 1;
inline constexpr int kControlBit = 2;
inline constexpr int kAltBit = 4;

// Mouse button bits: 1 left, 2 right, 4 middle.
inline constexpr int kButtonLeft = 1;
inline constexpr int kButtonRight = 2;
inline constexpr int kButtonMiddle = 4;

// Drop effects: 0 none, 1 copy, 2 move, 4 link.
inline constexpr int kDropEffectNone = 0;
inline constexpr int kDropEffectCopy = 1;
inline constexpr int kDropEffectMove = 2;
inline constexpr int kDropEffectLink = 4;

// The key code of a Qt key (letters and digits by their capital character, the rest by the
// classic virtual-key table); 0 for a key that has none. Keypad digits and operators have codes
// of their own.
int VirtualKeyCode(int qtKey, Qt::KeyboardModifiers modifiers);

// The modifier bits held in modifiers.
int ShiftState(Qt::KeyboardModifiers modifiers);

// The button bits held in buttons.
int ButtonState(Qt::MouseButtons buttons);

// Drop effects to Qt's drop actions and back.
int DropEffectOf(Qt::DropActions actions);
Qt::DropAction DropActionOf(int effect);

} // namespace qb::controls
