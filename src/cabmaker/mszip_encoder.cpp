// MSZIP block compression on zlib, spread over the machine's cores.
#include "cabmaker/mszip_encoder.h"

#include "util/cab_format.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <thread>

namespace qb::cabmaker {

namespace {

// A raw deflate stream kept open for many blocks, so that zlib's tables are allocated once.
class Deflater
{
public:
    explicit Deflater(int level)
    {
        m_ok = deflateInit2(&m_stream, level, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) == Z_OK;
    }
    ~Deflater()
    {
        if (m_ok)
            deflateEnd(&m_stream);
    }
    Deflater(const Deflater &) = delete;
    Deflater &operator=(const Deflater &) = delete;

    // Appends the deflate stream of block to out; false when zlib fails or it would not fit.
    bool compress(const unsigned char *block, size_t size, const unsigned char *history, size_t historySize,
        QByteArray &out, size_t limit)
    {
        if (!m_ok || deflateReset(&m_stream) != Z_OK)
            return false;
        if (historySize > 0 && deflateSetDictionary(&m_stream, history, uInt(historySize)) != Z_OK)
            return false;
        const qsizetype start = out.size();
        out.resize(start + qsizetype(limit));
        m_stream.next_in = const_cast<Bytef *>(block);
        m_stream.avail_in = uInt(size);
        m_stream.next_out = reinterpret_cast<Bytef *>(out.data() + start);
        m_stream.avail_out = uInt(limit);
        const int status = deflate(&m_stream, Z_FINISH);
        if (status != Z_STREAM_END) {
            out.resize(start);
            return false;
        }
        out.resize(start + qsizetype(limit - m_stream.avail_out));
        return true;
    }

private:
    z_stream m_stream {};
    bool m_ok = false;
};

thread_local std::unique_ptr<Deflater> t_deflater;
thread_local int t_level = -1;

Deflater &deflaterFor(int level)
{
    if (!t_deflater || t_level != level) {
        t_deflater = std::make_unique<Deflater>(level);
        t_level = level;
    }
    return *t_deflater;
}

// A deflate stream of one stored block: the data as it is.
void appendStored(const unsigned char *block, size_t size, QByteArray &out)
{
    const quint16 len = quint16(size);
    const unsigned char head[5] = {0x01, uchar(len), uchar(len >> 8), uchar(~len), uchar(quint16(~len) >> 8)};
    out.append(reinterpret_cast<const char *>(head), 5);
    out.append(reinterpret_cast<const char *>(block), qsizetype(size));
}

} // namespace

QByteArray CompressMsZipBlock(
    const unsigned char *block, size_t size, const unsigned char *history, size_t historySize, int level)
{
    QByteArray out;
    out.reserve(qsizetype(cab::kMaxMsZipBlock));
    out.append(char(cab::kMsZipSignature[0]));
    out.append(char(cab::kMsZipSignature[1]));
    const size_t limit = cab::kMaxMsZipBlock - 2;
    if (!deflaterFor(level).compress(block, size, history, historySize, out, limit)
        || size_t(out.size()) > limit + 2) {
        out.resize(2);
        appendStored(block, size, out);
    }
    return out;
}

MsZipEncoder::MsZipEncoder(int level)
    : m_level(level)
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

    // Every block depends only on the bytes before it, never on another block's output, so the
    // blocks can be compressed side by side.
    auto work = [&](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i) {
            const unsigned char *block = data + i * blockSize;
            const size_t length = std::min(blockSize, size - i * blockSize);
            const unsigned char *history = nullptr;
            size_t historySize = 0;
            if (i > 0) {
                history = block - blockSize;
                historySize = blockSize;
            } else if (!m_previous.isEmpty()) {
                history = reinterpret_cast<const unsigned char *>(m_previous.constData());
                historySize = size_t(m_previous.size());
            }
            EncodedBlock &encoded = out[first + i];
            encoded.payload = CompressMsZipBlock(block, length, history, historySize, m_level);
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
