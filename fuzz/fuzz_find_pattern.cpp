// Feeds arbitrary name/pattern pairs to the find-pattern matcher and the "Like" operator.
#include "util/wildcard.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype cut = text.indexOf(u'\n');
    const QString pattern = cut < 0 ? text : text.left(cut);
    const QString name = cut < 0 ? text : text.mid(cut + 1);
    qb::util::MatchesFindPattern(name, pattern);
    qb::util::Like(name, pattern);
    return 0;
}
