// MainWindow: the selection circle: showing it, the edits and buttons that nudge it, and the mouse gestures.

#include "mainwindow.h"

#include "ui_mainwindow.h"

#include <QDebug>
#include <QGuiApplication>
#include <QPixmap>
#include <QTimer>

namespace
{

constexpr int repeatMs = 100;
constexpr int ticksBeforeRepeat = 10;

} // namespace

SelectionCircle MainWindow::circle() const
{
    return {centerX, centerY, radius};
}

void MainWindow::setCircle(const SelectionCircle &value)
{
    centerX = value.centerX;
    centerY = value.centerY;
    radius = value.radius;
}

// Whether the circle exists; the picture widget then edits it instead of drawing a new one.
void MainWindow::setCircleShown(bool shown)
{
    selectShow = shown;
    ui->label->selectMode = shown;
}

void MainWindow::updateScreenParameter()
{
    qDebug() << "updateScreenParameter, " << radius << ", " << centerX << ", " << centerY;
    ui->lineRadius->setText(QString::number(radius));
    ui->lineCenterX->setText(QString::number(centerX));
    ui->lineCenterY->setText(QString::number(centerY));
    qDebug() << "SetScreenParameter, " << ui->lineRadius->text().toInt() << ", "
             << ui->lineCenterX->text().toInt() << ", " << ui->lineCenterY->text().toInt();
}

void MainWindow::updateParameter()
{
    radius = ui->lineRadius->text().toInt();
    centerX = ui->lineCenterX->text().toInt();
    centerY = ui->lineCenterY->text().toInt();
}

void MainWindow::updateSelect()
{
    if (image.isNull())
        return;
    if (selectShow)
        showCircle(circle(), Qt::DotLine);
    else
        showCircle(std::nullopt, Qt::DotLine);
}

// Shows the photograph with a circle as an overlay, or without; the members stay as they are.
void MainWindow::showCircle(const std::optional<SelectionCircle> &shown, Qt::PenStyle square)
{
    ui->label->setPixmap(QPixmap()); // the overlay changes the pixels of the last picture
    ui->label->setPixmap(circleOverlay.picture(image, shown, {penColor, penSize, square}));
}

void MainWindow::on_lineCenterX_returnPressed()
{
    takeLineEdits();
}

void MainWindow::on_lineCenterY_returnPressed()
{
    takeLineEdits();
}

void MainWindow::on_lineRadius_returnPressed()
{
    takeLineEdits();
}

void MainWindow::takeLineEdits()
{
    updateParameter();
    updateSelect();
    updatePreview();
}

// Every finished edit that changed the members ends here.
void MainWindow::circleEdited()
{
    updateScreenParameter();
    updateSelect();
    updatePreview();
}

// A pressed button repeats after a second, until a click turns the timer single-shot. A release outside the
// button is no click, so the repeating goes on until the next one.
void MainWindow::startStepping(int dx, int dy, int dr)
{
    stepDelay = ticksBeforeRepeat;
    stepX = dx;
    stepY = dy;
    stepR = dr;
    clickTimer->setSingleShot(false);
    clickTimer->start(repeatMs);
}

// A click moves one step at once; its single tick only refreshes what is shown.
void MainWindow::finishStepping(int dx, int dy, int dr)
{
    stepDelay = 1;
    stepX = dx;
    stepY = dy;
    stepR = dr;
    setCircle(stepped(circle(), dx, dy, dr));
    clickTimer->setSingleShot(true);
    clickTimer->start(repeatMs);
}

void MainWindow::click_timer()
{
    qDebug() << "click_timer()";
    if (stepDelay > 0)
        --stepDelay;
    else
        setCircle(stepped(circle(), stepX, stepY, stepR));
    circleEdited();
}

void MainWindow::on_btnUp_pressed()
{
    startStepping(0, -1, 0);
}

void MainWindow::on_btnDown_pressed()
{
    startStepping(0, 1, 0);
}

void MainWindow::on_btnLeft_pressed()
{
    startStepping(-1, 0, 0);
}

void MainWindow::on_btnRight_pressed()
{
    startStepping(1, 0, 0);
}

void MainWindow::on_btnSizeUp_pressed()
{
    startStepping(0, 0, 1);
}

void MainWindow::on_btnSizeDown_pressed()
{
    startStepping(0, 0, -1);
}

void MainWindow::on_btnUp_clicked()
{
    finishStepping(0, -1, 0);
}

void MainWindow::on_btnDown_clicked()
{
    finishStepping(0, 1, 0);
}

void MainWindow::on_btnLeft_clicked()
{
    finishStepping(-1, 0, 0);
}

void MainWindow::on_btnRight_clicked()
{
    finishStepping(1, 0, 0);
}

void MainWindow::on_btnSizeUp_clicked()
{
    finishStepping(0, 0, 1);
}

void MainWindow::on_btnSizeDown_clicked()
{
    finishStepping(0, 0, -1);
}

void MainWindow::on_label_clicked(int /*x*/, int /*y*/)
{
}

void MainWindow::on_label_mouseleftdown(int x, int y)
{
    if (!selectShow)
        return;
    const CircleZone zone = zoneAt(circle(), {x, y});
    if (zone == CircleZone::CentreHandle || zone == CircleZone::Ring) {
        moving = true;
        moveStartX = x;
        moveStartY = y;
        on_label_size_changing(x, y, 0, 0, 0, 0, x, y);
        return;
    }
    moving = false;
    resizing = zone == CircleZone::Corner;
    if (resizing)
        on_label_size_changing(x, y, 0, 0, 0, 0, x, y);
    else if (zone == CircleZone::Outside)
        clearPending = true;
}

void MainWindow::on_label_size_changing(int cx, int cy, int x1, int y1, int x2, int y2, int x, int y)
{
    if (image.isNull())
        return;
    if (selectShow) {
        if (resizing)
            showCircle(resized(circle(), {x, y}), Qt::DotLine);
        else if (moving)
            showCircle(moved(circle(), {moveStartX, moveStartY}, {x, y}), Qt::DotLine);
    } else if (const auto created = newCircle({cx, cy}, {x1, y1}, {x2, y2})) {
        showCircle(created, Qt::SolidLine);
    }
}

void MainWindow::on_label_size_changed(int x, int y, int r)
{
    if (image.isNull())
        return;
    if (r >= smallestNewRadius) {
        setCircle({x, y, r});
        setCircleShown(true);
    }
    circleEdited();
}

void MainWindow::on_label_mouseleftup(int x, int y)
{
    if (resizing) {
        setCircle(resized(circle(), {x, y}));
        circleEdited();
        resizing = false;
    } else if (moving) {
        setCircle(moved(circle(), {moveStartX, moveStartY}, {x, y}));
        circleEdited();
        moving = false;
    } else if (clearPending) {
        setCircleShown(false);
        updateSelect();
    }
}

void MainWindow::on_label_mouserightup()
{
    resizing = false;
    moving = false;
    if (selectShow)
        setCircleShown(false);
    else if (radius > 0)
        setCircleShown(true);
    updateSelect();
}

// Each hover pushes or pops exactly one override cursor, paired or not.
void MainWindow::on_label_mouse_move(int x, int y)
{
    const auto cursor = selectShow ? cursorAt(circle(), {x, y}) : std::nullopt;
    if (cursor)
        QGuiApplication::setOverrideCursor(*cursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void MainWindow::on_actionParam_Reset_triggered()
{
    const bool loaded = !image.isNull();
    setCircle(loaded ? defaultCircle(image.size()) : SelectionCircle());
    setCircleShown(loaded);
    updateScreenParameter();
    updateSelect();
}
