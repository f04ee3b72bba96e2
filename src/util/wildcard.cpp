// Name matching for file finding and the "Like" operator.
#include "util/wildcard.h"

#include <vector>

namespace qb::util {

namespace {

QChar fold(QChar c)
{
    return c.toCaseFolded();
}

} // namespace

FindPattern::FindPattern(QStringView pattern)
{
    if (pattern == u"*" || pattern == u"*.*") {
        m_all = true;
        return;
    }
    // The platform rewrites a user's pattern before matching: "?" becomes a question mark that
    // stops at a dot, "*" before a dot stops at the name's last dot, and a dot before "*", "?"
    // or at the end may also match the end of the name.
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        const QChar next = i + 1 < pattern.size() ? pattern[i + 1] : QChar();
        if (c == u'?') {
            m_items.append({Token::QuestionMark, {}});
        } else if (c == u'*') {
            m_items.append({next == u'.' ? Token::DosStar : Token::Star, {}});
        } else if (c == u'.' && (next.isNull() || next == u'?' || next == u'*')) {
            m_items.append({Token::DosDot, {}});
        } else {
            m_items.append({Token::Literal, fold(c)});
        }
    }
}

bool FindPattern::matches(QStringView name) const
{
    if (m_all)
        return !name.isEmpty();
    if (m_items.isEmpty() || name.isEmpty())
        return false;

    const qsizetype n = name.size();
    const qsizetype lastDot = name.lastIndexOf(u'.');
    // reach[k]: the pattern read so far can end exactly before name[k].
    std::vector<char> reach(size_t(n) + 1, 0), next(size_t(n) + 1, 0);
    reach[0] = 1;
    for (const Item &item : m_items) {
        std::fill(next.begin(), next.end(), 0);
        switch (item.token) {
        case Token::Literal:
            for (qsizetype k = 0; k < n; ++k)
                if (reach[k] && fold(name[k]) == item.ch)
                    next[k + 1] = 1;
            break;
        case Token::Star: {
            bool on = false;
            for (qsizetype k = 0; k <= n; ++k) {
                on = on || reach[k];
                next[k] = on;
            }
            break;
        }
        case Token::DosStar: {
            // Any run that does not pass the name's last dot.
            bool on = false;
            for (qsizetype k = 0; k <= n; ++k) {
                on = on || reach[k];
                next[k] = on;
                if (k == lastDot)
                    on = false;
            }
            break;
        }
        case Token::QuestionMark:
            for (qsizetype k = 0; k <= n; ++k) {
                if (!reach[k])
                    continue;
                if (k == n || name[k] == u'.')
                    next[k] = 1;
                else
                    next[k + 1] = 1;
            }
            break;
        case Token::DosDot:
            for (qsizetype k = 0; k <= n; ++k) {
                if (!reach[k])
                    continue;
                if (k == n)
                    next[k] = 1;
                else if (name[k] == u'.')
                    next[k + 1] = 1;
            }
            break;
        }
        reach.swap(next);
    }
    return reach[size_t(n)] != 0;
}

bool MatchesFindPattern(QStringView name, QStringView pattern)
{
    return FindPattern(pattern).matches(name);
}

namespace {

struct LikeToken
{
    enum Kind : char { Literal, Star, Any, Digit, Set };
    explicit LikeToken(Kind k, QChar c = {})
        : kind(k)
        , ch(c)
    { }
    Kind kind;
    QChar ch;
    bool negate = false;
    std::vector<std::pair<QChar, QChar>> ranges;
};

// Parses a pattern into tokens; false when a "[" set is not closed.
bool parseLike(QStringView pattern, std::vector<LikeToken> &out)
{
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        if (c == u'*') {
            if (out.empty() || out.back().kind != LikeToken::Star)
                out.emplace_back(LikeToken::Star);
        } else if (c == u'?') {
            out.emplace_back(LikeToken::Any);
        } else if (c == u'#') {
            out.emplace_back(LikeToken::Digit);
        } else if (c == u'[') {
            LikeToken set(LikeToken::Set);
            qsizetype j = i + 1;
            if (j < pattern.size() && pattern[j] == u'!') {
                set.negate = true;
                ++j;
            }
            while (j < pattern.size() && pattern[j] != u']') {
                if (j + 2 < pattern.size() && pattern[j + 1] == u'-' && pattern[j + 2] != u']') {
                    set.ranges.emplace_back(pattern[j], pattern[j + 2]);
                    j += 3;
                } else {
                    set.ranges.emplace_back(pattern[j], pattern[j]);
                    ++j;
                }
            }
            if (j >= pattern.size())
                return false;
            out.push_back(std::move(set));
            i = j;
        } else {
            out.emplace_back(LikeToken::Literal, c);
        }
    }
    return true;
}

bool tokenAccepts(const LikeToken &token, QChar c)
{
    switch (token.kind) {
    case LikeToken::Literal:
        return token.ch == c;
    case LikeToken::Any:
        return true;
    case LikeToken::Digit:
        return c >= u'0' && c <= u'9';
    case LikeToken::Set: {
        if (token.ranges.empty())
            return false; // "[]" would match the empty string; here it matches nothing
        bool found = false;
        for (const auto &[lo, hi] : token.ranges)
            found = found || (lo <= c && c <= hi);
        return found != token.negate;
    }
    case LikeToken::Star:
        break;
    }
    return false;
}

} // namespace

bool Like(QStringView text, QStringView pattern)
{
    std::vector<LikeToken> tokens;
    if (!parseLike(pattern, tokens))
        return false;
    const qsizetype n = text.size();
    std::vector<char> reach(size_t(n) + 1, 0), next(size_t(n) + 1, 0);
    reach[0] = 1;
    for (const LikeToken &token : tokens) {
        std::fill(next.begin(), next.end(), 0);
        if (token.kind == LikeToken::Star) {
            bool on = false;
            for (qsizetype k = 0; k <= n; ++k) {
                on = on || reach[k];
                next[k] = on;
            }
        } else {
            for (qsizetype k = 0; k < n; ++k)
                if (reach[k] && tokenAccepts(token, text[k]))
                    next[k + 1] = 1;
        }
        reach.swap(next);
    }
    return reach[size_t(n)] != 0;
}

} // namespace qb::util
