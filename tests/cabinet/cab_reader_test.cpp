// clsCAB's services one by one: filters, the catalogue text, events, errors and names.
#include "cab_fixtures.h"

#include "cabinet/cab_errors.h"

#include <QDir>
#include <QDirIterator>
#include <gtest/gtest.h>

using namespace qb::test;
using qb::cabinet::clsCAB;

namespace {

const QString kXmlHead = QStringLiteral("<?xml version=\"1.0\"?><CABFILE CABFILENAME = '");

struct Found
{
    QString name;
    QDateTime dateTime;
    qint64 size;
    QString path;
};

QList<Found> collectFound(clsCAB &reader, const QString &filter, bool *ok = nullptr)
{
    QList<Found> found;
    const auto connection = QObject::connect(&reader, &clsCAB::FileFound,
        [&found](const QString &name, const QDateTime &dateTime, qint64 size, const QString &path) {
            found << Found {name, dateTime, size, path};
        });
    const bool result = reader.GetInfo(filter);
    if (ok)
        *ok = result;
    QObject::disconnect(connection);
    return found;
}

QString knownCabinet(TempTree &tree)
{
    return makeCabWithMakeCab(tree,
        {{QStringLiteral("a.txt"), "hello", QStringLiteral("/date=01/02/2009 /time=03:04:06")},
            {QStringLiteral("d\\b&<c.txt"), "world!!", QStringLiteral("/date=12/31/2010 /time=23:59:58")}},
        QStringLiteral("MSZIP"));
}

TEST(Reader, GetXmlAndGetInfoGiveNameFolderDateAndSize)
{
    TempTree tree;
    const QString cab = knownCabinet(tree);
    clsCAB reader;
    reader.setCabName(cab);
    ErrorLog log(reader);
    const QString expected = kXmlHead + cab
        + QStringLiteral("'><FILES>"
                         "<FILE><FULLNAME>a.txt</FULLNAME><NAME>a.txt</NAME><DATE>2009-1-2 3:04:06</DATE>"
                         "<SIZE>5</SIZE><PATH></PATH></FILE>\r\n"
                         "<FILE><FULLNAME>d\\b&<c.txt</FULLNAME><NAME>b&<c.txt</NAME>"
                         "<DATE>2010-12-31 23:59:58</DATE><SIZE>7</SIZE><PATH>d\\</PATH></FILE>\r\n"
                         "</FILES></CABFILE>");
    EXPECT_EQ(reader.GetXML(QString()), expected);

    const QString one = kXmlHead + cab
        + QStringLiteral("'><FILES><FILE><FULLNAME>d\\b&<c.txt</FULLNAME><NAME>b&<c.txt</NAME>"
                         "<DATE>2010-12-31 23:59:58</DATE><SIZE>7</SIZE><PATH>d\\</PATH></FILE>\r\n"
                         "</FILES></CABFILE>");
    EXPECT_EQ(reader.GetXML(QStringLiteral("D\\B&<C.TXT")), one);
    EXPECT_EQ(reader.GetXML(QStringLiteral("nothing")),
        kXmlHead + cab + QStringLiteral("'><FILES></FILES></CABFILE>"));
    EXPECT_TRUE(log.errors.isEmpty());

    bool ok = false;
    QStringList rows;
    for (const Found &f : collectFound(reader, QString(), &ok))
        rows << QStringLiteral("%1|%2|%3|%4")
                    .arg(f.path, f.name, f.dateTime.toString(Qt::ISODate))
                    .arg(f.size);
    EXPECT_TRUE(ok);
    EXPECT_EQ(rows,
        (QStringList {QStringLiteral("|a.txt|2009-01-02T03:04:06|5"),
            QStringLiteral("d\\|b&<c.txt|2010-12-31T23:59:58|7")}));

    // The same dates as cabextract reads them.
    const QList<ListedFile> listed = cabextractList(cab);
    ASSERT_EQ(listed.size(), 2);
    EXPECT_EQ(listed[0].dateTime, QDateTime(QDate(2009, 1, 2), QTime(3, 4, 6)));
    EXPECT_EQ(listed[1].dateTime, QDateTime(QDate(2010, 12, 31), QTime(23, 59, 58)));
}

TEST(Reader, FilterInAnotherCaseStopsAtTheFirstMatch)
{
    TempTree tree;
    // The same name stored twice, told apart by size.
    const QString cab = makeCabWithMakeCab(tree,
        {{QStringLiteral("d\\x.txt"), "first"}, {QStringLiteral("other.txt"), "o"},
            {QStringLiteral("D\\X.txt"), "second one"}},
        QStringLiteral("MSZIP"));
    clsCAB reader;
    reader.setCabName(cab);
    bool ok = false;
    const QList<Found> found = collectFound(reader, QStringLiteral("D\\x.TXT"), &ok);
    EXPECT_TRUE(ok);
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].size, 5);
    EXPECT_EQ(found[0].path, QStringLiteral("d\\"));
    EXPECT_EQ(reader.GetXML(QStringLiteral("d\\X.txt")).count(QStringLiteral("<FILE>")), 1);
    EXPECT_EQ(collectFound(reader, QString()).size(), 3);
    // The folder is part of the name: the bare name matches nothing.
    EXPECT_TRUE(collectFound(reader, QStringLiteral("x.txt")).isEmpty());

    // Extract does not stop: both copies are written, the later one last.
    QStringList after;
    QObject::connect(&reader, &clsCAB::AfterExtract, [&after](const QString &target) { after << target; });
    ASSERT_TRUE(
        reader.Extract(QStringLiteral("d\\x.txt"), tree.path(QStringLiteral("x")), QStringLiteral("x.txt")));
    EXPECT_EQ(after.size(), 2);
    EXPECT_EQ(readAll(tree.path(QStringLiteral("x/x.txt"))), QByteArray("second one"));
}

TEST(Reader, CancelInBeforeExtractSkipsOnlyThatFile)
{
    TempTree tree;
    const QString cab = makeCabWithMakeCab(tree,
        {{QStringLiteral("keep1.txt"), "1"}, {QStringLiteral("skip.txt"), "2"},
            {QStringLiteral("keep3.txt"), "3"}},
        QStringLiteral("LZX"));
    clsCAB reader;
    reader.setCabName(cab);
    QStringList asked;
    QObject::connect(
        &reader, &clsCAB::BeforeExtract, &reader,
        [&asked](const QString &name, bool &cancel) {
            asked << name;
            if (name == QLatin1String("skip.txt"))
                cancel = true;
        },
        Qt::DirectConnection);
    const QString out = tree.makeDir(QStringLiteral("out"));
    ASSERT_TRUE(reader.Extract(QString(), out, QString()));
    EXPECT_EQ(asked,
        (QStringList {QStringLiteral("keep1.txt"), QStringLiteral("skip.txt"), QStringLiteral("keep3.txt")}));
    EXPECT_EQ(readAll(out + QStringLiteral("/keep1.txt")), QByteArray("1"));
    EXPECT_FALSE(QFileInfo::exists(out + QStringLiteral("/skip.txt")));
    EXPECT_EQ(readAll(out + QStringLiteral("/keep3.txt")), QByteArray("3"));
}

TEST(Reader, EmptyCabNameFailsEveryService)
{
    clsCAB reader;
    ErrorLog log(reader);
    EXPECT_EQ(reader.FileCount(), 0);
    EXPECT_FALSE(reader.GetInfo(QString()));
    EXPECT_FALSE(reader.Extract(QString(), QString(), QString()));
    EXPECT_EQ(reader.GetXML(QString()), kXmlHead + QStringLiteral("'><FILES></FILES></CABFILE>"));
    ASSERT_EQ(log.errors.size(), 4);
    for (const RaisedError &error : log.errors) {
        EXPECT_EQ(error.number, -2147219548L);
        EXPECT_EQ(error.source, QStringLiteral("CabFile"));
        EXPECT_EQ(error.description,
            QStringLiteral(
                "You must set the CabName property before taking any action on the CabFile object."));
    }
}

TEST(Reader, MissingFileAndNonCabinet)
{
    TempTree tree;
    clsCAB reader;
    ErrorLog log(reader);
    reader.setCabName(tree.path(QStringLiteral("absent.cab")));
    EXPECT_EQ(reader.FileCount(), 0);
    ASSERT_EQ(log.errors.size(), 1);
    EXPECT_EQ(log.errors[0].number, 2);
    EXPECT_EQ(log.errors[0].description, QStringLiteral("The system cannot find the file specified."));

    log.errors.clear();
    reader.setCabName(tree.writeFile(QStringLiteral("text.cab"), QByteArray(400, 'x')));
    EXPECT_EQ(reader.FileCount(), 0);
    const QString xml = reader.GetXML(QString());
    EXPECT_EQ(xml, kXmlHead + reader.CabName() + QStringLiteral("'><FILES></FILES></CABFILE>"));
    ASSERT_EQ(log.errors.size(), 2);
    EXPECT_EQ(log.errors[0].number, 13);
    EXPECT_EQ(log.errors[0].description, QStringLiteral("Invalid data."));
}

TEST(Reader, CorruptedDataBlockRaisesADataError)
{
    TempTree tree;
    const QByteArray big = sampleBytes(100000, 11);
    const QString cab = makeCabWithMakeCab(tree, {{QStringLiteral("big.bin"), big}}, QStringLiteral("MSZIP"));
    QByteArray bytes = readAll(cab);
    bytes[bytes.size() / 2] = char(bytes[bytes.size() / 2] ^ 0x5A);
    const QString bad = tree.writeFile(QStringLiteral("bad.cab"), bytes);
    clsCAB reader;
    reader.setCabName(bad);
    ErrorLog log(reader);
    EXPECT_EQ(reader.FileCount(), 1);
    const QString out = tree.makeDir(QStringLiteral("x"));
    EXPECT_TRUE(reader.Extract(QString(), out, QString()));
    ASSERT_EQ(log.errors.size(), 1);
    EXPECT_TRUE(log.errors[0].number == 23 || log.errors[0].number == 13) << log.errors[0].number;
    EXPECT_TRUE(QDir(out).entryList(QDir::Files | QDir::Hidden).isEmpty())
        << QDir(out).entryList(QDir::Files | QDir::Hidden).join(u',').toStdString();
}

// Stores files under placeholder names of the same length as the hostile ones, then overwrites
// the names in the file table; the checksums cover only the data blocks.
TEST(Reader, HostileNamesAreNeverWrittenOutsideTheTarget)
{
    TempTree tree;
    const QList<QByteArray> hostile {
        "..\\..\\evil.txt", "\\abs.txt", "C:x.txt", "a\\..\\..\\up.txt", "d:drive.txt", "/etc_abs.txt"};
    QList<CabEntry> entries {{QStringLiteral("ok.txt"), "fine"}};
    QList<QByteArray> placeholders;
    for (qsizetype i = 0; i < hostile.size(); ++i) {
        const QByteArray placeholder = QByteArray(hostile[i].size() - 5, char('a' + i)) + "5.txt";
        placeholders << placeholder;
        entries << CabEntry {QString::fromLatin1(placeholder), "bad " + QByteArray::number(i)};
    }
    const QString cab = makeCabWithMakeCab(tree, entries, QStringLiteral("MSZIP"), QStringLiteral("c/h.cab"));
    QByteArray bytes = readAll(cab);
    for (qsizetype i = 0; i < hostile.size(); ++i) {
        const qsizetype at = nameOffset(bytes, placeholders[i]);
        ASSERT_GE(at, 0);
        bytes.replace(at, hostile[i].size(), hostile[i]);
    }
    const QString patched = tree.writeFile(QStringLiteral("c/h.cab"), bytes);

    clsCAB reader;
    reader.setCabName(patched);
    ErrorLog log(reader);
    EXPECT_EQ(reader.FileCount(), long(entries.size()));
    const QString out = tree.makeDir(QStringLiteral("deep/er/out"));
    EXPECT_TRUE(reader.Extract(QString(), out, QString()));

    // Only ok.txt anywhere in the scratch tree, besides the sources and the cabinet.
    QStringList written;
    QDirIterator it(tree.root(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = QDir(tree.root()).relativeFilePath(it.next());
        if (!file.startsWith(QLatin1String("mk-src/")) && file != QLatin1String("mk.ddf")
            && file != QLatin1String("c/h.cab"))
            written << file;
    }
    EXPECT_EQ(written, QStringList {QStringLiteral("deep/er/out/ok.txt")});
    EXPECT_FALSE(QFileInfo::exists(QStringLiteral("/abs.txt")));
    EXPECT_FALSE(QFileInfo::exists(QStringLiteral("/etc_abs.txt")));

    ASSERT_EQ(log.errors.size(), hostile.size());
    for (qsizetype i = 0; i < hostile.size(); ++i) {
        EXPECT_EQ(log.errors[i].number, 123);
        EXPECT_TRUE(log.errors[i].description.contains(QString::fromLatin1(hostile[i])))
            << log.errors[i].description.toStdString();
    }
}

TEST(Reader, RefusesToOverwriteTheCabinetBeingRead)
{
    TempTree tree;
    const QString cab = makeCabWithMakeCab(tree,
        {{QStringLiteral("t.cab"), "not a cabinet"}, {QStringLiteral("after.txt"), "after"}},
        QStringLiteral("MSZIP"), QStringLiteral("here/t.cab"));
    const QByteArray before = readAll(cab);
    clsCAB reader;
    reader.setCabName(cab);
    ErrorLog log(reader);
    EXPECT_TRUE(reader.Extract(QString(), QString(), QString()));
    EXPECT_EQ(readAll(cab), before);
    EXPECT_EQ(readAll(tree.path(QStringLiteral("here/after.txt"))), QByteArray("after"));
    ASSERT_EQ(log.errors.size(), 1);
    EXPECT_EQ(log.errors[0].number, 32);
    EXPECT_TRUE(log.errors[0].description.contains(QStringLiteral("t.cab")));
}

TEST(Reader, NamesWithoutTheUtf8FlagUseTheLegacyCodePage)
{
    TempTree tree;
    const QString cab = makeCabWithMakeCab(tree,
        {{QStringLiteral("AAAA.txt"), "gbk"}, {QStringLiteral("BBBB.txt"), "utf"}}, QStringLiteral("NONE"));
    QByteArray bytes = readAll(cab);
    // The attributes word sits right before the name.
    const qsizetype gbk = nameOffset(bytes, "AAAA.txt");
    const qsizetype utf = nameOffset(bytes, "BBBB.txt");
    ASSERT_GT(gbk, 2);
    ASSERT_GT(utf, 2);
    bytes.replace(gbk, 4, "\xD6\xD0\xCE\xC4");
    bytes[gbk - 2] = char(bytes[gbk - 2] & ~0x80);
    bytes.replace(utf, 4, "\xC3\xA9\xC3\xA9");
    bytes[utf - 2] = char(bytes[utf - 2] | 0x80);
    const QString patched = tree.writeFile(QStringLiteral("cp.cab"), bytes);

    clsCAB reader;
    reader.setCabName(patched);
    EXPECT_EQ(reader.legacyCodePage(), 936);
    QList<Found> found = collectFound(reader, QString());
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].name, QStringLiteral("中文.txt"));
    EXPECT_EQ(found[1].name, QStringLiteral("éé.txt"));

    const QString out = tree.makeDir(QStringLiteral("out"));
    EXPECT_TRUE(reader.Extract(QStringLiteral("中文.TXT"), out, QString()));
    EXPECT_EQ(readAll(out + QStringLiteral("/中文.txt")), QByteArray("gbk"));

    // In Latin-1 the same bytes read differently.
    reader.setLegacyCodePage(1252);
    found = collectFound(reader, QString());
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].name, QStringLiteral("ÖÐÎÄ.txt"));
    EXPECT_EQ(found[1].name, QStringLiteral("éé.txt"));
}

TEST(Reader, HandlerStartingAnotherServiceIsTurnedAway)
{
    TempTree tree;
    clsCAB reader;
    reader.setCabName(knownCabinet(tree));
    long inner = -1;
    QObject::connect(&reader, &clsCAB::FileFound,
        [&](const QString &, const QDateTime &, qint64, const QString &) { inner = reader.FileCount(); });
    EXPECT_TRUE(reader.GetInfo(QStringLiteral("a.txt")));
    EXPECT_EQ(inner, 0);
    EXPECT_EQ(reader.FileCount(), 2);
}

TEST(Reader, ErrorTexts)
{
    EXPECT_EQ(qb::cabinet::ErrorText(23), QStringLiteral("Data error (cyclic redundancy check)."));
    EXPECT_EQ(qb::cabinet::ErrorText(123),
        QStringLiteral("The filename, directory name, or volume label syntax is incorrect."));
    EXPECT_EQ(qb::cabinet::ErrorText(9999), QStringLiteral("Unknown error."));
    EXPECT_EQ(qb::cabinet::ErrorFromMspack(3), 30); // MSPACK_ERR_READ
    EXPECT_EQ(qb::cabinet::ErrorFromMspack(9), 23); // MSPACK_ERR_CHECKSUM
    EXPECT_EQ(qb::cabinet::ErrorFromMspack(77), 77);
}

} // namespace
