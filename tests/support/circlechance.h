#pragma once

#include "selectioncircle.h"

#include <QColor>
#include <QImage>
#include <QRandomGenerator>

/// Random pictures and circles from a fixed seed.
class Chance
{
public:
    int between(int low, int high) { return m_random.bounded(low, high + 1); }
    bool oneIn(int n) { return m_random.bounded(n) == 0; }

    QColor color() { return QColor::fromRgba(m_random.generate() | (oneIn(2) ? 0xff000000U : 0U)); }

    QImage picture(bool withAlpha)
    {
        QImage image(between(1, 160), between(1, 160), QImage::Format_ARGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, m_random.generate() | (withAlpha ? 0U : 0xff000000U));
        return image;
    }

    SelectionCircle circle(QSize picture, int largestRadius)
    {
        return {between(-60, picture.width() + 60), between(-60, picture.height() + 60),
                between(-largestRadius / 4, largestRadius)};
    }

private:
    QRandomGenerator m_random{20};
};
