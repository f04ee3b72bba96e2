// What probing a long source costs: a two-hour clip of a tiny picture is made once, then the
// engine's probe (the encoder's header read and the player tool's answer) is timed beside the
// player tool alone. Neither may read the file through: the figures print with its size.
#include "engine/ffmpegx.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    const QString ffprobe = QStandardPaths::findExecutable(QStringLiteral("ffprobe"));
    if (ffmpeg.isEmpty() || ffprobe.isEmpty()) {
        std::fprintf(stderr, "bench_probe: needs ffmpeg and ffprobe\n");
        return 1;
    }
    QTemporaryDir folder;
    const QString clip = folder.filePath(QStringLiteral("two hours.mkv"));
    QProcess make;
    make.start(ffmpeg,
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"), QStringLiteral("lavfi"),
            QStringLiteral("-i"), QStringLiteral("color=black:size=16x16:rate=1:duration=7200"),
            QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("anullsrc=sample_rate=8000:channel_layout=mono"), QStringLiteral("-t"),
            QStringLiteral("7200"), QStringLiteral("-c:v"), QStringLiteral("mpeg4"), QStringLiteral("-c:a"),
            QStringLiteral("pcm_s16le"), clip});
    make.waitForFinished(-1);
    if (make.exitCode() != 0) {
        std::fprintf(stderr, "bench_probe: could not make the clip\n");
        return 1;
    }
    std::vector<double> engineMs;
    std::vector<double> playerMs;
    double duration = 0;
    for (int round = 0; round < 5; ++round) {
        qb::engine::FFmpegX ffx;
        ffx.setCore(ffmpeg);
        QElapsedTimer clock;
        clock.start();
        ffx.setFileName(clip);
        engineMs.push_back(double(clock.nsecsElapsed()) / 1e6);
        duration = ffx.Duration();

        clock.restart();
        QProcess player;
        player.start(ffprobe,
            {QStringLiteral("-v"), QStringLiteral("quiet"), QStringLiteral("-show_format"),
                QStringLiteral("-show_streams"), clip});
        player.waitForFinished(-1);
        playerMs.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    std::printf("source: %.0f s long, %.1f MB\n", duration, double(QFileInfo(clip).size()) / 1e6);
    std::printf("engine probe (header read + player answer): median %.0f ms\n", medianOf(engineMs));
    std::printf("player tool alone:                          median %.0f ms\n", medianOf(playerMs));
    return 0;
}
