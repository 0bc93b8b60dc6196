#include "picturelabel.h"

#include <QLabel>
#include <QPainter>

QPixmap pictureOf(const QLabel &label)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
    return label.pixmap(Qt::ReturnByValue);
#else
    const QPixmap *picture = label.pixmap();
    return picture ? *picture : QPixmap();
#endif
}

PictureScale pictureScaleOf(const QLabel &label, const QPixmap &picture)
{
    return {label.size(), picture.size(), label.hasScaledContents()};
}

void paintPicture(QLabel &label)
{
    QPainter painter(&label);
    const QPixmap picture = pictureOf(label);
    if (picture.isNull())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, label.hasScaledContents());
    if (label.hasScaledContents())
        painter.drawPixmap(pictureScaleOf(label, picture).fittedRectangle(), picture,
                           QRectF(QPointF(), picture.size()));
    else
        painter.drawPixmap(0, 0, picture);
}
