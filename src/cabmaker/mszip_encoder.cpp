// MSZIP blocks from our deflate encoder, spread over the machine's cores.
#include "cabmaker/mszip_encoder.h"

#include "util/cab_format.h"

#include <algorithm>
#include <thread>

namespace qb::cabmaker {

namespace {

void appendSignature(QByteArray &out)
{
    out.append(char(cab::kMsZipSignature[0]));
    out.append(char(cab::kMsZipSignature[1]));
}

} // namespace

QByteArray CompressMsZipBlock(const unsigned char *block, size_t size, const unsigned char *history,
    size_t historySize, const DeflateOptions &options)
{
    DeflateEncoder encoder(options);
    encoder.restart(history, historySize);
    QByteArray out;
    out.reserve(qsizetype(cab::kMaxMsZipBlock));
    appendSignature(out);
    encoder.compress(block, size, out);
    return out;
}

MsZipEncoder::MsZipEncoder(const DeflateOptions &options)
    : m_options(options)
{ }

quint16 MsZipEncoder::compressionType() const
{
    return cab::kCompressMsZip;
}

void MsZipEncoder::encode(const unsigned char *data, size_t size, bool last, std::vector<EncodedBlock> &out)
{
    Q_UNUSED(last);
    const size_t blockSize = size_t(cab::kBlockSize);
    const size_t count = (size + blockSize - 1) / blockSize;
    if (count == 0)
        return;
    const size_t first = out.size();
    out.resize(first + count);

    // Every block depends only on the bytes before it, never on another block's output, so runs
    // of blocks can be compressed side by side, each run starting from the block before it.
    auto work = [&](size_t begin, size_t end) {
        DeflateEncoder encoder(m_options);
        if (begin > 0)
            encoder.restart(data + (begin - 1) * blockSize, blockSize);
        else
            encoder.restart(
                reinterpret_cast<const unsigned char *>(m_previous.constData()), size_t(m_previous.size()));
        for (size_t i = begin; i < end; ++i) {
            const size_t length = std::min(blockSize, size - i * blockSize);
            EncodedBlock &encoded = out[first + i];
            encoded.payload.reserve(qsizetype(cab::kMaxMsZipBlock));
            appendSignature(encoded.payload);
            encoder.compress(data + i * blockSize, length, encoded.payload);
            // The format's ceiling; a stored block always fits beneath it, and the encoder picks
            // one whenever it is the shortest.
            Q_ASSERT(size_t(encoded.payload.size()) <= cab::kMaxMsZipBlock);
            encoded.uncompressedSize = quint16(length);
        }
    };
    const size_t threads = std::min<size_t>(std::max(1u, std::thread::hardware_concurrency()), count);
    if (threads <= 1) {
        work(0, count);
    } else {
        std::vector<std::thread> pool;
        const size_t share = (count + threads - 1) / threads;
        for (size_t t = 1; t < threads; ++t)
            pool.emplace_back(work, std::min(count, t * share), std::min(count, (t + 1) * share));
        work(0, std::min(count, share));
        for (std::thread &thread : pool)
            thread.join();
    }
    const size_t tail = size - (count - 1) * blockSize;
    if (tail == blockSize)
        m_previous = QByteArray(
            reinterpret_cast<const char *>(data + (count - 1) * blockSize), qsizetype(blockSize));
    else
        m_previous.clear();
}

} // namespace qb::cabmaker
