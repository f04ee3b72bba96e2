// The quillbox command: exit codes, output and messages of each sub-command.
#include "cli_run.h"

#include "support/temp_tree.h"

#include <gtest/gtest.h>

namespace {

using qb::test::CliRun;

CliRun run(const QStringList &arguments)
{
    return qb::test::runQuillbox(arguments);
}

TEST(Cli, UsageErrorsExitWithTwo)
{
    EXPECT_EQ(run({}).status, 2);
    const CliRun unknown = run({QStringLiteral("frobnicate")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.err.contains(QStringLiteral("unknown command: frobnicate")));
    EXPECT_EQ(run({QStringLiteral("time"), QStringLiteral("abc")}).status, 2);
    EXPECT_EQ(run({QStringLiteral("find")}).status, 2);
    EXPECT_EQ(run({QStringLiteral("help")}).status, 0);
}

TEST(Cli, TimeAndMSecs)
{
    EXPECT_EQ(run({QStringLiteral("time"), QStringLiteral("3723004")}).out, QStringLiteral("01:02:03,004\n"));
    EXPECT_EQ(run({QStringLiteral("time"), QStringLiteral("3723004"), QStringLiteral("2")}).out,
        QStringLiteral("62:03.00\n"));
    EXPECT_EQ(run({QStringLiteral("msecs"), QStringLiteral("1:02:03.45")}).out, QStringLiteral("3723450\n"));
}

TEST(Cli, FindSizeAndTextFormat)
{
    qb::test::TempTree tree;
    tree.writeFile(QStringLiteral("a/b.txt"), "12345");
    const QString bom = tree.writeFile(QStringLiteral("u8.txt"), "\xEF\xBB\xBFhi");
    const CliRun found = run({QStringLiteral("find"), tree.root(), QStringLiteral("*.txt")});
    EXPECT_EQ(found.status, 0);
    EXPECT_TRUE(found.out.contains(tree.path(QStringLiteral("a/b.txt")) + u'\n'));
    EXPECT_TRUE(found.out.endsWith(QStringLiteral("2 found, 10B\n"))) << found.out.toStdString();
    EXPECT_EQ(run({QStringLiteral("find"), tree.path(QStringLiteral("none"))}).status, 1);

    EXPECT_EQ(run({QStringLiteral("size"), QStringLiteral("1024")}).out, QStringLiteral("1.00KB\n"));
    EXPECT_EQ(run({QStringLiteral("size"), bom}).out, QStringLiteral("5B\n"));
    EXPECT_EQ(run({QStringLiteral("size"), tree.path(QStringLiteral("none"))}).status, 1);
    EXPECT_EQ(run({QStringLiteral("text-format"), bom}).out, QStringLiteral("1\n"));
    EXPECT_EQ(run({QStringLiteral("text-format"), tree.path(QStringLiteral("none"))}).status, 1);
}

} // namespace
