// The key handling of the control's text box when it edits a time in the fixed mask
// "##:##:##,###" like a counter (format 1), or any text in overwrite mode (format 2). Pure logic
// on the box's text, caret and selection, so that the control and the tests share it.
#pragma once

#include <QString>

#include <vector>

namespace qb::controls {

// The box as the handlers see it.
struct TextBoxState
{
    QString Text;
    int SelStart = 0;
    int SelLength = 0;
    bool Visible = true;
};

// What a key led to, in the order the control raises it.
enum class MaskEvent {
    ValueChange,
    SelectedChange,
    InputError, // with the refused key
    ReDraw, // repaint with the status text "txtText_KeyPress"
};

struct KeyOutcome
{
    int key = 0; // the key as it now stands: 0 when swallowed
    std::vector<MaskEvent> events;
};

// Text formats of the box.
inline constexpr int kTextFormatPlain = 0;
inline constexpr int kTextFormatTime = 1;
inline constexpr int kTextFormatOverwrite = 2;

// Key codes the handlers know.
inline constexpr int kKeyReturn = 13;
inline constexpr int kKeyEscape = 27;
inline constexpr int kKeyEnd = 35;
inline constexpr int kKeyHome = 36;
inline constexpr int kKeyLeft = 37;
inline constexpr int kKeyUp = 38;
inline constexpr int kKeyRight = 39;
inline constexpr int kKeyDown = 40;
inline constexpr int kKeyDelete = 46;
inline constexpr int kShiftMask = 1;

class MaskedTimeInput
{
public:
    // A typed character. Return and Escape hide the box and pass on; in formats 1 and 2 every
    // other key is swallowed after its effect.
    KeyOutcome KeyPress(TextBoxState &box, int TextFormat, int KeyAscii);

    // A key going down, before the control's own KeyDown: Up and Down step the time (format 1),
    // Home, End, Left and Right select fields, Delete is swallowed.
    KeyOutcome KeyDown(TextBoxState &box, int TextFormat, int KeyCode, int Shift);

    // The field (0 hours to 3 milliseconds) that a caret position stands in.
    static int FieldOf(int position);

private:
    int m_notedSelStart = 0; // the caret of the last key, kept across a text rewrite
};

} // namespace qb::controls
