// The makecab program killed part way leaves the target folder as it was, and a finished build
// replaces the target in one step; run as a real process.
#include "cabmaker/pending_cabinet.h"

#include "sample_data.h"
#include "support/temp_tree.h"
#include "util/directive_token.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

using qb::cabmaker::kNamedTempVariable;
using qb::test::TempTree;

namespace {

constexpr qint64 kSourceMiB = 200;

// Long, so that a one-page pipe holds only about 14 progress lines: makecab then runs at most
// that many MiB ahead of what the test has read, and is never done when the signal comes.
QString longName()
{
    return QString(240, u'n') + QStringLiteral(".bin");
}

QStringList entries(const QString &folder)
{
    QStringList names = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    names.sort();
    return names;
}

// The folder's names, hidden ones too, as "a|b" for readable failures.
std::string listing(const QString &folder)
{
    return entries(folder).join(u'|').toStdString();
}

using qb::util::QuoteDirectiveToken;

// A makecab process whose standard output is a pipe of one page, read a byte at a time.
class Child
{
public:
    Child(const QStringList &args, const QString &errorFile, bool named)
    {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0)
            return;
        m_pipeSize = ::fcntl(fds[1], F_SETPIPE_SZ, 4096);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, fds[1], 1);
        const QByteArray err = QFile::encodeName(errorFile);
        posix_spawn_file_actions_addopen(&actions, 2, err.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        // Whatever the test runner ignores or blocks, makecab starts with the usual actions.
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        sigset_t set;
        sigemptyset(&set);
        posix_spawnattr_setsigmask(&attributes, &set);
        for (const int sig : {SIGTERM, SIGINT, SIGHUP, SIGPIPE})
            sigaddset(&set, sig);
        posix_spawnattr_setsigdefault(&attributes, &set);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

        std::vector<std::string> strings {QB_MAKECAB_PATH};
        for (const QString &arg : args)
            strings.push_back(QFile::encodeName(arg).toStdString());
        std::vector<char *> argv;
        for (std::string &s : strings)
            argv.push_back(s.data());
        argv.push_back(nullptr);
        const std::string marker = std::string(kNamedTempVariable) + '=';
        std::vector<char *> envp;
        for (char **e = environ; *e; ++e) {
            if (std::strncmp(*e, marker.c_str(), marker.size()) != 0)
                envp.push_back(*e);
        }
        std::string namedSetting = marker + '1';
        if (named)
            envp.push_back(namedSetting.data());
        envp.push_back(nullptr);
        if (posix_spawn(&m_pid, QB_MAKECAB_PATH, &actions, &attributes, argv.data(), envp.data()) != 0)
            m_pid = -1;
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
        ::close(fds[1]);
        m_out = fds[0];
    }
    ~Child()
    {
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            wait();
        }
        if (m_out >= 0)
            ::close(m_out);
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    bool started() const { return m_pid > 0 && m_out >= 0; }
    int pipeSize() const { return m_pipeSize; }
    pid_t pid() const { return m_pid; }

    // One line without its CR LF; false at the end of output or after 20 s of silence. A byte at a
    // time, so that nothing past the line leaves the pipe.
    bool readLine(std::string &line)
    {
        line.clear();
        while (true) {
            pollfd p {m_out, POLLIN, 0};
            if (::poll(&p, 1, 20000) <= 0)
                return false;
            char c;
            const ssize_t n = ::read(m_out, &c, 1);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return false;
            if (c == '\n') {
                if (!line.empty() && line.back() == '\r')
                    line.pop_back();
                return true;
            }
            line += c;
        }
    }

    // The wait status.
    int wait()
    {
        int status = -1;
        while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) { }
        m_pid = -1;
        return status;
    }

private:
    pid_t m_pid = -1;
    int m_out = -1;
    int m_pipeSize = -1;
};

// One big source for all the kill runs; written once, with a big buffer.
class KillFixture
{
public:
    static const QString &source()
    {
        static const QString path = [] {
            static QTemporaryDir dir;
            const QString file = dir.path() + QStringLiteral("/big.bin");
            QFile out(file);
            EXPECT_TRUE(out.open(QIODevice::WriteOnly));
            const QByteArray chunk = qb::test::RandomBytes(4 << 20, 3);
            for (qint64 i = 0; i < kSourceMiB / 4; ++i)
                EXPECT_EQ(out.write(chunk), chunk.size());
            return file;
        }();
        return path;
    }
};

QString writeDirective(
    TempTree &tree, const QString &compression, const QList<QPair<QString, QString>> &files)
{
    QString text = QStringLiteral(".Set CabinetNameTemplate=%1\r\n.Set DiskDirectory1=\r\n")
                       .arg(QuoteDirectiveToken(tree.path(QStringLiteral("out/target.cab"))));
    text += QStringLiteral(".Set InfFileName=NUL\r\n.Set RptFileName=NUL\r\n") + compression
        + QStringLiteral("\r\n");
    for (const auto &[source, name] : files)
        text += QuoteDirectiveToken(source) + u' ' + QuoteDirectiveToken(name) + QStringLiteral("\r\n");
    return tree.writeFile(QStringLiteral("run.ddf"), text.toUtf8());
}

struct KillCase
{
    int sig;
    const char *sigName;
    double percent;
    bool named;
};

class MakeCabKill : public ::testing::TestWithParam<KillCase>
{
};

TEST_P(MakeCabKill, LeavesTheTargetFolderAsItWas)
{
    const KillCase &c = GetParam();
    TempTree tree;
    tree.writeFile(QStringLiteral("out/target.cab"), "old cabinet");
    const QString directive = writeDirective(
        tree, QStringLiteral(".Set CompressionType=NONE"), {{KillFixture::source(), longName()}});
    Child child({QStringLiteral("/F"), directive}, tree.path(QStringLiteral("err.txt")), c.named);
    ASSERT_TRUE(child.started());
    ASSERT_EQ(child.pipeSize(), 4096) << "a larger pipe would let makecab finish before the signal";

    double reached = -1;
    std::string line;
    while (reached < c.percent && child.readLine(line)) {
        const size_t dash = line.find("% - ");
        if (dash != std::string::npos)
            reached = std::strtod(line.c_str(), nullptr);
    }
    ASSERT_GE(reached, c.percent) << qb::test::readAll(tree.path(QStringLiteral("err.txt"))).toStdString();

    // While it runs, an unnamed cabinet has no name at all; the fallback's temporary does.
    const QStringList during = entries(tree.path(QStringLiteral("out")));
    if (c.named) {
        ASSERT_EQ(during.size(), 2) << during.join(u' ').toStdString();
        EXPECT_TRUE(during[0].startsWith(QStringLiteral("cab")) && during[0].endsWith(QStringLiteral(".tmp")))
            << during.join(u' ').toStdString();
    } else {
        EXPECT_EQ(listing(tree.path(QStringLiteral("out"))), "target.cab");
    }

    ASSERT_EQ(::kill(child.pid(), c.sig), 0);
    const int status = child.wait();
    ASSERT_TRUE(WIFSIGNALED(status)) << "makecab ended by itself, status " << status;
    EXPECT_EQ(WTERMSIG(status), c.sig);
    EXPECT_EQ(listing(tree.path(QStringLiteral("out"))), "target.cab");
    EXPECT_EQ(qb::test::readAll(tree.path(QStringLiteral("out/target.cab"))), QByteArray("old cabinet"));
}

INSTANTIATE_TEST_SUITE_P(Signals, MakeCabKill,
    ::testing::Values(KillCase {SIGTERM, "TERM", 10, false}, KillCase {SIGTERM, "TERM", 50, false},
        KillCase {SIGTERM, "TERM", 90, false}, KillCase {SIGINT, "INT", 10, false},
        KillCase {SIGINT, "INT", 50, false}, KillCase {SIGINT, "INT", 90, false},
        KillCase {SIGHUP, "HUP", 10, false}, KillCase {SIGHUP, "HUP", 50, false},
        KillCase {SIGHUP, "HUP", 90, false}, KillCase {SIGKILL, "KILL", 10, false},
        KillCase {SIGKILL, "KILL", 50, false}, KillCase {SIGKILL, "KILL", 90, false},
        KillCase {SIGTERM, "TERM", 50, true}, KillCase {SIGINT, "INT", 90, true},
        KillCase {SIGHUP, "HUP", 10, true}),
    [](const auto &info) {
        return std::string(info.param.named ? "Named" : "Unnamed") + info.param.sigName + "At"
            + std::to_string(int(info.param.percent));
    });

class MakeCabReplace : public ::testing::TestWithParam<bool>
{
};

TEST_P(MakeCabReplace, FinishedBuildReplacesTheTargetInOneStep)
{
    TempTree tree;
    const QList<QPair<QString, QByteArray>> contents {
        {QStringLiteral("text.txt"), qb::test::WordSoup(200000, 1)},
        {QStringLiteral("empty.txt"), {}},
        {QStringLiteral("noise.bin"), qb::test::RandomBytes(70000, 2)},
    };
    QList<QPair<QString, QString>> files;
    for (const auto &[name, bytes] : contents)
        files.append({tree.writeFile(QStringLiteral("src/") + name, bytes), name});
    const QString directive = writeDirective(tree, QStringLiteral(".Set CompressionType=MSZIP"), files);
    const QString target = tree.writeFile(QStringLiteral("out/target.cab"), "old cabinet");
    // A second name for the old file: replacing in one step gives the target a new file, so the
    // old one stays whole under its other name.
    ASSERT_EQ(::link(QFile::encodeName(target).constData(),
                  QFile::encodeName(tree.path(QStringLiteral("out/old.lnk"))).constData()),
        0);

    const mode_t before = ::umask(027);
    Child child({QStringLiteral("/F"), directive}, tree.path(QStringLiteral("err.txt")), GetParam());
    ::umask(before);
    ASSERT_TRUE(child.started());
    std::string line;
    while (child.readLine(line)) { }
    const int status = child.wait();
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << qb::test::readAll(tree.path(QStringLiteral("err.txt"))).toStdString();

    EXPECT_EQ(listing(tree.path(QStringLiteral("out"))), "old.lnk|target.cab");
    EXPECT_EQ(qb::test::readAll(tree.path(QStringLiteral("out/old.lnk"))), QByteArray("old cabinet"));
    struct stat st
    {
    };
    ASSERT_EQ(::stat(QFile::encodeName(target).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    EXPECT_EQ(st.st_nlink, 1u);

    for (const QString &tool :
        {QStringLiteral("cabextract"), QStringLiteral("7zz"), QStringLiteral("bsdtar")}) {
        const QString into = tree.path(QStringLiteral("x-") + tool);
        QString output;
        EXPECT_EQ(qb::test::ExtractCabinet(tool, target, into, &output), 0) << output.toStdString();
        EXPECT_EQ(entries(into).size(), contents.size()) << tool.toStdString();
        for (const auto &[name, bytes] : contents)
            EXPECT_TRUE(qb::test::readAll(into + u'/' + name) == bytes)
                << tool.toStdString() << ": " << name.toStdString();
    }
}

// A build that fails part way (the cabinet outgrows MaxCabinetSize) removes what it wrote.
TEST_P(MakeCabReplace, FailurePartWayLeavesTheTargetFolderAsItWas)
{
    TempTree tree;
    const QString source = tree.writeFile(QStringLiteral("src/noise.bin"), qb::test::RandomBytes(3 << 20, 5));
    const QString directive
        = writeDirective(tree, QStringLiteral(".Set CompressionType=NONE\r\n.Set MaxCabinetSize=2000000"),
            {{source, QStringLiteral("noise.bin")}});
    tree.writeFile(QStringLiteral("out/target.cab"), "old cabinet");
    if (GetParam())
        qputenv(kNamedTempVariable, "1");
    const qb::test::MakeCabRun run = qb::test::RunMakeCabIn({QStringLiteral("/F"), directive}, tree.root());
    qunsetenv(kNamedTempVariable);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("larger than 2000000 bytes"))) << run.err.toStdString();
    EXPECT_EQ(listing(tree.path(QStringLiteral("out"))), "target.cab");
    EXPECT_EQ(qb::test::readAll(tree.path(QStringLiteral("out/target.cab"))), QByteArray("old cabinet"));
}

INSTANTIATE_TEST_SUITE_P(Temporary, MakeCabReplace, ::testing::Bool(),
    [](const auto &info) { return std::string(info.param ? "Named" : "Unnamed"); });

} // namespace
