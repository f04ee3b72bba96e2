// Unpacks two makecab cabinets, a large MSZIP one of mixed data and one of 20,000 small files,
// through clsCAB and through cabextract in the same run, and prints MB/s, files/s and the ratio.
// QB_BENCH_MIB and QB_BENCH_FILES scale the two cabinets down for a quick look.
#include "cabinet/cab_reader.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

constexpr qint64 MiB = 1024 * 1024;

qint64 envNumber(const char *name, qint64 fallback)
{
    bool ok = false;
    const qint64 value = qEnvironmentVariable(name).toLongLong(&ok);
    return ok && value > 0 ? value : fallback;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

// Text, noise and long repeats in turn, so MSZIP meets all of them.
QByteArray mixedBytes(qint64 size, quint32 seed)
{
    static const char *const words[]
        = {"cabinet ", "folder ", "block ", "data ", "the ", "\r\n", "0x1F ", "and "};
    QRandomGenerator random(seed);
    QByteArray bytes;
    bytes.reserve(size);
    while (bytes.size() < size) {
        switch (random.bounded(3)) {
        case 0:
            for (int i = 0; i < 512; ++i)
                bytes += words[random.bounded(8)];
            break;
        case 1:
            for (int i = 0; i < 1024; ++i)
                bytes += char(random.bounded(256));
            break;
        default:
            bytes += QByteArray(2048, char(random.bounded(256)));
            break;
        }
    }
    bytes.truncate(size);
    return bytes;
}

// Writes the sources and a directive file, runs makecab; the cabinet's path, or "" on a failure.
QString makeCabinet(const QString &root, const QString &name, const QList<QPair<QString, QByteArray>> &files)
{
    QString directive
        = QStringLiteral(".Option EXPLICIT\r\n.Set CabinetNameTemplate=%1\r\n.Set DiskDirectory1=%2\r\n"
                         ".Set MaxDiskSize=0\r\n.Set CompressionType=MSZIP\r\n.Set InfFileName=NUL\r\n"
                         ".Set RptFileName=NUL\r\n")
              .arg(name, root);
    for (const auto &[relative, bytes] : files) {
        const QString source = root + QStringLiteral("/src-") + name + u'/' + relative;
        writeFile(source, bytes);
        directive += u'"' + source + QStringLiteral("\" \"") + QString(relative).replace(u'/', u'\\')
            + QStringLiteral("\"\r\n");
    }
    const QString ddf = root + u'/' + name + QStringLiteral(".ddf");
    writeFile(ddf, directive.toUtf8());
    QProcess makecab;
    makecab.setStandardOutputFile(QProcess::nullDevice());
    makecab.start(QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/makecab"),
        {QStringLiteral("/F"), ddf});
    if (!makecab.waitForFinished(-1) || makecab.exitCode() != 0) {
        std::fprintf(stderr, "makecab failed: %s\n", makecab.readAllStandardError().constData());
        return {};
    }
    // Drop the sources: the page cache should hold the cabinet, not them.
    QDir(root + QStringLiteral("/src-") + name).removeRecursively();
    return root + u'/' + name;
}

double timeReader(const QString &cab, const QString &out, long *files)
{
    QDir(out).removeRecursively();
    qb::cabinet::clsCAB reader;
    reader.setCabName(cab);
    long errors = 0;
    long written = 0;
    QObject::connect(&reader, &qb::cabinet::clsCAB::RaiseError, [&errors] { ++errors; });
    QObject::connect(&reader, &qb::cabinet::clsCAB::AfterExtract, [&written] { ++written; });
    QElapsedTimer clock;
    clock.start();
    reader.Extract(QString(), out, QString());
    const double seconds = clock.nsecsElapsed() / 1e9;
    if (errors)
        std::fprintf(stderr, "clsCAB raised %ld errors\n", errors);
    *files = written;
    return seconds;
}

double timeCabextract(const QString &cab, const QString &out)
{
    QDir(out).removeRecursively();
    QDir().mkpath(out);
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    process.start(QStringLiteral("cabextract"), {QStringLiteral("-q"), QStringLiteral("-d"), out, cab});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        std::fprintf(stderr, "cabextract failed\n");
    return clock.nsecsElapsed() / 1e9;
}

void report(const char *label, const QString &cab, qint64 bytes, long fileCount, const QString &scratch)
{
    // Three rounds, each tool once per round, best time of each: creating many files right after
    // deleting many is slower on some file systems, and that must not fall on one tool only.
    long files = 0;
    double ours = 1e30;
    double theirs = 1e30;
    for (int round = 0; round < 3; ++round) {
        const bool oursFirst = round % 2 == 0;
        if (oursFirst)
            ours = std::min(ours, timeReader(cab, scratch + QStringLiteral("/ours"), &files));
        theirs = std::min(theirs, timeCabextract(cab, scratch + QStringLiteral("/theirs")));
        if (!oursFirst)
            ours = std::min(ours, timeReader(cab, scratch + QStringLiteral("/ours"), &files));
    }
    std::printf("%-12s %8.1f MiB %7ld files | clsCAB %8.1f MB/s %9.0f files/s | cabextract %8.1f MB/s %9.0f "
                "files/s | time ratio %.2f\n",
        label, double(bytes) / MiB, files, bytes / 1e6 / ours, fileCount / ours, bytes / 1e6 / theirs,
        fileCount / theirs, ours / theirs);
    QDir(scratch + QStringLiteral("/ours")).removeRecursively();
    QDir(scratch + QStringLiteral("/theirs")).removeRecursively();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const qint64 bigMiB = envNumber("QB_BENCH_MIB", 500);
    const qint64 smallCount = envNumber("QB_BENCH_FILES", 20000);
    QTemporaryDir scratch;
    if (!scratch.isValid())
        return 1;

    QList<QPair<QString, QByteArray>> big;
    constexpr qint64 part = 10 * MiB;
    for (qint64 done = 0, i = 0; done < bigMiB * MiB; done += part, ++i)
        big.append({QStringLiteral("big/part%1.bin").arg(i, 3, 10, QLatin1Char('0')),
            mixedBytes(std::min(part, bigMiB * MiB - done), quint32(i))});
    const long bigCount = long(big.size());
    qint64 bigBytes = 0;
    for (const auto &file : big)
        bigBytes += file.second.size();
    const QString bigCab = makeCabinet(scratch.path(), QStringLiteral("big.cab"), big);
    big.clear();

    QList<QPair<QString, QByteArray>> small;
    QRandomGenerator random(5);
    qint64 smallBytes = 0;
    for (qint64 i = 0; i < smallCount; ++i) {
        small.append({QStringLiteral("d%1/f%2.txt").arg(i / 500).arg(i),
            mixedBytes(random.bounded(64, 4096), quint32(i))});
        smallBytes += small.last().second.size();
    }
    const QString smallCab = makeCabinet(scratch.path(), QStringLiteral("small.cab"), small);
    small.clear();
    if (bigCab.isEmpty() || smallCab.isEmpty())
        return 1;

    report("large MSZIP", bigCab, bigBytes, bigCount, scratch.path());
    report("many files", smallCab, smallBytes, long(smallCount), scratch.path());
    return 0;
}
