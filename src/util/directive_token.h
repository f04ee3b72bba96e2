// One quoted token of the cabinet maker's directive language, written so that it reads back exactly.
#pragma once

#include <QString>

namespace qb::util {

// text in double quotes: "" for a quote, %% for "%", and CR and LF, which would cut the line, as
// the character references %#13% and %#10%.
QString QuoteDirectiveToken(const QString &text);

} // namespace qb::util
