// Times a batch of photographs against its floor: decoding the same files and encoding ready maps of the same size,
// with nothing between. What the program adds is printed as a ratio. Both take turns, so that a busy machine slows
// both alike; medians are printed. Before anything is timed, every map of the batch is compared with a conversion
// of its photograph. Run it with QT_QPA_PLATFORM=offscreen.

#include "mainwindow.h"
#include "mapfile.h"
#include "photographofadisc.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace
{

/// A window that can run a batch of its own choice.
class BatchWindow : public MainWindow
{
public:
    void prepare(const QStringList &photographs, const QString &folder, QSize map, const char *mapFormat)
    {
        fileList = photographs;
        outputFolder = folder;
        outputSizeX = map.width();
        outputSizeY = map.height();
        centerX = 2000;
        centerY = 1500;
        radius = 1400;
        distance = 6.6;
        latitude = 35;
        longitude = 139;
        quality = 85;
        format = qstrcmp(mapFormat, "png") == 0 ? 1 : 0;
    }
    QImage mapOf(const QString &photograph)
    {
        image = QImage(photograph);
        return convertImage();
    }
    using MainWindow::batchConvert;
};

double milliseconds(const std::function<void()> &job)
{
    const auto start = std::chrono::steady_clock::now();
    job();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void measure(const QStringList &photographs, const QString &folder, QSize map, const char *mapFormat)
{
    BatchWindow window;
    window.prepare(photographs, folder, map, mapFormat);
    window.batchConvert();
    std::vector<QImage> maps;
    for (const QString &photograph : photographs) {
        maps.push_back(window.mapOf(photograph));
        const QString name = folder + '/' + QFileInfo(photograph).baseName() + '.' + mapFormat;
        QFile written(name);
        const bool readable = written.open(QIODevice::ReadOnly);
        const QByteArray batch = written.readAll();
        written.close();
        saveMap(maps.back(), name, mapFormat, 85);
        if (!readable || !written.open(QIODevice::ReadOnly) || written.readAll() != batch) {
            std::fprintf(stderr, "%s: the batch wrote another map than a single conversion\n",
                         qPrintable(name));
            std::exit(1);
        }
    }

    std::vector<double> floors;
    std::vector<double> batches;
    for (int round = 0; round < 5; ++round) {
        floors.push_back(milliseconds([&] {
            for (int i = 0; i < photographs.size(); ++i) {
                const QImage decoded(photographs.at(i));
                saveMap(maps[static_cast<size_t>(i)], folder + QStringLiteral("/floor.") + mapFormat,
                        mapFormat, 85);
            }
        }));
        batches.push_back(milliseconds([&] { window.batchConvert(); }));
    }
    const double floor = median(floors) / photographs.size();
    const double batch = median(batches) / photographs.size();
    std::printf("%5d x %4d  %s   decode + encode %6.1f ms   batch %6.1f ms   between %5.1f %%\n", map.width(),
                map.height(), mapFormat, floor, batch, (batch / floor - 1) * 100);
}

} // namespace

int main(int argc, char *argv[])
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    QStringList photographs;
    for (int i = 1; i <= 3; ++i) {
        photographs.append(folder.filePath(QStringLiteral("photo%1.jpg").arg(i)));
        photographOfADisc(i).save(photographs.last(), "jpg", 90);
    }
    QDir(folder.path()).mkdir(QStringLiteral("maps"));
    const QString maps = folder.filePath(QStringLiteral("maps"));
    std::printf("A batch of JPEG photographs of 12 megapixels, per photograph, medians of 5 runs:\n");
    for (const QSize map : {QSize(2048, 1024), QSize(8192, 4096)}) {
        for (const char *mapFormat : {"jpg", "png"})
            measure(photographs, maps, map, mapFormat);
    }
    return 0;
}
