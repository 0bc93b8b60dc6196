#pragma once

#include "rng.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <sys/resource.h>
#include <sys/types.h>
#include <vector>

/// Faults for tests of code that writes files: a full disk, a user without rights, a process killed in the
/// middle. The classes hold this very process down as long as they live; the functions act in a child.

/// No file of this process can grow beyond a number of bytes; the rest of a write fails, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

/// This process is somebody whom permissions bind: nobody, if it runs as root, and otherwise who it is.
class OrdinaryUser
{
public:
    OrdinaryUser();
    ~OrdinaryUser();
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    bool m_root;
    std::vector<gid_t> m_groups;
};

/// Gives files and folders to the ordinary user.
void handOver(const QStringList &paths);

/// A small disk of its own, mounted on an existing folder. Only root can have one: see isMounted().
class SmallDisk
{
public:
    /// @param size  as mount takes it, "64k"
    SmallDisk(const QString &folder, const QByteArray &size);
    ~SmallDisk();
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    bool isMounted() const { return m_mounted; }

    /// Writes a file that takes all the room that is left.
    void fill() const;

private:
    QByteArray m_folder;
    bool m_mounted;
};

enum class Answer { No, Yes, Crashed };

/// Runs an action in a process of its own and waits for it.
Answer inChild(const std::function<bool()> &action);

/// The same under a FileSizeLimit.
Answer withFileSizeLimit(rlim_t bytes, const std::function<bool()> &action);

/// The same as an OrdinaryUser.
Answer asOrdinaryUser(const std::function<bool()> &action);

/// How long an action takes in a child.
std::chrono::nanoseconds durationOf(const std::function<void()> &action);

/// Lets a child repeat an action without end, and kills it at a random moment within the given time.
/// @return whether it was still at work then
bool killedInTheMiddle(const std::function<void()> &action, std::chrono::nanoseconds within, Rng &rng);
