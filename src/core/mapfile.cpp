#include "mapfile.h"

#include "replacefile.h"

#include <QBuffer>
#include <QImage>

#include <new>

const char *mapFormat(int outputFormat)
{
    return outputFormat == 1 ? "png" : "jpg";
}

QByteArray encodedMap(const QImage &map, const char *format, int quality)
{
    QBuffer encoded;
    const bool complete = encoded.open(QIODevice::WriteOnly) && map.save(&encoded, format, quality);
    return complete ? encoded.data() : QByteArray();
}

bool saveMap(const QImage &map, const QString &path, const char *format, int quality)
{
    try {
        const QByteArray encoded = encodedMap(map, format, quality);
        return !encoded.isEmpty() && replaceFile(path, encoded, ReadOnlyFolder::WriteInPlace);
    } catch (const std::bad_alloc &) {
        return false;
    }
}
