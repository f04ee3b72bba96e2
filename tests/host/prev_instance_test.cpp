// One instance per program, version and user: requests handed over a local socket, held back
// until Ready, and cut into files, folders and words.
#include "host/prev_instance.h"
#include "support/temp_tree.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace qb::host {
namespace {

struct Request
{
    QString command;
    bool ready = false;
    QStringList files;
    QStringList folders;
    QStringList parameters;
};

class Receiver
{
public:
    explicit Receiver(clsPrevInstance &instance)
    {
        QObject::connect(&instance,
            qOverload<const QString &, bool, const QStringList &, const QStringList &, const QStringList &>(
                &clsPrevInstance::PrevInstance),
            [this](
                const QString &c, bool r, const QStringList &f, const QStringList &d, const QStringList &p) {
                requests.push_back({c, r, f, d, p});
            });
    }
    bool waitFor(size_t count)
    {
        return QTest::qWaitFor([&] { return requests.size() >= count; }, 5000);
    }
    std::vector<Request> requests;
};

// Each test its own version, so that tests running side by side don't meet.
class PrevInstanceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
        QCoreApplication::setApplicationVersion(
            u"77.%1"_s.arg(qHash(QString::fromUtf8(info->name())) % 100000));
    }
    void TearDown() override { QCoreApplication::setApplicationVersion(QString()); }
    test::TempTree tree;
};

TEST_F(PrevInstanceTest, SecondStartHandsItsCommandLineToTheFirst)
{
    const QString file = tree.writeFile(u"a file.txt"_s, "x");
    const QString folder = tree.makeDir(u"some folder"_s);
    clsPrevInstance first {QString()};
    Receiver receiver(first);
    EXPECT_EQ(first.PrevInstance(QString(), QString()), 0);

    clsPrevInstance second(clsPrevInstance::JoinCommandLine({file, folder, u"-x --mode fast"_s}));
    EXPECT_NE(second.PrevInstance(u"ignored"_s, u"ignored too"_s), 0);
    ASSERT_TRUE(receiver.waitFor(1));
    // Not ready yet: the text arrives alone and is held back.
    EXPECT_FALSE(receiver.requests[0].ready);
    EXPECT_TRUE(receiver.requests[0].files.isEmpty());
    EXPECT_EQ(receiver.requests[0].command, u'"' + file + u"\" \""_s + folder + u"\" \"-x --mode fast\""_s);

    first.setReady(true);
    ASSERT_EQ(receiver.requests.size(), 2u);
    const Request &parsed = receiver.requests[1];
    EXPECT_TRUE(parsed.ready);
    EXPECT_EQ(parsed.files, (QStringList {file}));
    EXPECT_EQ(parsed.folders, (QStringList {folder + u'/'}));
    EXPECT_EQ(parsed.parameters, (QStringList {u"-x"_s, u"--mode"_s, u"fast"_s}));
}

TEST_F(PrevInstanceTest, ReadyInstanceGetsRequestsAtOnceAndEmptyOnesToo)
{
    clsPrevInstance first {QString()};
    Receiver receiver(first);
    first.PrevInstance(QString(), QString());
    first.setReady(true);
    EXPECT_TRUE(receiver.requests.empty());

    clsPrevInstance empty {QString()};
    EXPECT_NE(empty.PrevInstance(QString(), QString()), 0);
    ASSERT_TRUE(receiver.waitFor(1));
    EXPECT_TRUE(receiver.requests[0].command.isEmpty());
    EXPECT_TRUE(receiver.requests[0].ready);
    EXPECT_TRUE(receiver.requests[0].files.isEmpty() && receiver.requests[0].folders.isEmpty()
        && receiver.requests[0].parameters.isEmpty());
}

TEST_F(PrevInstanceTest, OwnCommandLineIsHeldBackFirst)
{
    const QString file = tree.writeFile(u"own.txt"_s, "x");
    clsPrevInstance first(clsPrevInstance::JoinCommandLine({file}));
    Receiver receiver(first);
    first.PrevInstance(QString(), QString());
    clsPrevInstance second(clsPrevInstance::JoinCommandLine({u"word"_s}));
    second.PrevInstance(QString(), QString());
    ASSERT_TRUE(receiver.waitFor(1));
    first.setReady(true);
    ASSERT_EQ(receiver.requests.size(), 3u);
    EXPECT_EQ(receiver.requests[1].files, (QStringList {file}));
    EXPECT_EQ(receiver.requests[2].parameters, (QStringList {u"word"_s}));
}

TEST_F(PrevInstanceTest, TwoVersionsDoNotSeeEachOther)
{
    clsPrevInstance first {QString()};
    EXPECT_EQ(first.PrevInstance(QString(), QString()), 0);
    const QString firstName = clsPrevInstance::RendezvousName();
    QCoreApplication::setApplicationVersion(QCoreApplication::applicationVersion() + u"1"_s);
    EXPECT_NE(clsPrevInstance::RendezvousName(), firstName);
    clsPrevInstance other {QString()};
    EXPECT_EQ(other.PrevInstance(QString(), QString()), 0);
}

TEST_F(PrevInstanceTest, CrashedInstanceDoesNotBlockTheNextStart)
{
    // A socket file bound and left behind, as by a process that died.
    const QString path = QDir::tempPath() + u'/' + clsPrevInstance::RendezvousName();
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(fd, 0);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const QByteArray native = QFile::encodeName(path);
    ASSERT_LT(size_t(native.size()), sizeof(address.sun_path));
    std::memcpy(address.sun_path, native.constData(), size_t(native.size()));
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    ::close(fd);
    ASSERT_TRUE(QFile::exists(path));

    clsPrevInstance first {QString()};
    Receiver receiver(first);
    EXPECT_EQ(first.PrevInstance(QString(), QString()), 0);
    clsPrevInstance second(u"\"hello\""_s);
    EXPECT_NE(second.PrevInstance(QString(), QString()), 0);
    ASSERT_TRUE(receiver.waitFor(1));
    EXPECT_EQ(receiver.requests[0].command, u"\"hello\""_s);
}

TEST_F(PrevInstanceTest, PiecesAreFilesFoldersOrWords)
{
    const QString spaced = tree.writeFile(u"with blanks/my file.txt"_s, "x");
    const QString wide = tree.writeFile(u"中文 名"_s, "x");
    const QString folder = tree.path(u"with blanks"_s);
    const struct
    {
        QString command;
        QStringList files, folders, parameters;
    } cases[] = {
        // Quoted: one piece. Unquoted but existing whole: still one piece.
        {u'"' + spaced + u'"', {spaced}, {}, {}},
        {spaced, {spaced}, {}, {}},
        // Not a path: its words.
        {u"/no such/place here"_s, {}, {}, {u"/no"_s, u"such/place"_s, u"here"_s}},
        {u"\"\" \"  \""_s, {}, {}, {}},
        {u'"' + folder + u"/\""_s, {}, {folder + u'/'}, {}},
        // Joined arguments split back into the same pieces.
        {clsPrevInstance::JoinCommandLine({spaced, wide, folder, u"x"_s}), {spaced, wide}, {folder + u'/'},
            {u"x"_s}},
    };
    for (const auto &c : cases) {
        const clsPrevInstance::ParsedCommand parsed = clsPrevInstance::ParseCommand(c.command);
        EXPECT_EQ(parsed.Files, c.files) << c.command.toStdString();
        EXPECT_EQ(parsed.Folders, c.folders) << c.command.toStdString();
        EXPECT_EQ(parsed.Parameters, c.parameters) << c.command.toStdString();
    }
    EXPECT_TRUE(clsPrevInstance::RendezvousName().contains(u"qb_host_tests"_s));
}

TEST_F(PrevInstanceTest, OversizeRequestArrivesCutAtTheLimit)
{
    clsPrevInstance first {QString()};
    Receiver receiver(first);
    first.PrevInstance(QString(), QString());
    first.setReady(true);
    // A three-byte character straddles the limit: it goes whole, not as a broken half.
    const QString kept = u"\"word"_s + QString(clsPrevInstance::kLargestRequest - 6, u'x');
    const QByteArray request = (kept + u"中"_s + QString(5000, u'y')).toUtf8();
    // Sent from a thread of its own, since the receiver reads on this one.
    const QByteArray path = QFile::encodeName(QDir::tempPath() + u'/' + clsPrevInstance::RendezvousName());
    std::thread sender([&] {
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
        if (::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0) {
            qsizetype sent = 0;
            while (sent < request.size()) {
                const ssize_t n
                    = ::send(fd, request.constData() + sent, size_t(request.size() - sent), MSG_NOSIGNAL);
                if (n <= 0)
                    break; // the receiver stops listening at its limit
                sent += n;
            }
        }
        ::close(fd);
    });
    const bool arrived = receiver.waitFor(1);
    sender.join();
    ASSERT_TRUE(arrived);
    EXPECT_EQ(receiver.requests[0].command.size(), kept.size());
    EXPECT_EQ(receiver.requests[0].command, kept);
}

TEST_F(PrevInstanceTest, RelativeArgumentsAreMadeAbsoluteInTheCallersFolder)
{
    const QString file = tree.writeFile(u"data/same.txt"_s, "x");
    tree.writeFile(u"data/sub dir/b c.txt"_s, "x");
    const QString caller = tree.path(u"data"_s);
    const QStringList given {u"same.txt"_s, u"sub dir/b c.txt"_s, u"sub dir"_s, u"../data/same.txt"_s, file,
        u"no-such.txt"_s, u"--flag"_s, QString()};
    const QStringList expected {file, caller + u"/sub dir/b c.txt"_s, caller + u"/sub dir"_s,
        caller + u"/../data/same.txt"_s, file, u"no-such.txt"_s, u"--flag"_s, QString()};
    EXPECT_EQ(clsPrevInstance::AbsoluteArguments(given, caller), expected);
}

} // namespace
} // namespace qb::host
