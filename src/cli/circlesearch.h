#pragma once

#include "discfinder.h"
#include "mapoptions.h"

#include <QString>
#include <QVector>

#include <optional>

/// How many photographs, from the first on, decide about the circle of a whole list.
constexpr int searchedForMedian = 10;

/// A disc, or the reason why there is none.
struct SoughtDisc {
    std::optional<FoundDisc> disc;
    QString reason; ///< in English, one line without a full stop; empty if there is a disc
};

/// The disc on a photograph, if it is sure enough.
SoughtDisc soughtDisc(const QImage &photograph, double leastConfidence);

/// The medians of centres, radii and confidences, each by itself, so that a few wrong discs do no harm.
/// @return nothing for no disc
std::optional<FoundDisc> medianDisc(const QVector<FoundDisc> &discs);

/// The median disc of the first photographs of the whole list, whatever share of it a run has: every share works with
/// the same circle. Photographs that cannot be read count as some without a disc.
std::optional<FoundDisc> discOfList(const MapOptions &options);

/// Prints the discs of the photographs in this run's share of the list, and saves the median disc of the first
/// photographs of the whole list as a circle, as the options say. Failures are reported on the standard error.
/// @return the status of the program
int findCircles(const MapOptions &options);
