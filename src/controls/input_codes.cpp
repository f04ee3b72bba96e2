// Qt's keys, buttons, modifiers and drop actions in the numbers of the control's events.
#include "controls/input_codes.h"

#include <array>
#include <utility>

namespace qb::controls {

namespace {

// Keys that are neither letters nor digits. Shifted symbols of a US layout give the key they sit on.
constexpr std::pair<int, int> kKeyTable[] = {
    {Qt::Key_Backspace, 8},
    {Qt::Key_Tab, 9},
    {Qt::Key_Backtab, 9},
    {Qt::Key_Clear, 12},
    {Qt::Key_Return, 13},
    {Qt::Key_Enter, 13},
    {Qt::Key_Shift, 16},
    {Qt::Key_Control, 17},
    {Qt::Key_Alt, 18},
    {Qt::Key_Pause, 19},
    {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},
    {Qt::Key_Space, 32},
    {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34},
    {Qt::Key_End, 35},
    {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},
    {Qt::Key_Up, 38},
    {Qt::Key_Right, 39},
    {Qt::Key_Down, 40},
    {Qt::Key_Select, 41},
    {Qt::Key_Print, 42},
    {Qt::Key_Execute, 43},
    {Qt::Key_Insert, 45},
    {Qt::Key_Delete, 46},
    {Qt::Key_Help, 47},
    {Qt::Key_Meta, 91},
    {Qt::Key_Menu, 93},
    {Qt::Key_NumLock, 144},
    {Qt::Key_ScrollLock, 145},
    {Qt::Key_Semicolon, 186},
    {Qt::Key_Colon, 186},
    {Qt::Key_Equal, 187},
    {Qt::Key_Plus, 187},
    {Qt::Key_Comma, 188},
    {Qt::Key_Less, 188},
    {Qt::Key_Minus, 189},
    {Qt::Key_Underscore, 189},
    {Qt::Key_Period, 190},
    {Qt::Key_Greater, 190},
    {Qt::Key_Slash, 191},
    {Qt::Key_Question, 191},
    {Qt::Key_QuoteLeft, 192},
    {Qt::Key_AsciiTilde, 192},
    {Qt::Key_BracketLeft, 219},
    {Qt::Key_BraceLeft, 219},
    {Qt::Key_Backslash, 220},
    {Qt::Key_Bar, 220},
    {Qt::Key_BracketRight, 221},
    {Qt::Key_BraceRight, 221},
    {Qt::Key_Apostrophe, 222},
    {Qt::Key_QuoteDbl, 222},
    {Qt::Key_Exclam, '1'},
    {Qt::Key_At, '2'},
    {Qt::Key_NumberSign, '3'},
    {Qt::Key_Dollar, '4'},
    {Qt::Key_Percent, '5'},
    {Qt::Key_AsciiCircum, '6'},
    {Qt::Key_Ampersand, '7'},
    {Qt::Key_Asterisk, '8'},
    {Qt::Key_ParenLeft, '9'},
    {Qt::Key_ParenRight, '0'},
    {Qt::Key_VolumeMute, 173},
    {Qt::Key_VolumeDown, 174},
    {Qt::Key_VolumeUp, 175},
    {Qt::Key_MediaNext, 176},
    {Qt::Key_MediaPrevious, 177},
    {Qt::Key_MediaStop, 178},
    {Qt::Key_MediaTogglePlayPause, 179},
    {Qt::Key_Back, 166},
    {Qt::Key_Forward, 167},
    {Qt::Key_Refresh, 168},
    {Qt::Key_Stop, 169},
    {Qt::Key_Search, 170},
    {Qt::Key_Favorites, 171},
};

// Keypad keys other than digits.
constexpr std::pair<int, int> kKeypadTable[] = {
    {Qt::Key_Asterisk, 106},
    {Qt::Key_Plus, 107},
    {Qt::Key_Minus, 109},
    {Qt::Key_Period, 110},
    {Qt::Key_Comma, 110},
    {Qt::Key_Slash, 111},
    {Qt::Key_Enter, 13},
};

int lookup(const auto &table, int qtKey)
{
    for (const auto &[key, code] : table) {
        if (key == qtKey)
            return code;
    }
    return 0;
}

} // namespace

int VirtualKeyCode(int qtKey, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::KeypadModifier) {
        if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)
            return 96 + (qtKey - Qt::Key_0);
        if (const int code = lookup(kKeypadTable, qtKey))
            return code;
    }
    if ((qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) || (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9))
        return qtKey;
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24)
        return 112 + (qtKey - Qt::Key_F1);
    return lookup(kKeyTable, qtKey);
}

int ShiftState(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & Qt::ShiftModifier ? kShiftBit : 0)
        | (modifiers & Qt::ControlModifier ? kControlBit : 0) | (modifiers & Qt::AltModifier ? kAltBit : 0);
}

int ButtonState(Qt::MouseButtons buttons)
{
    return (buttons & Qt::LeftButton ? kButtonLeft : 0) | (buttons & Qt::RightButton ? kButtonRight : 0)
        | (buttons & Qt::MiddleButton ? kButtonMiddle : 0);
}

int DropEffectOf(Qt::DropActions actions)
{
    return (actions & Qt::CopyAction ? kDropEffectCopy : 0) | (actions & Qt::MoveAction ? kDropEffectMove : 0)
        | (actions & Qt::LinkAction ? kDropEffectLink : 0);
}

Qt::DropAction DropActionOf(int effect)
{
    if (effect & kDropEffectCopy)
        return Qt::CopyAction;
    if (effect & kDropEffectMove)
        return Qt::MoveAction;
    if (effect & kDropEffectLink)
        return Qt::LinkAction;
    return Qt::IgnoreAction;
}

} // namespace qb::controls
