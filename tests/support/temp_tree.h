// A scratch folder for one test, removed when the test ends, with helpers to fill it.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace qb::test {

class TempTree
{
public:
    TempTree();
    // Removes by bytes, so that names that are not UTF-8 go too.
    ~TempTree();

    // Absolute path of the scratch folder, without a trailing "/".
    QString root() const;
    // root() + "/" + relative.
    QString path(const QString &relative) const;
    // Writes bytes to a file below the root, creating its folders. Returns the absolute path.
    QString writeFile(const QString &relative, const QByteArray &bytes = {});
    // Creates a folder (and its parents) below the root. Returns the absolute path.
    QString makeDir(const QString &relative);
    // Creates a sparse file of the given size; returns an empty string when the file system refuses.
    QString makeSparseFile(const QString &relative, qint64 size);

private:
    QTemporaryDir m_dir;
};

// Reads a whole file; an empty array when it cannot be read.
QByteArray readAll(const QString &path);

} // namespace qb::test
