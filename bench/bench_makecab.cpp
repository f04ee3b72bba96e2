// Packs a generated ~200 MiB mixed corpus (text, x86 code, incompressible data, many small
// files) with makecab and with gcab, NONE and MSZIP, in one run, and prints size and MB/s.
// QB_BENCH_TYPES=MSZIP (or NONE) limits the run to one type.
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr qint64 MiB = 1024 * 1024;

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

// Concatenates readable files under the folders until the budget is spent, in name order so
// that runs are comparable.
qint64 gather(
    const QStringList &roots, const QStringList &filters, qint64 budget, qint64 chunk, const QString &into)
{
    QStringList files;
    for (const QString &root : roots) {
        QDirIterator it(root, filters, QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
        while (it.hasNext())
            files << it.next();
    }
    files.sort();
    QByteArray pending;
    qint64 written = 0;
    int part = 0;
    for (const QString &path : files) {
        if (written >= budget)
            break;
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        pending += file.read(std::min<qint64>(budget - written, 8 * MiB));
        while (pending.size() >= chunk) {
            writeFile(into + QStringLiteral("/part%1.bin").arg(part++, 3, 10, QLatin1Char('0')),
                pending.left(chunk));
            written += chunk;
            pending.remove(0, chunk);
        }
    }
    if (!pending.isEmpty() && written < budget) {
        writeFile(into + QStringLiteral("/part%1.bin").arg(part, 3, 10, QLatin1Char('0')), pending);
        written += pending.size();
    }
    return written;
}

struct Result
{
    double seconds = 0;
    qint64 size = 0;
    bool ok = false;
};

Result timed(const QString &program, const QStringList &args, const QString &folder, const QString &cabinet)
{
    QFile::remove(cabinet);
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    process.start(program, args);
    process.waitForFinished(-1);
    Result result;
    result.seconds = double(clock.nsecsElapsed()) / 1e9;
    result.ok = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    result.size = QFileInfo(cabinet).size();
    if (!result.ok)
        std::fprintf(
            stderr, "%s failed: %s\n", qPrintable(program), process.readAllStandardError().constData());
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QString makecab = QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/makecab");
    QTemporaryDir scratch;
    const QString corpus = scratch.path() + QStringLiteral("/corpus");

    std::printf("building the corpus in %s\n", qPrintable(corpus));
    const qint64 text = gather({QStringLiteral("/usr/include"), QStringLiteral("/usr/share/doc")},
        {QStringLiteral("*.h"), QStringLiteral("*.txt"), QStringLiteral("*.md"), QStringLiteral("copyright"),
            QStringLiteral("*.html")},
        70 * MiB, 4 * MiB, corpus + QStringLiteral("/text"));
    const qint64 code = gather({QStringLiteral("/usr/lib/x86_64-linux-gnu"), QStringLiteral("/usr/bin")},
        {QStringLiteral("*.so*"), QStringLiteral("*")}, 70 * MiB, 4 * MiB, corpus + QStringLiteral("/code"));
    QRandomGenerator random(2024);
    QByteArray noise(30 * MiB, '\0');
    random.fillRange(reinterpret_cast<quint32 *>(noise.data()), noise.size() / 4);
    writeFile(corpus + QStringLiteral("/noise/random.bin"), noise);
    qint64 small = 0;
    QByteArray sample;
    for (int i = 0; small < 30 * MiB; ++i) {
        sample = QByteArray("entry ") + QByteArray::number(i) + ": "
            + QByteArray(int(random.bounded(12000u)), char('a' + i % 26))
            + QByteArray::number(random.generate());
        writeFile(corpus + QStringLiteral("/small/d%1/f%2.txt").arg(i / 200).arg(i), sample);
        small += sample.size();
    }
    const qint64 total = text + code + noise.size() + small;
    std::printf(
        "corpus: text %.1f MiB, x86 code %.1f MiB, random %.1f MiB, small files %.1f MiB; %.1f MiB in all\n",
        double(text) / MiB, double(code) / MiB, double(noise.size()) / MiB, double(small) / MiB,
        double(total) / MiB);

    QStringList relative;
    QDirIterator it(corpus, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        relative << QDir(corpus).relativeFilePath(it.next());
    relative.sort();
    std::printf("%lld files\n", qlonglong(relative.size()));

    const QString cabinet = scratch.path() + QStringLiteral("/out.cab");
    // Packs the files with both tools (after one warm-up round) and prints one line.
    auto compare = [&](const QString &type, const QStringList &files, const QString &label) {
        qint64 bytes = 0;
        for (const QString &file : files)
            bytes += QFileInfo(corpus + u'/' + file).size();
        QByteArray ddf = ".Set CabinetNameTemplate=\"" + cabinet.toUtf8() + "\"\n.Set DiskDirectory1=\n"
            + ".Set InfFileName=NUL\n.Set RptFileName=NUL\n"
            + (type == u"NONE" ? QByteArray(".Set Compress=OFF\n")
                               : QByteArray(".Set CompressionType=MSZIP\n"));
        for (const QString &file : files)
            ddf += "\"" + file.toUtf8() + "\" \"" + QString(file).replace(u'/', u'\\').toUtf8() + "\"\n";
        writeFile(scratch.path() + QStringLiteral("/bench.ddf"), ddf);
        QStringList gcabArgs {QStringLiteral("-c")};
        if (type == u"MSZIP")
            gcabArgs << QStringLiteral("-z");
        gcabArgs << cabinet << files;
        Result ours;
        Result theirs;
        for (int round = 0; round < 2; ++round) {
            ours = timed(makecab, {QStringLiteral("/F"), scratch.path() + QStringLiteral("/bench.ddf")},
                corpus, cabinet);
            theirs = timed(QStringLiteral("gcab"), gcabArgs, corpus, cabinet);
        }
        std::printf(
            "%-6s %-7s makecab: %10lld bytes (%6.2f%%) %7.1f MB/s   gcab: %10lld bytes (%6.2f%%) %7.1f MB/s"
            "   ours %+.2f%% in size, %.2fx the speed\n",
            qPrintable(type), qPrintable(label), qlonglong(ours.size),
            100.0 * double(ours.size) / double(bytes), double(bytes) / 1e6 / ours.seconds,
            qlonglong(theirs.size), 100.0 * double(theirs.size) / double(bytes),
            double(bytes) / 1e6 / theirs.seconds, 100.0 * (double(ours.size) / double(theirs.size) - 1.0),
            theirs.seconds / ours.seconds);
    };
    const QStringList types = qEnvironmentVariableIsSet("QB_BENCH_TYPES")
        ? qEnvironmentVariable("QB_BENCH_TYPES").split(u',')
        : QStringList {QStringLiteral("NONE"), QStringLiteral("MSZIP")};
    for (const QString &type : types)
        compare(type, relative, QStringLiteral("all"));
    if (types.contains(QStringLiteral("MSZIP"))) {
        for (const QString &part : {QStringLiteral("text"), QStringLiteral("code"), QStringLiteral("noise"),
                 QStringLiteral("small")})
            compare(QStringLiteral("MSZIP"), relative.filter(QRegularExpression(u'^' + part + u'/')), part);
    }
    return 0;
}
