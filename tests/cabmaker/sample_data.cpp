// Seeded data generators, a zlib inflater, and makecab runs judged by the outside tools.
#include "sample_data.h"

#include "cabmaker/makecab_command.h"
#include "support/mspack_memory.h"
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QRandomGenerator>
#include <QTextStream>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace qb::test {

QByteArray RandomBytes(qsizetype size, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; i += 4) {
        const quint32 v = random.generate();
        std::memcpy(bytes.data() + i, &v, size_t(std::min<qsizetype>(4, size - i)));
    }
    return bytes;
}

QByteArray WordSoup(qsizetype size, quint32 seed)
{
    static const char *const words[] = {"cabinet ", "folder ", "data ", "block ", "the ", "of ", "and ", "\n",
        "压缩 ", "文件 ", "42 ", "file "};
    QRandomGenerator random(seed);
    QByteArray bytes;
    while (bytes.size() < size)
        bytes += words[random.bounded(12)];
    bytes.truncate(size);
    return bytes;
}

QByteArray FakeX86(qsizetype size, QRandomGenerator &random)
{
    using namespace std::literals;
    static constexpr std::string_view vocabulary[] = {"\x55"sv, "\x48\x89\xe5"sv, "\x48\x83\xec\x20"sv,
        "\x89\x7d\xfc"sv, "\x8b\x45\xfc"sv, "\x48\x8b\x45\xf8"sv, "\x31\xc0"sv, "\x5d"sv, "\xc3"sv, "\x90"sv,
        "\x0f\x1f\x44\x00\x00"sv, "\x48\x8d\x3d\x10\x20\x00\x00"sv, "\x85\xc0"sv, "\x74\x0a"sv, "\x75\xf2"sv,
        "\x41\x54"sv, "\x41\x5c"sv, "\x48\x89\xc7"sv};
    const auto appendLe32 = [](QByteArray &bytes, quint32 value) {
        for (int i = 0; i < 4; ++i)
            bytes += char(value >> (8 * i));
    };
    const int words = int(std::size(vocabulary));
    std::vector<qint64> targets;
    for (int i = 0; i < 48; ++i)
        targets.push_back(random.bounded(int(std::max<qsizetype>(size, 1))));
    // Some land past the end and far away, where translation leaves the operand alone.
    targets.push_back(qint64(size) + 100);
    targets.push_back(20000000);

    QByteArray bytes;
    bytes.reserve(size + 64);
    while (bytes.size() < size) {
        const qsizetype until = bytes.size() + 8 + random.bounded(24);
        while (bytes.size() < until) {
            const int pick = random.bounded(words + 2);
            if (pick < words) {
                bytes.append(vocabulary[pick].data(), qsizetype(vocabulary[pick].size()));
            } else {
                bytes += char(0xB8 + pick - words); // mov with a random immediate: stray E8 bytes too
                appendLe32(bytes, random.generate());
            }
        }
        const qint64 position = bytes.size();
        bytes += char(0xE8);
        if (random.bounded(10) == 0)
            appendLe32(bytes, random.generate());
        else
            appendLe32(bytes, quint32(targets[size_t(random.bounded(int(targets.size())))] - position));
    }
    bytes.truncate(size);
    return bytes;
}

QByteArray InflateRaw(const QByteArray &stream, const QByteArray &history, qsizetype expected)
{
    z_stream z {};
    EXPECT_EQ(inflateInit2(&z, -15), Z_OK);
    if (!history.isEmpty()) {
        EXPECT_EQ(inflateSetDictionary(
                      &z, reinterpret_cast<const Bytef *>(history.constData()), uInt(history.size())),
            Z_OK);
    }
    QByteArray out(expected + 64, '\0');
    z.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(stream.constData()));
    z.avail_in = uInt(stream.size());
    z.next_out = reinterpret_cast<Bytef *>(out.data());
    z.avail_out = uInt(out.size());
    const int status = inflate(&z, Z_FINISH);
    EXPECT_EQ(status, Z_STREAM_END) << (z.msg ? z.msg : "");
    EXPECT_EQ(z.avail_in, 0u) << "bytes left behind the stream";
    out.resize(status == Z_STREAM_END ? out.size() - qsizetype(z.avail_out) : 0);
    inflateEnd(&z);
    return out;
}

int ExtractCabinet(const QString &tool, const QString &cabinet, const QString &into, QString *output)
{
    QDir().mkpath(into);
    QStringList args;
    if (tool == u"7zz")
        args = {QStringLiteral("x"), QStringLiteral("-y"), QStringLiteral("-o") + into, cabinet};
    else if (tool == u"bsdtar")
        args = {QStringLiteral("-x"), QStringLiteral("-f"), cabinet, QStringLiteral("-C"), into};
    else
        args = {QStringLiteral("-q"), QStringLiteral("-d"), into, cabinet};
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(tool, args);
    process.waitForFinished(120000);
    if (output)
        *output = QString::fromUtf8(process.readAll());
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

MakeCabRun RunMakeCabIn(const QStringList &args, const QString &folder)
{
    MakeCabRun run;
    QTextStream out(&run.out);
    QTextStream err(&run.err);
    run.status = cabmaker::RunMakeCab(args, out, err, folder);
    out.flush();
    err.flush();
    return run;
}

QString BuildCabinet(TempTree &tree, const QList<CabFile> &files, const QString &settings)
{
    const auto quoted = [](QString text) { return u'"' + text.replace(u'"', QStringLiteral("\"\"")) + u'"'; };
    QString directive = QStringLiteral(".Option EXPLICIT\r\n.Set CabinetNameTemplate=%1\r\n")
                            .arg(quoted(tree.path(QStringLiteral("out/test.cab"))));
    directive += QStringLiteral(".Set DiskDirectory1=\r\n.Set UniqueFiles=OFF\r\n");
    directive += QStringLiteral(".Set InfFileName=NUL\r\n.Set RptFileName=NUL\r\n") + settings
        + QStringLiteral("\r\n");
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QString source = tree.writeFile(QStringLiteral("src/%1.bin").arg(i), files[i].bytes);
        if (!files[i].before.isEmpty())
            directive += files[i].before + QStringLiteral("\r\n");
        directive += quoted(source) + u' ' + quoted(files[i].name) + QStringLiteral("\r\n");
    }
    tree.makeDir(QStringLiteral("out"));
    const QString ddf = tree.writeFile(QStringLiteral("test.ddf"), directive.toUtf8());
    const MakeCabRun run = RunMakeCabIn({QStringLiteral("/F"), ddf}, tree.root());
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    return tree.path(QStringLiteral("out/test.cab"));
}

QMap<QString, QByteArray> Extracted(const QList<CabFile> &files)
{
    QMap<QString, QByteArray> expected;
    for (const CabFile &file : files)
        expected[QString(file.name).replace(u'\\', u'/')] = file.bytes;
    return expected;
}

void ExpectExtractorsAgree(const QString &cabinet, const QString &scratch,
    const QMap<QString, QByteArray> &expected, const QStringList &tools)
{
    const ToolResult test = runTool(QStringLiteral("cabextract"), {QStringLiteral("-t"), cabinet});
    EXPECT_EQ(test.exitCode, 0) << "cabextract -t: " << test.output.toStdString();
    const ToolResult sevenTest = runTool(QStringLiteral("7zz"), {QStringLiteral("t"), cabinet});
    EXPECT_TRUE(sevenTest.exitCode == 0 && sevenTest.output.contains(QStringLiteral("Everything is Ok")))
        << "7zz t: " << sevenTest.output.toStdString();

    for (const QString &tool : tools) {
        const QString into = scratch + QStringLiteral("/x-") + tool;
        QString output;
        EXPECT_EQ(ExtractCabinet(tool, cabinet, into, &output), 0)
            << tool.toStdString() << ": " << output.toStdString();
        QStringList names;
        QDirIterator it(into, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext())
            names << it.next().mid(into.size() + 1);
        names.sort();
        EXPECT_EQ(names, QStringList(expected.keys())) << tool.toStdString();
        for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
            const qsizetype at = FirstDifference(readAll(into + u'/' + it.key()), it.value());
            EXPECT_LT(at, 0) << tool.toStdString() << ": " << it.key().toStdString() << " differs from byte "
                             << at;
        }
    }
}

} // namespace qb::test
