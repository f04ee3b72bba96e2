// Feeds arbitrary chunks of tool output to the console scan, chained as a run would feed them.
#include "engine/console_scan.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString all = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    qb::engine::ScanState state;
    qb::engine::ScanContext context;
    if (size > 0 && (data[0] & 1)) {
        context.TimeEndPoint = 30;
        context.FileInfo = QStringLiteral("a|b");
    }
    if (size > 0 && (data[0] & 2))
        context.Duration = 12;
    // Chunks of at most 256 bytes, as the runner reads them.
    for (qsizetype at = 0; at < all.size(); at += 256)
        qb::engine::ScanToolOutput(all.mid(at, 256), state, context, [](int, const QString &) {});
    return 0;
}
