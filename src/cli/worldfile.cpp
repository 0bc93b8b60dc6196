#include "worldfile.h"

#include "sphererotation.h"

#include <QFileInfo>

namespace
{

/// Degrees from one column and row to the next, and the place of the upper left pixel.
struct Placement {
    double columnDeg;
    double rowDeg;
    double longitude;
    double latitude;
};

/// What a shift in whole columns leaves of an angle.
double restOfShift(double angleDeg, int width)
{
    return angleDeg - projection::columnShift(angleDeg, width) * 360.0 / width;
}

Placement placementOf(const MapParameters &parameters)
{
    Placement placement = {360.0 / parameters.outputSizeX, 180.0 / parameters.outputSizeY, -180, 90};
    placement.longitude += restOfShift(parameters.longitude + 90, parameters.outputSizeX);
    if (parameters.latitude == 90) {
        // The map is not resampled: the work map counts its columns and rows from one, and turns about the pole.
        placement.longitude += placement.columnDeg + restOfShift(-parameters.azimuth, parameters.outputSizeX);
        placement.latitude -= placement.rowDeg;
    }
    return placement;
}

} // namespace

QByteArray worldFile(const MapParameters &parameters)
{
    constexpr int digits = 15;
    const Placement placement = placementOf(parameters);
    const double lines[] = {placement.columnDeg, 0, 0, -placement.rowDeg, placement.longitude,
                            placement.latitude};
    QByteArray text;
    for (const double line : lines)
        text += QByteArray::number(line, 'g', digits) + '\n';
    return text;
}

QString worldFilePath(const QString &mapPath, const QString &format)
{
    const QString name = QFileInfo(mapPath).fileName();
    const QString base = QFileInfo(mapPath).completeBaseName();
    return mapPath.left(mapPath.size() - name.size()) + base + QLatin1Char('.') + format.at(0) +
           format.at(format.size() - 1) + QLatin1Char('w');
}
