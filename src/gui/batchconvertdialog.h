#pragma once

#include <QDialog>
#include <QFileDialog>
#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>

namespace Ui
{
class BatchConvertDialog;
}

/// Chooses what a batch run converts and how. Converts and checks nothing: the caller copies values in, runs
/// exec() and copies them back, whatever the result, so that a cancelled dialog keeps its choices.
class BatchConvertDialog : public QDialog
{
    Q_OBJECT

public:
    QStringList fileList;   ///< chosen inputs; in no particular order
    QString outputFolder;   ///< shown as it is, never checked
    QString inputFolder;    ///< where the pickers of the inputs open; follows what they picked
    QString langFile;       ///< path of the language file
    int sortType = 0;       ///< 0: by file name, 1: by modification date; others check no button
    int nameType = 0;       ///< 0: named after the inputs, 1: numbered; others check no button
    bool openFiler = false; ///< state of checkOpenFiler
    bool overwrite = false; ///< state of checkOverwrite
    std::unique_ptr<Ui::BatchConvertDialog> ui;
    QMap<QString, QString> showString; ///< message texts by key

    explicit BatchConvertDialog(QWidget *parent = nullptr);
    ~BatchConvertDialog() override;

    /// Takes the texts from langFile; call it before exec().
    void readShowString();

    /// Shows the members and runs the dialog. Order, naming and options are read back by both buttons, but
    /// not when the window itself is closed.
    /// @return QDialog::Accepted when the run shall start, else QDialog::Rejected
    int exec() override;

private slots:
    void on_btnSelectFiles_clicked();
    void on_btnSelectFolder_clicked();
    void on_btnOutputFolder_clicked();
    void on_btnConvert_clicked();
    void on_btnClose_clicked();

private:
    void prepare(QFileDialog &picker, QFileDialog::FileMode mode, const QString &folder,
                 const char *titleKey);
    void showFileCount();
    void readChoices();
};
