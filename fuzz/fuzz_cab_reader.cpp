// Fuzz target: arbitrary bytes as a cabinet, listed, described and unpacked into a scratch folder.
#include "cabinet/cab_reader.h"
#include "fuzz_check.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

using qb::cabinet::clsCAB;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // libmspack reads files by name, so the input goes to disk; the target folder sits beside it.
    static QTemporaryDir scratch;
    check(scratch.isValid());
    const QString cabPath = scratch.filePath(QStringLiteral("in.cab"));
    {
        QFile cab(cabPath);
        check(cab.open(QIODevice::WriteOnly | QIODevice::Truncate));
        cab.write(reinterpret_cast<const char *>(data), qint64(size));
    }
    const QString outFolder = scratch.filePath(QStringLiteral("out/inner"));
    QDir(outFolder).removeRecursively();

    clsCAB reader;
    reader.setCabName(cabPath);
    const long count = reader.FileCount();
    check(count >= 0);
    const QString xml = reader.GetXML(QString());
    check(xml.endsWith(QStringLiteral("</FILES></CABFILE>")));
    long found = 0;
    QObject::connect(&reader, &clsCAB::FileFound,
        [&found](const QString &, const QDateTime &, qint64, const QString &) { ++found; });
    reader.GetInfo(QString());
    check(found == count);

    // Nothing may be written outside the target folder, whatever the names say.
    QObject::connect(&reader, &clsCAB::AfterExtract,
        [&outFolder](const QString &target) { check(QDir::cleanPath(target).startsWith(outFolder + u'/')); });
    reader.Extract(QString(), outFolder, QString());
    QDirIterator it(scratch.path(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    while (it.hasNext()) {
        const QString name = it.next();
        check(name == cabPath || name == scratch.filePath(QStringLiteral("out")));
    }
    QDirIterator outer(
        scratch.filePath(QStringLiteral("out")), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    while (outer.hasNext())
        check(outer.next() == outFolder);
    return 0;
}
