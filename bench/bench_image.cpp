// What converting large photographs costs: generated 4000x3000 JPEGs made "800max" JPEGs by the
// picture conversion, and by ImageMagick's mogrify -resize 800x800 on the same files in the same
// run, both on one thread. Prints images per second and peak memory of each side.
#include "imaging/image_conversion.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <sys/resource.h>

namespace {

long peakMiB(int who)
{
    rusage usage {};
    getrusage(who, &usage);
    return usage.ru_maxrss / 1024;
}

// A photograph-like picture: gradients, shapes and noise, so the encoder has real work.
QImage photograph(int seed)
{
    QImage image(4000, 3000, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 4000, 3000);
    sky.setColorAt(0, QColor::fromHsv((seed * 37) % 360, 120, 230));
    sky.setColorAt(1, QColor::fromHsv((seed * 91) % 360, 200, 90));
    painter.fillRect(image.rect(), sky);
    QRandomGenerator random {quint32(seed)};
    for (int i = 0; i < 300; ++i) {
        painter.setBrush(QColor::fromRgb(random.generate()));
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(
            random.bounded(4000), random.bounded(3000), random.bounded(400), random.bounded(400));
    }
    painter.end();
    for (int y = 0; y < 3000; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < 4000; ++x)
            line[x] ^= random.generate() & 0x070707;
    }
    return image;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 200;
    QTemporaryDir folder;
    const QDir root(folder.path());
    root.mkpath(QStringLiteral("in"));
    root.mkpath(QStringLiteral("ours"));
    root.mkpath(QStringLiteral("theirs"));
    QStringList sources;
    // A handful of distinct photographs, copied to make up the count.
    constexpr int kDistinct = 8;
    for (int i = 0; i < count; ++i) {
        const QString path = root.filePath(QStringLiteral("in/p%1.jpg").arg(i, 3, 10, QChar(u'0')));
        if (i < kDistinct)
            photograph(i).save(path, "JPG", 90);
        else
            QFile::copy(
                root.filePath(QStringLiteral("in/p%1.jpg").arg(i % kDistinct, 3, 10, QChar(u'0'))), path);
        sources << path;
    }
    std::printf("%d sources of 4000x3000, %.1f MB each on average\n", count,
        double(QFileInfo(sources.first()).size()) / 1e6);

    qb::imaging::ConversionSettings settings;
    settings.process.targetSize = QStringLiteral("800max");
    settings.encoderFormat = QStringLiteral("jpg");
    settings.encode.imageQuality = 85;
    QElapsedTimer timer;
    timer.start();
    int converted = 0;
    for (const QString &source : sources)
        converted += qb::imaging::ImageConversion(
            {source}, root.filePath(QStringLiteral("ours/") + QFileInfo(source).fileName()), settings);
    const double ours = double(timer.nsecsElapsed()) / 1e9;
    std::printf("ours:   %d converted in %.2f s, %.2f images/s, peak %ld MiB\n", converted, ours,
        count / ours, peakMiB(RUSAGE_SELF));

    const QString mogrify = QStandardPaths::findExecutable(QStringLiteral("mogrify"));
    if (mogrify.isEmpty()) {
        std::printf("theirs: mogrify is not installed\n");
        return 0;
    }
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("MAGICK_THREAD_LIMIT"), QStringLiteral("1"));
    tool.setProcessEnvironment(environment);
    timer.restart();
    tool.start(mogrify,
        QStringList {QStringLiteral("-path"), root.filePath(QStringLiteral("theirs")),
            QStringLiteral("-resize"), QStringLiteral("800x800"), QStringLiteral("-quality"),
            QStringLiteral("85")}
            + sources);
    tool.waitForFinished(-1);
    const double theirs = double(timer.nsecsElapsed()) / 1e9;
    std::printf("theirs: exit %d in %.2f s, %.2f images/s, peak %ld MiB\n", tool.exitCode(), theirs,
        count / theirs, peakMiB(RUSAGE_CHILDREN));
    std::printf(
        "%s: ours %.2fx their speed on one thread each\n", ours <= theirs ? "PASS" : "FAIL", theirs / ours);
    return 0;
}
