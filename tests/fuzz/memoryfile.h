#pragma once

#include <QByteArray>
#include <QString>

#include <sys/mman.h>
#include <unistd.h>

/// A regular file that lies in memory alone and goes with the process, whatever ends it. For Linux.
class MemoryFile
{
public:
    explicit MemoryFile(const QByteArray &contents) : m_descriptor(memfd_create("input", MFD_CLOEXEC))
    {
        if (write(m_descriptor, contents.constData(), static_cast<size_t>(contents.size())) !=
            contents.size())
            qFatal("no file in memory");
    }
    ~MemoryFile() { close(m_descriptor); }
    Q_DISABLE_COPY_MOVE(MemoryFile)

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor); }

private:
    int m_descriptor;
};
