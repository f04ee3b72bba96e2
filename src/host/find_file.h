// clsFindFile: collects the paths below a folder that match a wildcard and an attribute mask.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::host {

// Attribute bits of an entry as the finder sees them.
enum FindAttributeBits : int {
    kAttrReadOnly = 1, // the owner may not write it
    kAttrHidden = 2, // its name starts with "."
    kAttrPlainFile = 8, // set on every entry that is not a folder
    kAttrDirectory = 16,
};

class clsFindFile
{
public:
    // Fills Files, Count and Size, replacing what the object held.
    // Folders: the folder to search. Wildcard: a find pattern ("*.*" matches every name, also
    // one without a dot). FindAttribute: 8 plain files, 16 folders, 24 both; further bits (1, 2)
    // require that attribute. SubFolder: true takes the whole tree, breadth first, each folder
    // in the order the file system lists it; symbolic links to folders are not entered.
    // Returns false when the folder can't be read (the results are then empty).
    bool FindFiles(const QString &Folders, const QString &Wildcard, int FindAttribute, bool SubFolder);

    // Sum of the low 32 bits of each result's size.
    double Size() const { return m_size; }
    // The path at Index, from 1; "" outside the results.
    QString Files(qsizetype Index) const;
    double Count() const { return double(m_files.size()); }

    const QStringList &results() const { return m_files; }

private:
    QStringList m_files;
    double m_size = 0;
};

} // namespace qb::host
