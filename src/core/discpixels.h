#pragma once

#include <QImage>
#include <QRgb>

#include <cstddef>
#include <vector>

/// Reads single pixels and rows of a photograph of any format as colours on black, without converting the
/// whole of it: formats of 32 bits are read where they lie, others by the row, or by tiles that are converted
/// when they are first touched. Keeps a reference to the photograph.
class DiscPixels
{
public:
    explicit DiscPixels(const QImage &photograph);

    int width() const { return m_photograph.width(); }
    int height() const { return m_photograph.height(); }

    /// A row from 0 to height - 1; its pixels are valid until the next call.
    const QRgb *row(int y);

    /// A pixel inside the photograph.
    QRgb at(int x, int y)
    {
        return m_isDirect ? onBlack(reinterpret_cast<const QRgb *>(m_photograph.constScanLine(y))[x])
                          : tileAt(x, y);
    }

private:
    QRgb onBlack(QRgb pixel) const { return m_hasPlainAlpha ? qPremultiply(pixel) : pixel; }
    QRgb tileAt(int x, int y);

    const QImage &m_photograph;
    bool m_isDirect;
    bool m_hasPlainAlpha;
    QImage m_row;
    std::vector<QRgb> m_rowOnBlack;
    int m_tilesPerRow;
    std::vector<QImage> m_tiles; ///< null until touched
};
