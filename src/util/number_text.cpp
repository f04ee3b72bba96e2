// Classic number parsing and formatting: Val, numeric checks, banker's rounding and Format patterns.
#include "util/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace qb::util {

namespace {

bool isAsciiDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

// Steps through text the way Val reads it: blanks, tabs and line feeds are invisible.
class ValCursor
{
public:
    explicit ValCursor(QStringView text)
        : m_text(text)
    {
        skipBlanks();
    }

    // The current character, or 0 at the end (0 is never part of a number).
    char16_t peek() const { return m_pos < m_text.size() ? m_text[m_pos].unicode() : 0; }
    void advance()
    {
        ++m_pos;
        skipBlanks();
    }

private:
    void skipBlanks()
    {
        while (m_pos < m_text.size()) {
            const char16_t c = m_text[m_pos].unicode();
            if (c != u' ' && c != u'\t' && c != u'\n')
                break;
            ++m_pos;
        }
    }

    QStringView m_text;
    qsizetype m_pos = 0;
};

int radixDigit(char16_t c, int radix)
{
    int d = -1;
    if (isAsciiDigit(c))
        d = c - u'0';
    else if (c >= u'a' && c <= u'f')
        d = c - u'a' + 10;
    else if (c >= u'A' && c <= u'F')
        d = c - u'A' + 10;
    return d < radix ? d : -1;
}

// "&H" / "&O" numbers keep the classic sign rule: they are bit patterns of a 16-bit or 32-bit
// integer, whichever is the smallest that holds them.
double readRadixNumber(ValCursor &cursor, int radix)
{
    quint64 value = 0;
    bool tooLarge = false;
    for (int d = radixDigit(cursor.peek(), radix); d >= 0; d = radixDigit(cursor.peek(), radix)) {
        if (!tooLarge) {
            value = value * quint64(radix) + quint64(d);
            tooLarge = value > 0xFFFFFFFFull;
        }
        cursor.advance();
    }
    if (tooLarge)
        return 0;
    if (value <= 0xFFFFull)
        return value >= 0x8000ull ? double(qint64(value) - 0x10000) : double(value);
    return value >= 0x80000000ull ? double(qint64(value) - 0x100000000ll) : double(value);
}

void appendDigits(ValCursor &cursor, std::string &out)
{
    while (isAsciiDigit(cursor.peek())) {
        out.push_back(char(cursor.peek()));
        cursor.advance();
    }
}

bool isExponentMark(char16_t c)
{
    return c == u'E' || c == u'e' || c == u'D' || c == u'd';
}

// Plain notation of a non-negative finite value: the shortest digits that read back the same,
// or every digit of an integer too large for that (to_chars prints such integers exactly).
std::string fixedDigits(double magnitude)
{
    std::array<char, 512> buffer {};
    const auto result
        = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, std::chars_format::fixed);
    if (result.ec != std::errc())
        return "0";
    return std::string(buffer.data(), result.ptr);
}

QString shortestText(double value)
{
    if (!std::isfinite(value))
        return {};
    if (value == 0)
        return QStringLiteral("0");
    const double magnitude = std::fabs(value);
    const bool plain = magnitude >= 1e-5 && magnitude < 1e15;
    std::array<char, 512> buffer {};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
        plain ? std::chars_format::fixed : std::chars_format::scientific);
    if (result.ec != std::errc())
        return {};
    std::string text(buffer.data(), result.ptr);
    for (char &c : text)
        if (c == 'e')
            c = 'E';
    return QString::fromLatin1(text);
}

struct NumberPattern
{
    qsizetype minIntDigits = 0;
    bool grouping = false;
    bool hasPoint = false;
    qsizetype minDecimals = 0;
    qsizetype maxDecimals = 0;
};

bool parsePattern(QStringView pattern, NumberPattern &out)
{
    const qsizetype dot = pattern.indexOf(u'.');
    const QStringView intPart = dot < 0 ? pattern : pattern.left(dot);
    const QStringView fracPart = dot < 0 ? QStringView() : pattern.mid(dot + 1);

    qsizetype places = 0;
    qsizetype firstZero = -1;
    for (qsizetype i = 0; i < intPart.size(); ++i) {
        const QChar c = intPart[i];
        if (c == u'0') {
            if (firstZero < 0)
                firstZero = places;
            ++places;
        } else if (c == u'#') {
            ++places;
        } else if (c == u',') {
            // Only a comma between two digit places means grouping; anything else is not ours.
            if (i == 0 || i + 1 == intPart.size() || intPart[i + 1] == u',')
                return false;
            out.grouping = true;
        } else {
            return false;
        }
    }
    // A "0" forces every digit place to its right, so "0#" means two digits at least.
    out.minIntDigits = firstZero < 0 ? 0 : places - firstZero;

    for (qsizetype i = 0; i < fracPart.size(); ++i) {
        if (fracPart[i] == u'0')
            out.minDecimals = i + 1;
        else if (fracPart[i] != u'#')
            return false;
    }
    out.maxDecimals = fracPart.size();
    out.hasPoint = dot >= 0;
    return places + out.maxDecimals > 0;
}

// Adds one unit in the last place of a digit string; returns true when a new leading digit grew.
bool incrementDigits(std::string &digits)
{
    for (auto it = digits.rbegin(); it != digits.rend(); ++it) {
        if (*it != '9') {
            ++*it;
            return false;
        }
        *it = '0';
    }
    digits.insert(digits.begin(), '1');
    return true;
}

} // namespace

double Val(QStringView text)
{
    ValCursor cursor(text);
    if (cursor.peek() == u'&') {
        cursor.advance();
        const char16_t kind = cursor.peek();
        const int radix = (kind == u'H' || kind == u'h') ? 16 : (kind == u'O' || kind == u'o') ? 8 : 0;
        if (radix == 0)
            return 0;
        cursor.advance();
        return readRadixNumber(cursor, radix);
    }

    std::string number;
    if (cursor.peek() == u'+' || cursor.peek() == u'-') {
        if (cursor.peek() == u'-')
            number.push_back('-');
        cursor.advance();
    }
    const std::size_t intStart = number.size();
    appendDigits(cursor, number);
    const bool hasInt = number.size() > intStart;
    if (!hasInt)
        number.push_back('0');
    bool hasFraction = false;
    if (cursor.peek() == u'.') {
        cursor.advance();
        number.push_back('.');
        const std::size_t fracStart = number.size();
        appendDigits(cursor, number);
        hasFraction = number.size() > fracStart;
        if (!hasFraction)
            number.pop_back();
    }
    if (!hasInt && !hasFraction)
        return 0;

    if (isExponentMark(cursor.peek())) {
        cursor.advance();
        std::string exponent(1, 'e');
        if (cursor.peek() == u'+' || cursor.peek() == u'-') {
            exponent.push_back(char(cursor.peek()));
            cursor.advance();
        }
        const std::size_t digitsStart = exponent.size();
        appendDigits(cursor, exponent);
        // "1.5E" is just 1.5: an exponent without digits is where the number stops.
        if (exponent.size() > digitsStart)
            number += exponent;
    }

    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec != std::errc() || !std::isfinite(value) || value == 0)
        return 0;
    return value;
}

bool IsNumericText(QStringView text)
{
    const qsizetype n = text.size();
    qsizetype i = 0;
    const auto isBlank = [&](qsizetype k) { return text[k] == u' ' || text[k] == u'\t'; };
    const auto countDigits = [&]() {
        const qsizetype start = i;
        while (i < n && isAsciiDigit(text[i].unicode()))
            ++i;
        return i - start;
    };

    while (i < n && isBlank(i))
        ++i;
    if (i < n && (text[i] == u'+' || text[i] == u'-'))
        ++i;
    qsizetype digits = countDigits();
    if (i < n && text[i] == u'.') {
        ++i;
        digits += countDigits();
    }
    if (digits == 0)
        return false;
    if (i < n && isExponentMark(text[i].unicode())) {
        ++i;
        if (i < n && (text[i] == u'+' || text[i] == u'-'))
            ++i;
        if (countDigits() == 0)
            return false;
    }
    while (i < n && isBlank(i))
        ++i;
    return i == n;
}

double RoundHalfEven(double value)
{
    if (!std::isfinite(value))
        return value;
    const double below = std::floor(value);
    // Exact: a double and its floor are close enough for the difference to be representable.
    const double part = value - below;
    if (part < 0.5)
        return below;
    if (part > 0.5)
        return below + 1;
    return std::fmod(below, 2.0) == 0 ? below : below + 1;
}

bool RoundToLong(double value, qint32 &out)
{
    if (!std::isfinite(value))
        return false;
    const double rounded = RoundHalfEven(value);
    if (rounded < -2147483648.0 || rounded > 2147483647.0)
        return false;
    out = qint32(rounded);
    return true;
}

QString FormatNumber(double value, QStringView pattern)
{
    if (!std::isfinite(value))
        return {};
    NumberPattern format;
    if (!parsePattern(pattern, format))
        return shortestText(value);

    const std::string fixed = fixedDigits(std::fabs(value));
    const std::size_t dot = fixed.find('.');
    std::string digits = fixed.substr(0, dot);
    std::size_t intLength = digits.size();
    if (dot != std::string::npos)
        digits += fixed.substr(dot + 1);

    // Half away from zero on the shortest digits: the first dropped digit decides.
    const std::size_t keep = intLength + std::size_t(format.maxDecimals);
    if (digits.size() > keep) {
        const bool roundUp = digits[keep] >= '5';
        digits.resize(keep);
        if (roundUp && incrementDigits(digits))
            ++intLength;
    } else {
        digits.resize(keep, '0');
    }
    const bool isZero = digits.find_first_not_of('0') == std::string::npos;

    std::string whole = digits.substr(0, intLength);
    whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
    if (whole.size() < std::size_t(format.minIntDigits))
        whole.insert(0, std::size_t(format.minIntDigits) - whole.size(), '0');
    if (format.grouping) {
        for (std::size_t pos = whole.size(); pos > 3; pos -= 3)
            whole.insert(pos - 3, 1, ',');
    }

    std::string decimals = digits.substr(intLength);
    while (decimals.size() > std::size_t(format.minDecimals) && decimals.back() == '0')
        decimals.pop_back();

    std::string text;
    if (std::signbit(value) && !isZero)
        text.push_back('-');
    text += whole;
    if (format.hasPoint) {
        text.push_back('.');
        text += decimals;
    }
    return QString::fromLatin1(text);
}

} // namespace qb::util
