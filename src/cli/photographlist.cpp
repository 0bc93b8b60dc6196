#include "photographlist.h"

#include "plainpath.h"

#include <QFile>

#include <cstdio>

namespace
{

constexpr int longestPath = 4096;               // no system takes more; a longer line is no list of paths
constexpr qint64 longestList = 4LL * (1 << 30); // so that an endless device comes to an end

/// Cuts a stream of bytes into paths.
class PathCutter
{
public:
    PathCutter(PhotographList &list, Separator separator) : m_list(list), m_separator(separator) {}

    /// @return why these bytes belong to no list of paths; empty if they do
    QString take(const QByteArray &bytes)
    {
        const char separator = m_separator == Separator::Null ? '\0' : '\n';
        int begin = 0;
        for (int end = 0; (end = bytes.indexOf(separator, begin)) >= 0; begin = end + 1) {
            m_rest += bytes.mid(begin, end - begin);
            const QString problem = problemOfRest();
            if (!problem.isEmpty())
                return problem;
            finish();
        }
        m_rest += bytes.mid(begin);
        return problemOfRest();
    }

    void finish()
    {
        if (!m_rest.isEmpty())
            m_list.append(m_rest);
        m_rest.clear();
    }

private:
    QString problemOfRest() const
    {
        if (m_separator == Separator::Newline && m_rest.contains('\0'))
            return QStringLiteral("holds NUL bytes: --null is needed for such a list");
        if (m_rest.size() > longestPath)
            return QStringLiteral("holds a path of more than %1 bytes").arg(longestPath);
        return {};
    }

    PhotographList &m_list;
    Separator m_separator;
    QByteArray m_rest; // the path that the last bytes did not finish
};

} // namespace

void PhotographList::append(const QByteArray &path)
{
    m_bytes.insert(m_bytes.end(), path.begin(), path.end());
    m_ends.push_back(m_bytes.size());
}

QString PhotographList::at(int position) const
{
    const size_t begin = position == 0 ? 0 : m_ends[size_t(position) - 1];
    const size_t length = m_ends[size_t(position)] - begin;
    return QFile::decodeName(QByteArray(m_bytes.data() + begin, static_cast<int>(length)));
}

QString appendListFile(PhotographList &list, const QString &file, Separator separator)
{
    QFile input(plainPath(file));
    const bool opened =
        file == QLatin1String("-") ? input.open(stdin, QIODevice::ReadOnly) : input.open(QIODevice::ReadOnly);
    if (!opened)
        return input.errorString();
    PathCutter cutter(list, separator);
    constexpr int blockSize = 1 << 16;
    QByteArray block(blockSize, Qt::Uninitialized);
    qint64 total = 0;
    qint64 count = 0;
    while ((count = input.read(block.data(), blockSize)) > 0) {
        const QString problem = cutter.take(QByteArray::fromRawData(block.constData(), int(count)));
        if (!problem.isEmpty())
            return problem;
        total += count;
        if (total > longestList)
            return QStringLiteral("does not come to an end");
    }
    if (count < 0)
        return input.errorString();
    cutter.finish();
    return {};
}
