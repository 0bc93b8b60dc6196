#pragma once

#include <QImage>
#include <QSize>

#include <memory>

/// Memory for photographs that are read one after the other. Those of one size get the same pixels, so that the
/// system need not hand them out page by page again.
class PixelMemory
{
public:
    /// An image whose pixels are not set, and which knows nothing of the one before. Its memory is that of the last
    /// one if that was of the same size in bytes and nobody has it any more; otherwise it is new, and the old one
    /// is given back first.
    /// @param format  without a colour table
    /// @return a null image when there is no memory
    QImage image(QSize size, QImage::Format format);

    /// Gives the memory back, as soon as nobody has the last image any more.
    void clear() { m_block.reset(); }

private:
    struct Block;
    std::shared_ptr<Block> m_block;
};
