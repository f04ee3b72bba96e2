// The cabinet while it is written: an O_TMPFILE file linked into place at the end, or a named
// temporary that the signal handlers below remove.
#include "cabmaker/pending_cabinet.h"

#include "util/file_names.h"

#include <QFile>
#include <QRandomGenerator>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qb::cabmaker {

namespace {

constexpr int kCaught[] = {SIGTERM, SIGINT, SIGHUP};
constexpr size_t kCaughtCount = sizeof kCaught / sizeof kCaught[0];
constexpr size_t kPathBytes = 4096;

// What the handler needs, kept where it can be read without allocating or locking.
char g_path[kPathBytes];
volatile sig_atomic_t g_pathSet = 0;
struct sigaction g_before[kCaughtCount];
bool g_installed[kCaughtCount];
std::atomic_flag g_busy = ATOMIC_FLAG_INIT;

void removeAndRaise(int sig)
{
    if (g_pathSet)
        ::unlink(g_path);
    g_pathSet = 0;
    // What was there before acts on the signal once this handler returns: by default the end.
    for (size_t i = 0; i < kCaughtCount; ++i) {
        if (kCaught[i] == sig)
            ::sigaction(sig, &g_before[i], nullptr);
    }
    ::raise(sig);
}

// Holds the caught signals back for a short step, so that the step and the bookkeeping about it
// happen as one as far as a handler can see.
class SignalsHeld
{
public:
    SignalsHeld()
    {
        sigset_t set;
        sigemptyset(&set);
        for (const int sig : kCaught)
            sigaddset(&set, sig);
        pthread_sigmask(SIG_BLOCK, &set, &m_before);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsHeld(const SignalsHeld &) = delete;
    SignalsHeld &operator=(const SignalsHeld &) = delete;

private:
    sigset_t m_before;
};

// Call with the signals held. False when the path can't be kept (too long, or another writer in
// this process has the handlers); the file is then removed on the normal ways out only.
bool arm(const QByteArray &path)
{
    if (size_t(path.size()) >= kPathBytes || g_busy.test_and_set())
        return false;
    std::memcpy(g_path, path.constData(), size_t(path.size()) + 1);
    g_pathSet = 1;
    struct sigaction handler
    {
    };
    handler.sa_handler = removeAndRaise;
    sigemptyset(&handler.sa_mask);
    for (const int sig : kCaught)
        sigaddset(&handler.sa_mask, sig);
    for (size_t i = 0; i < kCaughtCount; ++i) {
        g_installed[i] = false;
        ::sigaction(kCaught[i], nullptr, &g_before[i]);
        // An ignored signal (nohup) stays ignored.
        if (!(g_before[i].sa_flags & SA_SIGINFO) && g_before[i].sa_handler == SIG_IGN)
            continue;
        g_installed[i] = ::sigaction(kCaught[i], &handler, nullptr) == 0;
    }
    return true;
}

// Call with the signals held.
void disarm()
{
    g_pathSet = 0;
    for (size_t i = 0; i < kCaughtCount; ++i) {
        if (g_installed[i])
            ::sigaction(kCaught[i], &g_before[i], nullptr);
        g_installed[i] = false;
    }
    g_busy.clear();
}

QString errnoText(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

mode_t creationMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

} // namespace

PendingCabinet::~PendingCabinet()
{
    discard();
}

void PendingCabinet::discard()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    if (m_tempPath.isEmpty())
        return;
    const SignalsHeld held;
    ::unlink(QFile::encodeName(m_tempPath).constData());
    m_tempPath.clear();
    if (m_armed)
        disarm();
    m_armed = false;
}

bool PendingCabinet::open(const QString &folder, QString &problem)
{
    discard();
    m_folder = folder;
#ifdef O_TMPFILE
    if (qEnvironmentVariableIsEmpty(kNamedTempVariable)) {
        m_fd = ::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
        if (m_fd >= 0)
            return true;
        // Only a file system without unnamed files gets the named temporary; other errors are real.
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
            problem = QStringLiteral("cannot write in '%1': %2").arg(folder, errnoText(errno));
            return false;
        }
    }
#endif
    return openNamed(folder, problem);
}

bool PendingCabinet::openNamed(const QString &folder, QString &problem)
{
    {
        const SignalsHeld held;
        m_tempPath = util::CreateUniqueTempFile(folder, QStringLiteral("cab"));
        if (m_tempPath.isEmpty()) {
            problem = QStringLiteral("cannot write in '%1': %2").arg(folder, errnoText(errno));
            return false;
        }
        m_armed = arm(QFile::encodeName(m_tempPath));
    }
    m_fd = ::open(QFile::encodeName(m_tempPath).constData(), O_WRONLY | O_CLOEXEC);
    if (m_fd < 0) {
        problem = QStringLiteral("cannot write in '%1': %2").arg(folder, errnoText(errno));
        discard();
        return false;
    }
    return true;
}

bool PendingCabinet::linkUnnamed(const QByteArray &to)
{
    // Through /proc needs no privilege; AT_EMPTY_PATH is for systems without /proc mounted.
    const QByteArray self = "/proc/self/fd/" + QByteArray::number(m_fd);
    if (::linkat(AT_FDCWD, self.constData(), AT_FDCWD, to.constData(), AT_SYMLINK_FOLLOW) == 0)
        return true;
#ifdef AT_EMPTY_PATH
    if (errno == ENOENT)
        return ::linkat(m_fd, "", AT_FDCWD, to.constData(), AT_EMPTY_PATH) == 0;
#endif
    return false;
}

bool PendingCabinet::commit(const QString &target, QString &problem)
{
    auto failed = [&](int code) {
        problem = QStringLiteral("cannot create '%1': %2").arg(target, errnoText(code));
        discard();
        return false;
    };
    if (m_fd < 0)
        return failed(EBADF);
    if (::fchmod(m_fd, creationMode()) != 0)
        return failed(errno);
    const QByteArray to = QFile::encodeName(target);

    if (!m_tempPath.isEmpty()) {
        const int fd = m_fd;
        m_fd = -1;
        if (::close(fd) != 0)
            return failed(errno);
        const SignalsHeld held;
        if (::rename(QFile::encodeName(m_tempPath).constData(), to.constData()) != 0)
            return failed(errno);
        m_tempPath.clear();
        if (m_armed)
            disarm();
        m_armed = false;
        return true;
    }

    // A signal now would find a second name for a moment; held back, it ends the program only
    // once the cabinet is in place.
    const SignalsHeld held;
    if (!linkUnnamed(to)) {
        if (errno != EEXIST)
            return failed(errno);
        // rename() replaces in one step, which a link cannot: so first a hidden name of our own.
        QByteArray hidden;
        for (int attempt = 0;; ++attempt) {
            hidden = QFile::encodeName(m_folder) + "/.makecab-"
                + QByteArray::number(QRandomGenerator::global()->generate(), 16) + ".tmp";
            if (linkUnnamed(hidden))
                break;
            if (errno != EEXIST || attempt == 100)
                return failed(errno);
        }
        if (::rename(hidden.constData(), to.constData()) != 0) {
            const int code = errno;
            ::unlink(hidden.constData());
            return failed(code);
        }
    }
    const int fd = m_fd;
    m_fd = -1;
    if (::close(fd) != 0)
        return failed(errno);
    return true;
}

} // namespace qb::cabmaker
