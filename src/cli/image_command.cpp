// quillbox image convert | info.
#include "cli/image_command.h"
#include "cli/exit_status.h"

#include "cli/job_options.h"
#include "engine/ffmpegx.h"
#include "engine/image_settings.h"
#include "engine/stream_probe.h"
#include "imaging/image_container.h"
#include "imaging/image_conversion.h"

#include <QFileInfo>
#include <QImageReader>
#include <QStandardPaths>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace qb::cli {

namespace {

const char *const kImageUsage
    = "usage: quillbox image convert SRC... DST [--size 800max|50%|WxH] [--quality N]\n"
      "                              [--format jpg|png|gif|gif_t|tif|bmp] [--rotate 0|90|180|270]\n"
      "                              [--border W] [--set PROPERTY=VALUE]...\n"
      "       quillbox image info FILE...\n"
      "several sources are stitched into one picture (ImageStitchingSize tiles, ImageStitchingRow columns)\n";

int usage(QTextStream &err, const QString &problem)
{
    err << "quillbox: " << problem << "\n" << kImageUsage;
    return kUsage;
}

// The option's value as a whole number within bounds, or a usage problem.
QString boundedNumber(const QString &option, const QString &value, int low, int high, int &out)
{
    bool ok = false;
    out = value.toInt(&ok);
    if (ok && out >= low && out <= high)
        return {};
    return option + u" takes a whole number from %1 to %2, not "_s.arg(low).arg(high) + value;
}

int convert(const QStringList &args, QTextStream &out, QTextStream &err)
{
    engine::FFmpegX job;
    QStringList paths;
    QString format;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args.at(i);
        if (!a.startsWith(u"--"_s)) {
            paths << a;
            continue;
        }
        if (i + 1 >= args.size())
            return usage(err, a + u" needs a value"_s);
        const QString value = args.at(++i);
        QString problem;
        int number = 0;
        if (a == u"--size"_s) {
            job.Image.ImageSize = value;
        } else if (a == u"--quality"_s) {
            problem = boundedNumber(a, value, 0, 100, job.Image.ImageQuality);
        } else if (a == u"--format"_s) {
            format = value.toLower();
        } else if (a == u"--rotate"_s) {
            problem = boundedNumber(a, value, 0, 270, number);
            if (problem.isEmpty() && number % 90 != 0)
                problem = u"--rotate takes 0, 90, 180 or 270, not "_s + value;
            job.Image.ImageRotateFlip = number / 90;
        } else if (a == u"--border"_s) {
            problem = boundedNumber(a, value, 0, 1000, job.Image.ImageBorderWidth);
        } else if (a == u"--set"_s) {
            problem = SetJobProperty(job, value);
        } else {
            problem = u"unknown option: "_s + a;
        }
        if (!problem.isEmpty())
            return usage(err, problem);
    }
    if (paths.size() < 2)
        return usage(err, u"convert needs a source and a destination"_s);
    const QString target = paths.takeLast();
    if (format.isEmpty())
        format = QFileInfo(target).suffix().toLower();
    if (format.isEmpty())
        return usage(err, target + u": give the destination an extension or name a --format"_s);
    for (const QString &source : paths) {
        if (!QFileInfo(source).isFile()) {
            err << "quillbox: " << source << ": no such file\n";
            return kFailed;
        }
    }
    // Videos give a frame; the media tool takes it when there is one.
    const QString ffmpeg = QStandardPaths::findExecutable(u"ffmpeg"_s);
    if (!ffmpeg.isEmpty())
        job.setCore(ffmpeg);
    imaging::ConversionHooks hooks;
    hooks.isVideo = [&job](const QString &file) {
        return engine::HasListedSuffix(file, job.Video.VideoSuffixSupported);
    };
    hooks.grabFrame = [&job](const QString &file) { return job.GetVideoFrame(file, -1); };
    const bool terminal = isatty(STDERR_FILENO) != 0;
    hooks.progress = [&err, terminal](int done, int count) {
        if (terminal) {
            err << "\r" << done << "/" << count << (done == count ? "\n" : "");
            err.flush();
        }
    };
    QString problem;
    if (!imaging::ImageConversion(paths, target,
            engine::ConversionSettingsOf(job.Image, job.ImageWatermark, format), hooks, &problem)) {
        err << "quillbox: " << problem << "\n";
        return kFailed;
    }
    out << target << "\n";
    return kOk;
}

int info(const QStringList &files, QTextStream &out, QTextStream &err)
{
    if (files.isEmpty())
        return usage(err, u"info needs a file"_s);
    int result = kOk;
    for (const QString &file : files) {
        const QImage image = imaging::LoadImageToGdip(file);
        if (image.isNull()) {
            err << "quillbox: " << file << ": not a picture this program reads\n";
            result = kFailed;
            continue;
        }
        QByteArray kind = QImageReader::imageFormat(file);
        if (kind.isEmpty() && imaging::LoadImageFileToByte(file).startsWith("8BPS"))
            kind = "psd";
        constexpr double kMetresPerInch = 0.0254;
        out << file << ": " << (kind.isEmpty() ? QByteArray("?") : kind.toUpper()) << ", " << image.width()
            << "x" << image.height() << ", " << image.depth() << " bits a pixel"
            << (image.hasAlphaChannel() ? " with alpha" : "") << ", "
            << qRound(image.dotsPerMeterX() * kMetresPerInch) << "x"
            << qRound(image.dotsPerMeterY() * kMetresPerInch) << " dpi\n";
    }
    return result;
}

} // namespace

int RunImageCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    const QString verb = arguments.value(0);
    if (verb == u"convert"_s)
        return convert(arguments.mid(1), out, err);
    if (verb == u"info"_s)
        return info(arguments.mid(1), out, err);
    return usage(
        err, verb.isEmpty() ? u"image needs convert or info"_s : u"unknown image command: "_s + verb);
}

} // namespace qb::cli
