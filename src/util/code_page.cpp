// Code page conversions: UTF-8 by hand, every other Windows code page through iconv.
#include "util/code_page.h"

#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iconv.h>
#include <vector>

namespace qb::util {

namespace {

constexpr int kUtf8CodePage = 65001;
constexpr int kGbkCodePage = 936;
constexpr char16_t kReplacement = 0xFFFD;

// iconv works on bytes; QString keeps its code units in host order.
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
constexpr const char *kHostUtf16 = "UTF-16LE";
#else
constexpr const char *kHostUtf16 = "UTF-16BE";
#endif

// Reads one UTF-8 sequence at p (left > 0 bytes). Returns the bytes consumed; cp is the code point,
// or -1 when the sequence is broken, in which case the consumed bytes are its longest valid start
// (at least one), so that one U+FFFD stands for them.
qsizetype readUtf8(const uchar *p, qsizetype left, char32_t &cp, bool &valid)
{
    const uchar b0 = p[0];
    valid = false;
    if (b0 < 0x80) {
        cp = b0;
        valid = true;
        return 1;
    }
    int need = 0;
    uchar lo = 0x80, hi = 0xBF;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        need = 1;
        cp = b0 & 0x1F;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        need = 2;
        cp = b0 & 0x0F;
        if (b0 == 0xE0)
            lo = 0xA0; // overlong
        else if (b0 == 0xED)
            hi = 0x9F; // surrogates
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        need = 3;
        cp = b0 & 0x07;
        if (b0 == 0xF0)
            lo = 0x90; // overlong
        else if (b0 == 0xF4)
            hi = 0x8F; // past U+10FFFF
    } else {
        return 1;
    }
    qsizetype i = 1;
    for (; i <= need; ++i) {
        if (i >= left)
            return i;
        const uchar b = p[i];
        if (b < lo || b > hi)
            return i;
        lo = 0x80;
        hi = 0xBF;
        cp = (cp << 6) | (b & 0x3F);
    }
    valid = true;
    return i;
}

QString decodeUtf8(QByteArrayView bytes)
{
    const auto *p = reinterpret_cast<const uchar *>(bytes.data());
    const qsizetype n = bytes.size();
    // Every sequence yields no more code units than it has bytes.
    QString out(n, Qt::Uninitialized);
    char16_t *dst = reinterpret_cast<char16_t *>(out.data());
    char16_t *const start = dst;
    qsizetype i = 0;
    while (i < n) {
        if (p[i] < 0x80) {
            *dst++ = p[i++];
            continue;
        }
        char32_t cp = 0;
        bool valid = false;
        i += readUtf8(p + i, n - i, cp, valid);
        if (!valid) {
            *dst++ = kReplacement;
        } else if (cp >= 0x10000) {
            *dst++ = QChar::highSurrogate(cp);
            *dst++ = QChar::lowSurrogate(cp);
        } else {
            *dst++ = char16_t(cp);
        }
    }
    out.truncate(dst - start);
    return out;
}

QByteArray encodeUtf8(QStringView text)
{
    const qsizetype n = text.size();
    QByteArray out(n * 3, Qt::Uninitialized);
    auto *dst = reinterpret_cast<uchar *>(out.data());
    auto *const start = dst;
    const char16_t *src = text.utf16();
    for (qsizetype i = 0; i < n; ++i) {
        char32_t c = src[i];
        if (c < 0x80) {
            *dst++ = uchar(c);
        } else if (c < 0x800) {
            *dst++ = uchar(0xC0 | (c >> 6));
            *dst++ = uchar(0x80 | (c & 0x3F));
        } else if (QChar::isSurrogate(c)) {
            if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(src[i + 1])) {
                c = QChar::surrogateToUcs4(char16_t(c), src[++i]);
                *dst++ = uchar(0xF0 | (c >> 18));
                *dst++ = uchar(0x80 | ((c >> 12) & 0x3F));
                *dst++ = uchar(0x80 | ((c >> 6) & 0x3F));
                *dst++ = uchar(0x80 | (c & 0x3F));
            } else {
                *dst++ = '?';
            }
        } else {
            *dst++ = uchar(0xE0 | (c >> 12));
            *dst++ = uchar(0x80 | ((c >> 6) & 0x3F));
            *dst++ = uchar(0x80 | (c & 0x3F));
        }
    }
    out.truncate(dst - start);
    return out;
}

// The iconv name of a Windows code page. Most are "CP<n>" in glibc; a few carry other names.
// UTF-16/32 and ISO-2022 are left out: a one-byte "?" does not fit into them.
QByteArray charsetName(int codePage)
{
    struct Alias
    {
        int codePage;
        const char *name;
    };
    static constexpr Alias aliases[] = {
        {20127, "ASCII"},
        {20866, "KOI8-R"},
        {21866, "KOI8-U"},
        {20936, "GB2312"},
        {54936, "GB18030"},
        {51932, "EUC-JP"},
        {51949, "EUC-KR"},
        {10000, "MACINTOSH"},
        {28591, "ISO-8859-1"},
        {28592, "ISO-8859-2"},
        {28593, "ISO-8859-3"},
        {28594, "ISO-8859-4"},
        {28595, "ISO-8859-5"},
        {28596, "ISO-8859-6"},
        {28597, "ISO-8859-7"},
        {28598, "ISO-8859-8"},
        {28599, "ISO-8859-9"},
        {28603, "ISO-8859-13"},
        {28605, "ISO-8859-15"},
    };
    for (const Alias &alias : aliases)
        if (alias.codePage == codePage)
            return QByteArray(alias.name);
    return "CP" + QByteArray::number(codePage);
}

// One conversion descriptor, owned by one call: iconv state must not be shared between threads.
class Converter
{
public:
    Converter(const char *to, const char *from)
        : m_cd(iconv_open(to, from))
    { }
    ~Converter()
    {
        if (isOpen())
            iconv_close(m_cd);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool isOpen() const { return m_cd != reinterpret_cast<iconv_t>(-1); }

    // Converts as much as possible; returns false with errno set when iconv stops early.
    bool run(const char *&in, size_t &inLeft, char *&out, size_t &outLeft)
    {
        char *inPtr = const_cast<char *>(in);
        const size_t r = iconv(m_cd, &inPtr, &inLeft, &out, &outLeft);
        in = inPtr;
        return r != size_t(-1);
    }

    // Writes whatever a stateful charset still holds back.
    bool flush(char *&out, size_t &outLeft)
    {
        return iconv(m_cd, nullptr, nullptr, &out, &outLeft) != size_t(-1);
    }

private:
    iconv_t m_cd;
};

// A growable output area over a QString or QByteArray; the container is resized to fit at the end.
template<typename Container>
class Output
{
public:
    Output(Container &c, size_t bytes)
        : m_c(c)
    {
        resizeBytes(bytes);
    }
    char *cursor() { return base() + m_used; }
    size_t room() const { return m_capacity - m_used; }
    void advanceTo(const char *p) { m_used = size_t(p - base()); }
    void ensure(size_t bytes)
    {
        if (room() < bytes)
            resizeBytes(std::max(m_capacity * 2, m_used + bytes));
    }
    void grow() { resizeBytes(m_capacity * 2 + 64); }
    void put(const void *src, size_t bytes)
    {
        ensure(bytes);
        std::memcpy(cursor(), src, bytes);
        m_used += bytes;
    }
    void finish() { m_c.resize(qsizetype(m_used / sizeof(typename Container::value_type))); }

private:
    char *base() { return reinterpret_cast<char *>(m_c.data()); }
    void resizeBytes(size_t bytes)
    {
        const size_t unit = sizeof(typename Container::value_type);
        m_c.resize(qsizetype((bytes + unit - 1) / unit));
        m_capacity = size_t(m_c.size()) * unit;
    }
    Container &m_c;
    size_t m_used = 0;
    size_t m_capacity = 0;
};

// Converts all of the input; where the converter stops at an input unit it can't take, that
// unit (of unitSize bytes) is skipped and the replacement written instead.
template<typename Container>
void convertAll(Converter &cv, const char *in, size_t inLeft, size_t unitSize, const void *replacement,
    size_t replacementSize, Output<Container> &out)
{
    while (inLeft > 0) {
        char *dst = out.cursor();
        size_t room = out.room();
        const bool done = cv.run(in, inLeft, dst, room);
        out.advanceTo(dst);
        if (done)
            break;
        if (errno == E2BIG) {
            out.grow();
            continue;
        }
        out.put(replacement, replacementSize);
        const size_t skip = std::min(unitSize, inLeft);
        in += skip;
        inLeft -= skip;
    }
    for (;;) {
        char *dst = out.cursor();
        size_t room = out.room();
        const bool done = cv.flush(dst, room);
        out.advanceTo(dst);
        if (done || errno != E2BIG)
            break;
        out.grow();
    }
    out.finish();
}

QString decodeWithIconv(QByteArrayView bytes, int codePage)
{
    Converter cv(kHostUtf16, charsetName(codePage).constData());
    if (!cv.isOpen())
        return {};
    QString text;
    // One code unit per byte covers every double-byte and single-byte page; more room on demand.
    Output<QString> out(text, size_t(bytes.size()) * 2 + 16);
    // A byte the page does not know, or a cut-off sequence at the end: one U+FFFD, move on.
    const char16_t replacement = kReplacement;
    convertAll(cv, bytes.data(), size_t(bytes.size()), 1, &replacement, sizeof replacement, out);
    return text;
}

QByteArray encodeWithIconv(QStringView text, int codePage)
{
    // glibc converts through UCS-4 internally; starting from there makes every character that
    // does not fit a cheap one-step error instead of a re-run of a two-step chain.
    static_assert(sizeof(wchar_t) == 4, "iconv WCHAR_T is taken as UCS-4");
    Converter cv(charsetName(codePage).constData(), "WCHAR_T");
    if (!cv.isOpen())
        return {};
    const char16_t *src = text.utf16();
    const qsizetype n = text.size();
    std::vector<wchar_t> wide(static_cast<size_t>(n));
    wchar_t *w = wide.data();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = src[i];
        if (!QChar::isSurrogate(c))
            *w++ = wchar_t(c);
        else if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(src[i + 1]))
            *w++ = wchar_t(QChar::surrogateToUcs4(c, src[++i]));
        else
            *w++ = L'?'; // a lone surrogate
    }
    wide.resize(size_t(w - wide.data()));

    QByteArray bytes;
    Output<QByteArray> out(bytes, wide.size() * 2 + 16);
    // The page has no place for this character: "?" instead.
    convertAll(cv, reinterpret_cast<const char *>(wide.data()), wide.size() * sizeof(wchar_t),
        sizeof(wchar_t), "?", 1, out);
    return bytes;
}

} // namespace

bool IsValidUtf8(QByteArrayView bytes)
{
    const auto *p = reinterpret_cast<const uchar *>(bytes.data());
    const qsizetype n = bytes.size();
    qsizetype i = 0;
    while (i < n) {
        if (p[i] < 0x80) {
            ++i;
            continue;
        }
        char32_t cp = 0;
        bool valid = false;
        i += readUtf8(p + i, n - i, cp, valid);
        if (!valid)
            return false;
    }
    return true;
}

QString DecodeCodePage(QByteArrayView bytes, int codePage)
{
    if (codePage == 0)
        return IsValidUtf8(bytes) ? decodeUtf8(bytes) : decodeWithIconv(bytes, kGbkCodePage);
    if (codePage == kUtf8CodePage)
        return decodeUtf8(bytes);
    if (codePage < 0)
        return {};
    return decodeWithIconv(bytes, codePage);
}

QByteArray EncodeCodePage(QStringView text, int codePage)
{
    if (codePage == 0 || codePage == kUtf8CodePage)
        return encodeUtf8(text);
    if (codePage < 0)
        return {};
    return encodeWithIconv(text, codePage);
}

} // namespace qb::util
