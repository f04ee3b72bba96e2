// Simplified and traditional Chinese characters, converted one character at a time (no phrase
// rewriting), as the subtitle converter needs.
#pragma once

#include <QString>

namespace qb::util {

// Every traditional character that has a simplified form takes it; anything else stays.
QString ToSimplifiedText(const QString &text);

// Every simplified character that has a traditional form takes its first one.
QString ToTraditionalText(const QString &text);

} // namespace qb::util
