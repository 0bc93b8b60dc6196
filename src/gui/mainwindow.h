#pragma once

#include "circleoverlay.h"
#include "mapconversion.h"
#include "selectioncircle.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QMainWindow>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>

class PreviewWindow;
class QShortcut;
class QTimer;
class Status;
struct Setting;

namespace Ui
{
class MainWindow;
}

/// The main window and hub of the program: it owns the photograph, the circle, every setting and the preview
/// window. A slot reads its widgets, calls one unit and shows the result. Conversions handle events, so any
/// slot may run in the middle of one; a conversion therefore works on copies.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Loads the texts from the language file, then the settings. Call once, before the window is shown and
    /// after both paths are set. Missing files mean built-in texts and default settings.
    void readShowString();

    /// Ends the program from outside: leaves the unattended mode and closes the window if it is visible.
    void closeApplication();

    QString settingFile;   ///< path of the settings file
    QString langFile;      ///< path of the language file
    QStringList arguments; ///< the command line, program's name first; empty: what the application has of it

    /// Called once, when the start-up pass begins; may be empty.
    std::function<void()> startUpPassBegins;

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

    void saveSetting();
    void loadImage();
    void updateScreenParameter();
    void updateSelect();
    void updateParameter();
    void updatePreview();
    QImage convertImage();
    void configConvert();
    void batchConvert();
    void writeParam();
    void readParam();
    QString getFormat() const;
    const char *getFormatChar() const;

    std::unique_ptr<Ui::MainWindow> ui;
    QImage image;    // the loaded photograph; null when there is none
    int centerX = 0; // selection circle, photograph pixels; never clamped
    int centerY = 0;
    int radius = 0;
    double distance = 100.0; // globe radii
    double ratioX = 0.0;     // output ratios of the last conversion
    double ratioY = 0.0;
    int imageWidth = 0; // size of the photograph that was loaded last
    int imageHeight = 0;
    int unattended = 1;     // until the interactive start-up pass; non-zero: a batch shows nothing
    int outputSizeX = 2048; // map size, pixels
    int outputSizeY = 1024;
    int sortType = 0;
    int nameType = 0;
    bool autoPreview = false;
    bool autoSize = true;
    bool selectShow = false; // the circle exists and is drawn
    bool resizing = false;
    bool moving = false;
    bool clearPending = false; // a press fell outside the circle; armed for the rest of the run
    int moveStartX = 0;
    int moveStartY = 0;
    int penSize = 3;
    QColor penColor;
    int quality = 0;
    int format = 0;    // 1 is PNG, everything else JPEG
    int stepDelay = 0; // ticks before a held button repeats
    int stepX = 0;
    int stepY = 0;
    int stepR = 0;
    double latitude = 0.0;
    double longitude = 0.0;
    double azimuth = 0.0;
    QMap<QString, QString> showString;
    bool openFiler = true;
    bool overwrite = true;
    QStringList fileList;
    QString inputFolder;
    QString outputFolder;
    QString loadFileName;
    QString saveFileName;
    QTimer *startTimer; // one tick: the start-up pass
    QTimer *clickTimer; // repeats a held button
    std::unique_ptr<PreviewWindow> previewWindow;
    bool previewShow = false;

private slots:
    void on_btnImageRead_clicked();
    void on_btnConvert_clicked();
    void on_btnSizeUp_clicked();
    void on_btnSizeDown_clicked();
    void on_btnUp_clicked();
    void on_btnDown_clicked();
    void on_btnLeft_clicked();
    void on_btnRight_clicked();
    void on_lineCenterX_returnPressed();
    void on_lineCenterY_returnPressed();
    void on_lineRadius_returnPressed();
    void on_label_clicked(int x, int y);
    void on_label_size_changed(int x, int y, int r);
    void on_label_size_changing(int cx, int cy, int x1, int y1, int x2, int y2, int x, int y);
    void on_label_mouseleftdown(int x, int y);
    void on_label_mouseleftup(int x, int y);
    void on_label_mouserightup();
    void on_label_mouse_move(int x, int y);
    void timeout();
    void click_timer();
    void on_actionConvert_Save_triggered();
    void on_actionAuto_Preview_triggered(bool checked);
    void on_actionBatch_Convert_triggered();
    void on_actionAuto_Size_triggered(bool checked);
    void on_actionPreview_Window_triggered(bool checked);
    void on_actionSave_Param_triggered();
    void on_actionLoad_Param_triggered();
    void on_actionSetting_triggered();
    void on_actionParam_Reset_triggered();
    void slotPreviewWindowHidden();
    void on_btnPreview_clicked();
    void on_btnBrowse_clicked();
    void on_btnRight_pressed();
    void on_btnDown_pressed();
    void on_btnLeft_pressed();
    void on_btnUp_pressed();
    void on_btnSizeUp_pressed();
    void on_btnSizeDown_pressed();

private:
    struct BatchRun;
    struct BatchCount {
        int inputs = 0;
        int succeeded = 0;
        int failed = 0; // a stopped run counts the inputs that it did not reach nowhere
    };

    void readTexts();
    void nameForScreenReaders();
    void addShortcuts();
    void drawIcons();
    void showManual() const;
    QVector<Setting> settings();
    SelectionCircle circle() const;
    void setCircle(const SelectionCircle &value);
    void setCircleShown(bool shown);
    void showCircle(const std::optional<SelectionCircle> &shown, Qt::PenStyle square);
    void takeLineEdits();
    void circleEdited();
    void setPictureScaled(bool scaled);
    bool showPhotograph();
    void clearPicture();
    void startStepping(int dx, int dy, int dr);
    void finishStepping(int dx, int dy, int dr);
    MapParameters mapParameters() const;
    QImage convertPhotograph(const MapParameters &parameters, AzimuthStep azimuthStep);
    void setSaveFileName(const QString &path);
    void confirmSaved(const QString &title, const QString &path);
    BatchCount convertFiles(Status &status);
    bool saveMapOfFile(const BatchRun &run, int position);
    void reportBatch(const BatchCount &count);

    CircleOverlay circleOverlay;  // what the label shows
    QList<QShortcut *> shortcuts; // off while a conversion runs
};
