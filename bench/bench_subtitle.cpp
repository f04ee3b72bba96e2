// What converting a long subtitle costs: a generated file of 100,000 numbered blocks converted to
// a script and to lyrics, beside the media tool doing the same in the same run. Prints cues per
// second and this process's peak memory.
#include "subtitle/convert_subtitle.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <sys/resource.h>

namespace {

constexpr int kCues = 100000;

long peakMiB()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

QString clock(qint64 ms)
{
    return QStringLiteral("%1:%2:%3,%4")
        .arg(ms / 3600000, 2, 10, QChar(u'0'))
        .arg(ms / 60000 % 60, 2, 10, QChar(u'0'))
        .arg(ms / 1000 % 60, 2, 10, QChar(u'0'))
        .arg(ms % 1000, 3, 10, QChar(u'0'));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("long.srt"));
    {
        QFile file(source);
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        QByteArray text;
        for (int i = 0; i < kCues; ++i) {
            const qint64 start = qint64(i) * 2000;
            text += QByteArray::number(i + 1) + "\r\n" + clock(start).toLatin1() + " --> "
                + clock(start + 1500).toLatin1() + "\r\nLine number " + QByteArray::number(i + 1)
                + "\r\n\r\n";
        }
        file.write(text);
    }
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    for (const char *format : {"ass", "lrc"}) {
        const QString target = folder.filePath(QStringLiteral("ours.") + QLatin1String(format));
        qb::subtitle::ConvertArguments job;
        job.sources = {source};
        job.destination = target;
        job.overwrite = true;
        job.style.screenWidth = 384;
        job.style.screenHeight = 288;
        QElapsedTimer timer;
        timer.start();
        const bool written = qb::subtitle::ConvertSubtitleFiles(job).written;
        const double ours = double(timer.nsecsElapsed()) / 1e9;
        double theirs = 0;
        if (!ffmpeg.isEmpty()) {
            timer.restart();
            QProcess tool;
            tool.start(ffmpeg,
                {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-i"),
                    source, folder.filePath(QStringLiteral("theirs.") + QLatin1String(format))});
            tool.waitForFinished(-1);
            theirs = double(timer.nsecsElapsed()) / 1e9;
        }
        std::printf("srt -> %s: ours %s in %.2f s (%.0f cues/s), media tool %.2f s (%.0f cues/s)\n", format,
            written ? "written" : "FAILED", ours, kCues / ours, theirs, theirs > 0 ? kCues / theirs : 0.0);
    }
    std::printf("peak memory of this process: %ld MiB\n", peakMiB());
    return 0;
}
