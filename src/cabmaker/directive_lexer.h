// Reading one line of a directive file: line ends, comments, %variables%, tokens and name=value.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>

namespace qb::cabmaker {

// A line may not grow past this many characters through %variable% expansion: values can hold
// other values, and doubling them line after line would otherwise eat all memory.
inline constexpr qsizetype kMaxExpandedLine = 65536;

// Blanks between tokens: space and tab.
inline bool IsBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

inline bool IsAsciiLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

// Splits text at CR LF, LF or CR. Text after the last line end makes a line; an empty tail does not.
QStringList SplitDirectiveLines(QStringView text);

// True for an empty or blank line and for one whose first non-blank character is ";".
bool IsIgnorableLine(QStringView line);

// The line without its comment: a ";" outside quotes that follows a blank starts one.
QStringView StripComment(QStringView line);

// Looks a variable up by name (any case); nullopt when there is none.
using VariableLookup = std::function<std::optional<QString>(const QString &name)>;

struct Expansion
{
    QString text;
    QString error; // empty on success
};

// Replaces every %name% with its value, %% with "%" and %#N% with the character of decimal code
// point N, in one pass: nothing put in is expanded again. Errors: an unknown name, a bad %#N%, a
// "%" left open, a value that would take the line past kMaxExpandedLine.
Expansion ExpandVariables(QStringView line, const VariableLookup &lookup);

struct LineToken
{
    QString text;
    bool quoted = false; // the token began with a quote, so it is never a /parameter
};

struct TokenList
{
    QList<LineToken> tokens;
    QString error; // empty on success
};

// Splits a file line at blanks. "..." groups blanks into a token and "" inside quotes is one quote;
// quoted and plain parts that touch make one token.
TokenList SplitTokens(QStringView line);

// True when the first non-blank character is "." and a letter follows it, so "..\a.txt" and
// "./a.txt" stay file lines.
bool IsDirectiveLine(QStringView line);

struct DirectiveWords
{
    QString keyword; // without the ".", as written
    QString rest; // the text after the keyword, blanks trimmed
};

DirectiveWords SplitDirective(QStringView line);

// Letters, digits and "_"; not empty.
bool IsValidVariableName(QStringView name);

struct Assignment
{
    QString name;
    QString value;
    QString error; // empty on success
};

// Reads "name = value" after .Set or .Define (directive names the directive for messages). The
// value is either quoted, with "" for one quote, or the rest of the line with outer blanks trimmed.
Assignment ReadAssignment(QStringView rest, QStringView directive);

} // namespace qb::cabmaker
