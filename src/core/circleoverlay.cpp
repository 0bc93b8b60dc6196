#include "circleoverlay.h"

#include "pixelmemory.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace
{

QPixmap uncachedPicture(const QImage &photograph, const std::optional<SelectionCircle> &circle,
                        const CirclePen &pen)
{
    QImage copy = photograph.convertToFormat(QImage::Format_ARGB32);
    if (circle && !copy.isNull())
        paintCircle(copy, *circle, pen);
    return QPixmap::fromImage(std::move(copy));
}

/// The position of some pixel that is not opaque, none if all are.
std::optional<QPoint> translucentPixel(const QImage &photograph)
{
    if (!photograph.hasAlphaChannel())
        return std::nullopt;
    for (int y = 0; y < photograph.height(); ++y) {
        const QImage row =
            photograph.copy(0, y, photograph.width(), 1).convertToFormat(QImage::Format_ARGB32);
        const QRgb *first = reinterpret_cast<const QRgb *>(row.constScanLine(0));
        const QRgb *last = first + row.width();
        const QRgb *found = std::find_if(first, last, [](QRgb pixel) { return qAlpha(pixel) != 255; });
        if (found != last)
            return QPoint(static_cast<int>(found - first), y);
    }
    return std::nullopt;
}

/// A part of the photograph or drawing in another format, by way of ARGB32: a deeper photograph loses its
/// additional bits before it is premultiplied, not after.
QImage converted(QImage part, QImage::Format format)
{
    if (part.format() == QImage::Format_RGB32 && format == QImage::Format_RGB32)
        return part;
    return std::move(part).convertToFormat(QImage::Format_ARGB32).convertToFormat(format);
}

/// Copies a rectangle into an image of the same size, both 32 bits deep in the end.
void copyRectangle(const QImage &source, QImage &target, const QRect &rectangle)
{
    const QImage part = converted(source.copy(rectangle), target.format());
    for (int row = 0; row < part.height(); ++row) {
        QRgb *line = reinterpret_cast<QRgb *>(target.scanLine(rectangle.top() + row)) + rectangle.left();
        std::memcpy(line, part.constScanLine(row), static_cast<std::size_t>(part.width()) * sizeof(QRgb));
    }
}

} // namespace

QPixmap CircleOverlay::picture(const QImage &photograph, const std::optional<SelectionCircle> &circle,
                               const CirclePen &pen)
{
    if (photograph.isNull()) {
        clear();
        return {};
    }
    if (photograph.cacheKey() != m_key)
        setPhotograph(photograph);

    const std::optional<QVector<QRect>> rectangles =
        circle ? paintedRectangles(m_photograph.size(), *circle, pen.size) : QVector<QRect>();
    if (rectangles && keepsAlphaChannel(*rectangles) && havePicture()) {
        updatePicture(*rectangles, circle, pen);
        return QPixmap::fromImage(m_picture, Qt::NoOpaqueDetection);
    }
    QPixmap picture = uncachedPicture(m_photograph, circle, pen);
    if (picture.isNull()) {
        // What the overlay takes may be just what is missing; without it every step is slow.
        m_layer = QImage();
        m_picture = QImage();
        picture = uncachedPicture(m_photograph, circle, pen);
    }
    return picture;
}

void CircleOverlay::clear()
{
    *this = CircleOverlay();
}

void CircleOverlay::setPhotograph(const QImage &photograph)
{
    clear();
    m_key = photograph.cacheKey();
    m_photograph = photograph;
    m_photograph.setDevicePixelRatio(1.0);
    m_translucentPixel = translucentPixel(m_photograph);
    m_layer = QImage(photograph.size(), QImage::Format_ARGB32);
}

// A pixmap has an alpha channel exactly when some pixel of its picture is not opaque. One such pixel is known;
// a circle painted over it leaves open whether there are others.
bool CircleOverlay::keepsAlphaChannel(const QVector<QRect> &rectangles) const
{
    return !m_translucentPixel ||
           std::none_of(rectangles.begin(), rectangles.end(),
                        [this](const QRect &rectangle) { return rectangle.contains(*m_translucentPixel); });
}

// Whether there is memory for a picture that nobody else has, and for the layer. Without a layer there is no
// picture any more.
bool CircleOverlay::havePicture()
{
    if (m_layer.isNull())
        return false;
    if (!m_picture.isNull() && !m_picture.isDetached())
        m_picture = m_picture.copy();
    if (!m_picture.isNull())
        return true;
    const QSize size = m_photograph.size();
    m_picture = PixelMemory().image(size, m_translucentPixel ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
    if (m_picture.isNull())
        return false;
    m_painted.clear();
    constexpr int rows = 16; // stay in the cache on their way
    for (int y = 0; y < size.height(); y += rows)
        copyRectangle(m_photograph, m_picture, {0, y, size.width(), std::min(rows, size.height() - y)});
    return true;
}

// Takes the old circle away and paints the new one.
void CircleOverlay::updatePicture(const QVector<QRect> &rectangles,
                                  const std::optional<SelectionCircle> &circle, const CirclePen &pen)
{
    for (const QRect &rectangle : std::as_const(m_painted))
        copyRectangle(m_photograph, m_picture, rectangle);
    if (circle) {
        for (const QRect &rectangle : rectangles)
            copyRectangle(m_photograph, m_layer, rectangle);
        paintCircle(m_layer, *circle, pen);
        for (const QRect &rectangle : rectangles)
            copyRectangle(m_layer, m_picture, rectangle);
    }
    m_painted = rectangles;
}
