#include "batchplan.h"

#include "plainpath.h"

#include <QDateTime>
#include <QFileInfo>
#include <QVector>

#include <algorithm>
#include <limits>

namespace
{

struct DatedPath {
    QString path;
    qint64 modified; // milliseconds since 1970, UTC
};

/// A file that has no time, because it is gone or unreadable, counts as older than all others.
DatedPath dated(const QString &path)
{
    const QDateTime modified = QFileInfo(plainPath(path)).lastModified();
    return {path, modified.isValid() ? modified.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min()};
}

QStringList newestFirst(const QStringList &paths)
{
    QVector<DatedPath> inputs; // every time is read once: a file touched meanwhile cannot upset the order
    inputs.reserve(paths.size());
    std::transform(paths.begin(), paths.end(), std::back_inserter(inputs), dated);
    std::stable_sort(inputs.begin(), inputs.end(), [](const DatedPath &left, const DatedPath &right) {
        return left.modified > right.modified;
    });
    QStringList sorted;
    sorted.reserve(inputs.size());
    for (const DatedPath &input : qAsConst(inputs))
        sorted.append(input.path);
    return sorted;
}

} // namespace

QString proposedName(const QString &inputPath, const QString &extension)
{
    return "OV-" + QFileInfo(plainPath(inputPath)).baseName() + '.' + extension;
}

QStringList orderedInputs(const QStringList &paths, int sortType)
{
    if (sortType == SortByModified)
        return newestFirst(paths);
    QStringList ordered = paths;
    if (sortType == SortByPath)
        ordered.sort(Qt::CaseSensitive);
    return ordered;
}

QString outputPath(const QString &outputFolder, const QString &inputPath, int nameType, int index,
                   const QString &extension)
{
    const QString name = nameType != 0 ? QStringLiteral("map_") + QString::number(index)
                                       : QFileInfo(plainPath(inputPath)).baseName();
    return plainPath(outputFolder + QLatin1Char('/') + name + QLatin1Char('.') + extension);
}
