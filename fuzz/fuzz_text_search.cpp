// Fuzz target: path splitting, tag stripping, marker searches and list helpers on hostile strings.
#include "fuzz_check.h"
#include "util/code_page.h"
#include "util/string_array.h"
#include "util/text_search.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <cstdlib>

using namespace qb::util;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    // Three header bytes pick the mode and counts (some below 1); the rest is "text\ntag1\ntag2".
    const int mode = int(data[0] % 5) - 1;
    const int count1 = int(int8_t(data[1]));
    const int count2 = int(int8_t(data[2]));
    const QString input = DecodeCodePage(QByteArrayView(data + 3, qsizetype(size - 3)), 65001);
    const QStringList parts = input.split(QChar(u'\n'));
    const QString text = parts.value(0);
    const QString tag1 = parts.value(1);
    const QString tag2 = parts.value(2);

    const QString fileString = GetFileString(text, tag1, mode);
    check(fileString.size() <= text.size());

    for (const bool round : {false, true}) {
        const QString killed = KillTag(text, round);
        check(killed.size() <= text.size());
    }

    const QString between = FindTextBetween(text, tag1, tag2, count1, count2);
    check(between.size() <= text.size());
    if (!between.isEmpty())
        check(text.contains(between));

    for (const QString &found : {FindText(text, tag1, count1), FindTextRev(text, tag1, count1)})
        check(text.endsWith(found));

    // Splitting and joining over the whole range gives the text back.
    const QString separator = tag2.isEmpty() ? QString(QChar(u',')) : tag2;
    const QStringList items = StringToArray(text, separator, 0, -1);
    check(ArrayToString(items, separator, 0, -1) == text);
    QStringList some = StringToArray(text, separator, count1, count2);
    check(some.size() <= items.size());
    ArrayAddItem(some, tag1, count1);
    ArrayRemoveItem(some, count2);
    ArrayToString(some, tag1, count1, count2);

    check(!CleanString(text).contains(QChar(0)));
    check(TrimNull(text) == CleanString(text));
    return 0;
}
