// What ovmic-map does in threads, many times side by side in this process: for the thread sanitizer, and as a test
// that threads get the maps that one gets.

#include "mapfile.h"
#include "mapfolder.h"
#include "mapplan.h"
#include "maprun.h"
#include "photographfile.h"
#include "report.h"

#include <atomic>
#include <thread>
#include <vector>

namespace
{

/// All ways through the conversion: in one pass, one operation after the other, fitted and clipped, with alpha.
std::vector<MapParameters> everyWay()
{
    MapParameters p;
    p.centerX = 30;
    p.centerY = 20;
    p.radius = 19;
    p.distance = 6.6;
    p.outputSizeX = 128;
    p.outputSizeY = 64;
    p.latitude = 35;
    p.longitude = 139;
    std::vector<MapParameters> ways = {p};
    p.azimuth = 30;
    ways.push_back(p);
    p.lens = projection::Lens::None;
    p.centerX = 70;
    ways.push_back(p);
    p.outputSizeX = 127;
    ways.push_back(p);
    p.latitude = 90;
    ways.push_back(p);
    return ways;
}

} // namespace

class tst_OvmicMapThreads : public QObject
{
    Q_OBJECT

private slots:
    void conversionsSideBySide();
    void aRunInThisProcess();
};

void tst_OvmicMapThreads::conversionsSideBySide()
{
    const MapFolder folder;
    const QStringList names = folder.writePhotographs("in", 4);
    folder.writePhotograph("in/photo.jpg", 9);
    const std::vector<MapParameters> ways = everyWay();
    const auto allMaps = [&] {
        QByteArray maps;
        for (const QString &name : names + QStringList{"in/photo.jpg"})
            for (const MapParameters &way : ways) {
                const QImage photograph = loadPhotograph(folder.filePath(name)).image;
                for (const char *format : {"png", "jpg"})
                    maps += encodedMap(convertToMap(photograph, way, AzimuthStep::Rotates, {}), format, 85);
            }
        return maps;
    };
    const QByteArray expected = allMaps();
    QVERIFY(expected.size() > 50000);
    std::atomic<int> equal{0};
    std::vector<std::thread> threads;
    constexpr int count = 4;
    threads.reserve(count);
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round)
                equal += allMaps() == expected ? 1 : 0;
        });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(equal.load(), count * 5);
}

void tst_OvmicMapThreads::aRunInThisProcess()
{
    const MapFolder folder;
    QStringList arguments = {"ovmic-map",
                             "-j4",
                             "--world-file",
                             "-o",
                             folder.filePath("maps"),
                             "--settings",
                             folder.filePath(folder.smallMaps().last())};
    for (const QString &name : folder.writePhotographs("in", 40))
        arguments.append(folder.filePath(name));
    QString problem;
    const std::optional<MapOptions> options = readOptions(arguments, problem);
    QVERIFY2(options, qPrintable(problem));
    const std::optional<MapPlan> plan = MapPlan::made(*options, problem);
    QVERIFY2(plan, qPrintable(problem));
    QCOMPARE(plan->prepareFolder(), QString());
    Report report(plan->count(), options->separator, Report::ProgressLine::Always);
    runPlan(*plan, *options, report);
    QCOMPARE(report.failures(), 0);
    QCOMPARE(folder.namesIn("maps").size(), 80);
}

QTEST_GUILESS_MAIN(tst_OvmicMapThreads)
#include "tst_ovmicmapthreads.moc"
