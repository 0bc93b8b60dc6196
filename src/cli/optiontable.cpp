#include "optiontable.h"

#include "mapoptions.h"
#include "mapvalues.h"

namespace
{

QCommandLineOption withValue(const QStringList &names, const char *valueName, const QString &description)
{
    return {names, description, QString::fromLatin1(valueName)};
}

QCommandLineOption withoutValue(const QStringList &names, const QString &description)
{
    return {names, description};
}

/// "text, 1 to 100; 85 if nothing is said"
template <typename T>
QString ranged(const char *text, const MapValue<T> &value)
{
    return QStringLiteral("%1, %2 to %3; default %4")
        .arg(QLatin1String(text))
        .arg(value.lowest)
        .arg(value.highest)
        .arg(value.defaultValue);
}

OptionGroup circleGroup()
{
    return {
        "Disc of the planet",
        {withValue(
             {"c", "circle"}, "X,Y,RADIUS|find|find-once|fit",
             "centre and radius of the disc, in pixels of the photograph; \"find\": the disc that is found "
             "on each photograph; \"find-once\": the median of those found on the first ten, for all, as "
             "from a fixed camera; \"fit\": the middle of each photograph, 0.98 of its shorter half. The "
             "default is \"find\", and \"fit\" with a settings file that has no circle"),
         withValue({"circle-file"}, "FILE", "take the circle from a parameter file of the window"),
         withValue({"least-confidence"}, "C",
                   ranged("a disc found with less is no disc found", leastConfidenceOption)),
         withoutValue({"print-circle"},
                      "convert nothing; print path, x, y, radius and confidence of each disc found, with "
                      "tabs between, in pixels whose corners are whole numbers"),
         withValue({"save-circle"}, "FILE",
                   "convert nothing; write the disc found on the photographs, of several the median of the "
                   "first ten, into a parameter file, which the window loads")}};
}

OptionGroup valueGroup()
{
    return {
        "Values",
        {withValue({"settings"}, "FILE",
                   "take circle and values from a settings file of the window (ovmic.ini) first; every other "
                   "option wins over it"),
         withValue({"d", "distance"}, "RADII",
                   ranged("camera to centre of the globe, in radii of the globe", mapvalues::distance)),
         withValue({"latitude"}, "DEGREES", ranged("latitude of the disc's centre", mapvalues::latitude)),
         withValue({"longitude"}, "DEGREES", ranged("longitude of the disc's centre", mapvalues::longitude)),
         withValue({"azimuth"}, "DEGREES", ranged("rotation about the disc's centre", mapvalues::azimuth)),
         withValue({"s", "size"}, "WIDTHxHEIGHT",
                   QStringLiteral("size of the maps in pixels, each side %1 to %2; default %3x%4")
                       .arg(mapvalues::outputSizeX.lowest)
                       .arg(mapvalues::outputSizeX.highest)
                       .arg(mapvalues::outputSizeX.defaultValue)
                       .arg(mapvalues::outputSizeY.defaultValue)),
         withValue({"f", "format"}, "jpg|png",
                   "format of the maps; without it that of the settings file, the extension of the file that "
                   "--output names, or jpg"),
         withValue({"quality"}, "N", ranged("quality of the encoding", mapvalues::quality)),
         withValue(
             {"lens"}, "corrected|none",
             "whether radii near the edge of the disc are corrected, as the window does; \"none\" is right "
             "for pictures of a true perspective. The default is \"corrected\"")}};
}

OptionGroup outputGroup()
{
    return {
        "Maps",
        {withValue(
             {"o", "output"}, "PATH",
             "the folder of the maps, made if it is missing, or the file for a single photograph; without "
             "it each map lies beside its photograph"),
         withValue(
             {"n", "name"}, "TEMPLATE",
             "name of a map, with {name} (the photograph's, up to the first dot), {number} (its position in "
             "the whole list, from 0) and {number:5} (with 5 digits); default OV-{name}. The extension is "
             "added"),
         withoutValue({"overwrite"}, "replace maps that exist; otherwise they stay and count as failed"),
         withoutValue({"skip-existing"}, "pass over photographs whose map exists, as done"),
         withoutValue({"world-file"},
                      "beside each map write the six lines (.jgw, .pgw) that place it in a GIS")}};
}

OptionGroup inputGroup()
{
    return {"Photographs",
            {withValue({"files-from"}, "FILE",
                       "read more paths from a file, one a line; \"-\" is standard input"),
             withoutValue({"0", "null"}, "paths end with NUL bytes, those read and those printed"),
             withValue(
                 {"part"}, "I/N",
                 "convert only the I-th of N interleaved shares of the list: one machine's or task's part")}};
}

OptionGroup runGroup()
{
    return {
        "Run",
        {withValue(
             {"j", "jobs"}, "N",
             QStringLiteral("photographs side by side, 1 to %1; default the number of cores").arg(mostJobs)),
         withoutValue({"dry-run"},
                      "print photograph and map of each, with a tab between, and convert nothing"),
         withoutValue({"q", "quiet"}, "no progress line"),
         withValue({"progress"}, "auto|always",
                   "progress line only on a terminal, or also in a log. The default is \"auto\""),
         withoutValue({"h", "help"}, "print this help"),
         withoutValue({"v", "version"}, "print the version")}};
}

} // namespace

QVector<OptionGroup> optionGroups()
{
    return {circleGroup(), valueGroup(), outputGroup(), inputGroup(), runGroup()};
}
