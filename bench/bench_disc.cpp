// How well discs are found, on photographs that are drawn from seeds so that the truth is known, beside
// cv::HoughCircles where OpenCV is installed; and how long a search takes. docs/disc.md explains the columns.
#include "circlerivals.h"
#include "discseries.h"

#include "discfinder.h"
#include "discpictures.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <functional>
#include <vector>

namespace
{

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

/// Processor time of the process and all its threads, milliseconds.
double cpuMilliseconds()
{
    return double(std::clock()) * 1e3 / CLOCKS_PER_SEC;
}

/// The worse of the errors of centre and radius, as a share of the radius.
double errorOf(const FoundDisc &found, const DiscPicture &truth)
{
    const double dx = found.centerX - truth.centerX;
    const double dy = found.centerY - truth.centerY;
    return std::max(std::sqrt(dx * dx + dy * dy), std::abs(found.radius - truth.radius)) / truth.radius;
}

/// What a class has to reach.
struct Demand {
    double limit; ///< largest error of a hit, part of the radius
    double aimLimit;
    const char *required;
};

Demand demandFor(PictureKind kind)
{
    switch (kind) {
    case PictureKind::Whole:
    case PictureKind::Marked:
        return {0.01, 0.005, "0.90"};
    case PictureKind::BrightSky:
    case PictureKind::Cut:
        return {0.015, 0.005, "0.85"};
    case PictureKind::Phase:
        return {0.02, 0.01, "0.75"};
    case PictureKind::NoDisc:
        return {0.0, 0.0, "0.90"};
    case PictureKind::Odd:
        break;
    }
    return {0.015, 0.005, "-"};
}

using Finder = std::function<std::optional<FoundDisc>(const QImage &)>;

struct Contestant {
    QString name;
    Finder find;
    int wrong = 0;    ///< reported and off by more than 0.05, or reported where nothing is
    int pictures = 0; ///< the odd ones left out
    std::vector<std::pair<double, double>> answers{}; ///< confidence and error
};

struct Score {
    int hits = 0;
    int fineHits = 0;
    std::vector<double> errors{};
};

/// Counts an answer, and says whether it is a hit.
bool count(Contestant &contestant, Score &score, PictureKind kind, const DiscPicture &picture,
           const std::optional<FoundDisc> &found)
{
    const Demand demand = demandFor(kind);
    const double error = found ? (picture.hasDisc ? errorOf(*found, picture) : 1e9) : 0.0;
    if (kind != PictureKind::Odd) {
        ++contestant.pictures;
        contestant.wrong += found && error > 0.05 ? 1 : 0;
        if (found)
            contestant.answers.emplace_back(found->confidence, error);
    }
    if (found && picture.hasDisc)
        score.errors.push_back(error);
    const bool isHit = picture.hasDisc ? found && error <= demand.limit : !found;
    score.hits += isHit ? 1 : 0;
    score.fineHits += picture.hasDisc ? (found && error <= demand.aimLimit ? 1 : 0) : (found ? 0 : 1);
    return isHit;
}

double median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void printCalibration(const Contestant &contestant)
{
    out() << "\nConfidence of " << contestant.name << ", answers and their share within 1 %:" << Qt::endl;
    for (const double least : {0.0, 0.5, 0.6, 0.7, 0.8, 0.9, 0.95, 0.98}) {
        int answers = 0;
        int good = 0;
        for (const auto &[confidence, error] : contestant.answers) {
            answers += confidence >= least ? 1 : 0;
            good += confidence >= least && error <= 0.01 ? 1 : 0;
        }
        out() << QString("  at least %1  %2 answers  %3")
                     .arg(least, 0, 'f', 2)
                     .arg(answers, 5)
                     .arg(answers > 0 ? double(good) / answers : 1.0, 0, 'f', 3)
              << Qt::endl;
    }
}

struct Options {
    quint32 seed = 1;
    int count = 100;
    int longestSide = 4000;
    QString folder;
    QString only;
    bool rivals = true;
    bool verbose = false;
};

void saveMarked(const Options &options, PictureKind kind, int number, const DiscPicture &picture,
                const std::optional<FoundDisc> &found, bool isHit)
{
    if (options.folder.isEmpty())
        return;
    QDir().mkpath(options.folder);
    const QString name = QString("%1/%2-%3-%4.png")
                             .arg(options.folder, isHit ? "hit" : "miss", nameOf(kind).replace(' ', '-'))
                             .arg(number);
    markedPicture(picture.image, found).save(name);
}

void measure(const Options &options, std::vector<Contestant> &contestants)
{
    out() << QString("%1 pictures of each kind, from seed %2\n").arg(options.count).arg(options.seed)
          << Qt::endl;
    for (const PictureKind kind : everyPictureKind) {
        if (!options.only.isEmpty() && !nameOf(kind).startsWith(options.only))
            continue;
        std::vector<Score> scores(contestants.size());
        for (int i = 0; i < options.count; ++i) {
            const DiscPicture picture = discPicture(kind, options.seed + quint32(i), options.longestSide);
            for (size_t c = 0; c < contestants.size(); ++c) {
                const std::optional<FoundDisc> found = contestants[c].find(picture.image);
                const bool isHit = count(contestants[c], scores[c], kind, picture, found);
                if (c > 0)
                    continue;
                saveMarked(options, kind, i, picture, found, isHit);
                if (options.verbose && !isHit)
                    out() << "  miss " << i << ' ' << picture.image.width() << 'x' << picture.image.height()
                          << " truth " << picture.centerX << ' ' << picture.centerY << ' ' << picture.radius
                          << (found ? QString(" found %1 %2 %3 confidence %4 error %5")
                                          .arg(found->centerX)
                                          .arg(found->centerY)
                                          .arg(found->radius)
                                          .arg(found->confidence)
                                          .arg(errorOf(*found, picture))
                                    : QString(" nothing"))
                          << " |" << picture.recipe << Qt::endl;
            }
        }
        for (size_t c = 0; c < contestants.size(); ++c)
            out() << QString("%1  %2  within %3: %4 (required %5)  within %6: %7  median error %8")
                         .arg(nameOf(kind), -20)
                         .arg(contestants[c].name, -18)
                         .arg(demandFor(kind).limit, 5, 'f', 3)
                         .arg(double(scores[c].hits) / options.count, 0, 'f', 3)
                         .arg(demandFor(kind).required)
                         .arg(demandFor(kind).aimLimit, 5, 'f', 3)
                         .arg(double(scores[c].fineHits) / options.count, 0, 'f', 3)
                         .arg(median(scores[c].errors), 0, 'f', 4)
                  << Qt::endl;
    }
    for (const Contestant &contestant : contestants)
        out() << QString("wrong by more than 0.05, of all: %1  %2")
                     .arg(contestant.name, -18)
                     .arg(double(contestant.wrong) / std::max(contestant.pictures, 1), 0, 'f', 4)
              << Qt::endl;
    printCalibration(contestants.front());
}

/// A grey disc, a little grainy, on black.
QRgb testPixel(int x, int y)
{
    const int dx = x - 2000;
    const int dy = y - 1500;
    const int grain = (x * 7 + y * 13) % 32;
    return dx * dx + dy * dy < 1300 * 1300 ? qRgb(150 + grain, 150 + grain, 140) : qRgb(5, 5, 5);
}

/// A line of this process's status that holds kilobytes, or -1 where the system has none.
int statusKilobytes(const QByteArray &key)
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(key.size()).simplified().split(' ').first().toInt();
    return -1;
}

/// Lets the peak of the memory in use start anew.
void resetPeak()
{
    QFile file("/proc/self/clear_refs");
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

/// How far one search raises the peak of the memory in use.
void measureMemory()
{
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_Grayscale8}) {
        QImage image(4000, 3000, format);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (format == QImage::Format_RGB32)
                    reinterpret_cast<QRgb *>(image.scanLine(y))[x] = testPixel(x, y);
                else
                    image.scanLine(y)[x] = uchar(qGray(testPixel(x, y)));
        resetPeak();
        const int before = statusKilobytes("VmHWM:");
        const bool found = findDisc(image).has_value();
        out() << QString("Memory for a search on 4000 x 3000, %1 bits a pixel: %2 MB (%3)")
                     .arg(image.depth())
                     .arg((statusKilobytes("VmHWM:") - before) / 1024.0, 0, 'f', 1)
                     .arg(found ? "found" : "not found")
              << Qt::endl;
    }
}

/// Median processor time of a search on photographs of these sizes.
void measureTime(const std::vector<Contestant> &contestants)
{
    out() << "\nProcessor time of a search, milliseconds, median and worst of 20 pictures:" << Qt::endl;
    for (const int side : {640, 1280, 2048, 4000}) {
        for (const Contestant &contestant : contestants) {
            std::vector<double> times;
            for (quint32 i = 0; i < 20; ++i) {
                const PictureKind kind = everyPictureKind[i % 7];
                const QImage image =
                    discPicture(kind, 77 + i, 700)
                        .image.scaled(side, side * 3 / 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
                const QImage picture = image.convertToFormat(QImage::Format_RGB32);
                const double start = cpuMilliseconds();
                contestant.find(picture);
                times.push_back(cpuMilliseconds() - start);
            }
            out() << QString("  %1 x %2  %3  %4  %5")
                         .arg(side, 4)
                         .arg(side * 3 / 4, 4)
                         .arg(contestant.name, -18)
                         .arg(median(times), 6, 'f', 1)
                         .arg(*std::max_element(times.begin(), times.end()), 6, 'f', 1)
                  << Qt::endl;
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption seed("seed", "First seed.", "number", "2000000");
    const QCommandLineOption number("count", "Pictures of each kind.", "number", "130");
    const QCommandLineOption side("side", "Longest side of a picture.", "pixels", "4000");
    const QCommandLineOption save("save", "Writes every picture, with the circle found.", "folder");
    const QCommandLineOption only("only", "Only the kinds whose names begin so.", "name");
    const QCommandLineOption alone("alone", "Without the rivals and the times.");
    const QCommandLineOption misses("misses", "Names each miss.");
    const QCommandLineOption series("series", "Writes a drifting series instead, and measures it.", "folder");
    parser.addOptions({seed, number, side, save, only, alone, misses, series});
    parser.process(app);
    if (parser.isSet(series))
        return measureSeries(parser.value(series), out()) ? 0 : 1;

    Options options;
    options.seed = parser.value(seed).toUInt();
    options.count = std::max(parser.value(number).toInt(), 1);
    options.longestSide = std::max(parser.value(side).toInt(), 300);
    options.folder = parser.value(save);
    options.only = parser.value(only);
    options.verbose = parser.isSet(misses);
    std::vector<Contestant> contestants = {{"this finder", findDisc}};
#ifdef BENCH_OPENCV
    if (!parser.isSet(alone)) {
        contestants.push_back(
            {"HOUGH_GRADIENT", [](const QImage &image) { return houghDisc(image, false); }});
        contestants.push_back(
            {"HOUGH_GRADIENT_ALT", [](const QImage &image) { return houghDisc(image, true); }});
    }
#endif
    if (!parser.isSet(alone))
        measureMemory();
    measure(options, contestants);
    if (!parser.isSet(alone))
        measureTime(contestants);
    return 0;
}
