#include "myimage.h"

#include "picturelabel.h"

#include <QMouseEvent>

MyImage::MyImage(QWidget *parent) : QLabel(parent)
{
}

void MyImage::mousePressEvent(QMouseEvent *event)
{
    pressPicture(*this, *event);
}

void MyImage::mouseMoveEvent(QMouseEvent *event)
{
    if (!leftDown && !selectMode) {
        QLabel::mouseMoveEvent(event);
        return;
    }
    const QPixmap picture = pictureOf(*this);
    if (picture.isNull())
        return;
    const PictureDrag drag = pictureScaleOf(*this, picture).drag(pressPos, event->pos());
    if (leftDown)
        reportDrag(*this, drag);
    else
        emit mouse_move(drag.position.x(), drag.position.y());
}

void MyImage::mouseReleaseEvent(QMouseEvent *event)
{
    const Qt::MouseButtons held = event->buttons();
    if (leftDown && !(held & Qt::LeftButton)) {
        const QPixmap picture = pictureOf(*this);
        if (picture.isNull())
            return; // the picture vanished in mid-drag: the flags wait for the next release
        const PictureDrag drag = pictureScaleOf(*this, picture).drag(pressPos, event->pos());
        if (selectMode)
            emit mouseleftup(drag.position.x(), drag.position.y());
        else
            emit size_changed(drag.press.x(), drag.press.y(), drag.radius);
    }
    forgetReleased(*this, held);
}

void MyImage::paintEvent(QPaintEvent *)
{
    paintPicture(*this);
}
