#include "picturescale.h"

#include "integers.h"

#include <QRect>

#include <algorithm>

namespace
{

double quotient(int dividend, int divisor)
{
    return static_cast<double>(dividend) / static_cast<double>(divisor);
}

/// Pixels from first to last, both included; wraps where QRect's own int arithmetic would overflow.
int extent(int first, int last)
{
    return static_cast<int>(static_cast<qint64>(last) - first + 1);
}

} // namespace

PictureScale::PictureScale(QSize widget, QSize picture, bool fitted) : m_picture(picture)
{
    if (!fitted)
        return;
    // Two quotients, not one and its reciprocal: each rounding decides where a coordinate is truncated.
    m_widgetToPicture =
        std::max(quotient(picture.height(), widget.height()), quotient(picture.width(), widget.width()));
    m_pictureToWidget =
        std::min(quotient(widget.width(), picture.width()), quotient(widget.height(), picture.height()));
}

int PictureScale::toPicture(int widgetCoordinate) const
{
    return projection::truncateToInt(widgetCoordinate * m_widgetToPicture);
}

QPoint PictureScale::toPicture(QPoint widgetPosition) const
{
    return {toPicture(widgetPosition.x()), toPicture(widgetPosition.y())};
}

PictureDrag PictureScale::drag(QPoint press, QPoint position) const
{
    const QRect rectangle = QRect(press, position).normalized();
    const int radius = std::max(toPicture(extent(rectangle.left(), rectangle.right())),
                                toPicture(extent(rectangle.top(), rectangle.bottom())));
    return {toPicture(press), toPicture(rectangle.topLeft()), toPicture(rectangle.bottomRight()),
            toPicture(position), radius};
}

QRectF PictureScale::fittedRectangle() const
{
    return {0.0, 0.0, static_cast<double>(projection::truncateToInt(m_picture.width() * m_pictureToWidget)),
            static_cast<double>(projection::truncateToInt(m_picture.height() * m_pictureToWidget))};
}
