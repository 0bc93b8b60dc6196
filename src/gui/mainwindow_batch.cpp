// MainWindow: many photographs in one run.

#include "mainwindow.h"

#include "batchconvertdialog.h"
#include "batchplan.h"
#include "mapfile.h"
#include "status.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFileInfo>
#include <QMessageBox>

void MainWindow::on_actionBatch_Convert_triggered()
{
    configConvert();
}

// Choices made in the dialog are kept even when it is closed without converting.
void MainWindow::configConvert()
{
    BatchConvertDialog dialog(this);
    dialog.langFile = langFile;
    dialog.readShowString();
    dialog.sortType = sortType;
    dialog.nameType = nameType;
    dialog.fileList = fileList;
    dialog.outputFolder = outputFolder;
    dialog.inputFolder = inputFolder;
    dialog.overwrite = overwrite;
    dialog.openFiler = openFiler;
    const int answer = dialog.exec();
    sortType = dialog.sortType;
    nameType = dialog.nameType;
    fileList = dialog.fileList;
    outputFolder = dialog.outputFolder;
    inputFolder = dialog.inputFolder;
    overwrite = dialog.overwrite;
    openFiler = dialog.openFiler;
    if (answer == QDialog::Accepted) {
        updateParameter();
        batchConvert();
    }
}

void MainWindow::batchConvert()
{
    Status status(this);
    qDebug() << "batchConvert";
    const int count = fileList.size();
    status.setMax(count);
    status.setStop(showString.value("batch_btn_stop"));
    fileList = orderedInputs(fileList, sortType);
    if (sortType == SortByModified) {
        for (const QString &path : qAsConst(fileList))
            qDebug() << path;
    }

    const bool interactive = unattended == 0;
    const bool shown = isVisible();
    if (interactive) {
        status.show();
        clearPicture();
    }
    // Disabling the window disables its child dialog too; only Stop may be used from here on.
    setEnabled(false);
    status.setEnabled(true);

    const QStringList inputs = fileList;
    int succeeded = 0;
    int failed = 0;
    for (int i = 0; i < count; ++i) {
        QCoreApplication::processEvents();
        // A window that was closed in the middle of the run has nobody left to run for.
        const bool closed = shown && !isVisible();
        if (status.isStopped() || closed)
            break;
        image = QImage(); // the last photograph goes before the next one comes
        if (!image.load(inputs.at(i))) {
            ++failed;
            continue;
        }
        imageWidth = image.width();
        imageHeight = image.height();
        const QImage map = convertPhotograph(AzimuthStep::EmptiesMap);
        // The numbers match list positions, not successes.
        const QString path = outputPath(outputFolder, inputs.at(i), nameType, i, getFormat());
        const bool refused = !overwrite && QFileInfo::exists(path);
        if (!refused && saveMap(map, path, getFormatChar(), quality))
            ++succeeded;
        else
            ++failed;
        if (interactive)
            status.setCur(i + 1);
    }

    image = QImage();
    clearPicture();
    setEnabled(true);
    if (!interactive)
        return;

    status.hide();
    if (shown && !isVisible())
        return;
    QMessageBox box(this);
    box.setText(succeeded == count ? showString.value("batch_success")
                                   : showString.value("batch_fail1") + QString::number(succeeded) +
                                         showString.value("batch_fail2") + QString::number(failed) +
                                         showString.value("batch_fail3"));
    box.setWindowTitle(ui->actionBatch_Convert->text());
    box.setStandardButtons(QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    box.setIcon(QMessageBox::Information);
    box.exec();
}
