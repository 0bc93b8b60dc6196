#pragma once

#include "rng.h"
#include "selectioncircle.h"

#include <QColor>
#include <QSize>

/// A colour, every other one opaque.
inline QColor randomColor(Rng &rng)
{
    const QRgb color = rng.word();
    return QColor::fromRgba(rng.oneIn(2) ? color | 0xff000000U : color);
}

/// A circle in a picture or near it.
/// @param largestRadius  a quarter of it with the other sign is the smallest
inline SelectionCircle randomCircle(Rng &rng, QSize picture, int largestRadius)
{
    return {rng.between(-60, picture.width() + 60), rng.between(-60, picture.height() + 60),
            rng.between(-largestRadius / 4, largestRadius)};
}
