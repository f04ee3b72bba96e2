// Shared helpers of the cabinet reader tests.
#include "cab_fixtures.h"

#include "cabmaker/makecab_command.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTextStream>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace qb::test {

QString makeCabWithMakeCab(
    TempTree &tree, const QList<CabEntry> &entries, const QString &compression, const QString &cabRelative)
{
    QString directive = QStringLiteral(".Option EXPLICIT\r\n.Set CabinetNameTemplate=\"%1\"\r\n")
                            .arg(tree.path(cabRelative));
    directive += QStringLiteral(".Set DiskDirectory1=\r\n.Set UniqueFiles=OFF\r\n");
    directive += QStringLiteral(".Set InfFileName=NUL\r\n.Set RptFileName=NUL\r\n");
    if (compression == QLatin1String("NONE"))
        directive += QStringLiteral(".Set Compress=OFF\r\n");
    else
        directive += QStringLiteral(".Set CompressionType=") + compression + QStringLiteral("\r\n");
    int i = 0;
    for (const CabEntry &entry : entries) {
        const QString source = tree.writeFile(QStringLiteral("mk-src/%1.bin").arg(i++), entry.bytes);
        if (!entry.before.isEmpty())
            directive += entry.before + QStringLiteral("\r\n");
        directive += u'"' + source + QStringLiteral("\" \"") + entry.name + u'"';
        if (!entry.extra.isEmpty())
            directive += u' ' + entry.extra;
        directive += QStringLiteral("\r\n");
    }
    QDir().mkpath(QFileInfo(tree.path(cabRelative)).absolutePath());
    const QString ddf = tree.writeFile(QStringLiteral("mk.ddf"), directive.toUtf8());
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    const int status = cabmaker::RunMakeCab({QStringLiteral("/F"), ddf}, outStream, errStream, tree.root());
    errStream.flush();
    EXPECT_EQ(status, 0) << err.toStdString();
    return tree.path(cabRelative);
}

QString makeCabWithGcab(TempTree &tree, const QList<CabEntry> &entries, bool mszip)
{
    QStringList args {QStringLiteral("-c")};
    if (mszip)
        args << QStringLiteral("-z");
    args << tree.path(QStringLiteral("gcab.cab"));
    for (const CabEntry &entry : entries) {
        const QString relative = QString(entry.name).replace(u'\\', u'/');
        tree.writeFile(QStringLiteral("gcab-src/") + relative, entry.bytes);
        args << relative;
    }
    const ToolResult run = runTool(QStringLiteral("gcab"), args, tree.path(QStringLiteral("gcab-src")));
    EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
    return tree.path(QStringLiteral("gcab.cab"));
}

QList<ListedFile> cabextractList(const QString &cabPath)
{
    const ToolResult run = runTool(QStringLiteral("cabextract"), {QStringLiteral("-l"), cabPath});
    EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
    static const QRegularExpression row(
        QStringLiteral(R"(^\s*(\d+) \| (\d\d)\.(\d\d)\.(\d{4}) (\d\d):(\d\d):(\d\d) \| (.*)$)"));
    QList<ListedFile> files;
    for (const QString &line : run.output.split(u'\n')) {
        const QRegularExpressionMatch m = row.match(line);
        if (!m.hasMatch())
            continue;
        ListedFile file;
        file.size = m.captured(1).toLongLong();
        file.dateTime = QDateTime(QDate(m.captured(4).toInt(), m.captured(3).toInt(), m.captured(2).toInt()),
            QTime(m.captured(5).toInt(), m.captured(6).toInt(), m.captured(7).toInt()));
        file.name = m.captured(8);
        files << file;
    }
    return files;
}

QList<ListedFile> readerList(const QString &cabPath)
{
    cabinet::clsCAB reader;
    reader.setCabName(cabPath);
    QList<ListedFile> files;
    QObject::connect(&reader, &cabinet::clsCAB::FileFound,
        [&files](const QString &name, const QDateTime &dateTime, qint64 size, const QString &path) {
            files << ListedFile {QString(path + name).replace(u'\\', u'/'), size, dateTime};
        });
    EXPECT_TRUE(reader.GetInfo(QString()));
    return files;
}

ErrorLog::ErrorLog(cabinet::clsCAB &reader)
{
    QObject::connect(&reader, &cabinet::clsCAB::RaiseError,
        [this](long number, const QString &source, const QString &description) {
            errors << RaisedError {number, source, description};
        });
}

QByteArray sampleBytes(qsizetype size, quint32 seed)
{
    static const char *const words[] = {"cabinet ", "folder ", "data ", "block ", "the ", "of ", "\n", "42 "};
    QRandomGenerator random(seed);
    QByteArray bytes;
    bytes.reserve(size);
    while (bytes.size() < size) {
        // Stretches of words and of noise, so every coder meets both.
        if (random.bounded(4) == 0) {
            for (int i = 0; i < 64; ++i)
                bytes += char(random.bounded(256));
        } else {
            for (int i = 0; i < 16; ++i)
                bytes += words[random.bounded(8)];
        }
    }
    bytes.truncate(size);
    return bytes;
}

qsizetype nameOffset(const QByteArray &cabinet, const QByteArray &name)
{
    return cabinet.indexOf(name + '\0');
}

QByteArray captureStderr(const std::function<void()> &work)
{
    std::fflush(stderr);
    std::FILE *sink = std::tmpfile();
    EXPECT_NE(sink, nullptr);
    if (!sink) {
        work();
        return {};
    }
    const int saved = ::dup(2);
    ::dup2(::fileno(sink), 2);
    work();
    std::fflush(stderr);
    ::dup2(saved, 2);
    ::close(saved);
    QByteArray text;
    std::rewind(sink);
    char buffer[4096];
    for (size_t got; (got = std::fread(buffer, 1, sizeof buffer, sink)) > 0;)
        text.append(buffer, qsizetype(got));
    std::fclose(sink);
    return text;
}

ScopedEnv::ScopedEnv(const char *name, const char *value)
    : m_name(name)
{
    m_had = qEnvironmentVariableIsSet(name);
    m_old = qgetenv(name);
    ::setenv(name, value, 1);
    ::tzset();
}

ScopedEnv::~ScopedEnv()
{
    if (m_had)
        ::setenv(m_name.constData(), m_old.constData(), 1);
    else
        ::unsetenv(m_name.constData());
    ::tzset();
}

qint64 mtimeOf(const QString &path)
{
    struct stat info
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return -1;
    return qint64(info.st_mtim.tv_sec);
}

} // namespace qb::test
