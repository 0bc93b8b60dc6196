// The floor of a conversion from file to file: a photograph is decoded and a ready map encoded, with nothing between,
// in a bare program. It also makes what that needs.
//
//   bench_codec photograph OUT.jpg        a photograph of 12 megapixels
//   bench_codec pixels MAP OUT            the pixels of a map, without a format
//   bench_codec both PHOTOGRAPH PIXELS WIDTH OUT.jpg
#include "photographofadisc.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

namespace
{

bool writePixels(const QString &mapPath, const QString &path)
{
    const QImage map = QImage(mapPath).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(reinterpret_cast<const char *>(map.constBits()),
                                                         map.sizeInBytes()) == map.sizeInBytes();
}

bool decodeAndEncode(const QString &photographPath, const QString &pixelsPath, int width, const QString &path)
{
    const QImage photograph(photographPath);
    QFile file(pixelsPath);
    if (photograph.isNull() || width <= 0 || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray pixels = file.readAll();
    const QImage map(reinterpret_cast<const uchar *>(pixels.constData()), width, pixels.size() / 4 / width,
                     QImage::Format_ARGB32_Premultiplied);
    return map.save(path, "jpg", 85);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString action = arguments.value(1);
    bool done = false;
    if (action == QLatin1String("photograph") && arguments.size() == 3)
        done = photographOfADisc(1).save(arguments.at(2), "jpg", 90);
    else if (action == QLatin1String("pixels") && arguments.size() == 4)
        done = writePixels(arguments.at(2), arguments.at(3));
    else if (action == QLatin1String("both") && arguments.size() == 6)
        done = decodeAndEncode(arguments.at(2), arguments.at(3), arguments.at(4).toInt(), arguments.at(5));
    return done ? 0 : 1;
}
