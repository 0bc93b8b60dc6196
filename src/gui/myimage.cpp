#include "myimage.h"

MyImage::MyImage(QWidget *parent) : PictureLabel(parent)
{
}

bool MyImage::followsHover() const
{
    return selectMode;
}

void MyImage::leftPressed(QPoint position)
{
    emit mouseleftdown(position.x(), position.y());
}

void MyImage::dragged(const PictureDrag &drag)
{
    emit size_changing(drag.press.x(), drag.press.y(), drag.first.x(), drag.first.y(), drag.last.x(),
                       drag.last.y(), drag.position.x(), drag.position.y());
}

void MyImage::hovered(QPoint position)
{
    emit mouse_move(position.x(), position.y());
}

void MyImage::dragEnded(const PictureDrag &drag)
{
    if (selectMode)
        emit mouseleftup(drag.position.x(), drag.position.y());
    else
        emit size_changed(drag.press.x(), drag.press.y(), drag.radius);
}

void MyImage::rightReleased()
{
    emit mouserightup();
}
