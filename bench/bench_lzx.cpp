// Compares our LZX at every effort level with libwim's LZX and our MSZIP on text, x86 and PE corpora.
#include "cabmaker/lzx_encoder.h"
#include "cabmaker/mszip_encoder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <unistd.h>
#include <wimlib.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <thread>
#include <vector>

namespace {

using qb::cabmaker::EncodedBlock;
using qb::cabmaker::kLzxBestLevel;
using qb::cabmaker::kLzxDefaultLevel;
using qb::cabmaker::kLzxFastestLevel;

constexpr qint64 MiB = 1024 * 1024;
constexpr qint64 kCorpusSize = 32 * MiB;
// Pieces of this size go to MSZIP and to libwim, whose compressor can't take more at once.
constexpr qint64 kPiece = 2 * MiB;
// Every cabinet data block carries a checksum and two sizes in front of its payload.
constexpr qint64 kBlockHeader = 8;
constexpr int kWindowBits = 21;
constexpr double kRepeatBelowSeconds = 2.0;
constexpr double kFastTargetMBps = 15.0;
constexpr qint64 kMemoryTarget = 256 * MiB;
const int kWimLevels[] = {20, 50, 100};

// ---- Building the corpora -------------------------------------------------------------------

std::optional<QByteArray> readPrefix(const QString &path, qint64 limit)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.read(limit);
}

std::optional<QByteArray> gunzip(const QByteArray &packed)
{
    z_stream stream {};
    if (inflateInit2(&stream, 16 + MAX_WBITS) != Z_OK)
        return std::nullopt;
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(packed.constData()));
    stream.avail_in = uInt(packed.size());
    QByteArray plain;
    std::vector<char> buffer(256 * 1024);
    int status = Z_OK;
    while (status == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef *>(buffer.data());
        stream.avail_out = uInt(buffer.size());
        status = inflate(&stream, Z_NO_FLUSH);
        plain.append(buffer.data(), qsizetype(buffer.size() - stream.avail_out));
    }
    inflateEnd(&stream);
    if (status != Z_STREAM_END)
        return std::nullopt;
    return plain;
}

// Regular files only: symbolic links would bring the same library in twice.
QStringList sortedFiles(
    const QString &root, bool recursive, const std::function<bool(const QString &)> &accept)
{
    QStringList files;
    QDirIterator it(root, QDir::Files | QDir::NoSymLinks | QDir::Hidden,
        recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    while (it.hasNext()) {
        const QString path = it.next();
        if (accept(path))
            files << path;
    }
    files.sort(Qt::CaseSensitive);
    return files;
}

// What one source gives a corpus: the bytes of a file, at most room of them, or nothing to skip it.
using Take = std::function<std::optional<QByteArray>(const QString &path, qint64 room)>;

struct Source
{
    QString label;
    QStringList files;
    Take take;
};

struct Corpus
{
    QString name;
    QByteArray data;
    QStringList origin; // one line per source
    QString skipped; // why the corpus could not be made
};

// Each source gets an equal share of what is left, so that a short source leaves its room to the
// next; within a source, whole files in sorted path order, the last one cut to fit.
void fill(Corpus &corpus, const std::vector<Source> &sources)
{
    corpus.data.reserve(kCorpusSize);
    for (size_t i = 0; i < sources.size(); ++i) {
        const Source &source = sources[i];
        const qint64 share = (kCorpusSize - corpus.data.size()) / qint64(sources.size() - i);
        const qint64 end = corpus.data.size() + share;
        int files = 0;
        QString first;
        QString last;
        for (const QString &path : source.files) {
            const qint64 room = end - corpus.data.size();
            if (room <= 0)
                break;
            const std::optional<QByteArray> bytes = source.take(path, room);
            if (!bytes || bytes->isEmpty())
                continue;
            corpus.data.append(bytes->constData(), std::min(room, qint64(bytes->size())));
            if (first.isEmpty())
                first = path;
            last = path;
            ++files;
        }
        corpus.origin << QStringLiteral("%1: %2 bytes from %3 files, %4 .. %5")
                             .arg(source.label)
                             .arg(share - (end - corpus.data.size()))
                             .arg(files)
                             .arg(first, last);
    }
}

Corpus textCorpus()
{
    // Man pages and changelogs come gzipped; compressed bytes would say nothing about text.
    const Take text = [](const QString &path, qint64) -> std::optional<QByteArray> {
        std::optional<QByteArray> bytes = readPrefix(path, 64 * MiB);
        if (bytes && path.endsWith(u".gz"))
            bytes = gunzip(*bytes);
        if (!bytes || bytes->contains('\0'))
            return std::nullopt;
        return bytes;
    };
    const auto all = [](const QString &) { return true; };
    Corpus corpus {QStringLiteral("text"), {}, {}, {}};
    fill(corpus,
        {{QStringLiteral("man pages, gunzipped (/usr/share/man)"),
             sortedFiles(QStringLiteral("/usr/share/man"), true, all), text},
            {QStringLiteral("documentation, gunzipped where gzipped (/usr/share/doc)"),
                sortedFiles(QStringLiteral("/usr/share/doc"), true, all), text},
            {QStringLiteral("C and C++ headers (/usr/include)"),
                sortedFiles(QStringLiteral("/usr/include"), true, all), text}});
    return corpus;
}

Corpus x86Corpus()
{
    const Take elf = [](const QString &path, qint64 room) -> std::optional<QByteArray> {
        std::optional<QByteArray> bytes = readPrefix(path, room);
        if (!bytes
            || !bytes->startsWith(QByteArray("\x7f"
                                             "ELF")))
            return std::nullopt;
        return bytes;
    };
    Corpus corpus {QStringLiteral("x86"), {}, {}, {}};
    fill(corpus,
        {{QStringLiteral("ELF libraries (/usr/lib/x86_64-linux-gnu/**/*.so*)"),
             sortedFiles(QStringLiteral("/usr/lib/x86_64-linux-gnu"), true,
                 [](const QString &path) { return QFileInfo(path).fileName().contains(u".so"); }),
             elf},
            {QStringLiteral("ELF programs (/usr/bin/*)"),
                sortedFiles(QStringLiteral("/usr/bin"), false, [](const QString &) { return true; }), elf}});
    return corpus;
}

struct Run
{
    bool ok = false;
    QString output;
};

Run run(const QString &program, const QStringList &arguments, const QString &folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.waitForFinished(-1);
    return {process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
        QString::fromLocal8Bit(process.readAll()).trimmed()};
}

QString findDeb(const QString &folder)
{
    const QStringList debs = QDir(folder).entryList({QStringLiteral("libwine_*.deb")}, QDir::Files);
    return debs.isEmpty() ? QString() : folder + u'/' + debs.first();
}

Corpus peCorpus(const QString &scratch)
{
    Corpus corpus {QStringLiteral("pe"), {}, {}, {}};
    const QString folder = scratch + QStringLiteral("/libwine");
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);

    std::printf("pe: apt-get download libwine into %s\n", qPrintable(folder));
    Run download
        = run(QStringLiteral("apt-get"), {QStringLiteral("download"), QStringLiteral("libwine")}, folder);
    if (!download.ok || findDeb(folder).isEmpty()) {
        // The package lists may simply be missing or stale on a fresh machine.
        std::printf(
            "pe: the download failed (%s); running apt-get update once\n", qPrintable(download.output));
        if (geteuid() != 0)
            std::printf("pe: not root, so apt-get update will likely fail too\n");
        const Run update
            = run(QStringLiteral("apt-get"), {QStringLiteral("update"), QStringLiteral("-qq")}, folder);
        if (!update.ok)
            std::printf("pe: apt-get update failed: %s\n", qPrintable(update.output));
        download
            = run(QStringLiteral("apt-get"), {QStringLiteral("download"), QStringLiteral("libwine")}, folder);
    }
    const QString deb = findDeb(folder);
    if (!download.ok || deb.isEmpty()) {
        corpus.skipped
            = QStringLiteral("apt-get download libwine failed (%1); run the benchmark as root on a "
                             "machine that reaches Debian's archive")
                  .arg(download.output);
        return corpus;
    }
    const QString root = folder + QStringLiteral("/root");
    const Run unpack = run(QStringLiteral("dpkg-deb"), {QStringLiteral("-x"), deb, root}, folder);
    if (!unpack.ok) {
        corpus.skipped = QStringLiteral("dpkg-deb -x %1 failed: %2").arg(deb, unpack.output);
        return corpus;
    }

    // A PE image: "MZ", then at the offset stored at 0x3C the signature "PE\0\0".
    const Take pe = [](const QString &path, qint64 room) -> std::optional<QByteArray> {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        const QByteArray head = file.read(64);
        if (head.size() < 64 || !head.startsWith("MZ"))
            return std::nullopt;
        const auto *at = reinterpret_cast<const unsigned char *>(head.constData()) + 0x3C;
        const qint64 offset = qint64(at[0]) | qint64(at[1]) << 8 | qint64(at[2]) << 16 | qint64(at[3]) << 24;
        if (!file.seek(offset) || file.read(4) != QByteArray("PE\0\0", 4) || !file.seek(0))
            return std::nullopt;
        return file.read(room);
    };
    const auto windowsImage = [](const QString &path) {
        return (path.contains(u"/wine/x86_64-windows/") || path.contains(u"/wine/i386-windows/"))
            && (path.endsWith(u".dll", Qt::CaseInsensitive) || path.endsWith(u".exe", Qt::CaseInsensitive));
    };
    fill(corpus,
        {{QStringLiteral("PE DLLs and programs of %1 (*/wine/{x86_64,i386}-windows/)")
                .arg(QFileInfo(deb).completeBaseName()),
            sortedFiles(root, true, windowsImage), pe}});
    corpus.origin.replaceInStrings(root + u'/', QString());
    if (corpus.data.isEmpty())
        corpus.skipped = QStringLiteral("no PE image found in %1").arg(deb);
    return corpus;
}

// ---- Measuring ------------------------------------------------------------------------------

struct Measure
{
    bool done = false;
    qint64 size = 0;
    double seconds = 0;
    int runs = 0;
    bool steady = true; // both runs gave the same size
    size_t memory = 0;
};

template<class Compress>
Measure measure(Compress &&compress)
{
    Measure result;
    for (int round = 0; round < 2; ++round) {
        const auto start = std::chrono::steady_clock::now();
        const qint64 size = compress();
        const double seconds
            = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (round > 0 && size != result.size)
            result.steady = false;
        result.size = size;
        result.seconds = round == 0 ? seconds : std::min(result.seconds, seconds);
        result.runs = round + 1;
        if (seconds >= kRepeatBelowSeconds)
            break;
    }
    result.done = true;
    return result;
}

qint64 cabinetSize(const std::vector<EncodedBlock> &blocks)
{
    qint64 size = 0;
    for (const EncodedBlock &block : blocks)
        size += block.payload.size() + kBlockHeader;
    return size;
}

double mbps(qint64 bytes, double seconds)
{
    return seconds > 0 ? double(bytes) / 1e6 / seconds : 0;
}

double mib(double bytes)
{
    return bytes / double(MiB);
}

size_t maxRssBytes()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return size_t(usage.ru_maxrss) * 1024;
}

void printRow(const QString &label, qint64 input, const Measure &m, const QString &memory)
{
    std::printf("  %-26s %11lld %7.2f%% %8.2f MB/s  %d run%s  %s%s\n", qPrintable(label), qlonglong(m.size),
        100.0 * double(m.size) / double(input), mbps(input, m.seconds), m.runs, m.runs == 1 ? " " : "s",
        qPrintable(memory), m.steady ? "" : "  (the two runs differed in size!)");
}

QString levelLabel(int level)
{
    QString label = QStringLiteral("ours LZX level %1").arg(level);
    if (level == kLzxFastestLevel)
        label += QStringLiteral(" (fast)");
    if (level == kLzxDefaultLevel)
        label += QStringLiteral(" (default)");
    if (level == kLzxBestLevel)
        label += QStringLiteral(" (best)");
    return label;
}

struct Results
{
    qint64 input = 0;
    std::map<int, Measure> ours;
    Measure mszip;
    std::map<int, Measure> wim;
};

Results benchmark(const Corpus &corpus, const std::vector<int> &levels)
{
    Results results;
    const auto *data = reinterpret_cast<const unsigned char *>(corpus.data.constData());
    const qint64 size = corpus.data.size();
    results.input = size;
    std::printf("\n== %s: %lld bytes ==\n", qPrintable(corpus.name), qlonglong(size));
    std::printf("  %-26s %11s %8s %13s  %-7s %s\n", "method", "size", "of input", "speed", "runs", "memory");

    for (int level : levels) {
        const qb::cabmaker::LzxOptions options {kWindowBits, level, true};
        Measure m = measure(
            [&] { return cabinetSize(qb::cabmaker::LzxCompressBuffer(data, size_t(size), options)); });
        // A separate pass through the encoder itself, for its memory; it must agree on the size.
        qb::cabmaker::LzxEncoder encoder(options);
        std::vector<EncodedBlock> blocks;
        for (qint64 at = 0; at < size; at += kPiece) {
            const qint64 length = std::min(kPiece, size - at);
            encoder.encode(data + at, size_t(length), at + length == size, blocks);
        }
        m.memory = encoder.peakMemory();
        const qint64 direct = cabinetSize(blocks);
        printRow(
            levelLabel(level), size, m, QStringLiteral("peak %1 MiB").arg(mib(double(m.memory)), 0, 'f', 1));
        if (direct != m.size)
            std::printf("  (fed in 2 MiB pieces the encoder gave %lld bytes instead)\n", qlonglong(direct));
        results.ours[level] = m;
    }

    results.mszip = measure([&] {
        qb::cabmaker::MsZipEncoder encoder;
        std::vector<EncodedBlock> blocks;
        for (qint64 at = 0; at < size; at += kPiece) {
            const qint64 length = std::min(kPiece, size - at);
            encoder.encode(data + at, size_t(length), at + length == size, blocks);
        }
        return cabinetSize(blocks);
    });
    printRow(QStringLiteral("ours MSZIP"), size, results.mszip, QString());

    for (int level : kWimLevels) {
        wimlib_compressor *compressor = nullptr;
        const int status = wimlib_create_compressor(
            WIMLIB_COMPRESSION_TYPE_LZX, size_t(kPiece), unsigned(level), &compressor);
        if (status != 0) {
            std::printf("  libwim LZX level %d: the compressor could not be made (%s)\n", level,
                wimlib_get_error_string(wimlib_error_code(status)));
            continue;
        }
        std::vector<unsigned char> out(static_cast<size_t>(kPiece));
        Measure m = measure([&] {
            qint64 total = 0;
            for (qint64 at = 0; at < size; at += kPiece) {
                const qint64 length = std::min(kPiece, size - at);
                // Asking for one byte less makes 0 mean "did not shrink", which a WIM stores raw.
                const size_t packed
                    = wimlib_compress(data + at, size_t(length), out.data(), size_t(length - 1), compressor);
                total += packed == 0 ? length : qint64(packed);
            }
            return total;
        });
        wimlib_free_compressor(compressor);
        m.memory = size_t(wimlib_get_compressor_needed_memory(
            WIMLIB_COMPRESSION_TYPE_LZX, size_t(kPiece), unsigned(level)));
        printRow(QStringLiteral("libwim LZX level %1").arg(level), size, m,
            QStringLiteral("needs %1 MiB").arg(mib(double(m.memory)), 0, 'f', 1));
        results.wim[level] = m;
    }
    std::printf("  process ru_maxrss so far: %.1f MiB\n", mib(double(maxRssBytes())));
    return results;
}

// ---- The target checks ----------------------------------------------------------------------

void printCheck(const QString &what, double ratio, bool pass)
{
    std::printf("  %-62s %8.3f  %s\n", qPrintable(what), ratio, pass ? "PASS" : "MISS");
}

void printUnmeasured(const QString &what, const QString &why)
{
    std::printf("  %-62s %8s  not measured (%s)\n", qPrintable(what), "-", qPrintable(why));
}

void checkTargets(const std::map<QString, Results> &all, const QStringList &order)
{
    std::printf("\n== target checks (ratios: ours / reference) ==\n");
    const auto ours = [](const Results &r, int level) -> const Measure * {
        const auto it = r.ours.find(level);
        return it == r.ours.end() ? nullptr : &it->second;
    };
    const auto wim = [](const Results &r, int level) -> const Measure * {
        const auto it = r.wim.find(level);
        return it == r.wim.end() ? nullptr : &it->second;
    };
    for (const QString &name : order) {
        const Results &r = all.at(name);
        const QString best
            = QStringLiteral("%1: best (%2) size / libwim 100 size").arg(name).arg(kLzxBestLevel);
        if (ours(r, kLzxBestLevel) && wim(r, 100)) {
            const double ratio = double(ours(r, kLzxBestLevel)->size) / double(wim(r, 100)->size);
            printCheck(best, ratio, ratio <= 1.0);
        } else {
            printUnmeasured(best, QStringLiteral("level %1 or libwim 100 not run").arg(kLzxBestLevel));
        }

        const QString defaultSize
            = QStringLiteral("%1: default (%2) size / libwim 50 size").arg(name).arg(kLzxDefaultLevel);
        const QString defaultSpeed
            = QStringLiteral("%1: default (%2) speed / libwim 50 speed").arg(name).arg(kLzxDefaultLevel);
        if (ours(r, kLzxDefaultLevel) && wim(r, 50)) {
            const Measure &o = *ours(r, kLzxDefaultLevel);
            const Measure &w = *wim(r, 50);
            const double sizeRatio = double(o.size) / double(w.size);
            printCheck(defaultSize, sizeRatio, sizeRatio <= 1.0);
            const double speedRatio = mbps(r.input, o.seconds) / mbps(r.input, w.seconds);
            printCheck(defaultSpeed, speedRatio, speedRatio >= 1.0);
        } else {
            const QString why = QStringLiteral("level %1 or libwim 50 not run").arg(kLzxDefaultLevel);
            printUnmeasured(defaultSize, why);
            printUnmeasured(defaultSpeed, why);
        }

        const QString fastSize
            = QStringLiteral("%1: fast (%2) size / libwim 20 size").arg(name).arg(kLzxFastestLevel);
        const QString fastSpeed = QStringLiteral("%1: fast (%2) speed / %3 MB/s")
                                      .arg(name)
                                      .arg(kLzxFastestLevel)
                                      .arg(kFastTargetMBps);
        if (ours(r, kLzxFastestLevel) && wim(r, 20)) {
            const Measure &o = *ours(r, kLzxFastestLevel);
            const double sizeRatio = double(o.size) / double(wim(r, 20)->size);
            printCheck(fastSize, sizeRatio, sizeRatio <= 1.0);
            const double speedRatio = mbps(r.input, o.seconds) / kFastTargetMBps;
            printCheck(fastSpeed, speedRatio, speedRatio >= 1.0);
        } else {
            const QString why = QStringLiteral("level %1 or libwim 20 not run").arg(kLzxFastestLevel);
            printUnmeasured(fastSize, why);
            printUnmeasured(fastSpeed, why);
        }
    }

    size_t peak = 0;
    for (const auto &[name, r] : all) {
        for (const auto &[level, m] : r.ours)
            peak = std::max(peak, m.memory);
    }
    const QString memory
        = QStringLiteral("peak memory at 2^%1 / %2 MiB").arg(kWindowBits).arg(kMemoryTarget / MiB);
    if (all.empty() || peak == 0)
        printUnmeasured(memory, QStringLiteral("no LZX level run"));
    else
        printCheck(memory, double(peak) / double(kMemoryTarget), qint64(peak) < kMemoryTarget);
}

std::optional<std::vector<int>> parseLevels(const QString &text)
{
    std::vector<int> levels;
    for (const QString &part : text.split(u',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const int level = part.trimmed().toInt(&ok);
        if (!ok || level < 1 || level > 9)
            return std::nullopt;
        if (std::find(levels.begin(), levels.end(), level) == levels.end())
            levels.push_back(level);
    }
    std::sort(levels.begin(), levels.end());
    if (levels.empty())
        return std::nullopt;
    return levels;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Compares our LZX (every effort level) with libwim's LZX and our MSZIP on corpora made from this "
        "machine's Debian packages."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("scratch-folder"),
        QStringLiteral("Where the corpora are built and kept (default: a temporary folder, removed after)."),
        QStringLiteral("[scratch-folder]"));
    const QCommandLineOption levelsOption(QStringLiteral("levels"),
        QStringLiteral("Our LZX effort levels to run, e.g. 1,5,9 (default: 1 to 9)."), QStringLiteral("list"),
        QStringLiteral("1,2,3,4,5,6,7,8,9"));
    const QCommandLineOption corporaOption(QStringLiteral("corpora"),
        QStringLiteral("Corpora to build and run, from text,x86,pe (default: all three)."),
        QStringLiteral("list"), QStringLiteral("text,x86,pe"));
    parser.addOption(levelsOption);
    parser.addOption(corporaOption);
    parser.process(app);

    const std::optional<std::vector<int>> levels = parseLevels(parser.value(levelsOption));
    if (!levels) {
        std::fprintf(stderr, "bench_lzx: --levels wants a comma-separated list of levels from 1 to 9\n");
        return 2;
    }
    const QStringList known {QStringLiteral("text"), QStringLiteral("x86"), QStringLiteral("pe")};
    const QStringList asked = parser.value(corporaOption).split(u',', Qt::SkipEmptyParts);
    for (const QString &name : asked) {
        if (!known.contains(name.trimmed())) {
            std::fprintf(stderr, "bench_lzx: unknown corpus '%s' (known: text, x86, pe)\n", qPrintable(name));
            return 2;
        }
    }
    if (parser.positionalArguments().size() > 1) {
        std::fprintf(stderr, "bench_lzx: at most one scratch folder\n");
        return 2;
    }

    QTemporaryDir temporary;
    QString scratch;
    if (parser.positionalArguments().isEmpty()) {
        if (!temporary.isValid()) {
            std::fprintf(stderr, "bench_lzx: no temporary folder: %s\n", qPrintable(temporary.errorString()));
            return 1;
        }
        scratch = temporary.path();
    } else {
        scratch = QDir(parser.positionalArguments().first()).absolutePath();
        if (!QDir().mkpath(scratch)) {
            std::fprintf(stderr, "bench_lzx: can't make %s\n", qPrintable(scratch));
            return 1;
        }
    }

    std::printf("scratch folder: %s\n", qPrintable(scratch));
    std::printf("each corpus is one buffer, the plain concatenation of its files (a tar without headers),\n"
                "compressed as one folder; sources in the order listed, each an equal share of %lld MiB\n"
                "(a short one leaves its room to the next), whole files in sorted path order, the last cut "
                "to fit\n",
        qlonglong(kCorpusSize / MiB));

    // Fixed order whatever the command line says, so that runs compare line by line.
    std::vector<Corpus> corpora;
    for (const QString &name : known) {
        bool wanted = false;
        for (const QString &a : asked)
            wanted = wanted || a.trimmed() == name;
        if (!wanted)
            continue;
        Corpus corpus = name == u"text" ? textCorpus() : name == u"x86" ? x86Corpus() : peCorpus(scratch);
        if (corpus.skipped.isEmpty() && corpus.data.isEmpty())
            corpus.skipped = QStringLiteral("no files found");
        if (!corpus.skipped.isEmpty()) {
            std::printf("corpus %s: SKIPPED: %s\n", qPrintable(name), qPrintable(corpus.skipped));
            continue;
        }
        QFile file(scratch + u'/' + name + QStringLiteral(".bin"));
        if (file.open(QIODevice::WriteOnly))
            file.write(corpus.data);
        std::printf("corpus %s: %lld bytes, sha256 %s, saved as %s\n", qPrintable(name),
            qlonglong(corpus.data.size()),
            QCryptographicHash::hash(corpus.data, QCryptographicHash::Sha256).toHex().left(16).constData(),
            qPrintable(file.fileName()));
        for (const QString &line : corpus.origin)
            std::printf("  %s\n", qPrintable(line));
        corpora.push_back(std::move(corpus));
    }

    std::printf("\nsize = the blocks' payloads plus %lld bytes per data block (its header in a cabinet); "
                "libwim: the sum of its %lld MiB chunks, a chunk that didn't shrink counted raw\n",
        qlonglong(kBlockHeader), qlonglong(kPiece / MiB));
    std::printf(
        "speed = MB (10^6 bytes) of input per wall-clock second, best of 2 runs under %.0f s, else one run; "
        "our LZX at window 2^%d with call translation; MSZIP fed %lld MiB pieces and spreads its blocks "
        "over %u threads; libwim is single-threaded\n",
        kRepeatBelowSeconds, kWindowBits, qlonglong(kPiece / MiB),
        std::max(1u, std::thread::hardware_concurrency()));
    std::printf("memory: peakMemory() of an LzxEncoder fed the corpus in %lld MiB pieces; for libwim, "
                "wimlib_get_compressor_needed_memory()\n",
        qlonglong(kPiece / MiB));
    std::printf("process ru_maxrss before compressing: %.1f MiB\n", mib(double(maxRssBytes())));

    std::map<QString, Results> all;
    QStringList order;
    for (const Corpus &corpus : corpora) {
        all[corpus.name] = benchmark(corpus, *levels);
        order << corpus.name;
    }
    checkTargets(all, order);
    std::printf("process ru_maxrss at the end: %.1f MiB\n", mib(double(maxRssBytes())));
    return 0;
}
