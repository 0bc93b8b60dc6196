#pragma once

#include <QColor>
#include <QImage>

/// Pictures that the engine's tests convert, and convert into.

/// A map as the engine gets it: premultiplied, of one colour.
inline QImage canvas(QSize size, const QColor &color = Qt::transparent)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

/// The colour that located() has at a place.
inline QColor colourOf(int x, int y)
{
    return {x / 256, x % 256, y % 256};
}

/// A picture whose colours say where they stand.
inline QImage located(int width, int height, QImage::Format format = QImage::Format_ARGB32)
{
    QImage image(width, height, format);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixelColor(x, y, colourOf(x, y));
    }
    return image;
}
