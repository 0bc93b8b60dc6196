#include "mapplan.h"

#include "mapfile.h"
#include "plainpath.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>
#include <vector>

namespace
{

/// The folder part of a path, with its slash; empty if it has none.
QString folderOf(const QString &path)
{
    return path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
}

/// One file, one text: folders with all links resolved, each looked up once.
class FileIdentity
{
public:
    QString operator()(const QString &path)
    {
        const QString folder = folderOf(path);
        auto found = m_folders.constFind(folder);
        if (found == m_folders.constEnd()) {
            const QDir directory(plainPath(folder.isEmpty() ? QStringLiteral(".") : folder));
            const QString canonical = directory.canonicalPath(); // empty while it is missing
            found = m_folders.insert(folder, canonical.isEmpty() ? QDir::cleanPath(directory.absolutePath())
                                                                 : canonical);
        }
        return *found + QLatin1Char('/') + path.mid(folder.size());
    }

private:
    QHash<QString, QString> m_folders;
};

/// Positions by a number that equal texts share: for millions of them, texts would need too much memory.
struct Fingerprint {
    explicit Fingerprint(const QString &text = {}, int at = 0)
        : hash((quint64(qHash(text, 1)) << 32) | qHash(text, 2)), position(at)
    {
    }
    bool operator<(const Fingerprint &other) const
    {
        return hash != other.hash ? hash < other.hash : position < other.position;
    }

    quint64 hash;
    int position;
};

QString formatOfFile(const QString &path)
{
    const QString extension = QFileInfo(path).suffix().toLower();
    return QString::fromLatin1(mapFormat(extension == QLatin1String("png") ? 1 : 0));
}

} // namespace

MapPlan::MapPlan(const MapOptions &options) : m_options(&options), m_format(options.format)
{
    const QString output = plainPath(options.output);
    const bool single = options.photographs.size() == 1 && !options.hasListFile && !options.hasName;
    m_intoFile =
        single && !output.isEmpty() && !output.endsWith(QLatin1Char('/')) && !QFileInfo(output).isDir();
    if (!m_intoFile && !output.isEmpty())
        m_folder = output.endsWith(QLatin1Char('/')) ? output : output + QLatin1Char('/');
    if (m_format.isEmpty())
        m_format = formatOfFile(m_intoFile ? output : QString());
}

std::optional<MapPlan> MapPlan::made(const MapOptions &options, QString &problem)
{
    const MapPlan plan(options);
    const QFileInfo folder(plan.m_folder.chopped(plan.m_folder.isEmpty() ? 0 : 1));
    if (plan.m_folder.size() > 1 && folder.exists() && !folder.isDir())
        problem = QStringLiteral("--output %1: Not a directory").arg(options.output);
    else
        problem = plan.collision();
    if (!problem.isEmpty())
        return {};
    return plan;
}

QString MapPlan::prepareFolder() const
{
    const auto isThere = [&] { return QFileInfo(m_folder).isDir(); };
    // Another task of the same run may make it at this very moment; then making it fails, and it is there.
    if (m_folder.isEmpty() || isThere() || QDir().mkpath(m_folder) || isThere())
        return {};
    return QStringLiteral("--output %1: the folder cannot be made").arg(m_options->output);
}

int MapPlan::count() const
{
    const Share &share = m_options->share;
    const int rest = m_options->photographs.size() - share.index;
    return rest <= 0 ? 0 : (rest - 1) / share.count + 1;
}

MapJob MapPlan::job(int index) const
{
    return jobAt(m_options->share.index + index * m_options->share.count);
}

MapJob MapPlan::jobAt(int position) const
{
    const QString photograph = m_options->photographs.at(position);
    if (m_intoFile)
        return {photograph, plainPath(m_options->output)};
    const QString folder = m_folder.isEmpty() ? folderOf(photograph) : m_folder;
    return {photograph, plainPath(folder + m_options->name.nameOf(photograph, position, m_format))};
}

/// Looks at the whole list, whatever share of it is this run's: the other runs write the other maps.
QString MapPlan::collision() const
{
    const int size = m_options->photographs.size();
    FileIdentity identity;
    std::vector<Fingerprint> photographs;
    std::vector<Fingerprint> maps;
    for (int i = 0; i < size; ++i) {
        const MapJob job = jobAt(i);
        photographs.emplace_back(identity(job.photograph), i);
        maps.emplace_back(identity(job.map), i);
    }
    std::sort(photographs.begin(), photographs.end());
    std::sort(maps.begin(), maps.end());
    for (size_t i = 1; i < maps.size(); ++i) {
        if (maps[i - 1].hash != maps[i].hash)
            continue;
        const MapJob first = jobAt(maps[i - 1].position);
        const MapJob second = jobAt(maps[i].position);
        if (identity(first.map) == identity(second.map))
            return QStringLiteral("%1 and %2 would both be written to %3")
                .arg(first.photograph, second.photograph, first.map);
    }
    for (const Fingerprint &map : maps) {
        const auto photograph =
            std::lower_bound(photographs.begin(), photographs.end(), map,
                             [](const Fingerprint &a, const Fingerprint &b) { return a.hash < b.hash; });
        if (photograph == photographs.end() || photograph->hash != map.hash)
            continue;
        const MapJob job = jobAt(map.position);
        const QString inTheWay = jobAt(photograph->position).photograph;
        if (identity(inTheWay) == identity(job.map))
            return QStringLiteral("the map of %1 would take the place of the photograph %2")
                .arg(job.photograph, inTheWay);
    }
    return {};
}
