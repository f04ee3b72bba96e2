// The program as a user starts it: a first start opens the window, a second one hands its
// arguments over and ends at once.
#include "support/temp_tree.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QProcessEnvironment isolated(const qb::test::TempTree &tree)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    // In the sanitizer build the program is checked for everything but the leaks of the desktop
    // libraries it loads; our own code is leak-checked in-process by the other tests.
    env.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0:abort_on_error=1"_s);
    env.insert(u"HOME"_s, tree.root());
    env.insert(u"XDG_CONFIG_HOME"_s, tree.path(u"config"_s));
    env.insert(u"TMPDIR"_s, tree.path(u"tmp"_s)); // the rendezvous lives here, away from a real one
    return env;
}

TEST(Program, SecondStartHandsOverAndEnds)
{
    qb::test::TempTree tree;
    tree.makeDir(u"tmp"_s);
    const QString file = tree.writeFile(u"a file.txt"_s, "x");
    QProcess first;
    first.setProcessEnvironment(isolated(tree));
    first.setProcessChannelMode(QProcess::MergedChannels);
    first.start(QStringLiteral(QB_DESK_PATH), {});
    ASSERT_TRUE(first.waitForStarted());
    // The first instance is up when its rendezvous exists.
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return !QDir(tree.path(u"tmp"_s)).entryList({u"quillbox-desk-*"_s}, QDir::System).isEmpty(); },
        15000))
        << first.readAll().toStdString();

    QProcess second;
    second.setProcessEnvironment(isolated(tree));
    second.start(QStringLiteral(QB_DESK_PATH), {file});
    ASSERT_TRUE(second.waitForFinished(15000));
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running);

    first.terminate();
    if (!first.waitForFinished(5000)) {
        first.kill();
        first.waitForFinished(5000);
    }
}

} // namespace
