#include "pixelmemory.h"

#include <QtTest>

class tst_PixelMemory : public QObject
{
    Q_OBJECT

private slots:
    void imagesAreAsTheToolkitMakesThem_data();
    void imagesAreAsTheToolkitMakesThem();
    void imagesOfOneSizeShareTheirPixels();
    void anImageThatSomebodyHasStays();
    void anotherSizeIsNew();
    void tooLargeIsNull();
};

void tst_PixelMemory::imagesAreAsTheToolkitMakesThem_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QImage::Format>("format");
    for (const QSize &size : {QSize(1, 1), QSize(3, 5), QSize(33, 2), QSize(4000, 3000)}) {
        for (const QImage::Format format :
             {QImage::Format_Grayscale8, QImage::Format_RGB16, QImage::Format_RGB888, QImage::Format_RGB32,
              QImage::Format_RGBA64})
            QTest::addRow("%d x %d, %d", size.width(), size.height(), int(format)) << size << format;
    }
}

void tst_PixelMemory::imagesAreAsTheToolkitMakesThem()
{
    QFETCH(QSize, size);
    QFETCH(QImage::Format, format);
    PixelMemory memory;
    QImage image = memory.image(size, format);
    QImage expected(size, format);
    QCOMPARE(image.size(), size);
    QCOMPARE(image.format(), format);
    QCOMPARE(image.bytesPerLine(), expected.bytesPerLine());
    QCOMPARE(image.dotsPerMeterX(), expected.dotsPerMeterX());
    image.fill(1); // every byte can be written
    expected.fill(1);
    QVERIFY(image == expected);
}

void tst_PixelMemory::imagesOfOneSizeShareTheirPixels()
{
    PixelMemory memory;
    QImage image = memory.image({40, 30}, QImage::Format_RGB32);
    const uchar *pixels = image.constBits();
    image.setText("key", "value");
    image.setDevicePixelRatio(2);
    image = QImage();
    image = memory.image({40, 30}, QImage::Format_RGB32);
    QCOMPARE(image.constBits(), pixels);
    QVERIFY(image.textKeys().isEmpty());
    QCOMPARE(image.devicePixelRatio(), 1.0);
    image.fill(Qt::red);
    QCOMPARE(image.constBits(), pixels); // writing copies nothing
    image = QImage();
    image = memory.image({120, 40}, QImage::Format_Grayscale8); // as many bytes
    QCOMPARE(image.constBits(), pixels);
}

void tst_PixelMemory::anImageThatSomebodyHasStays()
{
    QImage survivor;
    {
        PixelMemory memory;
        QImage first = memory.image({8, 8}, QImage::Format_RGB32);
        first.fill(Qt::red);
        const QImage copy = first;
        first = QImage();
        QImage second = memory.image({8, 8}, QImage::Format_RGB32);
        second.fill(Qt::green);
        QCOMPARE(copy.pixel(7, 7), qRgb(255, 0, 0));
        memory.clear();
        survivor = second;
    }
    QCOMPARE(survivor.pixel(7, 7), qRgb(0, 255, 0));
}

void tst_PixelMemory::anotherSizeIsNew()
{
    PixelMemory memory;
    QImage image = memory.image({8, 8}, QImage::Format_RGB32);
    image = QImage();
    image = memory.image({800, 800}, QImage::Format_RGB32);
    image.fill(Qt::blue);
    QCOMPARE(image.pixel(799, 799), qRgb(0, 0, 255));
}

void tst_PixelMemory::tooLargeIsNull()
{
    PixelMemory memory;
    QVERIFY(memory.image({2147483647, 2147483647}, QImage::Format_RGB32).isNull());
    QVERIFY(memory.image({2147483647, 1}, QImage::Format_RGBA64).isNull());
    QVERIFY(memory.image({0, 5}, QImage::Format_RGB32).isNull());
    QVERIFY(memory.image({-1, -1}, QImage::Format_RGB32).isNull());
}

QTEST_GUILESS_MAIN(tst_PixelMemory)
#include "tst_pixelmemory.moc"
