#pragma once

#include "pixels.h"

#include <QImage>

/// The pixels of a picture for the kernels, which know no QImage.
/// @param image  Format_ARGB32, or Format_RGB32, whose alpha bits mean nothing
inline Photograph argbPixels(const QImage &image)
{
    Photograph photograph;
    photograph.pixels = reinterpret_cast<const uint32_t *>(image.constBits());
    photograph.stride = image.bytesPerLine() / 4;
    photograph.width = image.width();
    photograph.height = image.height();
    photograph.opaque = image.hasAlphaChannel() ? 0 : 0xff000000U;
    return photograph;
}

/// The pixels of a map.
/// @param image  Format_ARGB32_Premultiplied
inline MapPixels mapPixels(const QImage &image)
{
    return {reinterpret_cast<const uint32_t *>(image.constBits()), image.bytesPerLine() / 4};
}

/// The pixels of a map to paint on, which nobody shares any more.
/// @param image  Format_ARGB32_Premultiplied
inline Canvas canvasPixels(QImage &image)
{
    return {reinterpret_cast<uint32_t *>(image.bits()), image.bytesPerLine() / 4};
}
