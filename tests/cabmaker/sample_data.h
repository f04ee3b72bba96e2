// Generated test data and the makecab runs and oracle checks shared by the cabmaker tests.
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>

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

class TempTree;

struct MakeCabRun
{
    int status = -1;
    QString out;
    QString err;
};

// The makecab command run in process, with folder as the current folder.
MakeCabRun RunMakeCabIn(const QStringList &args, const QString &folder);

struct CabFile
{
    QString name; // in the cabinet, with "\"
    QByteArray bytes;
    QString before = {}; // a directive line written before the file's line
};

// Writes each file's source below src/ and a directive file of settings and the files, and has
// makecab build out/test.cab, which it returns (a test failure when makecab fails).
QString BuildCabinet(TempTree &tree, const QList<CabFile> &files, const QString &settings);

// What the files come out as: the last of a name wins, as in any archive tool.
QMap<QString, QByteArray> Extracted(const QList<CabFile> &files);

// cabextract and 7-Zip test the cabinet, then each of tools extracts it below scratch and must
// give back exactly expected (path with "/" to bytes), nothing more.
void ExpectExtractorsAgree(const QString &cabinet, const QString &scratch,
    const QMap<QString, QByteArray> &expected,
    const QStringList &tools
    = {QStringLiteral("cabextract"), QStringLiteral("7zz"), QStringLiteral("bsdtar")});

} // namespace qb::test
