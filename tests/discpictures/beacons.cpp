#include "beacons.h"

#include <QPainter>

#include <array>
#include <cmath>

namespace
{

constexpr double away = 25.0 * 0.017453292519943295;

struct Place {
    double longitude; // radians, from the middle of the disc
    double latitude;
};

constexpr std::array<Place, 5> places = {Place{0.0, 0.0}, Place{away, 0.0}, Place{-away, 0.0},
                                         Place{0.0, away}, Place{0.0, -away}};

/// The middle of what is brighter than any ground, near a point.
QPointF brightSpot(const QImage &map, QPointF near)
{
    constexpr int reach = 16;
    constexpr int ground = 160;
    double sum = 0.0;
    QPointF middle;
    for (int y = int(near.y()) - reach; y <= int(near.y()) + reach; ++y) {
        for (int x = int(near.x()) - reach; x <= int(near.x()) + reach; ++x) {
            const double light = qGray(map.pixel(x, y)) - ground;
            if (light <= 0.0)
                continue;
            sum += light;
            middle += light * QPointF(x + 0.5, y + 0.5);
        }
    }
    return middle / sum;
}

} // namespace

void paintBeacons(QImage &photograph, double centerX, double centerY, double radius)
{
    QPainter painter(&photograph);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    for (const Place &place : places)
        painter.drawEllipse(QPointF(centerX + radius * std::sin(place.longitude),
                                    centerY - radius * std::sin(place.latitude)),
                            4.0, 4.0);
}

std::vector<QPointF> beaconsOn(const QImage &map)
{
    constexpr double fullTurn = 6.283185307179586;
    std::vector<QPointF> spots;
    spots.reserve(places.size());
    for (const Place &place : places)
        spots.push_back(brightSpot(map, QPointF((0.5 + place.longitude / fullTurn) * map.width(),
                                                (0.5 - 2.0 * place.latitude / fullTurn) * map.height())));
    return spots;
}
