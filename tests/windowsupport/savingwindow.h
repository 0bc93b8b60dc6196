#pragma once

#include "freshwindow.h"
#include "modaldriver.h"

#include <QBuffer>

/// What stands in a map's place before it is saved.
inline const QByteArray oldContents = "the old file";

inline ModalDriver::Message overwriteQuestion(const QString &name, QMessageBox::StandardButton answer)
{
    return {"画像変換",
            name + " は既にファイルが存在します。\nファイルを上書きしますか？\n"
                   "（上書する前のファイルには戻せません）",
            QMessageBox::Warning,
            QMessageBox::Yes | QMessageBox::No,
            answer,
            QMessageBox::No};
}

inline ModalDriver::Message confirmation(const QString &path)
{
    return {"画像変換",
            path + " へ保存されました",
            QMessageBox::Information,
            QMessageBox::Ok,
            QMessageBox::Ok,
            QMessageBox::Ok};
}

/// The bytes that a file with this map has.
inline QByteArray encoded(const QImage &map, const char *format, int quality)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    map.save(&buffer, format, quality);
    return buffer.data();
}

/// A window with the photograph planet.png, ready to save its map.
class SavingWindow : public FreshWindow
{
public:
    SavingWindow() { open(colourfulPhotograph(), "planet.png"); }

    void clickConvert() { QTest::mouseClick(ui->btnConvert, Qt::LeftButton); }

    /// Types a name that no file has yet, and converts.
    void save(const QString &name)
    {
        ui->lineSaveFilename->setText(name);
        ModalDriver driver;
        driver.expectMessage(confirmation(filePath(name)));
        clickConvert();
        QVERIFY(driver.done());
    }
};
