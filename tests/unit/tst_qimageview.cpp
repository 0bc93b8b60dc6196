#include "qimageview.h"

#include <QtTest>

#include <vector>

class tst_QImageView : public QObject
{
    Q_OBJECT

private slots:
    void photographIsSeenWhereItLies();
    void opaquePhotographsHaveNoAlphaBits();
    void rowsLieAStrideApart();
    void mapIsReadWhereItLies();
    void canvasIsSharedWithNobody();
};

void tst_QImageView::photographIsSeenWhereItLies()
{
    const QVector<QImage> owners(2, QImage(7, 5, QImage::Format_ARGB32));
    const projection::ConstImageView view = photographView(owners[0]);
    QCOMPARE(reinterpret_cast<const uchar *>(view.pixels), owners[1].constBits());
    QCOMPARE(QSize(view.width, view.height), QSize(7, 5));
}

void tst_QImageView::opaquePhotographsHaveNoAlphaBits()
{
    QCOMPARE(photographView(QImage(2, 2, QImage::Format_RGB32)).opaqueBits, 0xff000000U);
    QCOMPARE(photographView(QImage(2, 2, QImage::Format_ARGB32)).opaqueBits, 0U);
    QCOMPARE(mapView(QImage(2, 2, QImage::Format_ARGB32_Premultiplied)).opaqueBits, 0U);
}

void tst_QImageView::rowsLieAStrideApart()
{
    std::vector<QRgb> pixels(size_t{9} * 4);
    QImage inside(reinterpret_cast<uchar *>(pixels.data()), 7, 4, 9 * 4, QImage::Format_ARGB32_Premultiplied);
    inside.setPixel(6, 3, 0xff123456U);
    QCOMPARE(photographView(inside).stride, std::ptrdiff_t(9));
    const projection::ConstImageView map = mapView(inside);
    QCOMPARE(map.pixels[3 * map.stride + 6], 0xff123456U);
    const projection::ImageView canvas = canvasView(inside);
    canvas.pixels[canvas.stride] = 0xff654321U;
    QCOMPARE(inside.pixel(0, 1), 0xff654321U);
}

void tst_QImageView::mapIsReadWhereItLies()
{
    const QVector<QImage> owners(2, QImage(6, 3, QImage::Format_ARGB32_Premultiplied));
    const projection::ConstImageView view = mapView(owners[0]);
    QCOMPARE(reinterpret_cast<const uchar *>(view.pixels), owners[1].constBits());
    QCOMPARE(QSize(view.width, view.height), QSize(6, 3));
}

void tst_QImageView::canvasIsSharedWithNobody()
{
    QImage canvas(6, 3, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    const QImage shared = canvas;
    const projection::ImageView view = canvasView(canvas);
    QCOMPARE(QSize(view.width, view.height), QSize(6, 3));
    view.pixels[2 * view.stride + 5] = 0xff00ff00U;
    QCOMPARE(canvas.pixel(5, 2), 0xff00ff00U);
    QCOMPARE(shared.pixel(5, 2), 0U);
}

QTEST_GUILESS_MAIN(tst_QImageView)
#include "tst_qimageview.moc"
