// Reading one line of a directive file: line ends, comments, %variables%, tokens and name=value.
#include "cabmaker/directive_lexer.h"

using namespace Qt::StringLiterals;

namespace qb::cabmaker {

namespace {

// Only spaces and tabs count, so other white space stays part of a name as written.
QStringView trimBlanks(QStringView text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && IsBlank(text[begin]))
        ++begin;
    while (end > begin && IsBlank(text[end - 1]))
        --end;
    return text.sliced(begin, end - begin);
}

// Reads a quoted string whose opening quote is at text[start]. On success returns the index just
// past the closing quote; -1 when the quote is never closed.
qsizetype readQuoted(QStringView text, qsizetype start, QString &out)
{
    qsizetype i = start + 1;
    while (i < text.size()) {
        if (text[i] != u'"') {
            out.append(text[i++]);
            continue;
        }
        if (i + 1 < text.size() && text[i + 1] == u'"') {
            out.append(u'"');
            i += 2;
            continue;
        }
        return i + 1;
    }
    return -1;
}

// The character of a reference "#N" (N decimal); nullopt unless N is a code point other than NUL
// and the surrogates.
std::optional<char32_t> characterReference(QStringView name)
{
    if (name.size() < 2 || name[0] != u'#')
        return std::nullopt;
    char32_t code = 0;
    for (const QChar c : name.sliced(1)) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
        code = code * 10 + char32_t(c.unicode() - u'0');
        if (code > 0x10FFFF)
            return std::nullopt;
    }
    if (code == 0 || (code >= 0xD800 && code <= 0xDFFF))
        return std::nullopt;
    return code;
}

} // namespace

QStringList SplitDirectiveLines(QStringView text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c != u'\r' && c != u'\n')
            continue;
        lines.append(text.sliced(start, i - start).toString());
        if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            ++i;
        start = i + 1;
    }
    if (start < text.size())
        lines.append(text.sliced(start).toString());
    return lines;
}

bool IsIgnorableLine(QStringView line)
{
    const QStringView trimmed = trimBlanks(line);
    return trimmed.isEmpty() || trimmed.front() == u';';
}

QStringView StripComment(QStringView line)
{
    bool inQuotes = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (c == u'"')
            inQuotes = !inQuotes;
        else if (c == u';' && !inQuotes && (i == 0 || IsBlank(line[i - 1])))
            return line.first(i);
    }
    return line;
}

Expansion ExpandVariables(QStringView line, const VariableLookup &lookup)
{
    Expansion result;
    qsizetype i = 0;
    while (i < line.size()) {
        const qsizetype percent = line.indexOf(u'%', i);
        const qsizetype plainEnd = percent < 0 ? line.size() : percent;
        result.text.append(line.sliced(i, plainEnd - i));
        if (percent < 0)
            break;
        const qsizetype close = line.indexOf(u'%', percent + 1);
        if (close < 0) {
            result.error = u"a '%' is not closed (write %% for a single '%')"_s;
            return result;
        }
        if (close == percent + 1) {
            result.text.append(u'%');
        } else {
            const QString name = line.sliced(percent + 1, close - percent - 1).toString();
            std::optional<QString> value;
            if (name.startsWith(u'#')) {
                const std::optional<char32_t> code = characterReference(name);
                if (!code) {
                    result.error
                        = u"'%%1%' is not a character: write %#N% with N from 1 to 1114111, not a surrogate"_s
                              .arg(name);
                    return result;
                }
                value = QString::fromUcs4(&*code, 1);
            } else {
                value = lookup(name);
            }
            if (!value) {
                result.error = u"unknown variable '%1'"_s.arg(name);
                return result;
            }
            // Checked before appending, so a run of huge values never grows memory first.
            if (result.text.size() + value->size() > kMaxExpandedLine) {
                result.text.clear();
                result.error = u"the line is longer than %1 characters once variables are expanded"_s.arg(
                    kMaxExpandedLine);
                return result;
            }
            result.text.append(*value);
        }
        i = close + 1;
    }
    return result;
}

TokenList SplitTokens(QStringView line)
{
    TokenList result;
    qsizetype i = 0;
    while (true) {
        while (i < line.size() && IsBlank(line[i]))
            ++i;
        if (i >= line.size())
            break;
        LineToken token;
        token.quoted = line[i] == u'"';
        while (i < line.size() && !IsBlank(line[i])) {
            if (line[i] != u'"') {
                token.text.append(line[i++]);
                continue;
            }
            i = readQuoted(line, i, token.text);
            if (i < 0) {
                result.error = u"a quote is left open"_s;
                return result;
            }
        }
        result.tokens.append(token);
    }
    return result;
}

bool IsDirectiveLine(QStringView line)
{
    const QStringView trimmed = trimBlanks(line);
    return trimmed.size() >= 2 && trimmed[0] == u'.' && IsAsciiLetter(trimmed[1]);
}

DirectiveWords SplitDirective(QStringView line)
{
    const QStringView trimmed = trimBlanks(line);
    DirectiveWords words;
    qsizetype end = trimmed.isEmpty() ? 0 : 1;
    while (end < trimmed.size() && !IsBlank(trimmed[end]))
        ++end;
    words.keyword = trimmed.sliced(qMin<qsizetype>(1, end), qMax<qsizetype>(0, end - 1)).toString();
    words.rest = trimBlanks(trimmed.sliced(end)).toString();
    return words;
}

bool IsValidVariableName(QStringView name)
{
    if (name.isEmpty())
        return false;
    for (QChar c : name) {
        if (!IsAsciiLetter(c) && !(c >= u'0' && c <= u'9') && c != u'_')
            return false;
    }
    return true;
}

Assignment ReadAssignment(QStringView rest, QStringView directive)
{
    Assignment result;
    const qsizetype equals = rest.indexOf(u'=');
    const QStringView name = equals < 0 ? QStringView() : trimBlanks(rest.first(equals));
    if (name.isEmpty()) {
        result.error = u"%1 needs name=value"_s.arg(directive);
        return result;
    }
    if (!IsValidVariableName(name)) {
        result.error = u"'%1' is not a valid variable name"_s.arg(name);
        return result;
    }
    result.name = name.toString();

    const QStringView value = trimBlanks(rest.sliced(equals + 1));
    if (value.isEmpty() || value.front() != u'"') {
        result.value = value.toString();
        return result;
    }
    const qsizetype after = readQuoted(value, 0, result.value);
    if (after < 0) {
        result.error = u"a quote is left open"_s;
        return result;
    }
    if (after < value.size()) {
        result.error = u"unexpected text after the quoted value: '%1'"_s.arg(trimBlanks(value.sliced(after)));
        return result;
    }
    return result;
}

} // namespace qb::cabmaker
