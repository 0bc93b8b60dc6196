#include "faults.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <csignal>
#include <grp.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

constexpr uid_t nobody = 65534;

std::vector<gid_t> currentGroups()
{
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
    if (getgroups(static_cast<int>(groups.size()), groups.data()) != static_cast<int>(groups.size()))
        qFatal("cannot read the groups of this process");
    return groups;
}

} // namespace

FileSizeLimit::FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
{
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit{bytes, m_before.rlim_max};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("cannot limit the size of files");
}

FileSizeLimit::~FileSizeLimit()
{
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
}

OrdinaryUser::OrdinaryUser() : m_root(geteuid() == 0), m_groups(currentGroups())
{
    if (m_root && (setgroups(0, nullptr) != 0 || setresgid(nobody, nobody, 0) != 0 ||
                   setresuid(nobody, nobody, 0) != 0))
        qFatal("cannot give up the rights of root");
}

OrdinaryUser::~OrdinaryUser()
{
    if (m_root && (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0 ||
                   setgroups(m_groups.size(), m_groups.data()) != 0))
        qFatal("cannot take the rights of root back");
}

void handOver(const QStringList &paths)
{
    if (geteuid() != 0)
        return;
    for (const QString &path : paths) {
        if (chown(QFile::encodeName(path).constData(), nobody, nobody) != 0)
            qFatal("cannot give %s away", qPrintable(path));
    }
}

SmallDisk::SmallDisk(const QString &folder, const QByteArray &size)
    : m_folder(QFile::encodeName(folder))
    , m_mounted(mount("tmpfs", m_folder.constData(), "tmpfs", 0, ("size=" + size).constData()) == 0)
{
}

SmallDisk::~SmallDisk()
{
    if (m_mounted)
        umount(m_folder.constData());
}

void SmallDisk::fill() const
{
    QFile filler(QFile::decodeName(m_folder) + "/filler");
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("cannot fill the small disk");
    while (filler.write(QByteArray(4096, 'x')) > 0) {
    }
}

#ifdef OVMIC_COVERAGE
extern "C" void __gcov_dump(); // saves what was counted, which _exit() would lose
#endif

Answer inChild(const std::function<bool()> &action)
{
    // An exception must not leave the child's own part: behind it lies the parent's.
    const auto act = [&action]() noexcept { return action(); };
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL); // the test library would want to say more, and has no memory for it
        const int status = act() ? 1 : 0;
#ifdef OVMIC_COVERAGE
        __gcov_dump();
#endif
        _exit(status);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) > 1)
        return Answer::Crashed;
    return WEXITSTATUS(status) == 1 ? Answer::Yes : Answer::No;
}

Answer withFileSizeLimit(rlim_t bytes, const std::function<bool()> &action)
{
    return inChild([&] {
        const FileSizeLimit limit(bytes);
        return action();
    });
}

Answer asOrdinaryUser(const std::function<bool()> &action)
{
    return inChild([&] {
        const OrdinaryUser user;
        return action();
    });
}

std::chrono::nanoseconds durationOf(const std::function<void()> &action)
{
    QElapsedTimer timer;
    timer.start();
    inChild([&] {
        action();
        return true;
    });
    return std::chrono::nanoseconds(timer.nsecsElapsed());
}

bool killedInTheMiddle(const std::function<void()> &action, std::chrono::nanoseconds within, Rng &rng)
{
    const pid_t child = fork();
    if (child == 0) {
        for (;;)
            action();
    }
    if (child < 0)
        return false;
    std::this_thread::sleep_for(within * rng.real(0, 1));
    int status = 0;
    kill(child, SIGKILL);
    return waitpid(child, &status, 0) == child && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}
