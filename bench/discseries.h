#pragma once

#include "discfinder.h"

#include <QImage>
#include <QString>

#include <optional>

class QTextStream;

/// A photograph, reduced to 640 pixels a side, with the circle drawn on in red: a thicker line above a confidence
/// of 0.9.
QImage markedPicture(const QImage &photograph, const std::optional<FoundDisc> &found);

/// Writes a drifting series into a folder, searches each photograph and prints how far circles and landmarks are
/// from the truth, and how far the beacons wander on the maps. @return whether every disc was found
bool measureSeries(const QString &folder, QTextStream &out);
