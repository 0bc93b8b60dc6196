#include "selectioncircle.h"

#include "integers.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>
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

/// Rows or columns from first to last, both included; none if last is less.
struct Interval {
    int first;
    int last;

    bool meets(const Interval &other) const { return first <= other.last && other.first <= last; }
};

/// Where the lines of a circle lie, with a margin for the pen and its rounding.
class DrawnLines
{
public:
    DrawnLines(const SelectionCircle &circle, int penSize)
        : m_circle(circle)
        , m_radius(std::abs(circle.radius))
        , m_margin(std::abs(penSize) / 2 + 4)
        , m_arm(2 * std::abs(penSize) + m_margin)
    {
    }

    /// The columns that some line touches in these rows, from left to right and apart from each other.
    QVector<Interval> columnsOfRows(Interval rows) const
    {
        QVector<Interval> columns;
        addSquare(columns, rows);
        addRing(columns, rows);
        addCross(columns, rows);
        return united(std::move(columns));
    }

private:
    Interval around(int centre, int distance) const { return {centre - distance, centre + distance}; }

    void addSquare(QVector<Interval> &columns, Interval rows) const
    {
        if (!rows.meets(around(m_circle.centerY, m_radius + m_margin)))
            return;
        if (rows.meets(around(m_circle.centerY - m_radius, m_margin)) ||
            rows.meets(around(m_circle.centerY + m_radius, m_margin))) {
            columns.append(around(m_circle.centerX, m_radius + m_margin));
        } else {
            columns.append(around(m_circle.centerX - m_radius, m_margin));
            columns.append(around(m_circle.centerX + m_radius, m_margin));
        }
    }

    void addRing(QVector<Interval> &columns, Interval rows) const
    {
        const double above = static_cast<double>(rows.first) - m_circle.centerY;
        const double below = static_cast<double>(rows.last) - m_circle.centerY;
        const double nearest =
            above <= 0.0 && below >= 0.0 ? 0.0 : std::min(std::abs(above), std::abs(below));
        const double farthest = std::max(std::abs(above), std::abs(below));
        const int outer = halfChord(m_radius + m_margin, nearest);
        const int inner = halfChord(m_radius - m_margin, farthest);
        if (outer < 0)
            return;
        columns.append({m_circle.centerX - outer - 1, m_circle.centerX - std::max(inner, 0)});
        columns.append({m_circle.centerX + std::max(inner, 0), m_circle.centerX + outer + 1});
    }

    void addCross(QVector<Interval> &columns, Interval rows) const
    {
        if (rows.meets(around(m_circle.centerY, m_margin)))
            columns.append(around(m_circle.centerX, m_arm));
        else if (rows.meets(around(m_circle.centerY, m_arm)))
            columns.append(around(m_circle.centerX, m_margin));
    }

    /// Half the width of a circle at a distance from its centre, rounded down; -1 beyond it.
    static int halfChord(double radius, double distance)
    {
        return distance > radius ? -1 : static_cast<int>(std::sqrt(radius * radius - distance * distance));
    }

    static QVector<Interval> united(QVector<Interval> intervals)
    {
        std::sort(intervals.begin(), intervals.end(),
                  [](const Interval &a, const Interval &b) { return a.first < b.first; });
        QVector<Interval> result;
        for (const Interval &interval : intervals) {
            if (!result.isEmpty() && interval.first <= result.last().last + 1)
                result.last().last = std::max(result.last().last, interval.last);
            else
                result.append(interval);
        }
        return result;
    }

    SelectionCircle m_circle;
    int m_radius;
    int m_margin;
    int m_arm;
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

std::optional<SelectionCircle> drawnCircle(QPoint centre, QPoint firstCorner, QPoint lastCorner)
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

void drawCircle(QImage &picture, const SelectionCircle &circle, const QColor &penColor, int penSize,
                Qt::PenStyle square)
{
    // In doubles, where no sum of ints overflows. Whole numbers paint the same pixels as ints do.
    const double x = circle.centerX;
    const double y = circle.centerY;
    const double r = circle.radius;
    const double arm = 2.0 * penSize;
    const double ellipseRadius =
        r < 0.0 ? 1.0 - r : r; // QRect turns a negative box round one pixel further out

    QPen pen(QBrush(penColor), penSize, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    QPainter painter(&picture);
    painter.setPen(pen);
    painter.drawEllipse(
        QRectF(x - ellipseRadius, y - ellipseRadius, 2.0 * ellipseRadius, 2.0 * ellipseRadius));
    painter.drawLine(QLineF(x, y - arm, x, y + arm));
    painter.drawLine(QLineF(x - arm, y, x + arm, y));
    pen.setStyle(square);
    painter.setPen(pen);
    painter.drawRect(QRectF(x - r, y - r, 2.0 * r + 1.0, 2.0 * r + 1.0));
}

std::optional<QVector<QRect>> drawnRectangles(QSize picture, const SelectionCircle &circle, int penSize)
{
    constexpr int largestCoordinate = 32767;
    constexpr int widestPen = 1024;
    const auto isKnown = [](int value, int limit) { return value >= -limit && value <= limit; };
    if (!isKnown(circle.centerX, largestCoordinate) || !isKnown(circle.centerY, largestCoordinate) ||
        !isKnown(circle.radius, largestCoordinate) || !isKnown(penSize, widestPen))
        return std::nullopt;

    constexpr int bandHeight = 16;
    const DrawnLines lines(circle, penSize);
    QVector<QRect> rectangles;
    for (int top = 0; top < picture.height(); top += bandHeight) {
        const int bottom = std::min(top + bandHeight, picture.height()) - 1;
        for (const Interval &columns : lines.columnsOfRows({top, bottom})) {
            const int left = std::max(columns.first, 0);
            const int right = std::min(columns.last, picture.width() - 1);
            if (left <= right)
                rectangles.append(QRect(QPoint(left, top), QPoint(right, bottom)));
        }
    }
    return rectangles;
}
