// Loading and saving text files with byte order marks, plain ANSI text files, and the Big5 guess.
#include "util/text_file.h"

#include "util/code_page.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <bitset>
#include <memory>
#include <optional>

namespace qb::util {

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 kMaxFileSize = qint64(4) * 1024 * 1024 * 1024;
constexpr int kGbkCodePage = 936;

bool isKnownFormat(int format)
{
    return format >= TextFormatAnsi && format <= TextFormatUtf32Be;
}

quint32 firstFour(QByteArrayView bytes)
{
    quint32 value = 0;
    for (qsizetype i = 0; i < 4 && i < bytes.size(); ++i)
        value |= quint32(uchar(bytes[i])) << (8 * i);
    return value;
}

// Reads a whole file, refusing 4 GiB or more; also stops on endless devices.
std::optional<QByteArray> readWholeFile(QFile &file)
{
    QByteArray data;
    if (!file.isSequential()) {
        const qint64 size = file.size();
        if (size >= kMaxFileSize)
            return std::nullopt;
        data.reserve(size);
    }
    constexpr qint64 chunk = 1 << 20;
    for (;;) {
        const qsizetype old = data.size();
        if (old >= kMaxFileSize)
            return std::nullopt;
        data.resize(old + chunk);
        const qint64 got = file.read(data.data() + old, chunk);
        if (got < 0)
            return std::nullopt;
        data.resize(old + got);
        if (got == 0)
            break;
    }
    if (data.size() >= kMaxFileSize)
        return std::nullopt;
    return data;
}

std::optional<QByteArray> readWholeFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return readWholeFile(file);
}

QString utf16FromBytes(QByteArrayView bytes, bool bigEndian)
{
    const qsizetype n = bytes.size();
    const auto *p = reinterpret_cast<const uchar *>(bytes.data());
    QString text((n + 1) / 2, Qt::Uninitialized);
    char16_t *dst = reinterpret_cast<char16_t *>(text.data());
    qsizetype i = 0;
    for (; i + 1 < n; i += 2)
        *dst++ = bigEndian ? char16_t((p[i] << 8) | p[i + 1]) : char16_t(p[i] | (p[i + 1] << 8));
    // An odd last byte stands alone as the low byte, in either byte order.
    if (i < n)
        *dst = p[i];
    return text;
}

QByteArray utf16ToBytes(const QString &text, bool bigEndian)
{
    QByteArray bytes(text.size() * 2, Qt::Uninitialized);
    char *dst = bytes.data();
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (bigEndian)
            qToBigEndian(u, dst);
        else
            qToLittleEndian(u, dst);
        dst += 2;
    }
    return bytes;
}

bool writeAll(QFile &file, const QByteArray &bytes)
{
    return file.write(bytes) == bytes.size() && file.flush();
}

// For each BMP code unit, whether its GBK form is two bytes with a trail in 0x40..0x7E.
const std::bitset<0x10000> &big5Hints()
{
    static const std::unique_ptr<std::bitset<0x10000>> table = [] {
        auto bits = std::make_unique<std::bitset<0x10000>>();
        // One conversion for all of them: each unit is followed by LF, which is never part of a
        // GBK double-byte character, so the output splits back into the units' own encodings.
        QString all;
        all.reserve(2 * 0x10000);
        for (char32_t u = 0x80; u < 0x10000; ++u) {
            if (QChar::isSurrogate(u))
                continue;
            all.append(QChar(char16_t(u)));
            all.append(u'\n');
        }
        const QByteArray encoded = EncodeCodePage(all, kGbkCodePage);
        qsizetype pos = 0;
        for (qsizetype i = 0; i < all.size(); i += 2) {
            const qsizetype end = encoded.indexOf('\n', pos);
            if (end < 0)
                break;
            if (end - pos == 2) {
                const uchar trail = uchar(encoded[pos + 1]);
                if (trail >= 0x40 && trail <= 0x7E)
                    bits->set(all[i].unicode());
            }
            pos = end + 1;
        }
        return bits;
    }();
    return *table;
}

} // namespace

void UEFCheckBOM(quint32 dwFirst, int &format, int &length)
{
    if (dwFirst == 0x0000FEFFu) {
        format = TextFormatUtf32Le;
        length = 4;
    } else if (dwFirst == 0xFFFE0000u) {
        format = TextFormatUtf32Be;
        length = 4;
    } else if ((dwFirst & 0xFFFFu) == 0xFEFFu) {
        format = TextFormatUtf16Le;
        length = 2;
    } else if ((dwFirst & 0xFFFFu) == 0xFFFEu) {
        format = TextFormatUtf16Be;
        length = 2;
    } else if ((dwFirst & 0xFFFFFFu) == 0xBFBBEFu) {
        format = TextFormatUtf8;
        length = 3;
    } else {
        length = 0;
    }
}

void UEFMakeBOM(int format, quint32 &dwFirst, int &length)
{
    switch (format) {
    case TextFormatUtf8:
        dwFirst = 0xBFBBEFu;
        length = 3;
        break;
    case TextFormatUtf16Le:
        dwFirst = 0xFEFFu;
        length = 2;
        break;
    case TextFormatUtf16Be:
        dwFirst = 0xFFFEu;
        length = 2;
        break;
    case TextFormatUtf32Le:
        dwFirst = 0x0000FEFFu;
        length = 4;
        break;
    case TextFormatUtf32Be:
        dwFirst = 0xFFFE0000u;
        length = 4;
        break;
    default:
        dwFirst = 0;
        length = 0;
        break;
    }
}

int UEFCheckTextFileFormat(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return TextFormatDetect;
    char head[4] = {};
    if (file.read(head, 4) < 0)
        return TextFormatDetect;
    int format = TextFormatAnsi;
    int length = 0;
    UEFCheckBOM(firstFour(QByteArrayView(head, 4)), format, length);
    return format;
}

QString UEFDecodeText(QByteArrayView fileBytes, int &defFmt, int ansiCodePage)
{
    if (defFmt != TextFormatDetect && !isKnownFormat(defFmt))
        return {};
    int detected = TextFormatAnsi;
    int bomLength = 0;
    UEFCheckBOM(firstFour(fileBytes), detected, bomLength);
    if (defFmt == TextFormatDetect)
        defFmt = detected;
    else if (defFmt != detected)
        bomLength = 0;
    // A short file reads as if padded with zeros, so a mark may claim more bytes than there are.
    const QByteArrayView rest = fileBytes.sliced(std::min<qsizetype>(bomLength, fileBytes.size()));
    switch (defFmt) {
    case TextFormatAnsi:
        return DecodeCodePage(rest, ansiCodePage);
    case TextFormatUtf8:
        return DecodeCodePage(rest, 65001);
    case TextFormatUtf16Le:
        return utf16FromBytes(rest, false);
    case TextFormatUtf16Be:
        return utf16FromBytes(rest, true);
    default:
        return {};
    }
}

QString UEFLoadTextFile(const QString &fileName, int &defFmt, int ansiCodePage)
{
    if (defFmt != TextFormatDetect && !isKnownFormat(defFmt))
        return {};
    const std::optional<QByteArray> bytes = readWholeFile(fileName);
    if (!bytes)
        return {};
    return UEFDecodeText(*bytes, defFmt, ansiCodePage);
}

bool UEFSaveTextFile(const QString &fileName, const QString &sText, bool isAppend, int &defFmt,
    int defaultFormat, int ansiCodePage)
{
    if (defFmt != TextFormatDetect && !isKnownFormat(defFmt))
        return false;
    if (defFmt == TextFormatDetect && !isAppend)
        return false;

    QFile file(fileName);
    const QIODevice::OpenMode mode
        = isAppend ? QIODevice::ReadWrite : QIODevice::ReadWrite | QIODevice::Truncate;
    if (!file.open(mode))
        return false;

    if (file.size() == 0 && defFmt == TextFormatDetect)
        defFmt = defaultFormat;
    if (defFmt != TextFormatDetect && !isKnownFormat(defFmt))
        return false;

    quint32 bom = 0;
    int bomLength = 0;
    if (defFmt == TextFormatDetect) {
        char head[4] = {};
        if (!file.seek(0) || file.read(head, 4) < 0)
            return false;
        int detected = TextFormatAnsi;
        UEFCheckBOM(firstFour(QByteArrayView(head, 4)), detected, bomLength);
        defFmt = detected;
    } else {
        UEFMakeBOM(defFmt, bom, bomLength);
    }

    if (isAppend) {
        if (!file.seek(file.size()))
            return false;
    } else {
        if (!file.seek(0))
            return false;
        if (bomLength > 0) {
            char mark[4];
            qToLittleEndian(bom, mark);
            if (!writeAll(file, QByteArray(mark, bomLength)))
                return false;
        }
    }

    if (sText.isEmpty())
        return true;
    switch (defFmt) {
    case TextFormatAnsi:
        return writeAll(file, EncodeCodePage(sText, ansiCodePage));
    case TextFormatUtf8:
        return writeAll(file, EncodeCodePage(sText, 65001));
    case TextFormatUtf16Le:
        return writeAll(file, utf16ToBytes(sText, false));
    case TextFormatUtf16Be:
        return writeAll(file, utf16ToBytes(sText, true));
    default:
        return false;
    }
}

QString ReadText(const QString &fileName, int ansiCodePage)
{
    if (!QFileInfo(fileName).isFile())
        return {};
    const std::optional<QByteArray> bytes = readWholeFile(fileName);
    if (!bytes)
        return {};
    const QString text = DecodeCodePage(*bytes, ansiCodePage);

    // Every line end becomes CR LF; the one closing the last line is dropped.
    QString joined;
    joined.reserve(text.size() + text.size() / 8);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'\r' || c == u'\n') {
            if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
            joined.append(u"\r\n"_s);
        } else {
            joined.append(c);
        }
    }
    if (joined.endsWith(u"\r\n"_s))
        joined.chop(2);
    return joined;
}

bool WriteText(const QString &sText, const QString &fileName, bool isAppend, int ansiCodePage)
{
    if (!isAppend) {
        const QFileInfo info(fileName);
        if ((info.exists() || info.isSymLink()) && !QFile::remove(fileName))
            return false;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    return writeAll(file, EncodeCodePage(sText, ansiCodePage) + "\r\n");
}

bool CheckBIG5(const QString &sInput)
{
    const std::bitset<0x10000> *hints = nullptr;
    for (const QChar c : sInput) {
        const char16_t u = c.unicode();
        if (u < 0x80)
            continue;
        if (!hints)
            hints = &big5Hints();
        if (hints->test(u))
            return true;
    }
    return false;
}

} // namespace qb::util
