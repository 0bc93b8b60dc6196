#pragma once

#include "imageview.h"

#include <QImage>

/// Straight pixels of a photograph.
/// @param image  Format_ARGB32, or Format_RGB32, whose alpha bits mean nothing
inline projection::ConstImageView photographView(const QImage &image)
{
    return {reinterpret_cast<const uint32_t *>(image.constBits()), image.bytesPerLine() / 4, image.width(),
            image.height(), image.hasAlphaChannel() ? 0 : 0xff000000U};
}

/// The pixels of a map to read.
/// @param image  Format_ARGB32_Premultiplied
inline projection::ConstImageView mapView(const QImage &image)
{
    return {reinterpret_cast<const uint32_t *>(image.constBits()), image.bytesPerLine() / 4, image.width(),
            image.height()};
}

/// The pixels of a map to paint on, which nobody shares any more.
/// @param image  Format_ARGB32_Premultiplied
inline projection::ImageView canvasView(QImage &image)
{
    return {reinterpret_cast<uint32_t *>(image.bits()), image.bytesPerLine() / 4, image.width(),
            image.height()};
}
