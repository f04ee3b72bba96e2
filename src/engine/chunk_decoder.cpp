// Decoding tool output read in pieces.
#include "engine/chunk_decoder.h"

#include "util/code_page.h"

namespace qb::engine {

namespace {

// How many bytes at the end start a UTF-8 character that the next read completes.
qsizetype incompleteUtf8Tail(const QByteArray &bytes)
{
    const qsizetype n = bytes.size();
    for (qsizetype back = 1; back <= 3 && back <= n; ++back) {
        const auto b = static_cast<unsigned char>(bytes[n - back]);
        if ((b & 0xC0) == 0x80)
            continue;
        if (b < 0xC0)
            return 0;
        const qsizetype need = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : 2;
        return need > back ? back : 0;
    }
    return 0;
}

} // namespace

QString ChunkDecoder::decode(const QByteArray &bytes, bool final)
{
    QByteArray text = m_pending + bytes;
    m_pending.clear();
    if (!final) {
        const qsizetype tail = incompleteUtf8Tail(text);
        if (tail > 0 && util::IsValidUtf8(QByteArrayView(text).first(text.size() - tail))) {
            m_pending = text.right(tail);
            text.chop(tail);
        }
    }
    return util::DecodeCodePage(text, 0);
}

} // namespace qb::engine
