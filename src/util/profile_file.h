// Profile files: "[section]" headers with "entry=value" lines, read and written in place.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace qb::util {

// An in-memory profile file that keeps every line it does not change. Section and entry names
// compare without regard to case; blanks around names and values are not part of them.
class ProfileFile
{
public:
    // Parses UTF-8 text with any mix of CR LF, LF and CR line ends. Never fails: lines that are
    // neither headers nor entries are kept and ignored.
    static ProfileFile parse(const QByteArray &text);

    // True with the value when the entry exists in the section.
    bool value(const QString &section, const QString &entry, QString &out) const;
    // Sets an entry, adding the section or the entry at the end where missing.
    void setValue(const QString &section, const QString &entry, const QString &value);
    // Removes one entry; false when it was not there.
    bool removeEntry(const QString &section, const QString &entry);
    // Removes a section with all its lines; false when it was not there.
    bool removeSection(const QString &section);

    // The text, lines ended with CR LF.
    QByteArray serialize() const;

private:
    struct Line
    {
        QString text;
        QString section; // the header's name for a header line
        QString key; // the entry's name for an entry line
        enum Kind : char { Other, Header, Entry } kind = Other;
    };
    qsizetype findSection(const QString &section) const;
    qsizetype sectionEnd(qsizetype header) const;
    qsizetype findEntry(qsizetype header, const QString &entry) const;

    QList<Line> m_lines;
};

// Reads a profile file from disk; an empty profile when it can't be read.
ProfileFile LoadProfileFile(const QString &path);
// Writes through a temporary file renamed into place. False when that fails.
bool SaveProfileFile(const QString &path, const ProfileFile &profile);

} // namespace qb::util
