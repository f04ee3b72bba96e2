// Generated test data shared by the cabmaker tests.
#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QString>

namespace qb::test {

// Bytes from a seeded generator: incompressible.
QByteArray RandomBytes(qsizetype size, quint32 seed);

// Words (ASCII and Chinese) drawn at random: matches of many lengths and distances.
QByteArray WordSoup(qsizetype size, quint32 seed);

// Fake x86 code: a small vocabulary of instructions, and a call (E8 and a relative operand) every
// 10 to 30 bytes whose absolute targets come from a short list, as calls to a few functions do.
QByteArray FakeX86(qsizetype size, QRandomGenerator &random);

// Inflates a raw deflate stream that may refer back into history; empty with a test failure
// when zlib rejects it or leaves input behind.
QByteArray InflateRaw(const QByteArray &stream, const QByteArray &history, qsizetype expected);

// Extracts a whole cabinet into a folder with "cabextract", "7zz" or "bsdtar" (in a UTF-8
// locale, which bsdtar needs to write names as stored). Returns the exit code, -1 when it
// crashed; output gets what it printed.
int ExtractCabinet(
    const QString &tool, const QString &cabinet, const QString &into, QString *output = nullptr);

} // namespace qb::test
