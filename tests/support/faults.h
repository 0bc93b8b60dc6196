#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QString>
#include <QStringList>

#include <chrono>
#include <csignal>
#include <functional>
#include <grp.h>
#include <random>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

/// Faults for tests of file code: a full disk, a user without rights, a process killed in the middle.

enum class Answer { No, Yes, Crashed };

/// Runs an action in a process of its own and waits for it.
inline Answer inChild(const std::function<bool()> &action)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(action() ? 1 : 0);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) > 1)
        return Answer::Crashed;
    return WEXITSTATUS(status) == 1 ? Answer::Yes : Answer::No;
}

/// Runs an action where no file can grow beyond a number of bytes; the rest of a write fails, as on a full
/// disk.
inline Answer withFileSizeLimit(rlim_t bytes, const std::function<bool()> &action)
{
    return inChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, bytes};
        return setrlimit(RLIMIT_FSIZE, &limit) == 0 && action();
    });
}

constexpr uid_t ordinaryUser = 65534;

/// Runs an action as somebody whom permissions bind: as the user of this process, or as nobody if that is
/// root.
inline Answer asOrdinaryUser(const std::function<bool()> &action)
{
    return inChild([&] {
        if (geteuid() == 0 &&
            (setgroups(0, nullptr) != 0 || setgid(ordinaryUser) != 0 || setuid(ordinaryUser) != 0))
            _exit(2);
        return action();
    });
}

/// Gives files and folders to the user of asOrdinaryUser().
inline bool handOver(const QStringList &paths)
{
    bool done = true;
    for (const QString &path : paths) {
        if (geteuid() == 0)
            done = chown(QFile::encodeName(path).constData(), ordinaryUser, ordinaryUser) == 0 && done;
    }
    return done;
}

/// How long an action takes in a child.
inline std::chrono::nanoseconds durationOf(const std::function<void()> &action)
{
    QElapsedTimer timer;
    timer.start();
    inChild([&] {
        action();
        return true;
    });
    return std::chrono::nanoseconds(timer.nsecsElapsed());
}

/// Lets a child repeat an action without end, and kills it at a random moment within the given time.
/// @return whether it was still at work then
inline bool killedInTheMiddle(const std::function<void()> &action, std::chrono::nanoseconds within,
                              std::mt19937 &random)
{
    const pid_t child = fork();
    if (child == 0) {
        for (;;)
            action();
    }
    if (child < 0)
        return false;
    std::this_thread::sleep_for(within * std::uniform_real_distribution<>(0, 1)(random));
    int status = 0;
    kill(child, SIGKILL);
    return waitpid(child, &status, 0) == child && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

/// A small disk of its own, mounted on an existing folder; only root can have one.
class SmallDisk
{
public:
    SmallDisk(const QString &folder, const char *size)
        : m_folder(QFile::encodeName(folder))
        , m_mounted(mount("tmpfs", m_folder.constData(), "tmpfs", 0, QByteArray("size=").append(size)) == 0)
    {
    }
    ~SmallDisk()
    {
        if (m_mounted)
            umount(m_folder.constData());
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    bool isMounted() const { return m_mounted; }

private:
    QByteArray m_folder;
    bool m_mounted;
};
