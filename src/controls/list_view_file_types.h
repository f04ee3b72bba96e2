// The list view's table of known file types: built once from a mask of extensions, asked for a
// file's type name and icon when a row goes in. The desktop's MIME database stands for the shell.
#pragma once

#include <QFileIconProvider>
#include <QHash>
#include <QIcon>
#include <QMimeDatabase>
#include <QString>

#include <functional>
#include <vector>

namespace qb::controls {

struct FileTypeRecord
{
    QString Extension; // without the dot
    QString TypeName; // the desktop's description of the type, "" when it has none
    int IconIndex = 0; // in the small image list; 0 when the type has no icon of its own
};

using FileTypeLookup = std::function<FileTypeRecord(const QString &extension)>;

// The table for FormatsMask split at MaskSeparator (matched case-insensitively). Each non-empty
// piece, in order, becomes a record with lookup's type name and icon; empty pieces leave no hole.
std::vector<FileTypeRecord> BuildFileTypes(
    const QString &FormatsMask, const QString &MaskSeparator, const FileTypeLookup &lookup);

// The record of FileName's extension (what follows its last ".", the whole name without one),
// compared case-insensitively, first match winning; an empty record when none matches.
FileTypeRecord FindFileType(const std::vector<FileTypeRecord> &types, const QString &FileName);

// The small image list of the rows and the type lookup that fills it. The first slots keep the
// places that rows ask for by number; a type the desktop knows gets its icon appended once.
class ShellFileTypes
{
public:
    static constexpr int kFallbackImage = 3; // rows of no known type: a plain file
    static constexpr int kFixedImages = 5; // 0..3 a plain file, 4 a folder

    ShellFileTypes();

    // The type name and icon of an extension. A type the desktop doesn't know (its default
    // type) has no name and icon index 0.
    FileTypeRecord lookup(const QString &extension);

    const std::vector<QIcon> &icons() const { return m_icons; }

private:
    QMimeDatabase m_mime;
    QFileIconProvider m_provider;
    std::vector<QIcon> m_icons;
    QHash<QString, int> m_byType; // MIME name to icon slot
};

} // namespace qb::controls
