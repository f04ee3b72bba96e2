// The folder walk: which names it tries, what it reports, and the content search.
#include "util/file_search.h"

#include "support/temp_tree.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

#include <utility>

using qb::test::TempTree;
using qb::util::FileSearchEngine;

namespace {

struct Report
{
    QStringList events; // "start", "end", or "file <hits> <size> <path relative to root>"
};

Report runSearch(const TempTree &tree, const QString &pattern, const QString &text)
{
    Report report;
    FileSearchEngine engine;
    QObject::connect(
        &engine, &FileSearchEngine::SearchStart, [&] { report.events << QStringLiteral("start"); });
    QObject::connect(&engine, &FileSearchEngine::SearchEnd, [&] { report.events << QStringLiteral("end"); });
    QObject::connect(
        &engine, &FileSearchEngine::SearchFile, [&](qint64 hits, double size, const QString &path) {
            report.events << QStringLiteral("file %1 %2 %3")
                                 .arg(hits)
                                 .arg(qint64(size))
                                 .arg(path.mid(tree.root().size() + 1));
        });
    engine.SearchFileStart(tree.root(), pattern, text);
    return report;
}

QStringList sortedFiles(const Report &report)
{
    QStringList files = report.events.filter(QStringLiteral("file "));
    files.sort();
    return files;
}

TEST(FileSearch, PatternSelectsFilesAndDottedFolders)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("a.txt"), "12345");
    tree.writeFile(QStringLiteral("sub/c.TXT"), "12");
    tree.writeFile(QStringLiteral("sub/deeper/d.txt"));
    tree.writeFile(QStringLiteral("noext"), "x");
    tree.writeFile(QStringLiteral("music.box/song.mp3"), "xyz");
    tree.makeDir(QStringLiteral("plain"));
    const QString txt = QStringLiteral("file 0 5 a.txt|file 0 2 sub/c.TXT|file 0 0 sub/deeper/d.txt");
    const QString everyFile = txt + QStringLiteral("|file 0 1 noext|file 0 3 music.box/song.mp3");
    const std::pair<const char *, QString> cases[] = {
        {"*.txt", txt},
        // No "*": only that name.
        {"a.txt", QStringLiteral("file 0 5 a.txt")},
        // "*" and a dot: "*." plus what follows the first dot.
        {"x*.txt", txt},
        // Otherwise every file; folders are reported where the pattern is Like their name.
        {"*",
            everyFile
                + QStringLiteral("|file 0 0 sub|file 0 0 sub/deeper|file 0 0 music.box|file 0 0 plain")},
        {"*.*", everyFile + QStringLiteral("|file 0 0 music.box")},
    };
    for (const auto &[pattern, files] : cases) {
        const Report report = runSearch(tree, QString::fromLatin1(pattern), QString());
        QStringList expected = files.split(u'|');
        expected.sort();
        EXPECT_EQ(sortedFiles(report), expected) << pattern;
        ASSERT_GE(report.events.size(), 2);
        EXPECT_EQ(report.events.first(), QStringLiteral("start"));
        EXPECT_EQ(report.events.last(), QStringLiteral("end"));
    }
}

TEST(FileSearch, ContentSearchCountsHits)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("1.txt"), "Hello World");
    tree.writeFile(QStringLiteral("2.txt"), "nothing here");
    tree.writeFile(QStringLiteral("3.txt"), "say HELLO");
    tree.writeFile(QStringLiteral("empty.txt"));
    const QStringList files
        = sortedFiles(runSearch(tree, QStringLiteral("*.txt"), QStringLiteral("*hello*")));
    ASSERT_EQ(files.size(), 2);
    // Hits are numbered in the order found; which file comes first depends on the folder order.
    EXPECT_TRUE(
        files[0].startsWith(QStringLiteral("file 1 ")) || files[1].startsWith(QStringLiteral("file 1 ")));
    EXPECT_TRUE(
        files[0].startsWith(QStringLiteral("file 2 ")) || files[1].startsWith(QStringLiteral("file 2 ")));
}

TEST(FileSearch, StopAndAMissingFolderOnlyAnnounce)
{
    TempTree tree;
    FileSearchEngine engine;
    QSignalSpy files(&engine, &FileSearchEngine::SearchFile);
    QSignalSpy starts(&engine, &FileSearchEngine::SearchStart);
    QSignalSpy ends(&engine, &FileSearchEngine::SearchEnd);
    engine.SearchFileStop();
    EXPECT_EQ(ends.size(), 1);
    engine.SearchFileStart(tree.path(QStringLiteral("missing")), QStringLiteral("*"), QString());
    EXPECT_EQ(files.size(), 0);
    EXPECT_EQ(starts.size(), 1);
    EXPECT_EQ(ends.size(), 2);
}

struct ContentCase
{
    QByteArray content;
    QString find;
    bool expected;
};

TEST(FileSearch, FileContainsTextRules)
{
    TempTree tree;
    const ContentCase cases[] = {
        {"Hello World", QStringLiteral("*world*"), true}, {"Hello World", QStringLiteral("*world"), true},
        {"Hello World", QStringLiteral("hello*"), true},
        {"Hello World", QStringLiteral("world"), false}, // without "*": the whole file
        {"Hello World", QStringLiteral("hello world"), true}, {"", QStringLiteral("*x*"), false},
        {"", QString(), false}, {"中文内容", QStringLiteral("*文内*"), true},
        {QByteArray("\xd6\xd0\xce\xc4", 4), QStringLiteral("*中文*"), true}, // legacy Chinese bytes
    };
    int i = 0;
    for (const ContentCase &c : cases) {
        const QString path = tree.writeFile(QStringLiteral("f%1").arg(i++), c.content);
        EXPECT_EQ(FileSearchEngine::FileContainsText(path, c.find), c.expected)
            << c.content.toStdString() << " / " << c.find.toStdString();
    }
    EXPECT_FALSE(
        FileSearchEngine::FileContainsText(tree.path(QStringLiteral("missing")), QStringLiteral("*a*")));
}

TEST(FileSearch, HitAcrossWindowBoundaryIsFound)
{
    TempTree tree;
    QByteArray big(4 * 1024 * 1024 - 3, 'a');
    big += "NEEDLE";
    big += QByteArray(1000, 'b');
    const QString path = tree.writeFile(QStringLiteral("big"), big);
    EXPECT_TRUE(FileSearchEngine::FileContainsText(path, QStringLiteral("*needle*")));
    EXPECT_FALSE(FileSearchEngine::FileContainsText(path, QStringLiteral("*needlex*")));
}

} // namespace
