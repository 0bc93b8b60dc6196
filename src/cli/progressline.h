#pragma once

#include <QString>

/// How far a run is.
struct Progress {
    int all = 0;
    int done = 0; ///< with those that were there already
    int skipped = 0;
    int failed = 0;
    double seconds = 0; ///< since it began
};

/// "12 of 100, 1 failed, 8.5 photographs/s, 0:10 left"; rate and time as soon as they are known.
QString progressText(const Progress &progress);
