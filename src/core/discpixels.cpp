#include "discpixels.h"

#include <algorithm>
#include <new>

namespace
{

constexpr int tileBits = 5; // tiles of 32 x 32: little more than the band along the limb is converted
constexpr int tileSide = 1 << tileBits;

int tilesFor(int pixels)
{
    return (pixels + tileSide - 1) >> tileBits;
}

} // namespace

DiscPixels::DiscPixels(const QImage &photograph)
    : m_photograph(photograph)
    , m_isDirect(photograph.format() == QImage::Format_RGB32 ||
                 photograph.format() == QImage::Format_ARGB32 ||
                 photograph.format() == QImage::Format_ARGB32_Premultiplied)
    , m_hasPlainAlpha(photograph.format() == QImage::Format_ARGB32)
    , m_tilesPerRow(tilesFor(photograph.width()))
{
    if (!m_isDirect)
        m_tiles.resize(static_cast<std::size_t>(m_tilesPerRow) *
                       static_cast<std::size_t>(tilesFor(photograph.height())));
    if (m_hasPlainAlpha)
        m_rowOnBlack.resize(static_cast<std::size_t>(photograph.width()));
}

const QRgb *DiscPixels::row(int y)
{
    if (m_isDirect) {
        const auto *pixels = reinterpret_cast<const QRgb *>(m_photograph.constScanLine(y));
        if (!m_hasPlainAlpha)
            return pixels;
        std::transform(pixels, pixels + width(), m_rowOnBlack.begin(),
                       [](QRgb pixel) { return qPremultiply(pixel); });
        return m_rowOnBlack.data();
    }
    m_row = m_photograph.copy(0, y, width(), 1).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (m_row.isNull())
        throw std::bad_alloc();
    return reinterpret_cast<const QRgb *>(m_row.constScanLine(0));
}

QRgb DiscPixels::tileAt(int x, int y)
{
    const int column = x >> tileBits;
    const int line = y >> tileBits;
    QImage &tile = m_tiles[static_cast<std::size_t>(line) * static_cast<std::size_t>(m_tilesPerRow) +
                           static_cast<std::size_t>(column)];
    if (tile.isNull()) {
        const QRect place(column << tileBits, line << tileBits, tileSide, tileSide);
        tile = m_photograph.copy(place & m_photograph.rect())
                   .convertToFormat(QImage::Format_ARGB32_Premultiplied);
        if (tile.isNull())
            throw std::bad_alloc();
    }
    const int mask = tileSide - 1;
    return reinterpret_cast<const QRgb *>(tile.constScanLine(y & mask))[x & mask];
}
