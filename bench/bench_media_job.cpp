// What running a conversion through the engine costs against the same ffmpeg command run bare,
// and how long the event loop is held up while the job runs. The source is generated: a
// 640x360 clip of SECONDS seconds (60 unless given), transcoded to H.264 and AAC. Targets: under
// 5% more wall time than the bare run, and no event-loop gap of 50 ms or more.
#include "engine/command_line.h"
#include "engine/ffmpegx.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 60;
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (ffmpeg.isEmpty()) {
        std::printf("ffmpeg is not installed\n");
        return 1;
    }
    QTemporaryDir dir;
    const QString source = dir.filePath(QStringLiteral("source.mkv"));
    QProcess make;
    make.start(ffmpeg,
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y"), QStringLiteral("-f"),
            QStringLiteral("lavfi"), QStringLiteral("-i"),
            QStringLiteral("testsrc2=size=640x360:rate=25:duration=%1").arg(seconds), QStringLiteral("-f"),
            QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("sine=duration=%1").arg(seconds),
            QStringLiteral("-c:v"), QStringLiteral("mpeg4"), QStringLiteral("-q:v"), QStringLiteral("3"),
            source});
    make.waitForFinished(-1);

    // The engine's run, with a timer measuring the longest wait between its ticks.
    qint64 longestGapNs = 0;
    QString command;
    const auto throughEngine = [&]() -> double {
        qb::engine::FFmpegX ffx;
        ffx.setCore(ffmpeg);
        ffx.setOutputDir(dir.path());
        ffx.setFileName(source);
        ffx.FileOutput.ForceFormat = QStringLiteral("h264");
        ffx.FileOutput.Overwrite = true;
        QObject::connect(
            &ffx, &qb::engine::FFmpegX::ScriptChange, [&](const QString &text) { command = text; });
        QObject::connect(&ffx, &qb::engine::FFmpegX::StatusChange, [&](int code, const QString &) {
            if (code == 2 || code == 3 || code == 4)
                QTimer::singleShot(0, &app, &QCoreApplication::quit);
        });
        QElapsedTimer sinceTick;
        QTimer tick;
        tick.setInterval(5);
        QObject::connect(&tick, &QTimer::timeout, [&] {
            longestGapNs = std::max(longestGapNs, sinceTick.nsecsElapsed());
            sinceTick.restart();
        });
        QElapsedTimer clock;
        clock.start();
        ffx.StartProcess();
        sinceTick.start();
        tick.start();
        app.exec();
        return double(clock.nsecsElapsed()) / 1e9;
    };
    // The same command, bare: the arguments the engine ran.
    const auto bare = [&]() -> double {
        QStringList arguments = qb::engine::SplitCommandLine(command);
        arguments.removeFirst(); // the program
        QProcess tool;
        tool.setProcessChannelMode(QProcess::MergedChannels);
        QElapsedTimer clock;
        clock.start();
        tool.start(ffmpeg, arguments);
        tool.waitForFinished(-1);
        return tool.exitCode() == 0 ? double(clock.nsecsElapsed()) / 1e9 : -1;
    };
    // Three of each, taken in turns; the medians are compared.
    std::vector<double> engineRuns, bareRuns;
    for (int i = 0; i < 3; ++i) {
        engineRuns.push_back(throughEngine());
        bareRuns.push_back(bare());
        if (bareRuns.back() < 0) {
            std::printf("the bare run failed\n");
            return 1;
        }
    }
    std::sort(engineRuns.begin(), engineRuns.end());
    std::sort(bareRuns.begin(), bareRuns.end());
    const double engineSeconds = engineRuns[1];
    const double bareSeconds = bareRuns[1];
    // The timer's own period is no gap.
    const double gapMs = std::max(0.0, double(longestGapNs) / 1e6 - 5);

    const double overhead = (engineSeconds - bareSeconds) / bareSeconds * 100;
    std::printf("source:             %d s of 640x360 at 25 fps, to H.264 and AAC\n", seconds);
    std::printf("bare ffmpeg:        %.2f s (median of 3)\n", bareSeconds);
    std::printf("through the engine: %.2f s (median of 3: command, run, checks)\n", engineSeconds);
    std::printf(
        "overhead:           %+.1f%%  target under 5%%: %s\n", overhead, overhead < 5 ? "PASS" : "FAIL");
    std::printf("longest loop gap:   %.1f ms  target under 50 ms: %s\n", gapMs, gapMs < 50 ? "PASS" : "FAIL");
    return 0;
}
