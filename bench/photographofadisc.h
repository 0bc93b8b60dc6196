#pragma once

#include <QImage>

#include <cmath>

/// A photograph of 12 megapixels with structure that compresses like one.
inline QImage photographOfADisc(int seed)
{
    QImage picture(4000, 3000, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const double wave =
                std::sin(x * 0.013 * seed) + std::sin(y * 0.017) + std::sin((x + y) * 0.2) * 0.2;
            const int grey = static_cast<int>(wave * 50 + 120);
            const bool disc = std::hypot(x - 2000, y - 1500) < 1400;
            line[x] = disc ? qRgb(grey, grey / 2 + 40, 255 - grey) : qRgb(2, 2, (x * y) % 7);
        }
    }
    return picture;
}
