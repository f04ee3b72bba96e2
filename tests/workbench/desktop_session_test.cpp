// The desktop program on a virtual X display, driven from outside as a user would: a first start,
// a second start from another folder with a folder and two relative paths that end up in the first window, a
// build through the menu by typed keys, the cabinet checked by cabextract, and a screenshot kept in the build
// folder.
#include "support/temp_tree.h"
#include "support/tool_run.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Runs a helper program to its end within a few seconds; its standard output.
QString run(
    const QProcessEnvironment &env, const QString &program, const QStringList &args, int *exitCode = nullptr)
{
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(program, args);
    process.waitForFinished(20000);
    if (exitCode)
        *exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

class DesktopSession : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (const char *tool : {"Xvfb", "xdotool"})
            ASSERT_FALSE(QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
                << tool << " is one of the test dependencies";
        // A display number nobody uses.
        for (int n = 87; n < 120; ++n) {
            if (!QFileInfo::exists(u"/tmp/.X11-unix/X%1"_s.arg(n))
                && !QFileInfo::exists(u"/tmp/.X%1-lock"_s.arg(n))) {
                display = u":%1"_s.arg(n);
                socket = u"/tmp/.X11-unix/X%1"_s.arg(n);
                break;
            }
        }
        ASSERT_FALSE(display.isEmpty());
        xvfb.start(u"Xvfb"_s, {display, u"-screen"_s, u"0"_s, u"1280x900x24"_s, u"-nolisten"_s, u"tcp"_s});
        ASSERT_TRUE(xvfb.waitForStarted());
        ASSERT_TRUE(QTest::qWaitFor([&] { return QFileInfo::exists(socket); }, 15000));

        tree.makeDir(u"tmp"_s);
        // Settings of a fresh user, with no question at the end of a build.
        tree.writeFile(
            u"config/Tidewick/Quillbox_Desk.conf"_s, "[Settings]\nCompleteAction=0\nCompressionType=1\n");
        env = QProcessEnvironment::systemEnvironment();
        env.insert(u"DISPLAY"_s, display);
        env.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
        // In the sanitizer build the program is checked for everything but the leaks of the desktop
        // libraries it loads; our own code is leak-checked in-process by the other tests.
        env.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0:abort_on_error=1"_s);
        env.insert(u"HOME"_s, tree.root());
        env.insert(u"XDG_CONFIG_HOME"_s, tree.path(u"config"_s));
        env.insert(u"TMPDIR"_s, tree.path(u"tmp"_s));
    }

    void TearDown() override
    {
        for (QProcess *process : {&first, &xvfb}) {
            if (process->state() == QProcess::NotRunning)
                continue;
            process->terminate();
            if (!process->waitForFinished(5000)) {
                process->kill();
                process->waitForFinished(5000);
            }
        }
    }

    qb::test::TempTree tree;
    QString display;
    QString socket;
    QProcess xvfb;
    QProcess first;
    QProcessEnvironment env;
};

TEST_F(DesktopSession, SecondStartFeedsTheWindowAndTheMenuBuildsTheCabinet)
{
    const QString pkg = tree.makeDir(u"pkg"_s);
    tree.writeFile(u"pkg/a.txt"_s, "first file in the folder\n");
    tree.writeFile(u"pkg/sub/c.txt"_s, QByteArray("中文内容 ").repeated(50));
    tree.writeFile(u"x1.txt"_s, "one");
    tree.writeFile(u"more files/x2.txt"_s, "two");

    first.setProcessEnvironment(env);
    first.setProcessChannelMode(QProcess::MergedChannels);
    // Each start in a folder of its own: relative paths mean the second caller's folder.
    first.setWorkingDirectory(tree.path(u"pkg/sub"_s));
    first.start(QStringLiteral(QB_DESK_PATH), {});
    ASSERT_TRUE(first.waitForStarted());
    const QString windowId
        = run(env, u"xdotool"_s, {u"search"_s, u"--sync"_s, u"--name"_s, u"Quillbox Desk"_s})
              .section(u'\n', 0, 0);
    ASSERT_FALSE(windowId.isEmpty()) << first.readAll().toStdString();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return !QDir(tree.path(u"tmp"_s)).entryList({u"quillbox-desk-*"_s}, QDir::System).isEmpty(); },
        15000));

    QProcess second;
    second.setProcessEnvironment(env);
    second.setWorkingDirectory(tree.root());
    second.start(QStringLiteral(QB_DESK_PATH), {pkg, u"x1.txt"_s, u"more files/x2.txt"_s});
    ASSERT_TRUE(second.waitForFinished(15000));
    EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running);
    QTest::qWait(1000);

    // File menu, then its "保存 (&S)" entry, as typed keys.
    int code = 0;
    run(env, u"xdotool"_s, {u"windowfocus"_s, u"--sync"_s, windowId}, &code);
    run(env, u"xdotool"_s, {u"key"_s, u"--clearmodifiers"_s, u"alt+f"_s}, &code);
    QTest::qWait(500);
    run(env, u"xdotool"_s, {u"key"_s, u"s"_s}, &code);
    EXPECT_EQ(code, 0);

    // The last request item was the folder, so the cabinet is named after it, inside it.
    const QString cabinet = pkg + u"/pkg.cab"_s;
    qb::test::ToolResult check;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            if (!QFileInfo::exists(cabinet))
                return false;
            check = qb::test::runTool(u"cabextract"_s, {u"-l"_s, cabinet});
            return check.exitCode == 0;
        },
        30000))
        << first.readAll().toStdString();
    for (const QString &name : {u"Quillbox Desk.txt"_s, u"x1.txt"_s, u"x2.txt"_s, u"a.txt"_s, u"sub/c.txt"_s})
        EXPECT_TRUE(check.output.contains(name)) << name.toStdString() << "\n" << check.output.toStdString();

    // A picture of the window for a reviewer.
    QTest::qWait(500);
    const QString shot = QCoreApplication::applicationDirPath() + u"/desktop-session.png"_s;
    QFile::remove(shot);
    const qb::test::ToolResult grab = qb::test::runTool(u"ffmpeg"_s,
        {u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-y"_s, u"-f"_s, u"x11grab"_s, u"-video_size"_s,
            u"1280x900"_s, u"-i"_s, display, u"-frames:v"_s, u"1"_s, shot});
    EXPECT_EQ(grab.exitCode, 0) << grab.output.toStdString();
    EXPECT_GT(QFileInfo(shot).size(), 1000);
}

} // namespace
