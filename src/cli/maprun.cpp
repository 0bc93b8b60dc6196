#include "maprun.h"

#include "circlesearch.h"
#include "mapfile.h"
#include "mapplan.h"
#include "photographfile.h"
#include "replacefile.h"
#include "report.h"
#include "stopsignals.h"
#include "worldfile.h"

#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <atomic>
#include <memory>
#include <new>
#include <vector>

namespace
{

/// @param reason  receives why the disc, where it is sought, is not found
std::optional<SelectionCircle> circleOn(const QImage &photograph, const MapOptions &options, QString &reason)
{
    if (const auto *circle = std::get_if<SelectionCircle>(&options.circle))
        return *circle;
    if (std::holds_alternative<FittedCircle>(options.circle))
        return defaultCircle(photograph.size());
    const SoughtDisc sought = soughtDisc(photograph, options.leastConfidence);
    reason = sought.reason;
    return sought.disc ? std::optional(selectionCircle(*sought.disc)) : std::nullopt;
}

/// Whether something has this name, be it a link that leads nowhere.
bool isThere(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

/// Makes one map after the other; one for each thread.
class MapWorker
{
public:
    MapWorker(const MapPlan &plan, const MapOptions &options, Report &report)
        : m_plan(plan), m_options(options), m_report(report)
    {
    }

    void convert(const MapJob &job)
    {
        const bool exists = m_options.existing != ExistingMap::IsReplaced && isThere(job.map);
        if (exists && m_options.existing == ExistingMap::IsDone) {
            m_report.skipped();
            return;
        }
        QString reason = exists ? QStringLiteral("map exists: ") + job.map : QString();
        if (!exists) {
            try {
                reason = made(job);
            } catch (const std::bad_alloc &) { // the encoders ask for memory that way
                reason = QStringLiteral("map cannot be made: Not enough memory");
            }
        }
        if (reason.isEmpty())
            m_report.finished(job.map);
        else
            m_report.failed(job.photograph, reason);
    }

private:
    /// @return why there is no map; empty if there is one
    QString made(const MapJob &job)
    {
        const LoadedPhotograph photograph = loadPhotograph(job.photograph, m_memory);
        if (!photograph.reason.isEmpty())
            return photograph.reason;
        QString reason;
        const std::optional<SelectionCircle> circle = circleOn(photograph.image, m_options, reason);
        if (!circle)
            return reason;
        MapParameters parameters = m_options.parameters;
        parameters.centerX = circle->centerX;
        parameters.centerY = circle->centerY;
        parameters.radius = circle->radius;
        const QImage map = convertToMap(photograph.image, parameters, AzimuthStep::Rotates, {});
        if (map.isNull())
            return QStringLiteral("map cannot be made: Not enough memory");
        const QByteArray encoded = encodedMap(map, m_plan.format().toLatin1().constData(), m_options.quality);
        if (encoded.isEmpty())
            return QStringLiteral("map cannot be written: %1 x %2 pixels cannot be encoded as %3")
                .arg(map.width())
                .arg(map.height())
                .arg(m_plan.format());
        return written(job.map, encoded, parameters);
    }

    /// The world file comes first: a map that exists is complete.
    QString written(const QString &map, const QByteArray &encoded, const MapParameters &parameters) const
    {
        QString reason;
        const QString world = worldFilePath(map, m_plan.format());
        const bool worldWasThere = isThere(world);
        if (m_options.worldFile) {
            const QByteArray lines = worldFile(parameters);
            if (worldWasThere && m_options.existing != ExistingMap::IsReplaced && !holds(world, lines))
                return QStringLiteral("world file exists: ") + world;
            if (!replaceFile(world, lines, ReadOnlyFolder::Refuse, &reason))
                return QStringLiteral("world file cannot be written: ") + reason;
        }
        if (replaceFile(map, encoded, ReadOnlyFolder::Refuse, &reason))
            return {};
        if (m_options.worldFile && !worldWasThere)
            QFile::remove(world);
        return QStringLiteral("map cannot be written: ") + reason;
    }

    static bool holds(const QString &path, const QByteArray &contents)
    {
        QFile file(path);
        return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) &&
               file.read(contents.size() + 1) == contents;
    }

    const MapPlan &m_plan;
    const MapOptions &m_options;
    Report &m_report;
    PixelMemory m_memory; // of the photographs
};

} // namespace

void runPlan(const MapPlan &plan, const MapOptions &options, Report &report)
{
    std::atomic<int> next{0};
    std::atomic<int> ended{0};
    // One thread's work: the next job that nobody has taken, until there is none or the run is stopped.
    const auto work = [&] {
        MapWorker worker(plan, options, report);
        while (StopSignals::received() == 0 && !report.isReaderGone()) {
            const int index = next.fetch_add(1);
            if (index >= plan.count())
                return;
            worker.convert(plan.job(index));
        }
    };
    // This thread works too, so that the run comes to its end even where the system grants no other one. A thread
    // pool would wait for its threads for ever then.
    std::vector<std::unique_ptr<QThread>> threads;
    for (int i = 1; i < qMin(options.jobs, plan.count()); ++i) {
        threads.emplace_back(QThread::create([&] {
            work();
            ended.fetch_add(1);
        }));
        threads.back()->start();
        if (!threads.back()->isRunning() && !threads.back()->isFinished())
            break; // refused
    }
    work();
    for (const auto &thread : threads)
        thread->wait();
    ended
        .load(); // what the threads did lies behind; the thread sanitizer cannot see the toolkit's own waiting
}
