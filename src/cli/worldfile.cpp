#include "worldfile.h"

#include "sphererotation.h"

#include <QFileInfo>

namespace
{

/// Longitude of the leftmost column: -180, and what the shift of the map, in whole columns, falls short of it.
double leftmostLongitude(const MapParameters &parameters)
{
    constexpr double discCentre = 90; // where it stands before that shift, degrees from the left
    const double columnDeg = 360.0 / parameters.outputSizeX;
    const double shiftDeg = parameters.longitude + discCentre;
    const auto columns = double(projection::columnShift(shiftDeg, parameters.outputSizeX));
    const double longitude = parameters.longitude - discCentre - columns * columnDeg;
    return longitude;
}

} // namespace

QByteArray worldFile(const MapParameters &parameters)
{
    constexpr int digits = 15;
    const double lines[] = {360.0 / parameters.outputSizeX, 0, 0, -180.0 / parameters.outputSizeY,
                            leftmostLongitude(parameters),  90};
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
