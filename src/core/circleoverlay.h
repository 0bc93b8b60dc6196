#pragma once

#include "circlepainter.h"

#include <QImage>
#include <QPixmap>

#include <optional>

/// The photograph with the circle as an overlay at its own resolution. Pixel for pixel, and in its alpha channel,
/// what converting the photograph to ARGB32, paintCircle and QPixmap::fromImage give, but made for being
/// called on every step of a drag: it keeps the finished picture and changes only the pixels around the lines of the
/// old and the new circle.
class CircleOverlay
{
public:
    /// A new pixmap for each call; later calls leave it as it is. Fast as long as the caller lets go of it before
    /// the next call: both have the same pixels, and a pixmap that somebody has is copied.
    /// Null only without the memory for the picture itself.
    /// @param photograph  any format; null gives a null pixmap. Its device pixel ratio is not looked at.
    /// @param circle      none: the photograph alone
    QPixmap picture(const QImage &photograph, const std::optional<SelectionCircle> &circle,
                    const CirclePen &pen);

    /// Forgets the photograph and gives its memory back; without it the next photograph does so.
    void clear();

private:
    void setPhotograph(const QImage &photograph);
    bool keepsAlphaChannel(const QVector<QRect> &rectangles) const;
    bool havePicture();
    void updatePicture(const QVector<QRect> &rectangles, const std::optional<SelectionCircle> &circle,
                       const CirclePen &pen);

    qint64 m_key = 0; // cacheKey() of the photograph that the rest is about; 0: none
    QImage m_photograph;
    std::optional<QPoint> m_translucentPixel; // some pixel that is not opaque; none if all are
    QImage m_layer;           // ARGB32 to paint in; holds nothing outside the rectangles at work
    QImage m_picture;         // as the screen takes it: RGB32, or premultiplied for a photograph with alpha
    QVector<QRect> m_painted; // where it differs from the photograph
};
