// Seeded data generators and a zlib inflater for the encoder tests.
#include "sample_data.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>

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

} // namespace qb::test
