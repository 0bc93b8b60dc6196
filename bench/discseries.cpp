#include "discseries.h"

#include "beacons.h"
#include "discpictures.h"
#include "mapconversion.h"

#include <QDir>
#include <QPainter>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{

/// The greatest distance of a beacon on one of the maps from where it lies on average.
double greatestShift(const std::vector<std::vector<QPointF>> &maps)
{
    double worst = 0.0;
    for (std::size_t i = 0; i < maps.front().size(); ++i) {
        QPointF mean;
        for (const auto &beacons : maps)
            mean += beacons.at(i) / double(maps.size());
        for (const auto &beacons : maps)
            worst = std::max(worst, std::hypot(beacons.at(i).x() - mean.x(), beacons.at(i).y() - mean.y()));
    }
    return worst;
}

/// The map that ovmic-map makes of a photograph when nothing is said but a circle.
QImage mapOf(const QImage &photograph, const SelectionCircle &circle)
{
    MapParameters parameters;
    parameters.centerX = circle.centerX;
    parameters.centerY = circle.centerY;
    parameters.radius = circle.radius;
    return convertToMap(photograph, parameters, AzimuthStep::Rotates, {});
}

} // namespace

QImage markedPicture(const QImage &photograph, const std::optional<FoundDisc> &found)
{
    const double scale = std::min(1.0, 640.0 / std::max(photograph.width(), photograph.height()));
    QImage picture = photograph.scaled(int(photograph.width() * scale), int(photograph.height() * scale),
                                       Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (!found)
        return picture;
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::red, found->confidence > 0.9 ? 1.5 : 1.0));
    painter.drawEllipse(QPointF(found->centerX * scale, found->centerY * scale), found->radius * scale,
                        found->radius * scale);
    return picture;
}

bool measureSeries(const QString &folder, QTextStream &out)
{
    QDir().mkpath(folder);
    const DiscSeries series(7);
    int missing = 0;
    double worstCentre = 0.0;
    double worstRadius = 0.0;
    std::vector<std::vector<QPointF>> beacons;
    for (int i = 0; i < DiscSeries::frameCount; ++i) {
        const DiscPicture picture = series.frame(i);
        const QString name = QString("%1/frame-%2.jpg").arg(folder).arg(i + 1, 2, 10, QChar('0'));
        picture.image.save(name, "JPEG", 90);
        const std::optional<FoundDisc> found = findDisc(picture.image);
        if (!found) {
            ++missing;
            continue;
        }
        const double dx = found->centerX - picture.centerX;
        const double dy = found->centerY - picture.centerY;
        worstCentre = std::max(worstCentre, std::sqrt(dx * dx + dy * dy) / picture.radius);
        worstRadius = std::max(worstRadius, std::abs(found->radius - picture.radius) / picture.radius);
        beacons.push_back(beaconsOn(mapOf(QImage(name), selectionCircle(*found))));
    }
    out << QString("%1 frames, %2 without an answer; worst errors: centre %3 %, radius %4 % of the radius, "
                   "beacons within %5 pixels of their means on maps of 2048 x 1024")
               .arg(DiscSeries::frameCount)
               .arg(missing)
               .arg(worstCentre * 100.0, 0, 'f', 2)
               .arg(worstRadius * 100.0, 0, 'f', 2)
               .arg(beacons.empty() ? 0.0 : greatestShift(beacons), 0, 'f', 2)
        << Qt::endl;
    return missing == 0;
}
