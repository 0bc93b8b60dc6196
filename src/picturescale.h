#pragma once

#include <QPoint>
#include <QRectF>
#include <QSize>

/// How a picture lies in a widget: at the top-left corner, either pixel for pixel or fitted to the widget with
/// its aspect ratio kept. Maps widget positions back to picture pixels.
/// Every size is allowed; a widget or picture without extent gives defined, meaningless coordinates.
class PictureScale
{
public:
    /// @param fitted  true: scaled to the widget (both up and down); false: 1:1
    PictureScale(QSize widget, QSize picture, bool fitted);

    /// Picture coordinate for a widget coordinate: multiplied by the larger of picture height / widget height
    /// and picture width / widget width, truncated toward zero; unchanged when not fitted.
    int toPicture(int widgetCoordinate) const;
    QPoint toPicture(QPoint widgetPosition) const;

    /// The rectangle that a fitted picture covers in the widget; whole pixels, at (0, 0).
    QRectF fittedRectangle() const;

private:
    QSize m_picture;
    double m_widgetToPicture;
    double m_pictureToWidget;
};
