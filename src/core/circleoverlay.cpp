#include "circleoverlay.h"

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
    Buffer &buffer = m_buffers[m_next];
    if (rectangles && keepsAlphaChannel(*rectangles) && haveBuffer(buffer)) {
        updateBuffer(buffer, *rectangles, circle, pen);
        m_next = 1 - m_next;
        return QPixmap::fromImage(buffer.image, Qt::NoOpaqueDetection);
    }
    QPixmap picture = uncachedPicture(m_photograph, circle, pen);
    if (picture.isNull()) {
        // What the buffers take may be just what is missing; without them every step is slow.
        m_layer = QImage();
        m_buffers = {};
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

// Whether there is memory for the buffer and for the layer. Without a layer there are no buffers any more.
bool CircleOverlay::haveBuffer(Buffer &buffer) const
{
    if (m_layer.isNull())
        return false;
    if (buffer.image.isNull())
        buffer.image = converted(m_photograph, m_translucentPixel ? QImage::Format_ARGB32_Premultiplied
                                                                  : QImage::Format_RGB32);
    return !buffer.image.isNull();
}

// Takes the old circle away and paints the new one.
void CircleOverlay::updateBuffer(Buffer &buffer, const QVector<QRect> &rectangles,
                                 const std::optional<SelectionCircle> &circle, const CirclePen &pen)
{
    for (const QRect &rectangle : std::as_const(buffer.rectangles))
        copyRectangle(m_photograph, buffer.image, rectangle);
    if (circle) {
        for (const QRect &rectangle : rectangles)
            copyRectangle(m_photograph, m_layer, rectangle);
        paintCircle(m_layer, *circle, pen);
        for (const QRect &rectangle : rectangles)
            copyRectangle(m_layer, buffer.image, rectangle);
    }
    buffer.rectangles = rectangles;
}
