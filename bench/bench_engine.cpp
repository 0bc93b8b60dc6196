// Times the engine against the reference, in one thread and in one run: every contestant takes its turn in
// every round, so that a busy machine slows all of them alike, and medians count. Before anything is timed,
// its result is compared with the reference's, pixel for pixel. docs/performance.md explains the columns.
#include "benchcase.h"
#include "contest.h"
#include "floor.h"
#include "opencvremap.h"
#include "otherwork.h"
#include "qimageview.h"

#include "composedmap.h"
#include "convertimage.h"
#include "referenceengine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <cstdlib>
#include <cstring>

#ifdef OVMIC_HIGHWAY
#include <hwy/targets.h>
#endif

using namespace projection;

namespace
{

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

[[noreturn]] void fail(const QString &what)
{
    out() << "FAILED: " << what << Qt::endl;
    std::exit(1);
}

void requireEqual(const QImage &actual, const QImage &expected, const QString &what)
{
    if (actual.size() != expected.size() || actual.format() != expected.format())
        fail(what + ": another kind of picture");
    const size_t bytes = size_t(expected.width()) * 4;
    for (int y = 0; y < expected.height(); ++y)
        if (std::memcmp(actual.constScanLine(y), expected.constScanLine(y), bytes) != 0)
            fail(what + QString(": row %1 differs").arg(y));
}

QString vectorTarget()
{
#ifdef OVMIC_HIGHWAY
    return QString::fromLatin1(hwy::TargetName(hwy::SupportedAndGeneratedTargets().front()));
#else
    return QStringLiteral("none, scalar C++");
#endif
}

/// The chain as it would be without advice to the system about the canvas, whose pages come one by one at their
/// first touch.
QImage pageByPageMap(const BenchCase &c)
{
    const MapParameters &p = c.parameters;
    QImage map = zeroedCanvas(c.mapSize());
    const int width = p.outputSizeX;
    const MapRotation mapRotation = {(columnShift(-p.azimuth, width) + width) % width, int(90 - p.latitude),
                                     (columnShift(p.longitude + 90, width) + width) % width};
    paintComposedMap(NearSidedPerspective(perspectiveParameters(p, c.photograph.size())),
                     photographView(c.photograph), mapRotation, canvasView(map), {});
    return map;
}

/// The pictures of one case that more than one contestant needs.
struct Pictures {
    explicit Pictures(const BenchCase &c)
        : expected(c.expectedMap())
        , workMap(zeroedCanvas(c.mapSize()))
        , expectedWorkMap(workMap)
        , rotated(workMap)
        , expectedRotated(workMap)
        , photograph(c.photograph)
    {
        reference::paintGlobe(photograph, expectedWorkMap, c.globe());
        reference::rotate(3, 55, expectedWorkMap, expectedRotated);
    }

    QImage expected;
    QImage workMap;
    QImage expectedWorkMap;
    QImage rotated;
    QImage expectedRotated;
    QImage photograph;
};

/// One measured case; what the closing table shows of it.
struct Row {
    QString name;
    double chainOverReference = 0;
    double floorOverChain = 0;
    double largeFloorOverChain = 0;
    double rotateOverReference = 0;
    double convertOverReference = 0;
    double pageByPageOverChain = 0;
    double remapOverChain = 0;
    double insideRemapOverChain = 0;
};

Row measure(const BenchCase &c, int rounds)
{
    Pictures pictures(c);
    ConvertImage engine = c.engine();
    requireEqual(convertToMap(c.photograph, c.parameters), pictures.expected, "chain");
    requireEqual(pageByPageMap(c), pictures.expected, "page by page");
    engine.convertImage(pictures.photograph, pictures.workMap);
    requireEqual(pictures.workMap, pictures.expectedWorkMap, "convertImage");
    engine.rotateImage(3, 55, pictures.workMap, pictures.rotated);
    requireEqual(pictures.rotated, pictures.expectedRotated, "rotateImage");

    constexpr int often = 5; // what is fast runs more often than what is slow
    Contest contest;
    contest.add("chain, reference", 1, [&] { c.expectedMap(); });
    contest.add("rotateImage, reference", 1,
                [&] { reference::rotate(3, 55, pictures.expectedWorkMap, pictures.expectedRotated); });
    contest.add("convertImage, reference", 1,
                [&] { reference::paintGlobe(pictures.photograph, pictures.workMap, c.globe()); });
    contest.add("chain", often, [&] { convertToMap(c.photograph, c.parameters); });
    contest.add("chain, page by page", often, [&] { pageByPageMap(c); });
    contest.add("rotateImage", often,
                [&] { engine.rotateImage(3, 55, pictures.expectedWorkMap, pictures.rotated); });
    contest.add("convertImage", often, [&] { engine.convertImage(pictures.photograph, pictures.workMap); });
    if (c.isNumbered()) {
        const std::vector<qint32> indexes = indexMap(pictures.expected);
        requireEqual(paintByIndex(c.photograph, indexes, zeroedCanvas(c.mapSize())), pictures.expected,
                     "floor");
        contest.add("floor", often,
                    [&c, indexes] { paintByIndex(c.photograph, indexes, zeroedCanvas(c.mapSize())); });
        contest.add("floor, large pages", often, [&c, indexes] {
            paintByIndex(c.photograph, indexes, zeroedCanvasOnLargePages(c.mapSize()));
        });
#ifdef BENCH_OPENCV
        const OpenCvRemap remap(c.photograph, indexes, c.mapSize());
        requireEqual(remap.paint(), pictures.expected, "cv::remap");
        requireEqual(remap.paintInside(), pictures.expected, "cv::remap, inside only");
        contest.add("cv::remap", often, [remap] { remap.paint(); });
        contest.add("cv::remap, inside only", often, [remap] { remap.paintInside(); });
#endif
    }
    contest.run(rounds);

    out() << "\n" << c.name << "\n";
    for (const auto &[name, median] : contest.medians())
        out() << "    " << name.leftJustified(24) << QString::number(median, 'f', 2).rightJustified(10)
              << " ms\n";
    out() << Qt::flush;
    return {c.name,
            contest.ratio("chain, reference", "chain"),
            contest.ratio("floor", "chain"),
            contest.ratio("floor, large pages", "chain"),
            contest.ratio("rotateImage, reference", "rotateImage"),
            contest.ratio("convertImage, reference", "convertImage"),
            contest.ratio("chain, page by page", "chain"),
            contest.ratio("cv::remap", "chain"),
            contest.ratio("cv::remap, inside only", "chain")};
}

void printTable(const std::vector<Row> &rows)
{
    const auto cell = [](double value, int digits) {
        return (value > 0 ? QString::number(value, 'f', digits) : QStringLiteral("-")).rightJustified(8);
    };
    out() << "\n"
          << QString("factors").leftJustified(58)
          << "   chain   floor   large  rotate convert   pages   remap  inside\n"
          << QString().leftJustified(58)
          << "    /ref  /chain  /chain    /ref    /ref  /chain  /chain  /chain\n";
    for (const Row &row : rows)
        out() << row.name.leftJustified(58) << cell(row.chainOverReference, 1) << cell(row.floorOverChain, 2)
              << cell(row.largeFloorOverChain, 2) << cell(row.rotateOverReference, 1)
              << cell(row.convertOverReference, 1) << cell(row.pageByPageOverChain, 2)
              << cell(row.remapOverChain, 2) << cell(row.insideRemapOverChain, 2) << "\n";
    out() << Qt::flush;
}

void measureBatch(int rounds)
{
    out() << "\nA batch of 12-megapixel JPEG photographs: share of the engine in decoding + encoding\n";
    for (const QSize &size : {QSize(2048, 1024), QSize(8192, 4096)})
        for (const char *format : {"jpg", "png"}) {
            const BatchTimes times = timeBatch(size, format, rounds);
            out() << QString("    %1 x %2, %3: decode %4 ms, engine %5 ms, encode %6 ms: %7 %\n")
                         .arg(size.width())
                         .arg(size.height())
                         .arg(format)
                         .arg(times.decode, 0, 'f', 1)
                         .arg(times.between, 0, 'f', 1)
                         .arg(times.encode, 0, 'f', 1)
                         .arg(100 * times.between / (times.decode + times.encode), 0, 'f', 1)
                  << Qt::flush;
        }
}

void silence(QtMsgType, const QMessageLogContext &, const QString &)
{
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    qInstallMessageHandler(silence);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({"rounds", "How often every contestant takes its turn.", "n", "3"});
    options.addOption({"heights", "Heights of the maps, separated by commas.", "list", "1024,2048,4096"});
    options.addOption({"only-sizes", "Leave out the other photographs, the square map and the batch."});
    options.process(app);
    const int rounds = options.value("rounds").toInt();

    out() << "machine: " << machineName() << "\nvector target: " << vectorTarget() << "\n";
    std::vector<Row> rows;
    for (const QString &height : options.value("heights").split(','))
        for (const double distance : {6.6, 100.0})
            for (const double azimuth : {0.0, 30.0})
                rows.push_back(
                    measure(BenchCase(QSize(2 * height.toInt(), height.toInt()), azimuth, distance), rounds));
    if (!options.isSet("only-sizes")) {
        for (const BenchCase::Kind kind : {BenchCase::Kind::Leaving, BenchCase::Kind::Alpha})
            rows.push_back(measure(BenchCase({4096, 2048}, 30, 6.6, kind), rounds));
        rows.push_back(measure(BenchCase({8192, 8192}, 30, 6.6), rounds));
    }
    printTable(rows);
    if (!options.isSet("only-sizes"))
        measureBatch(rounds);
    return 0;
}
