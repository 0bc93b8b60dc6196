#include "previewwindow.h"

#include "picturelabel.h"
#include "ui_previewwindow.h"

#include <QMouseEvent>

#include <utility>

PreviewWindow::PreviewWindow(QWidget *parent) : QMainWindow(parent), ui(std::make_unique<Ui::PreviewWindow>())
{
    ui->setupUi(this);
}

PreviewWindow::~PreviewWindow() = default;

void PreviewWindow::setImage(QImage image)
{
    ui->label2->setPixmap(QPixmap::fromImage(std::move(image)));
    ui->label2->setMinimumSize(320, 240);
    ui->label2->setScaledContents(true);
}

void PreviewWindow::setAutoSize(bool)
{
}

// The event stays accepted: one window that refuses to close would keep the program alive, unseen.
void PreviewWindow::closeEvent(QCloseEvent *)
{
    emit hidden();
    hide();
}

MyImage2::MyImage2(QWidget *parent) : QLabel(parent)
{
}

void MyImage2::mousePressEvent(QMouseEvent *event)
{
    pressPicture(*this, *event);
}

void MyImage2::mouseMoveEvent(QMouseEvent *event)
{
    if (!leftDown) {
        QLabel::mouseMoveEvent(event);
        return;
    }
    const QPixmap picture = pictureOf(*this);
    if (picture.isNull())
        return;
    const PictureDrag drag = pictureScaleOf(*this, picture).drag(pressPos, event->pos());
    reportDrag(*this, drag);
}

void MyImage2::mouseReleaseEvent(QMouseEvent *event)
{
    const Qt::MouseButtons held = event->buttons();
    if (leftDown && !(held & Qt::LeftButton)) {
        const QPixmap picture = pictureOf(*this);
        if (picture.isNull())
            return; // the picture vanished in mid-drag: the flags wait for the next release
        const PictureDrag drag = pictureScaleOf(*this, picture).drag(pressPos, event->pos());
        emit mouseleftup(drag.position.x(), drag.position.y());
        emit size_changed(drag.press.x(), drag.press.y(), drag.radius);
    }
    forgetReleased(*this, held);
}

void MyImage2::paintEvent(QPaintEvent *)
{
    paintPicture(*this);
}
