// Profile file reading and in-place editing.
#include "util/profile_file.h"

#include <QFile>
#include <QSaveFile>

namespace qb::util {

namespace {

bool sameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

ProfileFile ProfileFile::parse(const QByteArray &text)
{
    ProfileFile profile;
    const QString all = QString::fromUtf8(text);
    qsizetype start = 0;
    while (start < all.size()) {
        qsizetype end = start;
        while (end < all.size() && all[end] != u'\r' && all[end] != u'\n')
            ++end;
        Line line;
        line.text = all.mid(start, end - start);
        const QString trimmed = line.text.trimmed();
        if (trimmed.startsWith(u'[')) {
            const qsizetype close = trimmed.indexOf(u']');
            if (close > 0) {
                line.kind = Line::Header;
                line.section = trimmed.mid(1, close - 1).trimmed();
            }
        } else if (!trimmed.startsWith(u';')) {
            const qsizetype eq = trimmed.indexOf(u'=');
            if (eq > 0) {
                line.kind = Line::Entry;
                line.key = trimmed.left(eq).trimmed();
            }
        }
        profile.m_lines.append(line);
        if (end < all.size() && all[end] == u'\r' && end + 1 < all.size() && all[end + 1] == u'\n')
            ++end;
        start = end + 1;
    }
    return profile;
}

qsizetype ProfileFile::findSection(const QString &section) const
{
    for (qsizetype i = 0; i < m_lines.size(); ++i)
        if (m_lines[i].kind == Line::Header && sameName(m_lines[i].section, section))
            return i;
    return -1;
}

qsizetype ProfileFile::sectionEnd(qsizetype header) const
{
    qsizetype i = header + 1;
    while (i < m_lines.size() && m_lines[i].kind != Line::Header)
        ++i;
    return i;
}

qsizetype ProfileFile::findEntry(qsizetype header, const QString &entry) const
{
    const qsizetype end = sectionEnd(header);
    for (qsizetype i = header + 1; i < end; ++i)
        if (m_lines[i].kind == Line::Entry && sameName(m_lines[i].key, entry))
            return i;
    return -1;
}

bool ProfileFile::value(const QString &section, const QString &entry, QString &out) const
{
    const qsizetype header = findSection(section);
    if (header < 0)
        return false;
    const qsizetype line = findEntry(header, entry);
    if (line < 0)
        return false;
    const QString &text = m_lines[line].text;
    out = text.mid(text.indexOf(u'=') + 1).trimmed();
    return true;
}

void ProfileFile::setValue(const QString &section, const QString &entry, const QString &value)
{
    Line line;
    line.kind = Line::Entry;
    line.key = entry;
    line.text = entry + u'=' + value;
    qsizetype header = findSection(section);
    if (header < 0) {
        Line head;
        head.kind = Line::Header;
        head.section = section;
        head.text = u'[' + section + u']';
        m_lines.append(head);
        m_lines.append(line);
        return;
    }
    const qsizetype existing = findEntry(header, entry);
    if (existing >= 0) {
        m_lines[existing] = line;
        return;
    }
    // Behind the section's last entry, so that blank lines between sections stay where they are.
    qsizetype at = sectionEnd(header);
    while (at > header + 1 && m_lines[at - 1].kind == Line::Other && m_lines[at - 1].text.trimmed().isEmpty())
        --at;
    m_lines.insert(at, line);
}

bool ProfileFile::removeEntry(const QString &section, const QString &entry)
{
    const qsizetype header = findSection(section);
    if (header < 0)
        return false;
    const qsizetype line = findEntry(header, entry);
    if (line < 0)
        return false;
    m_lines.removeAt(line);
    return true;
}

bool ProfileFile::removeSection(const QString &section)
{
    const qsizetype header = findSection(section);
    if (header < 0)
        return false;
    m_lines.remove(header, sectionEnd(header) - header);
    return true;
}

QByteArray ProfileFile::serialize() const
{
    QByteArray out;
    for (const Line &line : m_lines) {
        out += line.text.toUtf8();
        out += "\r\n";
    }
    return out;
}

ProfileFile LoadProfileFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return ProfileFile::parse(file.readAll());
}

bool SaveProfileFile(const QString &path, const ProfileFile &profile)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(profile.serialize());
    return file.commit();
}

} // namespace qb::util
