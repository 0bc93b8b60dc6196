#include "mapfile.h"

#include "replacefile.h"

#include <QBuffer>
#include <QImage>

const char *mapFormat(int outputFormat)
{
    return outputFormat == 1 ? "png" : "jpg";
}

bool saveMap(const QImage &map, const QString &path, const char *format, int quality)
{
    QBuffer encoded;
    return encoded.open(QIODevice::WriteOnly) && map.save(&encoded, format, quality) &&
           replaceFile(path, encoded.data(), ReadOnlyFolder::WriteInPlace);
}
