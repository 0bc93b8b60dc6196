// MainWindow: many photographs in one run.

#include "mainwindow.h"

void MainWindow::on_actionBatch_Convert_triggered()
{
    configConvert();
}

void MainWindow::configConvert()
{
}

void MainWindow::batchConvert()
{
}
