// Report and information files of a build.
#include "cabmaker/build_report.h"

#include "util/cab_format.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSaveFile>

namespace qb::cabmaker {

namespace {

QString attributeLetters(quint16 attributes)
{
    QString letters;
    if (attributes & cab::kAttrReadOnly)
        letters += u'R';
    if (attributes & cab::kAttrHidden)
        letters += u'H';
    if (attributes & cab::kAttrSystem)
        letters += u'S';
    if (attributes & cab::kAttrArchive)
        letters += u'A';
    return letters;
}

} // namespace

QString ReportText(const BuildPlan &plan, const CabinetStats &stats, double seconds)
{
    QString text;
    text += QStringLiteral("Quillbox makecab report: %1\n")
                .arg(QDateTime::currentDateTime().toString(Qt::ISODate));
    text += QStringLiteral("Cabinet: %1\n").arg(plan.cabinetPath);
    text += QStringLiteral("Total files:              %1\n").arg(stats.files.size());
    text += QStringLiteral("Folders:                  %1\n").arg(stats.folders);
    text += QStringLiteral("Bytes before:             %1\n").arg(stats.bytesIn);
    text += QStringLiteral("Bytes after:              %1\n").arg(stats.bytesOut);
    text += QStringLiteral("After/Before:             %1% compression\n")
                .arg(stats.bytesIn > 0 ? 100.0 * double(stats.bytesOut) / double(stats.bytesIn) : 0.0, 0, 'f',
                    2);
    text += QStringLiteral("Time:                     %1 seconds\n").arg(seconds, 0, 'f', 3);
    text += QStringLiteral("Throughput:               %1 KB/second\n")
                .arg(seconds > 0 ? double(stats.bytesIn) / 1024.0 / seconds : 0.0, 0, 'f', 2);
    return text;
}

QString InformationText(const BuildPlan &plan, const CabinetStats &stats)
{
    const QString cabinet = QFileInfo(plan.cabinetPath).fileName();
    QString text = QStringLiteral(";*** Quillbox makecab information file\n\n");
    text += QStringLiteral("[disk list]\n1,Disk 1\n\n");
    text += QStringLiteral("[cabinet list]\n1,%1\n\n").arg(cabinet);
    text += QStringLiteral("[file list]\n");
    for (const WrittenFile &file : stats.files) {
        const QDateTime stamp = cab::FromDosDateTime(file.date, file.time);
        text += QStringLiteral("1,%1,%2,%3,%4,%5,%6\n")
                    .arg(file.nameInCabinet)
                    .arg(file.size)
                    .arg(stamp.date().toString(QStringLiteral("MM/dd/yyyy")),
                        stamp.time().toString(QStringLiteral("HH:mm:ss")))
                    .arg(attributeLetters(file.attributes))
                    .arg(file.folder + 1);
    }
    return text;
}

bool WriteTextFileAtomically(const QString &path, const QString &text, QString &why)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        why = file.errorString();
        return false;
    }
    QString crlf = text;
    crlf.replace(u'\n', QStringLiteral("\r\n"));
    file.write(crlf.toUtf8());
    if (!file.commit()) {
        why = file.errorString();
        return false;
    }
    return true;
}

} // namespace qb::cabmaker
