#include "selectioncircle.h"

#include "integers.h"

#include <QPainterPath>
#include <QPolygonF>
#include <QTransform>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace
{

constexpr int reach = 8; // how far beside a handle the mouse still holds it, photograph pixels

int wrapped(qint64 value)
{
    return static_cast<int>(static_cast<quint32>(static_cast<quint64>(value)));
}

/// A square around the centre of a circle with both corners included; wider than int, so that it cannot
/// overflow. A negative half side turns its corners round.
struct Square {
    qint64 left;
    qint64 top;
    qint64 right;
    qint64 bottom;

    Square(const SelectionCircle &circle, qint64 halfSide)
        : left(circle.centerX - halfSide)
        , top(circle.centerY - halfSide)
        , right(circle.centerX + halfSide)
        , bottom(circle.centerY + halfSide)
    {
    }

    bool contains(QPoint p) const
    {
        return p.x() >= std::min(left, right) && p.x() <= std::max(left, right) &&
               p.y() >= std::min(top, bottom) && p.y() <= std::max(top, bottom);
    }

    /// Whether the disc that touches the sides contains a point. Pixel for pixel the toolkit's ellipse
    /// region: the outline is flattened to a polygon with whole coordinates, and a pixel belongs to it that
    /// lies inside, on the left or on the top edge.
    bool discContains(QPoint p) const
    {
        if (right < left || !contains(p))
            return false;
        QPainterPath outline;
        outline.addEllipse(QRectF(static_cast<double>(left), static_cast<double>(top),
                                  static_cast<double>(right - left + 1),
                                  static_cast<double>(bottom - top + 1)));
        const QPolygonF corners = outline.toSubpathPolygons(QTransform()).constFirst();
        bool inside = false;
        for (int i = 1; i < corners.size(); ++i) {
            if (crossesLeftOf(p, corners[i - 1], corners[i]))
                inside = !inside;
        }
        return inside;
    }

private:
    /// Whether a polygon's side, its ends rounded to whole coordinates, passes the row of a point at or left
    /// of it.
    static bool crossesLeftOf(QPoint p, QPointF from, QPointF to)
    {
        qint64 x1 = qRound64(from.x());
        qint64 y1 = qRound64(from.y());
        qint64 x2 = qRound64(to.x());
        qint64 y2 = qRound64(to.y());
        if (y1 > y2) {
            std::swap(x1, x2);
            std::swap(y1, y2);
        }
        if (p.y() < y1 || p.y() >= y2 || p.x() < std::min(x1, x2))
            return false;
        if (p.x() >= std::max(x1, x2))
            return true;
        return (p.x() - x1) * (y2 - y1) >= (p.y() - y1) * (x2 - x1);
    }
};

} // namespace

SelectionCircle defaultCircle(QSize photograph)
{
    const int x = photograph.width() / 2;
    const int y = photograph.height() / 2;
    return {x, y, projection::truncateToInt(std::min(x, y) * 0.98)};
}

SelectionCircle stepped(const SelectionCircle &circle, int dx, int dy, int dRadius)
{
    return {wrapped(qint64{circle.centerX} + dx), wrapped(qint64{circle.centerY} + dy),
            wrapped(qint64{circle.radius} + dRadius)};
}

SelectionCircle moved(const SelectionCircle &circle, QPoint from, QPoint to)
{
    return {wrapped(qint64{circle.centerX} + to.x() - from.x()),
            wrapped(qint64{circle.centerY} + to.y() - from.y()), circle.radius};
}

SelectionCircle resized(const SelectionCircle &circle, QPoint position)
{
    const qint64 dx = std::abs(qint64{position.x()} - circle.centerX);
    const qint64 dy = std::abs(qint64{position.y()} - circle.centerY);
    return {circle.centerX, circle.centerY, wrapped(std::max(dx, dy))};
}

std::optional<SelectionCircle> newCircle(QPoint centre, QPoint firstCorner, QPoint lastCorner)
{
    const int width = wrapped(qint64{lastCorner.x()} - firstCorner.x());
    const int height = wrapped(qint64{lastCorner.y()} - firstCorner.y());
    if (width <= 0 || height <= 0)
        return std::nullopt;
    return SelectionCircle{centre.x(), centre.y(), std::max(width, height)};
}

CircleZone zoneAt(const SelectionCircle &circle, QPoint position)
{
    const Square inner(circle, qint64{circle.radius} - reach);
    const Square outer(circle, qint64{circle.radius} + reach);
    if (Square(circle, reach).discContains(position))
        return CircleZone::CentreHandle;
    if (outer.discContains(position) && !inner.discContains(position))
        return CircleZone::Ring;
    if (!outer.contains(position))
        return CircleZone::Outside;
    return inner.contains(position) ? CircleZone::Inside : CircleZone::Corner;
}

std::optional<Qt::CursorShape> cursorAt(const SelectionCircle &circle, QPoint position)
{
    switch (zoneAt(circle, position)) {
    case CircleZone::CentreHandle:
    case CircleZone::Ring:
        return Qt::SizeAllCursor;
    case CircleZone::Corner: {
        const bool upperLeft = position.x() < circle.centerX && position.y() < circle.centerY;
        const bool lowerRight = position.x() > circle.centerX && position.y() > circle.centerY;
        return upperLeft || lowerRight ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
    }
    case CircleZone::Outside:
    case CircleZone::Inside:
        break;
    }
    return std::nullopt;
}
