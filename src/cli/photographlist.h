#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// The paths of all photographs of a run, in their order. Kept as the bytes that the system has for them, in one block:
/// a list may have millions.
class PhotographList
{
public:
    void append(const QByteArray &path);
    int size() const { return static_cast<int>(m_ends.size()); }
    QString at(int position) const;

private:
    std::vector<char> m_bytes;
    std::vector<size_t> m_ends; // behind the last byte of each path
};

/// What stands between two paths of a list file. Empty paths are left out.
enum class Separator { Newline, Null };

/// Appends the paths of a list file.
/// @param file  "-" is the standard input
/// @return why it cannot be used; empty if it can
QString appendListFile(PhotographList &list, const QString &file, Separator separator);
