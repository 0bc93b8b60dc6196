#include "discseries.h"

#include "discpictures.h"

#include <QDir>
#include <QPainter>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace
{

constexpr double degree = 0.017453292519943295;

struct Place {
    double longitudeDeg;
    double latitudeDeg;
};

/// Where a point of the photograph lies on a globe seen from afar with north up, by a circle.
Place placeOf(double x, double y, double centerX, double centerY, double radius)
{
    const double u = (x - centerX) / radius;
    const double v = (centerY - y) / radius;
    const double w = std::sqrt(std::max(1.0 - u * u - v * v, 0.0));
    return {std::atan2(u, w) / degree, std::asin(std::clamp(v, -1.0, 1.0)) / degree};
}

/// The greatest distance, in pixels of a map of 2048 x 1024, between the places that two circles give to a grid
/// of landmarks within 45 degrees of the disc's centre.
double landmarkError(const DiscPicture &truth, const FoundDisc &found)
{
    double worst = 0.0;
    for (int i = -3; i <= 3; ++i) {
        for (int j = -3; j <= 3; ++j) {
            if (i * i + j * j > 9)
                continue;
            const double step = std::sin(45.0 * degree) / 3.0 * truth.radius;
            const double x = truth.centerX + i * step;
            const double y = truth.centerY + j * step;
            const Place a = placeOf(x, y, truth.centerX, truth.centerY, truth.radius);
            const Place b = placeOf(x, y, found.centerX, found.centerY, found.radius);
            const double dx = (a.longitudeDeg - b.longitudeDeg) * 2048.0 / 360.0;
            const double dy = (a.latitudeDeg - b.latitudeDeg) * 2048.0 / 360.0;
            worst = std::max(worst, std::sqrt(dx * dx + dy * dy));
        }
    }
    return worst;
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
    double worstLandmark = 0.0;
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
        worstLandmark = std::max(worstLandmark, landmarkError(picture, *found));
    }
    out << QString("%1 frames, %2 without an answer; worst errors: centre %3 %, radius %4 % of the radius, "
                   "landmark %5 pixels of a map of 2048 x 1024")
               .arg(DiscSeries::frameCount)
               .arg(missing)
               .arg(worstCentre * 100.0, 0, 'f', 2)
               .arg(worstRadius * 100.0, 0, 'f', 2)
               .arg(worstLandmark, 0, 'f', 2)
        << Qt::endl;
    return missing == 0;
}
