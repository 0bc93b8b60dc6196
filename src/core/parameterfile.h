#pragma once

#include "mapconversion.h"
#include "selectioncircle.h"

#include <QString>

/// The circle of a parameter file.
struct CircleFile {
    SelectionCircle
        circle;      ///< 0 for what is missing; of a text that is no number, what the toolkit takes it for
    QString problem; ///< the first of them, or why the file cannot be read; empty if there is none
};

/// Reads a parameter file, or a settings file: both have the circle under the same keys.
CircleFile readCircleFile(const QString &path);

/// Writes a parameter file; what else is in it stays. @return whether it is on the disk
bool writeCircleFile(const QString &path, const SelectionCircle &circle);

/// What a settings file says about maps.
struct MapSettings {
    MapParameters parameters;
    int format = mapvalues::format.defaultValue;
    int quality = mapvalues::quality.defaultValue;
    bool namesFormat = false; ///< whether the file has a format
    QString problem;          ///< the first value that is no number, or why the file cannot be read
};

/// Reads circle and values of a settings file; the default stands for what is missing. Nothing is
/// range-checked.
MapSettings readMapSettings(const QString &path);
