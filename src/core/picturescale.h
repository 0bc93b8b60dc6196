#pragma once

#include <QPoint>
#include <QRectF>
#include <QSize>

/// A drag with the mouse across a picture, in picture pixels.
struct PictureDrag {
    QPoint press; ///< where it began
    QPoint first; ///< corners of its rectangle, both included: normalized as QRect does it, so a drag back by
    QPoint last;  ///< a single pixel stays as it is and has the extent 0
    QPoint position; ///< where it is now
    int radius = 0;  ///< the longer side of the rectangle, 1 for a click at 1:1
};

/// How a picture lies in a widget: at the top-left corner, either pixel for pixel or fitted to the widget
/// with its aspect ratio kept. Maps widget positions back to picture pixels. Every size is allowed; a widget
/// or picture without extent gives defined, meaningless coordinates.
class PictureScale
{
public:
    /// @param fitted  true: scaled to the whole widget, frame included (both up and down); false: 1:1
    PictureScale(QSize widget, QSize picture, bool fitted);

    /// Picture coordinate (or length) for a widget coordinate: multiplied by the larger of picture height /
    /// widget height and picture width / widget width, truncated toward zero; unchanged when not fitted.
    /// A product that does not fit an int is -2147483648.
    int toPicture(int widgetCoordinate) const;
    QPoint toPicture(QPoint widgetPosition) const;

    /// A drag between two widget positions. Each value is mapped by itself; the rectangle is formed, and its
    /// sides are measured, in widget pixels.
    PictureDrag drag(QPoint press, QPoint position) const;

    /// The rectangle that the picture covers in the widget when it is fitted: at (0, 0), whole pixels.
    QRectF fittedRectangle() const;

private:
    QSize m_picture;
    double m_widgetToPicture = 1.0;
    double m_pictureToWidget = 1.0;
};
