// The body of the per-family subtitle fuzz targets: arbitrary bytes saved as a file of one of the
// family's extensions and converted into a format the first byte picks, through the whole frame
// (text-format detection, reader, writer, the temporary file and its rename).
#pragma once

#include "fuzz_check.h"
#include "subtitle/convert_subtitle.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <initializer_list>
#include <iterator>

inline void FuzzSubtitleFile(const uint8_t *data, size_t size, std::initializer_list<const char *> family)
{
    if (size == 0)
        return;
    static const char *const kDestinations[]
        = {"txt", "srt", "ass", "ssa", "lrc", "ksc", "krc", "smi", "snc", "qly", "stl", "vsf", "dks", "stxt"};
    static QTemporaryDir folder;
    const unsigned choice = data[0];
    const char *extension = std::data(family)[choice % family.size()];
    const char *target = kDestinations[(choice / family.size()) % std::size(kDestinations)];

    const QString source = folder.filePath(QStringLiteral("in.") + QLatin1String(extension));
    const QString destination = folder.filePath(QStringLiteral("out.") + QLatin1String(target));
    // Each input starts in an empty folder.
    const QDir scratch(folder.path());
    for (const QString &name : scratch.entryList(QDir::Files | QDir::Hidden))
        QFile::remove(scratch.filePath(name));
    {
        QFile file(source);
        check(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        check(file.write(reinterpret_cast<const char *>(data + 1), qint64(size - 1)) == qint64(size - 1));
    }

    qb::subtitle::ConvertArguments job;
    job.sources = {source};
    job.destination = destination;
    job.overwrite = true;
    job.style.screenWidth = 384;
    job.style.screenHeight = 288;
    job.style.title = QStringLiteral("T");
    job.mergeSamePosition = (choice & 0x40) != 0;
    job.sort = (choice & 0x80) != 0;
    if (choice & 0x20) {
        job.windowStart = 1;
        job.windowEnd = 30;
    }
    const qb::subtitle::ConvertResult result = qb::subtitle::ConvertSubtitleFiles(job);

    // Written means there, refused means absent; the scratch file never stays behind.
    const QFileInfo written(destination);
    check(result.written == written.exists());
    check(scratch.entryList(QDir::Files | QDir::Hidden).size() == (result.written ? 2 : 1));
    // What one line can become is bounded: the output stays in proportion to the input.
    if (result.written)
        check(written.size() <= 64 * qint64(size) + 65536);
}
