// What the job engine costs on a chatty tool: a generated script prints ffmpeg-like progress lines
// as fast as it can; the engine reads them in 256-byte chunks, one step per event-loop turn, and
// scans each. Prints seconds, chunks and megabytes per second, the events raised and peak memory,
// next to the same output read by a plain QProcess to its end.
#include "engine/ffmpegx.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <sys/resource.h>

namespace {

long peakKiB()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

QString writeScript(const QString &path, int lines)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    // awk prints the lines in one go, so the engine, not the tool, sets the pace.
    const QByteArray body = "#!/bin/sh\nprintf '  Duration: 01:00:00.00, start: 0.000000, bitrate: N/A\\n'\n"
                            "awk 'BEGIN { for (i = 1; i <= "
        + QByteArray::number(lines)
        + "; i++) printf \"frame=%6d fps= 25 q=28.0 size=%8dkB time=%02d:%02d:%02d.00 bitrate= 1000.0kbits/s "
          "speed=1.0x    \\r\", i, i * 4, int(i / 90000), int(i / 1500) % 60, int(i / 25) % 60 }'\n";
    file.write(body);
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int lines = argc > 1 ? std::atoi(argv[1]) : 200000;
    QTemporaryDir dir;
    const QString script = writeScript(dir.filePath(QStringLiteral("chatty.sh")), lines);

    QElapsedTimer clock;
    clock.start();
    QProcess plain;
    plain.setProcessChannelMode(QProcess::MergedChannels);
    plain.start(script, {});
    plain.waitForFinished(-1);
    const qint64 bytes = plain.readAll().size();
    const double plainSeconds = double(clock.nsecsElapsed()) / 1e9;

    qb::engine::FFmpegX ffx;
    qint64 chunks = 0;
    qint64 progressEvents = 0;
    qint64 statusEvents = 0;
    QObject::connect(&ffx, &qb::engine::FFmpegX::PipeChange, [&](const QString &) { ++chunks; });
    QObject::connect(&ffx, &qb::engine::FFmpegX::ProgressChange, [&] { ++progressEvents; });
    QObject::connect(&ffx, &qb::engine::FFmpegX::StatusChange, [&](int code, const QString &) {
        ++statusEvents;
        if (code == 2)
            QTimer::singleShot(0, &app, &QCoreApplication::quit);
    });
    ffx.setOnlyUseExtCommandLine(true);
    ffx.setCommandLine(QLatin1Char('"') + script + QLatin1Char('"'));
    clock.restart();
    ffx.StartProcess();
    app.exec();
    const double seconds = double(clock.nsecsElapsed()) / 1e9;

    std::printf("tool output:        %lld bytes in %d lines\n", static_cast<long long>(bytes), lines);
    std::printf("plain read:         %.3f s\n", plainSeconds);
    std::printf("engine:             %.3f s  (%.1f MB/s, %.0f chunks/s)\n", seconds,
        double(bytes) / 1e6 / seconds, double(chunks) / seconds);
    std::printf("events:             %lld chunks, %lld progress, %lld status\n",
        static_cast<long long>(chunks), static_cast<long long>(progressEvents),
        static_cast<long long>(statusEvents));
    std::printf("peak memory:        %.1f MiB\n", double(peakKiB()) / 1024.0);
    return 0;
}
