// Scratch folders for tests.
#include "support/temp_tree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <ftw.h>
#include <unistd.h>

namespace qb::test {

TempTree::TempTree()
{
    EXPECT_TRUE(m_dir.isValid()) << "cannot create a temporary folder";
}

namespace {

int removeEntry(const char *path, const struct stat *, int type, struct FTW *)
{
    return type == FTW_DP ? ::rmdir(path) : ::unlink(path);
}

} // namespace

TempTree::~TempTree()
{
    if (!m_dir.isValid())
        return;
    ::nftw(QFile::encodeName(m_dir.path()).constData(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    m_dir.setAutoRemove(false);
}

QString TempTree::root() const
{
    return m_dir.path();
}

QString TempTree::path(const QString &relative) const
{
    return m_dir.path() + QLatin1Char('/') + relative;
}

QString TempTree::writeFile(const QString &relative, const QByteArray &bytes)
{
    const QString full = path(relative);
    QDir().mkpath(QFileInfo(full).absolutePath());
    QFile file(full);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << full.toStdString();
    EXPECT_EQ(file.write(bytes), bytes.size());
    return full;
}

QString TempTree::makeDir(const QString &relative)
{
    const QString full = path(relative);
    EXPECT_TRUE(QDir().mkpath(full)) << full.toStdString();
    return full;
}

QString TempTree::makeSparseFile(const QString &relative, qint64 size)
{
    const QString full = path(relative);
    QDir().mkpath(QFileInfo(full).absolutePath());
    QFile file(full);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || !file.resize(size))
        return {};
    return full;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

} // namespace qb::test
