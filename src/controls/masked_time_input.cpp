// Typing into and stepping the time mask.
#include "controls/masked_time_input.h"

#include "util/time_format.h"

#include <array>

namespace qb::controls {

namespace {

struct Field
{
    int start;
    int length;
    double stepMSecs;
};

constexpr std::array<Field, 4> kFields {{{0, 2, 3'600'000}, {3, 2, 60'000}, {6, 2, 1'000}, {9, 3, 1}}};

// 100 hours no longer fit the mask.
constexpr double kMaskLimitMSecs = 100.0 * 3'600'000;

} // namespace

int MaskedTimeInput::FieldOf(int position)
{
    if (position <= 2)
        return 0;
    if (position <= 5)
        return 1;
    if (position <= 8)
        return 2;
    return 3;
}

KeyOutcome MaskedTimeInput::KeyPress(TextBoxState &box, int TextFormat, int KeyAscii)
{
    KeyOutcome outcome {KeyAscii, {}};
    if (TextFormat != kTextFormatTime && TextFormat != kTextFormatOverwrite)
        return outcome;
    if (KeyAscii == kKeyReturn || KeyAscii == kKeyEscape) {
        box.Visible = false;
        return outcome;
    }
    outcome.key = 0;
    const int length = int(box.Text.size());
    if (TextFormat == kTextFormatOverwrite) {
        if (box.SelStart >= 0 && box.SelStart < length) {
            box.Text[box.SelStart] = QChar(char16_t(KeyAscii));
            ++box.SelStart;
            box.SelLength = 0;
            outcome.events = {MaskEvent::ValueChange, MaskEvent::SelectedChange};
        }
        if (box.SelStart >= length)
            box.SelStart = 0;
        return outcome;
    }

    const bool digit = KeyAscii >= '0' && KeyAscii <= '9';
    const int at = box.SelStart;
    if (!digit || at < 0 || at >= length)
        return outcome;
    // A tens place follows these positions; hours are held to 59 the same way, on purpose.
    if (KeyAscii > '5' && (at == 0 || at == 2 || at == 3 || at == 5 || at == 6)) {
        outcome.events = {MaskEvent::InputError};
        return outcome;
    }
    int target = at;
    int next = at + 1;
    if (at == 1 || at == 4 || at == 7) {
        next = at + 2; // past the separator
    } else if (at == 2 || at == 5 || at == 8) {
        target = at + 1; // on a separator: the digit behind it
        next = at + 2;
    }
    if (target >= length)
        return outcome;
    box.Text[target] = QChar(char16_t(KeyAscii));
    box.SelStart = std::min(next, length);
    box.SelLength = 0;
    outcome.events = {MaskEvent::ValueChange, MaskEvent::SelectedChange, MaskEvent::ReDraw};
    return outcome;
}

KeyOutcome MaskedTimeInput::KeyDown(TextBoxState &box, int TextFormat, int KeyCode, int Shift)
{
    KeyOutcome outcome {KeyCode, {}};
    if (TextFormat != kTextFormatTime && TextFormat != kTextFormatOverwrite)
        return outcome;
    const int field = FieldOf(box.SelStart);
    switch (KeyCode) {
    case kKeyUp:
    case kKeyDown: {
        m_notedSelStart = box.SelStart;
        outcome.key = 0;
        if (TextFormat != kTextFormatTime)
            return outcome;
        double step = kFields[size_t(field)].stepMSecs;
        if (KeyCode == kKeyDown)
            step = -step;
        if (Shift & kShiftMask)
            step *= 10;
        QString text = box.Text;
        const double sum = util::TimeToMSecs(text, QStringLiteral(",")) + step;
        // Below zero, or too large for the mask: the key does nothing.
        if (sum < 0 || sum >= kMaskLimitMSecs)
            return outcome;
        double work = sum;
        box.Text = util::MSecsToTime(work, 0);
        box.SelStart = m_notedSelStart;
        box.SelLength = 0;
        outcome.events = {MaskEvent::ValueChange, MaskEvent::SelectedChange};
        return outcome;
    }
    case kKeyHome:
        box.SelStart = kFields[0].start;
        box.SelLength = kFields[0].length;
        outcome.key = 0; // the selection stands; the box must not move the caret again
        return outcome;
    case kKeyEnd:
        box.SelStart = kFields[3].start;
        box.SelLength = kFields[3].length;
        outcome.key = 0;
        return outcome;
    case kKeyLeft:
    case kKeyRight: {
        // At the first and the last field the selection stays on that field.
        const int to = KeyCode == kKeyLeft ? std::max(field - 1, 0) : std::min(field + 1, 3);
        box.SelStart = kFields[size_t(to)].start;
        box.SelLength = kFields[size_t(to)].length;
        outcome.key = 0;
        return outcome;
    }
    case kKeyDelete:
        outcome.key = 0;
        return outcome;
    default:
        m_notedSelStart = box.SelStart;
        return outcome;
    }
}

} // namespace qb::controls
