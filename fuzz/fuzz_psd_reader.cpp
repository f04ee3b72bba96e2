// Fuzz target: the layered-image reader on arbitrary bytes. A picture it hands back matches the
// header's promise and was paid for by the input: a packed row unpacks to at most 64 times its size.
#include "fuzz_check.h"
#include "imaging/psd_reader.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const qb::imaging::PsdResult read = qb::imaging::ReadPsdComposite(bytes);
    check(read.image.isNull() != read.problem.isEmpty());
    if (!read.image.isNull()) {
        const qint64 pixels = qint64(read.image.width()) * read.image.height();
        check(pixels <= 64 * qint64(size));
    }
    return 0;
}
