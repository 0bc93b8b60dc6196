#include "photographfile.h"

#include "plainpath.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>
#include <new>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace
{

constexpr qint64 bytesPerGigabyte = 1 << 30;

/// Why a file cannot even be opened as a photograph; empty if it can. A pipe is not opened at all: that would
/// wait for somebody to write. Files that the system makes up have no size, and some of them wait too.
QString reasonAgainst(const QFileInfo &file)
{
    if (file.isDir())
        return QStringLiteral("cannot be read: Is a directory");
    if (file.exists() && !file.isFile())
        return QStringLiteral("cannot be read: Not a regular file");
    if (file.isFile() && file.size() == 0)
        return QStringLiteral("not an image: The file is empty");
    return {};
}

/// What a file says of its picture before it is decoded, as far as it says it.
struct Header {
    explicit Header(const QString &path)
    {
        QImageReader reader(path);
        size = reader.size();
        isJpeg = reader.format() == "jpeg";
        isBitmap = reader.format() == "bmp";
        if (isJpeg)
            pixelFormat = reader.imageFormat();
    }

    QSize size;
    QImage::Format pixelFormat = QImage::Format_Invalid; ///< of a JPEG
    bool isJpeg = false;
    bool isBitmap = false; ///< of Windows
};

/// Why a picture is too large; empty if it is not.
QString reasonAgainstSize(QSize size)
{
    // 4 bytes a pixel, whatever is in the file: that is what it is shown and converted in.
    const qint64 bytes = size.isValid() ? qint64(size.width()) * size.height() * 4 : 0;
    if (bytes <= largestPhotographBytes())
        return {};
    return QStringLiteral("cannot be read: %1 x %2 pixels need more memory than the %3 GB for a photograph")
        .arg(size.width())
        .arg(size.height())
        .arg(double(largestPhotographBytes()) / double(bytesPerGigabyte), 0, 'f', 1);
}

/// Decodes into the memory where every pixel is written, and as QImage::load does everywhere else.
QImage decoded(QFile &file, QImageReader &reader, const Header &header, PixelMemory &memory)
{
    if (header.isJpeg && header.size.isValid() && header.pixelFormat != QImage::Format_Invalid) {
        QImage image = memory.image(header.size, header.pixelFormat);
        if (!image.isNull() && reader.read(&image))
            return image;
    }
    memory.clear();
    file.seek(0);
    reader.setDevice(&file);
    QImage image = reader.read();
    // The decoder leaves the pixels unset that such a file ends before, and finds nothing wrong with it: they show
    // what lay in the memory. The second time it writes over black ones.
    if (header.isBitmap && !image.isNull()) {
        image.fill(0);
        file.seek(0);
        reader.setDevice(&file);
        if (!reader.read(&image))
            return {};
    }
    return image;
}

LoadedPhotograph read(const QString &path, PixelMemory &memory)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, QStringLiteral("cannot be read: ") + file.errorString()};
    const Header header(path);
    QString reason = reasonAgainstSize(header.size);
    if (!reason.isEmpty())
        return {{}, reason};
    QImageReader reader(&file);
    QImage image = decoded(file, reader, header, memory);
    if (image.isNull()) {
        const bool unknown = reader.error() == QImageReader::UnsupportedFormatError;
        reason = (unknown ? QStringLiteral("not an image: ") : QStringLiteral("cannot be read: ")) +
                 reader.errorString();
    }
    return {image, reason};
}

} // namespace

LoadedPhotograph loadPhotograph(const QString &path)
{
    PixelMemory memory;
    return loadPhotograph(path, memory);
}

LoadedPhotograph loadPhotograph(const QString &path, PixelMemory &memory)
{
    const QFileInfo file(plainPath(path));
    const QString reason = reasonAgainst(file);
    if (!reason.isEmpty())
        return {{}, reason};
    try {
        return read(file.filePath(), memory);
    } catch (const std::bad_alloc &) { // compressed texts beside the picture can unfold to gigabytes
        return {{}, QStringLiteral("cannot be read: Not enough memory")};
    }
}

QString fileWithSuffix(const QString &path)
{
    const auto canBeOpened = [](const QFileInfo &file) { return file.isReadable() && !file.isDir(); };
    const QString plain = plainPath(path);
    if (canBeOpened(QFileInfo(plain)))
        return path;
    const QList<QByteArray> suffixes = QImageReader::supportedImageFormats();
    for (const QByteArray &suffix : suffixes) {
        const QString longer = plain + QLatin1Char('.') + QString::fromLatin1(suffix);
        if (canBeOpened(QFileInfo(longer)))
            return longer;
    }
    return path;
}

qint64 largestPhotographBytes()
{
#if defined(Q_OS_UNIX) && defined(_SC_PHYS_PAGES)
    const qint64 memory = qint64(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGE_SIZE);
    return std::max(memory / 4, bytesPerGigabyte);
#else
    return bytesPerGigabyte;
#endif
}
