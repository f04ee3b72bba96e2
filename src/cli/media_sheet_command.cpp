#include "cli/media_sheet_command.h"
#include "cli/exit_status.h"

#include "engine/ffmpegx.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace qb::cli {

namespace {

int usage(QTextStream &err, const QString &problem)
{
    err << "quillbox: " << problem << "\n"
        << "usage: quillbox media sheet VIDEO OUT.jpg [--grid CxR] [--size 300max|WxH] [--core PATH]\n";
    return kUsage;
}

} // namespace

int RunSheetCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    QStringList paths;
    QString grid = u"3x5"_s;
    QString size = u"300max"_s;
    QString core = QStandardPaths::findExecutable(u"ffmpeg"_s);
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args.at(i);
        if (!a.startsWith(u"--"_s)) {
            paths << a;
        } else if (i + 1 >= args.size()) {
            return usage(err, a + u" needs a value"_s);
        } else if (a == u"--grid"_s) {
            grid = args.at(++i);
        } else if (a == u"--size"_s) {
            size = args.at(++i);
        } else if (a == u"--core"_s) {
            core = args.at(++i);
        } else {
            return usage(err, u"unknown option: "_s + a);
        }
    }
    static const QRegularExpression gridShape(u"^([1-9]\\d?)x([1-9]\\d?)$"_s);
    const QRegularExpressionMatch cells = gridShape.match(grid);
    if (!cells.hasMatch())
        return usage(err, u"--grid takes columns x rows, each 1 to 99, not "_s + grid);
    if (paths.size() != 2)
        return usage(err, u"sheet needs a video and an output picture"_s);
    if (!QFileInfo(paths.at(0)).isFile()) {
        err << "quillbox: " << paths.at(0) << ": no such file\n";
        return kFailed;
    }
    if (core.isEmpty() || !QFileInfo(core).isFile()) {
        err << "quillbox: frames are taken by ffmpeg; install it or name one with --core\n";
        return kFailed;
    }
    const QString format = QFileInfo(paths.at(1)).suffix().toLower();
    if (format.isEmpty())
        return usage(err, paths.at(1) + u": give the picture an extension (jpg, png, gif, tif, bmp)"_s);

    engine::FFmpegX job;
    job.setCore(core);
    job.ImageGrabber.ImageGrabberSize = size;
    job.ImageGrabber.ImageGrabberShowTimeString = true;
    job.ImageGrabber.ImageGrabberShowFileInfo = true;
    const bool terminal = isatty(STDERR_FILENO) != 0;
    QEventLoop loop;
    int result = kFailed;
    QObject::connect(&job, &engine::FFmpegX::ProgressChange, &loop,
        [&err, terminal](int value, int max, int, const QString &, const QString &, bool) {
            if (terminal) {
                err << "\rframe " << value << "/" << max << (value == max ? "\n" : "");
                err.flush();
            }
        });
    QObject::connect(&job, &engine::FFmpegX::StatusChange, &loop, [&](int code, const QString &text) {
        if (code == 2) {
            out << text << "\n";
            result = kOk;
            loop.quit();
        } else if (code == 3) {
            err << "quillbox: " << paths.at(0) << ": " << text << " (no frame could be taken)\n";
            loop.quit();
        }
    });
    job.Screenshot(QFileInfo(paths.at(1)).absoluteFilePath(), QFileInfo(paths.at(0)).absoluteFilePath(), {},
        -1, format, cells.captured(1).toInt(), cells.captured(2).toInt());
    if (job.Processing())
        loop.exec();
    return result;
}

} // namespace qb::cli
