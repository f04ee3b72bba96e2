// Hostile cabinets: cut at every record boundary of the format, and tables whose counts lie.
// Each must end in RaiseError or in right bytes, never in a crash or in wrong bytes on disk.
#include "cab_fixtures.h"

#include "cabinet/cab_errors.h"
#include "util/cab_format.h"

#include <QDir>
#include <QDirIterator>
#include <gtest/gtest.h>

using namespace qb::test;
using qb::cabinet::clsCAB;

namespace {

quint16 get16(const QByteArray &b, qsizetype at)
{
    return quint16(uchar(b[at]) | uchar(b[at + 1]) << 8);
}

quint32 get32(const QByteArray &b, qsizetype at)
{
    return quint32(get16(b, at)) | quint32(get16(b, at + 2)) << 16;
}

// Every offset where one record of the cabinet ends and the next begins.
QList<qsizetype> recordBoundaries(const QByteArray &cab)
{
    QList<qsizetype> cuts {0, 4, qsizetype(qb::cab::kHeaderSize)};
    const quint16 folders = get16(cab, 26);
    const quint16 files = get16(cab, 28);
    for (quint16 f = 0; f < folders; ++f)
        cuts << qsizetype(qb::cab::kHeaderSize + qb::cab::kFolderEntrySize * (f + 1u));
    qsizetype at = qsizetype(get32(cab, 16));
    for (quint16 f = 0; f < files; ++f) {
        at += qsizetype(qb::cab::kFileEntryFixedSize);
        cuts << at; // before the name
        at = cab.indexOf('\0', at) + 1;
        cuts << at;
    }
    for (quint16 f = 0; f < folders; ++f) {
        qsizetype block
            = qsizetype(get32(cab, qsizetype(qb::cab::kHeaderSize + qb::cab::kFolderEntrySize * f)));
        const quint16 blocks
            = get16(cab, qsizetype(qb::cab::kHeaderSize + qb::cab::kFolderEntrySize * f) + 4);
        for (quint16 k = 0; k < blocks && block < cab.size(); ++k) {
            cuts << block + qsizetype(qb::cab::kDataHeaderSize);
            block += qsizetype(qb::cab::kDataHeaderSize) + get16(cab, block + 4);
            cuts << block;
        }
    }
    return cuts;
}

// Runs every service on a cabinet and checks that whatever was written is right and stays inside.
// A cabinet cut short must also say so through RaiseError.
void survive(TempTree &tree, const QByteArray &cab, const QString &label,
    const QMap<QString, QByteArray> &expected, bool mustRaise = false)
{
    SCOPED_TRACE(label.toStdString());
    const QString path = tree.writeFile(QStringLiteral("hostile/") + label + QStringLiteral(".cab"), cab);
    const QString out = tree.makeDir(QStringLiteral("hostile/out-") + label);
    clsCAB reader;
    reader.setCabName(path);
    ErrorLog log(reader);
    // Whatever libmspack thinks of the cabinet, it must not print it.
    const QByteArray printed = captureStderr([&] {
        reader.FileCount();
        reader.GetInfo(QString());
        reader.GetXML(QString());
        reader.Extract(QString(), out, QString());
    });
    EXPECT_EQ(printed.toStdString(), "");
    if (mustRaise) {
        EXPECT_FALSE(log.errors.isEmpty());
    }
    QDirIterator it(out, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString name = QDir(out).relativeFilePath(file);
        ASSERT_TRUE(expected.contains(name)) << "unexpected file " << name.toStdString();
        EXPECT_EQ(readAll(file), expected.value(name)) << name.toStdString();
    }
}

class HostileCabinet : public ::testing::TestWithParam<const char *>
{
};

TEST_P(HostileCabinet, CutAtEveryRecordBoundary)
{
    TempTree tree;
    const QMap<QString, QByteArray> files {{QStringLiteral("a.txt"), "first file"},
        {QStringLiteral("d/b.bin"), sampleBytes(70000, 3)},
        {QStringLiteral("d/e/c.txt"), QByteArray(40000, 'c')}};
    QList<CabEntry> entries;
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        entries.append({QString(it.key()).replace(u'/', u'\\'), it.value()});
    const QByteArray whole = readAll(makeCabWithMakeCab(tree, entries, QString::fromLatin1(GetParam())));
    const QList<qsizetype> cuts = recordBoundaries(whole);
    ASSERT_GT(cuts.size(), 12);
    for (const qsizetype cut : cuts) {
        for (const qsizetype near : {cut - 1, cut, cut + 1}) {
            if (near < 0 || near >= whole.size())
                continue;
            survive(tree, whole.left(near), QStringLiteral("cut%1").arg(near), files, true);
        }
    }
}

TEST_P(HostileCabinet, CountsThatLie)
{
    TempTree tree;
    const QMap<QString, QByteArray> files {
        {QStringLiteral("a.txt"), "first file"}, {QStringLiteral("b.bin"), sampleBytes(50000, 4)}};
    QList<CabEntry> entries;
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        entries.append({it.key(), it.value()});
    const QByteArray whole = readAll(makeCabWithMakeCab(tree, entries, QString::fromLatin1(GetParam())));
    const qsizetype firstFile = qsizetype(get32(whole, 16));
    struct Patch
    {
        const char *label;
        qsizetype at;
        quint32 value;
        int width;
    };
    const Patch patches[] = {
        {"folders0", 26, 0, 2},
        {"folders7", 26, 7, 2},
        {"filesMany", 28, 500, 2},
        {"filesNone", 28, 0, 2},
        {"fileFolder9", firstFile + 8, 9, 2},
        {"blocksMany", qsizetype(qb::cab::kHeaderSize) + 4, 1000, 2},
        {"blocksNone", qsizetype(qb::cab::kHeaderSize) + 4, 0, 2},
        {"dataStartPastEnd", qsizetype(qb::cab::kHeaderSize), 0x7FFFFFF0, 4},
        {"fileSizeHuge", firstFile, 0x7FFFFFF0, 4},
        {"fileOffsetPastFolder", firstFile + 4, 0x10000000, 4},
        {"filesTablePastEnd", 16, 0x7FFFFFF0, 4},
        {"compressionType9", qsizetype(qb::cab::kHeaderSize) + 6, 9, 2},
    };
    for (const Patch &patch : patches) {
        QByteArray cab = whole;
        for (int i = 0; i < patch.width; ++i)
            cab[patch.at + i] = char(patch.value >> (8 * i));
        survive(tree, cab, QString::fromLatin1(patch.label), files);
    }
}

INSTANTIATE_TEST_SUITE_P(Compression, HostileCabinet, ::testing::Values("NONE", "MSZIP", "LZX"));

// a.txt and b.bin in one MSZIP folder, as bytes to patch.
QByteArray twoFileCabinet(TempTree &tree)
{
    return readAll(makeCabWithMakeCab(tree,
        {{QStringLiteral("a.txt"), "first file"}, {QStringLiteral("b.bin"), sampleBytes(50000, 4)}},
        QStringLiteral("MSZIP"), QStringLiteral("src/two.cab")));
}

void expectEvents(const ErrorLog &log, const QList<std::pair<long, QString>> &expected)
{
    ASSERT_EQ(log.errors.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(log.errors[i].number, expected[i].first);
        EXPECT_EQ(log.errors[i].source, QStringLiteral("CabFile"));
        EXPECT_EQ(log.errors[i].description, expected[i].second);
    }
}

constexpr long kNote = qb::cabinet::kErrLibraryMessage;
const QString kVersionNote = QStringLiteral("libmspack: cabinet version is not 1.3");

TEST(LibraryMessages, AWarningOnAReadableCabinetIsANoteAndTheFilesComeOut)
{
    TempTree tree;
    QByteArray bytes = twoFileCabinet(tree);
    bytes[24] = 0; // version 2.0
    bytes[25] = 2;
    clsCAB reader;
    reader.setCabName(tree.writeFile(QStringLiteral("v2.cab"), bytes));
    ErrorLog log(reader);
    long count = 0;
    const QString out = tree.makeDir(QStringLiteral("out"));
    bool extracted = false;
    const QByteArray printed = captureStderr([&] {
        count = reader.FileCount();
        extracted = reader.Extract(QString(), out, QString());
    });
    EXPECT_EQ(printed.toStdString(), "");
    EXPECT_EQ(count, 2);
    EXPECT_TRUE(extracted);
    EXPECT_EQ(readAll(out + QStringLiteral("/b.bin")), sampleBytes(50000, 4));
    // Once per opening, nothing more.
    expectEvents(log, {{kNote, kVersionNote}, {kNote, kVersionNote}});
}

TEST(LibraryMessages, TheNoteComesBeforeTheFailureItExplains)
{
    TempTree tree;
    QByteArray noFiles = twoFileCabinet(tree);
    noFiles[28] = 0;
    noFiles[29] = 0;
    clsCAB reader;
    reader.setCabName(tree.writeFile(QStringLiteral("none.cab"), noFiles));
    ErrorLog log(reader);
    EXPECT_EQ(captureStderr([&] { EXPECT_EQ(reader.FileCount(), 0); }).toStdString(), "");
    expectEvents(log,
        {{kNote, QStringLiteral("libmspack: no files in cabinet.")}, {13, QStringLiteral("Invalid data.")}});

    // A message about no open file (libmspack passes none) still finds its reader.
    QByteArray pastFolder = twoFileCabinet(tree);
    const qsizetype entry = nameOffset(pastFolder, "b.bin") - qsizetype(qb::cab::kFileEntryFixedSize);
    ASSERT_GT(entry, 0);
    pastFolder[entry + 7] = 0x10; // its offset in the folder: 256 MiB
    reader.setCabName(tree.writeFile(QStringLiteral("past.cab"), pastFolder));
    log.errors.clear();
    const QString out = tree.makeDir(QStringLiteral("past"));
    EXPECT_EQ(
        captureStderr([&] { EXPECT_TRUE(reader.Extract(QString(), out, QString())); }).toStdString(), "");
    expectEvents(log,
        {{kNote, QStringLiteral("libmspack: file \"b.bin\" cannot be extracted, cabinet set is incomplete")},
            {13, QStringLiteral("Invalid data.")}});
    EXPECT_EQ(readAll(out + QStringLiteral("/a.txt")), QByteArray("first file"));
    EXPECT_EQ(QDir(out).entryList(QDir::Files | QDir::Hidden), QStringList {QStringLiteral("a.txt")});
}

TEST(LibraryMessages, GoToTheReaderThatCausedThem)
{
    TempTree tree;
    QByteArray bytes = twoFileCabinet(tree);
    bytes[24] = 0;
    bytes[25] = 2;
    const QString odd = tree.writeFile(QStringLiteral("v2.cab"), bytes);
    clsCAB outer;
    outer.setCabName(tree.path(QStringLiteral("src/two.cab")));
    ErrorLog outerLog(outer);
    clsCAB inner;
    inner.setCabName(odd);
    ErrorLog innerLog(inner);
    // A handler of one reader runs another, inside the first one's walk.
    QObject::connect(&outer, &clsCAB::FileFound,
        [&](const QString &, const QDateTime &, qint64, const QString &) { inner.FileCount(); });
    EXPECT_TRUE(outer.GetInfo(QString()));
    EXPECT_TRUE(outerLog.errors.isEmpty());
    // Once for each of the outer reader's two files.
    expectEvents(innerLog, {{kNote, kVersionNote}, {kNote, kVersionNote}});
}

} // namespace
