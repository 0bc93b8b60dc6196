#include "pixelmemory.h"

#include "largepages.h"

#include <QPixelFormat>

#include <cstdlib>
#include <limits>
#include <new>

struct PixelMemory::Block {
    explicit Block(std::size_t bytes) : size(bytes), pixels(static_cast<uchar *>(std::malloc(bytes)))
    {
        if (!pixels)
            throw std::bad_alloc();
        preferLargePages(pixels, bytes);
    }
    ~Block() { std::free(pixels); }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;

    std::size_t size;
    uchar *pixels;
};

QImage PixelMemory::image(QSize size, QImage::Format format)
{
    const qint64 bitsPerPixel = QImage::toPixelFormat(format).bitsPerPixel();
    const qint64 bytesPerLine = (size.width() * bitsPerPixel + 31) / 32 * 4; // lines begin at 32 bits
    if (size.isEmpty() || bytesPerLine > std::numeric_limits<int>::max())
        return {};
    const std::size_t bytes = std::size_t(bytesPerLine) * std::size_t(size.height());
    if (!m_block || m_block.use_count() > 1 || m_block->size != bytes) {
        clear();
        try {
            m_block = std::make_shared<Block>(bytes);
        } catch (const std::bad_alloc &) {
            return {};
        }
    }
    const auto release = [](void *owner) { delete static_cast<std::shared_ptr<Block> *>(owner); };
    auto owner = std::make_unique<std::shared_ptr<Block>>(m_block);
    QImage result(m_block->pixels, size.width(), size.height(), int(bytesPerLine), format, release,
                  owner.get());
    if (!result.isNull())
        static_cast<void>(owner.release()); // the image has it
    return result;
}
