#pragma once

#include "mainwindow.h"

#include "ui_mainwindow.h"

#include <QApplication>
#include <QMetaObject>
#include <QtTest>

/// The main window with its state and operations open to a test; slots are called by name, as signals call
/// them.
class TestWindow : public MainWindow
{
public:
    using MainWindow::autoPreview;
    using MainWindow::autoSize;
    using MainWindow::azimuth;
    using MainWindow::batchConvert;
    using MainWindow::centerX;
    using MainWindow::centerY;
    using MainWindow::clearPending;
    using MainWindow::clickTimer;
    using MainWindow::closeEvent;
    using MainWindow::configConvert;
    using MainWindow::convertImage;
    using MainWindow::distance;
    using MainWindow::dragEnterEvent;
    using MainWindow::dropEvent;
    using MainWindow::fileList;
    using MainWindow::format;
    using MainWindow::getFormat;
    using MainWindow::getFormatChar;
    using MainWindow::image;
    using MainWindow::imageHeight;
    using MainWindow::imageWidth;
    using MainWindow::inputFolder;
    using MainWindow::latitude;
    using MainWindow::loadFileName;
    using MainWindow::loadImage;
    using MainWindow::longitude;
    using MainWindow::moveStartX;
    using MainWindow::moveStartY;
    using MainWindow::moving;
    using MainWindow::nameType;
    using MainWindow::openFiler;
    using MainWindow::outputFolder;
    using MainWindow::outputSizeX;
    using MainWindow::outputSizeY;
    using MainWindow::overwrite;
    using MainWindow::penColor;
    using MainWindow::penSize;
    using MainWindow::previewShow;
    using MainWindow::previewWindow;
    using MainWindow::quality;
    using MainWindow::radius;
    using MainWindow::ratioX;
    using MainWindow::ratioY;
    using MainWindow::readParam;
    using MainWindow::resizing;
    using MainWindow::saveFileName;
    using MainWindow::saveSetting;
    using MainWindow::selectShow;
    using MainWindow::showString;
    using MainWindow::sortType;
    using MainWindow::startTimer;
    using MainWindow::stepDelay;
    using MainWindow::stepR;
    using MainWindow::stepX;
    using MainWindow::stepY;
    using MainWindow::ui;
    using MainWindow::unattended;
    using MainWindow::updateParameter;
    using MainWindow::updatePreview;
    using MainWindow::updateScreenParameter;
    using MainWindow::updateSelect;
    using MainWindow::writeParam;

    /// Calls a slot without arguments.
    void slot(const char *name)
    {
        if (!QMetaObject::invokeMethod(this, name, Qt::DirectConnection))
            qFatal("no slot %s", name);
    }
};

/// The main function of a window test. The application sees no arguments, whatever the test is run with: the
/// start-up pass would take them for photographs. Dialogs are the toolkit's own, so that tests can drive
/// them.
#define WINDOW_TEST_MAIN(TestClass)                                                                          \
    int main(int argc, char *argv[])                                                                         \
    {                                                                                                        \
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);                                         \
        int applicationArgc = 1;                                                                             \
        QApplication application(applicationArgc, argv);                                                     \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
