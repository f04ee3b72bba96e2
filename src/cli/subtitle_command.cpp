// quillbox subtitle convert | formats.
#include "cli/subtitle_command.h"
#include "cli/exit_status.h"

#include "subtitle/convert_subtitle.h"
#include "subtitle/subtitle_formats.h"
#include "util/number_text.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace qb::cli {

namespace {

const char *const kSubtitleUsage
    = "usage: quillbox subtitle convert SRC... DST [--offset SECONDS] [--window START END] [--split]\n"
      "                                 [--merge] [--encoding N] [--simplified|--traditional]\n"
      "                                 [--size WxH]\n"
      "       quillbox subtitle formats\n";

int usage(QTextStream &err, const QString &problem)
{
    err << "quillbox: " << problem << "\n" << kSubtitleUsage;
    return kUsage;
}

QString knownExtensions()
{
    QStringList all;
    for (const subtitle::SubtitleFormat &format : subtitle::SubtitleFormats()) {
        for (const char16_t *ext : format.extensions) {
            if (ext)
                all << QString::fromUtf16(ext);
        }
    }
    return all.join(QStringLiteral(", "));
}

bool readSeconds(const QString &text, double &value)
{
    if (!util::IsNumericText(text))
        return false;
    value = util::Val(text);
    return true;
}

int formats(QTextStream &out)
{
    out << "id  name                  extensions  read/write\n";
    for (const subtitle::SubtitleFormat &format : subtitle::SubtitleFormats()) {
        QStringList extensions;
        for (const char16_t *ext : format.extensions) {
            if (ext)
                extensions << QString::fromUtf16(ext);
        }
        out << QString::number(format.id).leftJustified(4)
            << QString::fromUtf16(format.name).leftJustified(22) << extensions.join(u',').leftJustified(12)
            << "read, write\n";
    }
    out << QString::number(91).leftJustified(4) << QStringLiteral("strict numbered blocks").leftJustified(22)
        << QStringLiteral("-").leftJustified(12) << "read (chosen by no extension)\n";
    return kOk;
}

int convert(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    subtitle::ConvertArguments job;
    // A script is laid out for the 4:3 design size, in white, unless told otherwise.
    job.style.screenWidth = 384;
    job.style.screenHeight = 288;
    job.style.foreColor = 0xFFFFFF;
    QStringList files;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &a = arguments[i];
        if (a == QLatin1String("--offset")) {
            if (!readSeconds(arguments.value(++i), job.timeOffset))
                return usage(err, QStringLiteral("--offset needs a number of seconds"));
        } else if (a == QLatin1String("--window")) {
            if (!readSeconds(arguments.value(i + 1), job.windowStart)
                || !readSeconds(arguments.value(i + 2), job.windowEnd))
                return usage(err, QStringLiteral("--window needs a start and an end in seconds"));
            i += 2;
        } else if (a == QLatin1String("--size")) {
            const QStringList size = arguments.value(++i).split(u'x');
            bool okW = false;
            bool okH = false;
            job.style.screenWidth = size.value(0).toInt(&okW);
            job.style.screenHeight = size.value(1).toInt(&okH);
            if (size.size() != 2 || !okW || !okH || job.style.screenWidth <= 0 || job.style.screenHeight <= 0)
                return usage(err, QStringLiteral("--size needs WIDTHxHEIGHT"));
        } else if (a == QLatin1String("--split")) {
            job.splitMode = true;
        } else if (a == QLatin1String("--merge")) {
            job.mergeSamePosition = true;
        } else if (a == QLatin1String("--encoding")) {
            bool ok = false;
            job.encodeFormat = arguments.value(++i).toInt(&ok);
            if (!ok || job.encodeFormat < 0 || job.encodeFormat > 3)
                return usage(err,
                    QStringLiteral("--encoding needs 0 (system), 1 (UTF-8), 2 (UTF-16 LE) or 3 (UTF-16 BE)"));
        } else if (a == QLatin1String("--simplified")) {
            job.internalCodeConversion = 1;
        } else if (a == QLatin1String("--traditional")) {
            job.internalCodeConversion = 2;
        } else if (a.startsWith(QLatin1String("--"))) {
            return usage(err, QStringLiteral("unknown option: ") + a);
        } else {
            files << a;
        }
    }
    if (files.size() < 2)
        return usage(err, QStringLiteral("convert needs at least one source and a destination"));
    job.destination = QFileInfo(files.takeLast()).absoluteFilePath();
    if (subtitle::SubtitleFormatId(QFileInfo(job.destination).suffix()) < 0) {
        err << "quillbox: " << job.destination
            << ": unknown subtitle format; known extensions: " << knownExtensions() << "\n";
        return kFailed;
    }
    // Sources with line feeds alone are read through a copy with CR LF ends, the converter's form.
    QTemporaryDir scratch;
    int copy = 0;
    for (const QString &file : files) {
        const QFileInfo info(file);
        if (!info.isFile()) {
            err << "quillbox: " << file << ": no such file\n";
            return kFailed;
        }
        if (subtitle::SubtitleFormatId(info.suffix()) < 0) {
            err << "quillbox: " << file
                << ": unknown subtitle format; known extensions: " << knownExtensions() << "\n";
            return kFailed;
        }
        QFile source(file);
        if (!source.open(QIODevice::ReadOnly)) {
            err << "quillbox: " << file << ": cannot be read\n";
            return kFailed;
        }
        QByteArray bytes = source.readAll();
        if (bytes.contains('\n') && !bytes.contains("\r\n") && scratch.isValid()) {
            bytes.replace("\n", "\r\n");
            const QString copied = scratch.filePath(QStringLiteral("%1.%2").arg(++copy).arg(info.suffix()));
            QFile target(copied);
            if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size()) {
                err << "quillbox: cannot prepare a copy of " << file << "\n";
                return kFailed;
            }
            job.sources << copied;
        } else {
            job.sources << info.absoluteFilePath();
        }
    }
    job.overwrite = true;
    const subtitle::ConvertResult result = subtitle::ConvertSubtitleFiles(job);
    if (!result.written) {
        err << "quillbox: nothing written to " << job.destination
            << ": the sources hold no cue the converter could read (a source needs at least one complete "
               "line)\n";
        return kFailed;
    }
    out << result.destination << "\n";
    return kOk;
}

} // namespace

int RunSubtitleCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    const QString verb = arguments.value(0);
    if (verb == QLatin1String("formats") && arguments.size() == 1)
        return formats(out);
    if (verb == QLatin1String("convert"))
        return convert(arguments.mid(1), out, err);
    return usage(err,
        verb.isEmpty() ? QStringLiteral("subtitle needs convert or formats")
                       : QStringLiteral("unknown subtitle command: ") + verb);
}

} // namespace qb::cli
