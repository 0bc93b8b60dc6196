#pragma once

#include "mapconversion.h"
#include "mapvalues.h"
#include "nametemplate.h"
#include "photographlist.h"
#include "selectioncircle.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

/// The circle that the window fits to a photograph of which nothing is known.
struct FittedCircle {
};

/// The disc that is found on a photograph.
struct SoughtCircle {
    bool once = false; ///< on the first photographs of the list, for all of them: a fixed camera
};

/// Where the circle of a photograph comes from.
using CircleSource = std::variant<SoughtCircle, FittedCircle, SelectionCircle>;

/// The least confidence of a disc that counts as found. With the default, fewer than two circles of a hundred are off
/// by more than 1 % of their radius (docs/disc.md).
inline constexpr MapValue<double> leastConfidenceOption = {"", 0.8, 0.0, 1.0};

/// What happens to a map that exists already.
enum class ExistingMap { Fails, IsReplaced, IsDone };

/// One of several interleaved shares of a list: those whose position, divided by count, leaves index.
struct Share {
    int index = 0;
    int count = 1;
};

/// The command line as values.
struct MapOptions {
    enum class Action { Convert, DryRun, FindCircles, Help, Version };
    Action action = Action::Convert;

    CircleSource circle;
    double leastConfidence = leastConfidenceOption.defaultValue; ///< of a disc that counts as found
    bool printCircles = false;                                   ///< FindCircles: a line for each disc
    QString circleFile;       ///< FindCircles: where the median circle goes; empty: nowhere
    MapParameters parameters; ///< without the circle
    QString format;           ///< "jpg", "png", or empty: the output decides
    int quality = mapvalues::quality.defaultValue;

    QString output; ///< empty: beside each photograph
    NameTemplate name;
    bool hasName = false; ///< whether a template was given
    ExistingMap existing = ExistingMap::Fails;
    bool worldFile = false;

    PhotographList photographs;
    bool hasListFile = false;
    Separator separator = Separator::Newline;
    Share share;

    int jobs = 1;
    bool quiet = false;
    bool progressAlways = false;
};

/// Reads the command line, and the files of settings, circle and paths that it names.
/// @param arguments  the first is the program's name
/// @param problem    receives one line that says what is wrong
/// @return nothing if anything is
std::optional<MapOptions> readOptions(const QStringList &arguments, QString &problem);
