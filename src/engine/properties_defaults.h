// Default texts that several property families share.
#pragma once

#include <QString>

namespace qb::engine {

// A font: name, size, bold, italic, character set, strike-out, underline, weight.
inline QString DefaultFontText()
{
    return QStringLiteral("Arial, 20, False, False, 0, False, False, 400");
}

// A colour: six hexadecimal digits, read after "&H".
inline QString DefaultColorText()
{
    return QStringLiteral("FFFFFF");
}

} // namespace qb::engine
