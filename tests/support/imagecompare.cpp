#include "imagecompare.h"

#include <QColor>
#include <QCoreApplication>
#include <QDir>
#include <QPoint>
#include <QRegularExpression>

namespace
{

/// Premultiplied colours are compared as stored: two of them can look the same to QColor.
bool storesComparableWords(const QImage &actual, const QImage &expected)
{
    return actual.format() == expected.format() && actual.depth() == 32 &&
           actual.format() != QImage::Format_RGB32;
}

bool samePixel(const QImage &actual, const QImage &expected, int x, int y)
{
    if (!storesComparableWords(actual, expected))
        return actual.pixelColor(x, y) == expected.pixelColor(x, y);
    const auto word = [x, y](const QImage &image) {
        return reinterpret_cast<const QRgb *>(image.constScanLine(y))[x];
    };
    return word(actual) == word(expected);
}

QString describePixel(const QImage &image, QPoint p)
{
    return image.pixelColor(p).name(QColor::HexArgb);
}

/// A file name that says which test and row it belongs to.
QString outputPath(const QString &role)
{
    QString name = QCoreApplication::applicationName();
    for (const char *part : {QTest::currentTestFunction(), QTest::currentDataTag()}) {
        if (part != nullptr)
            name += QLatin1Char('-') + QString::fromUtf8(part);
    }
    name.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9.-]+")), QStringLiteral("_"));
    const QString folder = qEnvironmentVariable("OVMIC_TEST_OUTPUT", QDir::tempPath());
    return QDir(folder).filePath(name.left(150) + QLatin1Char('-') + role + QStringLiteral(".png"));
}

QString saved(const QImage &image, const QString &role)
{
    const QString path = outputPath(role);
    return image.save(path, "png") ? path : path + QStringLiteral(" (not saved)");
}

QString withFiles(const QString &difference, const QImage &actual, const QImage &expected)
{
    return QStringLiteral("%1\n   Actual:   %2\n   Expected: %3")
        .arg(difference, saved(actual, QStringLiteral("actual")),
             saved(expected, QStringLiteral("expected")));
}

} // namespace

QString imageDifference(const QImage &actual, const QImage &expected)
{
    if (actual.size() != expected.size()) {
        const QString sizes = QStringLiteral("The picture is %1 x %2, expected %3 x %4.")
                                  .arg(actual.width())
                                  .arg(actual.height())
                                  .arg(expected.width())
                                  .arg(expected.height());
        return withFiles(sizes, actual, expected);
    }

    qint64 differing = 0;
    QPoint first;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            if (samePixel(actual, expected, x, y))
                continue;
            if (differing++ == 0)
                first = QPoint(x, y);
        }
    }
    if (differing == 0)
        return {};
    const QString pixels =
        QStringLiteral("%1 of %2 pixels differ (%3 x %4), the first at (%5, %6): %7, expected %8.")
            .arg(differing)
            .arg(qint64(actual.width()) * actual.height())
            .arg(actual.width())
            .arg(actual.height())
            .arg(first.x())
            .arg(first.y())
            .arg(describePixel(actual, first), describePixel(expected, first));
    return withFiles(pixels, actual, expected);
}

bool isBlank(const QImage &map)
{
    QImage blank(map.size(), map.format());
    blank.fill(Qt::transparent);
    return map == blank;
}
