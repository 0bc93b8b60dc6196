#pragma once

#include "selectioncircle.h"

#include <QColor>
#include <QImage>
#include <QPixmap>

#include <optional>

/// How a circle is painted.
struct CirclePen {
    QColor color;
    int size = 0;                      ///< width in photograph pixels, any int
    Qt::PenStyle square = Qt::DotLine; ///< Qt::SolidLine while a new circle is being drawn
};

/// The photograph with the circle burnt in at its own resolution. Pixel for pixel, and in its alpha channel,
/// what converting the photograph to ARGB32, drawCircle and QPixmap::fromImage give, but made for being
/// called on every step of a drag: it remembers the last photograph and what it painted on it.
class CircleCanvas
{
public:
    /// @param photograph  any format; null gives a null pixmap
    /// @param circle      none: the photograph alone
    QPixmap picture(const QImage &photograph, const std::optional<SelectionCircle> &circle,
                    const CirclePen &pen);
};
