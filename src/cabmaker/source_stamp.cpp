// Size, DOS date and time, and attributes of a source file, with the file line's overrides.
#include "cabmaker/source_stamp.h"

#include "util/cab_format.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <sys/stat.h>

namespace qb::cabmaker {

namespace {

QString where(const PlannedFile &file)
{
    if (file.directiveFile.isEmpty())
        return {};
    return file.line > 0 ? QStringLiteral("%1(%2): ").arg(file.directiveFile).arg(file.line)
                         : file.directiveFile + QStringLiteral(": ");
}

bool parseDate(const QString &text, QDate &date)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,2})/(\\d{1,2})/(\\d{2}|\\d{4})$"));
    const auto m = pattern.match(text.trimmed());
    if (!m.hasMatch())
        return false;
    int year = m.captured(3).toInt();
    if (m.captured(3).size() == 2)
        year += year < 80 ? 2000 : 1900;
    date = QDate(year, m.captured(1).toInt(), m.captured(2).toInt());
    return date.isValid();
}

bool parseTime(const QString &text, QTime &time)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d{1,2}):(\\d{1,2})(?::(\\d{1,2}))?\\s*([aApP])?$"));
    const auto m = pattern.match(text.trimmed());
    if (!m.hasMatch())
        return false;
    int hour = m.captured(1).toInt();
    const QString half = m.captured(4).toLower();
    if (!half.isEmpty()) {
        if (hour < 1 || hour > 12)
            return false;
        hour = (hour % 12) + (half == u"p" ? 12 : 0);
    }
    time = QTime(hour, m.captured(2).toInt(), m.captured(3).isEmpty() ? 0 : m.captured(3).toInt());
    return time.isValid();
}

bool parseAttributes(const QString &text, quint16 &attributes)
{
    quint16 value = 0;
    for (const QChar c : text.toLower()) {
        if (c == u'r')
            value |= cab::kAttrReadOnly;
        else if (c == u'a')
            value |= cab::kAttrArchive;
        else if (c == u's')
            value |= cab::kAttrSystem;
        else if (c == u'h')
            value |= cab::kAttrHidden;
        else
            return false;
    }
    attributes = value;
    return true;
}

} // namespace

bool ReadSourceStamp(const PlannedFile &file, SourceStamp &stamp, qint64 &size, QString &problem)
{
    struct stat st;
    const QByteArray native = QFile::encodeName(file.sourcePath);
    if (::stat(native.constData(), &st) != 0) {
        problem = where(file) + QStringLiteral("cannot find '%1'").arg(file.sourcePath);
        return false;
    }
    if (!S_ISREG(st.st_mode)) {
        problem = where(file) + QStringLiteral("'%1' is not a plain file").arg(file.sourcePath);
        return false;
    }
    size = qint64(st.st_size);

    QDateTime modified = QDateTime::fromSecsSinceEpoch(qint64(st.st_mtim.tv_sec));
    QDate date = modified.date();
    QTime time = modified.time();
    if (!file.date.isEmpty() && !parseDate(file.date, date)) {
        problem = where(file) + QStringLiteral("'%1' is not a date of the form MM/DD/YYYY").arg(file.date);
        return false;
    }
    if (!file.time.isEmpty() && !parseTime(file.time, time)) {
        problem = where(file) + QStringLiteral("'%1' is not a time of the form HH:MM:SS").arg(file.time);
        return false;
    }
    const cab::DosDateTime dos = cab::ToDosDateTime(QDateTime(date, time));
    stamp.date = dos.date;
    stamp.time = dos.time;

    stamp.attributes = cab::kAttrArchive;
    if (!(st.st_mode & S_IWUSR))
        stamp.attributes |= cab::kAttrReadOnly;
    if (QFileInfo(file.sourcePath).fileName().startsWith(u'.'))
        stamp.attributes |= cab::kAttrHidden;
    if (st.st_mode & S_IXUSR)
        stamp.attributes |= cab::kAttrExecute;
    if (!file.attributes.isEmpty() && !parseAttributes(file.attributes, stamp.attributes)) {
        problem = where(file)
            + QStringLiteral("'%1' is not a set of the attributes r, a, s, h").arg(file.attributes);
        return false;
    }
    return true;
}

} // namespace qb::cabmaker
