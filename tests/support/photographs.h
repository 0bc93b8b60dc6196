#pragma once

#include "rng.h"

#include <QColor>
#include <QImage>

/// Photographs that the tests convert, and the maps that they convert into.

/// Of one colour.
inline QImage solidPhotograph(QSize size, const QColor &color = Qt::red,
                              QImage::Format format = QImage::Format_ARGB32)
{
    QImage photograph(size, format);
    photograph.fill(color);
    return photograph;
}

/// The colour that locatedPhotograph() has at a place.
inline QColor colourOf(int x, int y)
{
    return {x / 256, x % 256, y % 256};
}

/// Opaque colours that say where they stand.
inline QImage locatedPhotograph(QSize size, QImage::Format format = QImage::Format_ARGB32)
{
    QImage photograph(size, format);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            photograph.setPixelColor(x, y, colourOf(x, y));
    return photograph;
}

/// Every pixel has a colour and an alpha of its own, up to 256 x 256 of them, so that no wrong sample goes
/// unnoticed.
inline QImage colourfulPhotograph(QSize size = {96, 72}, QImage::Format format = QImage::Format_RGB32)
{
    QImage photograph(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            photograph.setPixelColor(
                x, y, QColor((x * 7 + y) % 256, (y * 5) % 256, (x + y * 3) % 256, 255 - x % 64));
    return photograph.convertToFormat(format);
}

/// Every pixel's colour is its number, up to 2^24 of them; opaque.
inline QImage numberedPhotograph(QSize size)
{
    QImage photograph(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            reinterpret_cast<QRgb *>(photograph.scanLine(y))[x] =
                0xff000000U | static_cast<QRgb>(y * size.width() + x);
    return photograph;
}

/// What the alpha of noise is.
enum class Alpha {
    Opaque,  ///< 255, in Format_RGB32
    Mixed,   ///< 255 for half of the pixels, for the others anything
    Random,  ///< anything
    Extreme, ///< 0 or 255
};

/// Random pixels.
inline QImage noisePhotograph(Rng &rng, QSize size, Alpha alpha)
{
    QImage photograph(size, alpha == Alpha::Opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(photograph.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const quint32 word = rng.word();
            const bool opaque = alpha == Alpha::Opaque || (alpha == Alpha::Mixed && rng.oneIn(2)) ||
                                (alpha == Alpha::Extreme && (word & 1U) != 0);
            const bool clear = alpha == Alpha::Extreme && !opaque;
            line[x] = opaque ? word | 0xff000000U : clear ? word & 0x00ffffffU : word;
        }
    }
    return photograph;
}

/// One of a series of opaque photographs of which no two are alike.
inline QImage seriesPhotograph(QSize size, int number)
{
    Rng rng(static_cast<quint32>(number));
    return noisePhotograph(rng, size, Alpha::Opaque);
}

/// A map as the engine gets it: premultiplied, of one colour.
inline QImage canvas(QSize size, const QColor &color = Qt::transparent)
{
    return solidPhotograph(size, color, QImage::Format_ARGB32_Premultiplied);
}
