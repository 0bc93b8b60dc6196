#include "circlepainter.h"

#include <QImage>
#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace
{

/// Rows or columns from first to last, both included; none if last is less.
struct Interval {
    int first;
    int last;

    bool meets(const Interval &other) const { return first <= other.last && other.first <= last; }
};

/// Where the lines of a circle lie, with a margin for the pen and its rounding.
class CircleLines
{
public:
    CircleLines(const SelectionCircle &circle, int penSize)
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

void paintCircle(QImage &picture, const SelectionCircle &circle, const CirclePen &circlePen)
{
    // In doubles, where no sum of ints overflows. Whole numbers paint the same pixels as ints do.
    const double x = circle.centerX;
    const double y = circle.centerY;
    const double r = circle.radius;
    const double arm = 2.0 * circlePen.size;
    const double ellipseRadius =
        r < 0.0 ? 1.0 - r : r; // QRect turns a negative box round one pixel further out

    QPen pen(QBrush(circlePen.color), circlePen.size, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    QPainter painter(&picture);
    painter.setPen(pen);
    painter.drawEllipse(
        QRectF(x - ellipseRadius, y - ellipseRadius, 2.0 * ellipseRadius, 2.0 * ellipseRadius));
    painter.drawLine(QLineF(x, y - arm, x, y + arm));
    painter.drawLine(QLineF(x - arm, y, x + arm, y));
    pen.setStyle(circlePen.square);
    painter.setPen(pen);
    painter.drawRect(QRectF(x - r, y - r, 2.0 * r + 1.0, 2.0 * r + 1.0));
}

std::optional<QVector<QRect>> paintedRectangles(QSize picture, const SelectionCircle &circle, int penSize)
{
    constexpr int largestCoordinate = 32767;
    constexpr int widestPen = 1024;
    const auto isKnown = [](int value, int limit) { return value >= -limit && value <= limit; };
    if (!isKnown(circle.centerX, largestCoordinate) || !isKnown(circle.centerY, largestCoordinate) ||
        !isKnown(circle.radius, largestCoordinate) || !isKnown(penSize, widestPen))
        return std::nullopt;

    constexpr int bandHeight = 16;
    const CircleLines lines(circle, penSize);
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
