#include "previewwindow.h"

#include "ui_previewwindow.h"

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

MyImage2::MyImage2(QWidget *parent) : PictureLabel(parent)
{
}

void MyImage2::leftPressed(QPoint position)
{
    emit mouseleftdown(position.x(), position.y());
}

void MyImage2::dragged(const PictureDrag &drag)
{
    emit size_changing(drag.press.x(), drag.press.y(), drag.first.x(), drag.first.y(), drag.last.x(),
                       drag.last.y(), drag.position.x(), drag.position.y());
}

void MyImage2::dragEnded(const PictureDrag &drag)
{
    emit mouseleftup(drag.position.x(), drag.position.y());
    emit size_changed(drag.press.x(), drag.press.y(), drag.radius);
}

void MyImage2::rightReleased()
{
    emit mouserightup();
}
