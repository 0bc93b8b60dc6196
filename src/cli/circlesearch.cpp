#include "circlesearch.h"

#include "exitstatus.h"
#include "parameterfile.h"
#include "photographfile.h"
#include "plainpath.h"
#include "report.h"
#include "stopsignals.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>

namespace
{

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    const int upper = values.size() / 2;
    const int lower = (values.size() - 1) / 2;
    return (values.at(lower) + values.at(upper)) / 2;
}

double medianOf(const QVector<FoundDisc> &discs, double FoundDisc::*member)
{
    QVector<double> values;
    for (const FoundDisc &disc : discs)
        values.append(disc.*member);
    return median(values);
}

/// One line: path, centre, radius, confidence.
bool printDisc(const QString &photograph, const FoundDisc &disc, Separator separator)
{
    QByteArray line = QFile::encodeName(photograph);
    for (const double number : {disc.centerX, disc.centerY, disc.radius})
        line += '\t' + QByteArray::number(number, 'f', 2);
    line += '\t' + QByteArray::number(disc.confidence, 'f', 3) + (separator == Separator::Null ? '\0' : '\n');
    return std::fwrite(line.constData(), 1, size_t(line.size()), stdout) == size_t(line.size()) &&
           std::fflush(stdout) == 0;
}

SoughtDisc soughtDisc(const QString &path, double leastConfidence)
{
    const LoadedPhotograph photograph = loadPhotograph(path);
    return photograph.reason.isEmpty() ? soughtDisc(photograph.image, leastConfidence)
                                       : SoughtDisc{std::nullopt, photograph.reason};
}

/// @return why the circle cannot be saved; empty if it is saved
QString savedCircle(const QString &path, const SelectionCircle &circle, ExistingMap existing)
{
    if (existing != ExistingMap::IsReplaced && QFileInfo::exists(path))
        return QStringLiteral("file exists: ") + path;
    return writeCircleFile(path, circle) ? QString() : QStringLiteral("file cannot be written: ") + path;
}

} // namespace

SoughtDisc soughtDisc(const QImage &photograph, double leastConfidence)
{
    try {
        const std::optional<FoundDisc> disc = findDisc(photograph);
        if (disc && disc->confidence >= leastConfidence)
            return {disc, QString()};
        return {std::nullopt, QStringLiteral("no disc found")};
    } catch (const std::bad_alloc &) {
        return {std::nullopt, QStringLiteral("disc cannot be looked for: Not enough memory")};
    }
}

std::optional<FoundDisc> medianDisc(const QVector<FoundDisc> &discs)
{
    if (discs.isEmpty())
        return std::nullopt;
    return FoundDisc{medianOf(discs, &FoundDisc::centerX), medianOf(discs, &FoundDisc::centerY),
                     medianOf(discs, &FoundDisc::radius), medianOf(discs, &FoundDisc::confidence)};
}

std::optional<FoundDisc> discOfList(const MapOptions &options)
{
    QVector<FoundDisc> discs;
    const int count = std::min(options.photographs.size(), searchedForMedian);
    for (int i = 0; i < count && StopSignals::received() == 0; ++i) {
        const SoughtDisc sought = soughtDisc(options.photographs.at(i), options.leastConfidence);
        if (sought.disc)
            discs.append(*sought.disc);
    }
    return medianDisc(discs);
}

int findCircles(const MapOptions &options)
{
    const StopSignals stopSignals;
    const bool saves = !options.circleFile.isEmpty();
    QVector<FoundDisc> first;
    bool failed = false;
    for (int i = 0; i < options.photographs.size(); ++i) {
        if (StopSignals::received() != 0)
            return stoppedBySignal + StopSignals::received();
        const bool prints = options.printCircles && i % options.share.count == options.share.index;
        const bool counts = saves && i < searchedForMedian;
        if (!prints && !counts)
            continue;
        const QString photograph = options.photographs.at(i);
        const SoughtDisc sought = soughtDisc(photograph, options.leastConfidence);
        if (!sought.disc) {
            printProblem(photograph + QStringLiteral(": ") + sought.reason);
            failed = true;
            continue;
        }
        if (counts)
            first.append(*sought.disc);
        if (prints && !printDisc(photograph, *sought.disc, options.separator)) {
            if (errno == EPIPE)
                endByBrokenPipe();
            return someFailed;
        }
    }
    const std::optional<FoundDisc> disc = medianDisc(first);
    if (disc) {
        const QString problem =
            savedCircle(plainPath(options.circleFile), selectionCircle(*disc), options.existing);
        if (!problem.isEmpty()) {
            printProblem(problem);
            failed = true;
        }
    }
    return failed ? someFailed : 0;
}
