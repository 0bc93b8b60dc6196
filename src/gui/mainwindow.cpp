#include "mainwindow.h"

#include "inifile.h"
#include "mapvalues.h"
#include "option.h"
#include "previewwindow.h"
#include "programarguments.h"
#include "ui_mainwindow.h"
#include "uitexts.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDebug>
#include <QFileInfo>
#include <QTimer>

namespace
{

constexpr int startUpDelayMs = 1000;
const char *const version = " 1.02";

template <typename T>
Setting mapSetting(const MapValue<T> &value, T &variable)
{
    return boundSetting(value.key, value.defaultValue, variable);
}

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::MainWindow>())
    , startTimer(new QTimer(this))
    , clickTimer(new QTimer(this))
    , previewWindow(std::make_unique<PreviewWindow>(this))
{
    ui->setupUi(this);
    ui->lineRadius->setText(QStringLiteral("0"));
    ui->lineCenterX->setText(QStringLiteral("0"));
    ui->lineCenterY->setText(QStringLiteral("0"));
    penColor.setNamedColor(QStringLiteral("#FFFF0000"));
    ui->label->setAttribute(Qt::WA_MouseTracking);
    drawIcons();
    addShortcuts();

    connect(previewWindow.get(), SIGNAL(hidden()), this, SLOT(slotPreviewWindowHidden()));
    connect(startTimer, SIGNAL(timeout()), this, SLOT(timeout()));
    startTimer->start(startUpDelayMs);
    clickTimer->setSingleShot(false);
    connect(clickTimer, SIGNAL(timeout()), this, SLOT(click_timer()));
}

MainWindow::~MainWindow() = default;

void MainWindow::readShowString()
{
    readTexts();
    nameForScreenReaders();
    setWindowTitle(showString.value("title") + version);
    previewWindow->setWindowTitle(showString.value("preview_window_title"));
    loadSettings(settingFile, settings());
    updateScreenParameter();
    updateSelect();
}

void MainWindow::readTexts()
{
    UiTexts texts(langFile, "main", showString);
    texts.caption("lbl_1", ui->label_1, &QLabel::setText);
    texts.caption("lbl_2", ui->label_2, &QLabel::setText);
    texts.caption("lbl_3", ui->label_3, &QLabel::setText);
    texts.caption("lbl_4", ui->label_4, &QLabel::setText);
    texts.caption("lbl_4_2", ui->label_4_2, &QLabel::setText);
    texts.caption("btn_open", ui->btnImageRead, &QPushButton::setText);
    texts.caption("btn_preview", ui->btnPreview, &QPushButton::setText);
    texts.caption("lbl_center", ui->label_center, &QLabel::setText);
    texts.caption("lbl_radius", ui->label_radius, &QLabel::setText);
    texts.caption("btn_conv", ui->btnConvert, &QPushButton::setText);
    texts.caption("btn_browse", ui->btnBrowse, &QPushButton::setText);
    texts.message("title", "Orvane 画像変換ツール");
    texts.caption("menu_file", ui->menuFile, &QMenu::setTitle);
    texts.caption("menu_show", ui->menuView, &QMenu::setTitle);
    texts.caption("cmd_load_param", ui->actionLoad_Param, &QAction::setText);
    texts.caption("cmd_save_param", ui->actionSave_Param, &QAction::setText);
    texts.caption("cmd_reset_param", ui->actionParam_Reset, &QAction::setText);
    texts.caption("cmd_batch_conv", ui->actionBatch_Convert, &QAction::setText);
    texts.caption("cmd_setting", ui->actionSetting, &QAction::setText);
    texts.caption("cmd_preview_window", ui->actionPreview_Window, &QAction::setText);
    texts.caption("cmd_auto_preview", ui->actionAuto_Preview, &QAction::setText);
    texts.caption("cmd_auto_size", ui->actionAuto_Size, &QAction::setText);
    texts.message("file_filter", "画像ファイル (*.gif *.png *.jpg)");
    texts.message("open_file", "表示したい画像ファイルを選択して下さい");
    texts.message("open_error", " は開けませんでした");
    texts.message("overwrite_question", " は既にファイルが存在します。\nファイルを上書きしますか？\n"
                                        "（上書する前のファイルには戻せません）");
    texts.message("saved_file", " へ保存されました");
    texts.message("inifile_filter", "選択範囲 (*.ini)");
    texts.message("save_inifile", "中心点、半径をファイルへ保存します、ファイル名を指定して下さい");
    texts.message("save_inifile_title", "中心点、半径の保存");
    texts.message("load_inifile", "中心点、半径をファイルから読込ます、ファイル名を指定して下さい");
    texts.message("batch_btn_stop", "中止");
    texts.message("batch_success", "複数画像ファイル変換が終了しました");
    texts.message("batch_fail1", "複数画像ファイル変換は失敗しました\n(");
    texts.message("batch_fail2", "個成功, ");
    texts.message("batch_fail3", "個失敗)");
    texts.message("save_image_filter", "画像ファイル (*.");
    texts.message("save_image_title", "画像変換後のファイル名を指定して下さい");
    texts.message("preview_window_title", "Orvane 画像変換ツール（プレビュー）");
}

QVector<Setting> MainWindow::settings()
{
    return {
        {"Geometry", QByteArray(), [this] { return saveGeometry(); },
         [this](const QVariant &value) { restoreGeometry(value.toByteArray()); }},
        {"PreviewGeometry", QByteArray(), [this] { return previewWindow->saveGeometry(); },
         [this](const QVariant &value) { previewWindow->restoreGeometry(value.toByteArray()); }},
        {"PreviewWindow", false, [this] { return previewWindow->isVisible(); },
         [this](const QVariant &value) { previewShow = value.toBool(); }},
        boundSetting("AutoPreview", false, autoPreview),
        boundSetting("AutoSize", true, autoSize),
        boundSetting("PenSize", 3, penSize),
        {"PenColor", "#FFFF0000", [this] { return penColor.name(QColor::HexArgb); },
         [this](const QVariant &value) { penColor.setNamedColor(value.toString()); }},
        mapSetting(mapvalues::centerX, centerX),
        mapSetting(mapvalues::centerY, centerY),
        mapSetting(mapvalues::radius, radius),
        mapSetting(mapvalues::distance, distance),
        mapSetting(mapvalues::outputSizeX, outputSizeX),
        mapSetting(mapvalues::outputSizeY, outputSizeY),
        boundSetting("LoadFileName", QString(), loadFileName),
        boundSetting("SaveFileName", QString(), saveFileName),
        boundSetting("InputFolder", QString(), inputFolder),
        boundSetting("OutputFolder", QString(), outputFolder),
        boundSetting("InputFileSortType", 0, sortType),
        boundSetting("OutputFileNameType", 0, nameType),
        mapSetting(mapvalues::format, format),
        mapSetting(mapvalues::quality, quality),
        mapSetting(mapvalues::latitude, latitude),
        mapSetting(mapvalues::longitude, longitude),
        mapSetting(mapvalues::azimuth, azimuth),
        boundSetting("Overwrite", true, overwrite),
        boundSetting("OpenFiler", true, openFiler),
    };
}

void MainWindow::saveSetting()
{
    saveSettings(settingFile, settings());
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    saveSetting();
    QMainWindow::closeEvent(event);
}

void MainWindow::closeApplication()
{
    unattended = 0;
    if (isVisible())
        close();
}

// The start-up pass, once, a second after construction: restores the view and handles the command line. A
// hidden window means a batch without a window.
void MainWindow::timeout()
{
    qDebug() << "timeout";
    startTimer->stop();
    if (startUpPassBegins)
        startUpPassBegins();

    const bool batchMode = !isVisible();
    const QStringList photographs =
        photographsOf(arguments.isEmpty() ? QCoreApplication::arguments() : arguments, batchMode);
    if (!batchMode) {
        setPictureScaled(autoSize);
        if (autoSize)
            ui->actionAuto_Size->setChecked(true);
        if (previewShow) {
            ui->actionPreview_Window->setChecked(true);
            previewWindow->show();
        }
        if (autoPreview)
            ui->actionAuto_Preview->setChecked(true);
        unattended = 0;
    }

    if (!batchMode && photographs.size() == 1) {
        loadFileName = photographs.first();
        loadImage();
    } else if (photographs.size() < 2) {
        if (!loadFileName.isEmpty())
            loadImage();
    } else {
        for (const QString &photograph : photographs) {
            qDebug() << photograph;
            fileList.append(photograph);
        }
        if (batchMode && unattended == 1) {
            batchConvert();
            close();
        } else if (!batchMode && unattended == 0) {
            configConvert();
        }
    }
}

void MainWindow::setPictureScaled(bool scaled)
{
    ui->label->setScaledContents(scaled);
    ui->label->setMinimumSize(scaled ? QSize(320, 240) : QSize(0, 0));
}

void MainWindow::on_actionAuto_Size_triggered(bool checked)
{
    autoSize = checked;
    previewWindow->setAutoSize(checked);
    setPictureScaled(checked);
}

void MainWindow::on_actionAuto_Preview_triggered(bool checked)
{
    autoPreview = checked;
}

void MainWindow::on_actionPreview_Window_triggered(bool checked)
{
    if (checked)
        on_btnPreview_clicked();
    else
        previewWindow->hide();
}

void MainWindow::slotPreviewWindowHidden()
{
    ui->actionPreview_Window->setChecked(false);
}

// The dialog works on its own copies; they come back only when it was accepted.
void MainWindow::on_actionSetting_triggered()
{
    Option option(this);
    option.langFile = langFile;
    option.readShowString();
    option.distance = distance;
    option.outputSizeX = outputSizeX;
    option.outputSizeY = outputSizeY;
    option.quality = quality;
    option.format = format;
    option.latitude = latitude;
    option.longitude = longitude;
    option.azimuth = azimuth;
    option.penSize = penSize;
    option.penColor = penColor.name(QColor::HexArgb);
    if (option.exec() == 0)
        return;
    distance = option.distance;
    outputSizeX = option.outputSizeX;
    outputSizeY = option.outputSizeY;
    quality = option.quality;
    format = option.format;
    latitude = option.latitude;
    longitude = option.longitude;
    azimuth = option.azimuth;
    penSize = option.penSize;
    penColor.setNamedColor(option.penColor);
    updateSelect();
}
