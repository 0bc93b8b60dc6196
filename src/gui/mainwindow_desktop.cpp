// MainWindow: what a desktop expects of a window: icons for its palette, names for screen readers.

#include "mainwindow.h"

#include "inkicon.h"
#include "ui_mainwindow.h"

#include <QEvent>
#include <QIcon>

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        drawIcons();
}

void MainWindow::drawIcons()
{
    ui->btnUp->setIcon(inkIcon("up", palette()));
    ui->btnDown->setIcon(inkIcon("down", palette()));
    ui->btnLeft->setIcon(inkIcon("left", palette()));
    ui->btnRight->setIcon(inkIcon("right", palette()));
    ui->btnSizeUp->setIcon(inkIcon("large", palette()));
    ui->btnSizeDown->setIcon(inkIcon("small", palette()));
}

// Labels with one field are its buddies. The others share a label, and the buttons have none: a caption and a
// symbol, which a screen reader speaks in the user's language.
void MainWindow::nameForScreenReaders()
{
    const QString centre = ui->label_center->text();
    ui->lineCenterX->setAccessibleName(centre + " ↔");
    ui->lineCenterY->setAccessibleName(centre + " ↕");
    ui->btnUp->setAccessibleName(centre + " ↑");
    ui->btnDown->setAccessibleName(centre + " ↓");
    ui->btnLeft->setAccessibleName(centre + " ←");
    ui->btnRight->setAccessibleName(centre + " →");
    ui->btnSizeUp->setAccessibleName(ui->label_radius->text() + " +");
    ui->btnSizeDown->setAccessibleName(ui->label_radius->text() + " −");
}
