#include "circlecanvas.h"

QPixmap CircleCanvas::picture(const QImage &photograph, const std::optional<SelectionCircle> &circle,
                              const CirclePen &pen)
{
    QImage copy = photograph.convertToFormat(QImage::Format_ARGB32);
    if (circle)
        drawCircle(copy, *circle, pen.color, pen.size, pen.square);
    return QPixmap::fromImage(std::move(copy));
}
