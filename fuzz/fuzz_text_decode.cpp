// Fuzz target: decoding whole text files in every format and code page, with round-trip checks.
#include "fuzz_check.h"
#include "util/code_page.h"
#include "util/text_file.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdlib>

using namespace qb::util;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    // First byte: the format asked for (-1..5, plus one bad value) and the ANSI code page.
    static constexpr int codePages[] = {0, 65001, 936, 950, 1252, 932, 54936, 12345};
    const int defFmtIn = int(data[0] % 8) - 1 == 6 ? 9 : int(data[0] % 8) - 1;
    const int codePage = codePages[(data[0] >> 3) % 8];
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));

    int defFmt = defFmtIn;
    const QString text = UEFDecodeText(bytes, defFmt, codePage);
    if (defFmtIn == 9) {
        check(text.isEmpty() && defFmt == 9);
        return 0;
    }
    check(defFmt >= 0 && defFmt <= 5);
    if (defFmt >= 4)
        check(text.isEmpty());

    // UTF-16 keeps every byte behind the mark: writing the code units back gives them again, with
    // one pad byte at most.
    if (defFmt == 2) {
        int detected = -1;
        UEFDecodeText(bytes, detected, codePage);
        const QByteArray body = detected == 2 ? bytes.sliced(2) : bytes;
        QByteArray back;
        for (const QChar c : text) {
            back.append(char(c.unicode() & 0xFF));
            back.append(char(c.unicode() >> 8));
        }
        check(back.left(body.size()) == body && back.size() - body.size() <= 1);
    }

    // Valid UTF-8 survives a trip through the text and back.
    const bool valid = IsValidUtf8(bytes);
    const QString utf8 = DecodeCodePage(bytes, 65001);
    check(utf8.size() <= bytes.size());
    if (valid)
        check(EncodeCodePage(utf8, 65001) == bytes);
    else
        check(utf8.contains(QChar(0xFFFD)));

    // Whatever a legacy page decodes to must encode again without failing outright.
    const QString legacy = DecodeCodePage(bytes, codePage);
    const QByteArray again = EncodeCodePage(legacy, codePage);
    if (codePage != 12345 && !bytes.isEmpty())
        check(!legacy.isEmpty() && !again.isEmpty());

    CheckBIG5(text);
    return 0;
}
