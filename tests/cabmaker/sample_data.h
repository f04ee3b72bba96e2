// Generated test data shared by the cabmaker tests.
#pragma once

#include <QByteArray>

namespace qb::test {

// Bytes from a seeded generator: incompressible.
QByteArray RandomBytes(qsizetype size, quint32 seed);

// Words (ASCII and Chinese) drawn at random: matches of many lengths and distances.
QByteArray WordSoup(qsizetype size, quint32 seed);

// Inflates a raw deflate stream that may refer back into history; empty with a test failure
// when zlib rejects it or leaves input behind.
QByteArray InflateRaw(const QByteArray &stream, const QByteArray &history, qsizetype expected);

} // namespace qb::test
