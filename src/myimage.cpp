#include "myimage.h"

#include "picturelabel.h"

#include <QMouseEvent>

MyImage::MyImage(QWidget *parent) : QLabel(parent)
{
}

void MyImage::mousePressEvent(QMouseEvent *event)
{
    // All buttons that are held, not the one that changed: a right press during a left drag begins it anew.
    if (event->buttons() & Qt::LeftButton) {
        const QPixmap picture = pictureOf(*this);
        if (picture.isNull())
            return;
        leftDown = true;
        pressPos = event->pos();
        const QPoint p = pictureScaleOf(*this, picture).toPicture(pressPos);
        emit mouseleftdown(p.x(), p.y());
    }
    if (event->buttons() & Qt::RightButton)
        rightDown = true;
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
        emit size_changing(drag.press.x(), drag.press.y(), drag.first.x(), drag.first.y(), drag.last.x(),
                           drag.last.y(), drag.position.x(), drag.position.y());
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
    if (rightDown && !(held & Qt::RightButton))
        emit mouserightup();
    if (!(held & Qt::LeftButton))
        leftDown = false;
    if (!(held & Qt::RightButton))
        rightDown = false;
}

void MyImage::paintEvent(QPaintEvent *)
{
    paintPicture(*this);
}
