// Generated test data shared by the cabmaker tests.
#pragma once

#include <QByteArray>
#include <QString>

namespace qb::test {

// Bytes from a seeded generator: incompressible.
QByteArray RandomBytes(qsizetype size, quint32 seed);

// Words (ASCII and Chinese) drawn at random: matches of many lengths and distances.
QByteArray WordSoup(qsizetype size, quint32 seed);

// Inflates a raw deflate stream that may refer back into history; empty with a test failure
// when zlib rejects it or leaves input behind.
QByteArray InflateRaw(const QByteArray &stream, const QByteArray &history, qsizetype expected);

// Extracts a whole cabinet into a folder with "cabextract", "7zz" or "bsdtar" (in a UTF-8
// locale, which bsdtar needs to write names as stored). Returns the exit code, -1 when it
// crashed; output gets what it printed.
int ExtractCabinet(
    const QString &tool, const QString &cabinet, const QString &into, QString *output = nullptr);

} // namespace qb::test
