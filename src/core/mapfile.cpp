#include "mapfile.h"

#include "replacefile.h"

#include <QBuffer>
#include <QImage>

bool saveMap(const QImage &map, const QString &path, const char *format, int quality)
{
    QBuffer encoded;
    return encoded.open(QIODevice::WriteOnly) && map.save(&encoded, format, quality) &&
           replaceFile(path, encoded.data(), ReadOnlyFolder::WriteInPlace);
}
