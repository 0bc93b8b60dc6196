#pragma once

#include "largepages.h"

#include <QImage>

#include <cstdlib>
#include <vector>

/// A transparent canvas whose pages nobody has touched yet.
inline QImage zeroedCanvas(QSize size)
{
    void *pixels = std::calloc(size_t(size.width()) * size_t(size.height()), sizeof(quint32));
    return {static_cast<uchar *>(pixels),        size.width(), size.height(), size.width() * 4,
            QImage::Format_ARGB32_Premultiplied, std::free,    pixels};
}

/// The same on large pages where the system has them, also where little of them is painted.
inline QImage zeroedCanvasOnLargePages(QSize size)
{
    QImage canvas = zeroedCanvas(size);
    preferLargePages(canvas.bits(), size_t(canvas.sizeInBytes()));
    return canvas;
}

/// The photograph pixel of every map pixel, row by row, -1 where nothing is painted.
/// @param map  of a photograph in which every pixel's colour is its number
inline std::vector<qint32> indexMap(const QImage &map)
{
    std::vector<qint32> indexes;
    indexes.reserve(size_t(map.width()) * size_t(map.height()));
    for (int y = 0; y < map.height(); ++y)
        for (int x = 0; x < map.width(); ++x) {
            const quint32 pixel = reinterpret_cast<const quint32 *>(map.constScanLine(y))[x];
            indexes.push_back(pixel ? qint32(pixel & 0xffffff) : -1);
        }
    return indexes;
}

/// The floor: one tiled pass over a ready index map with plain loads.
/// @param map  zeroed
inline QImage paintByIndex(const QImage &photograph, const std::vector<qint32> &indexes, QImage map)
{
    constexpr int tileRows = 32;
    constexpr int tileColumns = 512;
    const QSize size = map.size();
    auto *canvas = reinterpret_cast<quint32 *>(map.bits());
    const auto *pixels = reinterpret_cast<const quint32 *>(photograph.constBits());
    const int width = size.width();
    for (int top = 0; top < size.height(); top += tileRows)
        for (int left = 0; left < width; left += tileColumns)
            for (int y = top; y < qMin(top + tileRows, size.height()); ++y) {
                const qint32 *index = indexes.data() + qsizetype(y) * width;
                quint32 *line = canvas + qsizetype(y) * width;
                for (int x = left; x < qMin(left + tileColumns, width); ++x)
                    if (index[x] >= 0)
                        line[x] = pixels[index[x]];
            }
    return map;
}
