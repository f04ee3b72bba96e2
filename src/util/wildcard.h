// Name matching: the file-find wildcard rules of the original platform, and the "Like" operator.
#pragma once

#include <QList>
#include <QString>
#include <QStringView>

namespace qb::util {

// Matches a file name against a find pattern the way the original platform's directory search
// does: case-insensitive; "*" any run; "?" one character, or nothing before a "." or at the end;
// "*." and "name." match names without an extension; ".*" and ".?" may match nothing at the end;
// "*.*" matches every name, with or without a dot. Never fails; an empty pattern matches nothing.
bool MatchesFindPattern(QStringView name, QStringView pattern);

// A compiled find pattern for matching many names against one pattern.
class FindPattern
{
public:
    explicit FindPattern(QStringView pattern);
    bool matches(QStringView name) const;
    bool matchesEverything() const { return m_all; }

private:
    enum class Token : char { Literal, Star, DosStar, QuestionMark, DosDot };
    struct Item
    {
        Token token;
        QChar ch; // folded, for Literal
    };
    QList<Item> m_items;
    bool m_all = false;
};

// The "Like" operator with a binary compare: "*" any run, "?" one character, "#" one digit,
// "[abc]", "[a-z]", "[!abc]" a character set. A malformed set matches nothing.
bool Like(QStringView text, QStringView pattern);

} // namespace qb::util
