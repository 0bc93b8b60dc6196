#include "rotatedmap.h"

#include "convertimage.h"
#include "imagecompare.h"
#include "photographs.h"
#include "qimageview.h"
#include "referenceengine.h"
#include "vectortargets.h"

#include <QtTest>

using namespace projection;

class tst_RotatedMap : public QObject
{
    Q_OBJECT

private slots:
    void rotatesAsTheReference_data();
    void rotatesAsTheReference();
};

void tst_RotatedMap::rotatesAsTheReference_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<QSize>("size");
    for (const int axis : {1, 2, 3})
        for (const QSize &size :
             {QSize(64, 32), QSize(62, 33), QSize(63, 32), QSize(2, 2), QSize(1, 1), QSize(1030, 40)})
            QTest::addRow("axis %d, %d x %d", axis, size.width(), size.height()) << axis << size;
}

void tst_RotatedMap::rotatesAsTheReference()
{
    QFETCH(int, axis);
    QFETCH(QSize, size);
    Rng rng(29);
    QImage map =
        noisePhotograph(rng, size, Alpha::Random).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (const Target &target : targets()) {
        const ForcedTarget forced(target);
        for (const int angle : {0, 35, 90, -90, 180, 359}) {
            // A canvas that is larger and not empty shows what is left alone.
            QImage expected(size + QSize(3, 2), QImage::Format_ARGB32_Premultiplied);
            expected.fill(0xff123456);
            QImage actual = expected;
            reference::rotate(axis, angle, map, expected);
            ConvertImage().rotateImage(axis, angle, map, actual);
            COMPARE_IMAGES(actual, expected);

            QImage direct = expected;
            direct.fill(0xff123456);
            paintRotatedMap(SphereRotation(axis, angle, size.width(), size.height()), mapView(map),
                            canvasView(direct), forced.approximate());
            COMPARE_IMAGES(direct, expected);
        }
    }
}

QTEST_GUILESS_MAIN(tst_RotatedMap)
#include "tst_rotatedmap.moc"
