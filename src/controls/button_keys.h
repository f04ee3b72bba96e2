// The character code a key types, as the multi-mode control's KeyPress carries it. The other codes
// of its events come from input_codes.h, shared with the list control.
#pragma once

class QKeyEvent;

namespace qb::controls {

// The character code a key types: its text, or 8, 9, 13, 27 for Backspace, Tab, Return and
// Escape; 0 for a key that types nothing.
int KeyAsciiOf(const QKeyEvent &event);

} // namespace qb::controls
