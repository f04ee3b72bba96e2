// Feeds arbitrary tool output to the console scan, read in 256-byte pieces and decoded as a run
// reads it, and to the banner reader of the tool catalogue.
#include "engine/chunk_decoder.h"
#include "engine/console_scan.h"
#include "engine/tool_catalogue.h"
#include "fuzz_check.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    qb::engine::ScanState state;
    qb::engine::ScanContext context;
    if (size > 0 && (data[0] & 1)) {
        context.TimeEndPoint = 30;
        context.FileInfo = QStringLiteral("a|b");
    }
    if (size > 0 && (data[0] & 2))
        context.Duration = 12;
    qb::engine::ChunkDecoder decoder;
    QString decoded;
    for (qsizetype at = 0; at < bytes.size(); at += 256) {
        const QString chunk = decoder.decode(bytes.mid(at, 256), false);
        decoded += chunk;
        qb::engine::ScanToolOutput(chunk, state, context, [](int, const QString &) {});
    }
    decoded += decoder.decode({}, true);
    // Valid UTF-8 comes out whole whatever the cuts.
    if (QString::fromUtf8(bytes).toUtf8() == bytes)
        check(decoded.toUtf8() == bytes);
    if (const qb::engine::ToolKind *kind = qb::engine::IdentifyTool(decoded))
        check(decoded.size() >= qb::engine::CutToolVersion(*kind, decoded).size());
    return 0;
}
