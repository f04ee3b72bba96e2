// The folder walk that reports files by pattern and, optionally, by the text they contain.
#pragma once

#include <QObject>
#include <QString>

namespace qb::util {

// Walks a folder tree depth first and raises SearchFile for every file the pattern selects (and,
// when a search text is given, that contains it). Runs on the caller's thread: SearchFileStart
// returns when the walk is done. Symbolic links to folders are reported but not entered, so a
// link loop cannot trap the walk.
class FileSearchEngine : public QObject
{
    Q_OBJECT

public:
    explicit FileSearchEngine(QObject *parent = nullptr);

    // Raises SearchStart, walks Start_Dir, raises SearchEnd.
    // File_Pattern: a name without "*" is looked for as that file; a pattern with "*" and "."
    // becomes "*." plus what follows its first "."; anything else becomes "*.*".
    // Find_String: "" reports every selected file; "*text*", "*text" or "text*" reports files
    // whose content holds the text; "text" alone, files whose whole content is the text. Both
    // compares ignore case.
    void SearchFileStart(const QString &Start_Dir, const QString &File_Pattern, const QString &Find_String);

    // Raises SearchEnd and changes nothing else; a running walk goes on to its end.
    void SearchFileStop();

    // Number of content hits since the last SearchFileStart.
    qint64 hitCount() const { return m_hits; }

    // True when the file's content holds (or, without "*", equals) the text, ignoring case.
    // The "*" marks of Find_String say which; an empty file holds nothing.
    static bool FileContainsText(const QString &FileName, const QString &Find_String);

Q_SIGNALS:
    void SearchStart();
    void SearchEnd();
    // hits: the running hit count for a content search, else 0; size in bytes; the full path.
    void SearchFile(qint64 hits, double size, const QString &path);

private:
    void searchFolder(const QString &folder, const QString &pattern, const QString &findString);

    qint64 m_hits = 0;
};

} // namespace qb::util
