#pragma once

#include <QDebug>
#include <QFile>
#include <QString>

#include <csignal>
#include <grp.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

/// What keeps a window of this very process from writing a file, as long as one of these objects lives.

/// No file of this process can grow beyond a number of bytes; the rest of a write fails, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            qFatal("cannot limit the size of files");
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
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
    OrdinaryUser() : m_root(geteuid() == 0)
    {
        if (m_root && (setresgid(nobody, nobody, 0) != 0 || setresuid(nobody, nobody, 0) != 0))
            qFatal("cannot give up the rights of root");
    }
    ~OrdinaryUser()
    {
        if (m_root && (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0))
            qFatal("cannot take the rights of root back");
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

    /// Gives a file or folder to the user that this class makes of the process.
    static void own(const QString &path)
    {
        if (geteuid() == 0 && chown(QFile::encodeName(path).constData(), nobody, nobody) != 0)
            qFatal("cannot give %s away", qPrintable(path));
    }

private:
    static constexpr uid_t nobody = 65534;
    bool m_root;
};

/// A small disk of its own, mounted on a folder. Only root can have one: see isMounted().
class SmallDisk
{
public:
    /// @param size  as mount takes it, "64k"
    SmallDisk(const QString &folder, const QByteArray &size)
        : m_folder(QFile::encodeName(folder))
        , m_mounted(mount("tmpfs", m_folder.constData(), "tmpfs", 0, ("size=" + size).constData()) == 0)
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

    /// Writes a file that takes all the room that is left.
    void fill() const
    {
        QFile filler(QFile::decodeName(m_folder) + "/filler");
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            qFatal("cannot fill the small disk");
        while (filler.write(QByteArray(4096, 'x')) > 0) {
        }
    }

private:
    QByteArray m_folder;
    bool m_mounted;
};
