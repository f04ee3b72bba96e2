// Turns a tool's output, read in pieces of any size, into text: a UTF-8 character cut by a read
// waits for the rest of its bytes instead of turning into replacement characters.
#pragma once

#include <QByteArray>
#include <QString>

namespace qb::engine {

class ChunkDecoder
{
public:
    // The text of bytes together with what the last call held back. Unless final, an incomplete
    // character at the end is held back for the next call, as long as the rest is valid UTF-8
    // (other text goes through the code page as it stands).
    QString decode(const QByteArray &bytes, bool final);

private:
    QByteArray m_pending;
};

} // namespace qb::engine
