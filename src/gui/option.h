#pragma once

#include <QDialog>
#include <QMap>
#include <QString>
#include <QVector>

#include <memory>

class QLineEdit;

namespace Ui
{
class Option;
}

/// The options dialog. Works on its own copy of the values: the caller copies them in, runs exec() and copies
/// them back only when it was accepted. OK is refused while any value lies outside its range.
class Option : public QDialog
{
    Q_OBJECT

public:
    double distance = 0.0;                          ///< viewpoint to globe centre, globe radii, 1 .. 100
    int outputSizeX = 0;                            ///< map width, pixels, 1024 .. 8192
    int outputSizeY = 0;                            ///< map height, pixels, 1024 .. 8192
    int quality = 85;                               ///< JPEG quality, 1 .. 100
    int format = 0;                                 ///< 0: JPG, 1: PNG
    QString penColor = QStringLiteral("#FFFF0000"); ///< "#AARRGGBB"; not checked
    int penSize = 3;                                ///< circle pen width, photograph pixels, 1 .. 32
    double latitude = 0.0;                          ///< map centre, degrees, -90 .. 90
    double longitude = 0.0;                         ///< map centre, degrees, -180 .. 180
    double azimuth = 0.0;                           ///< rotation about the disc centre, degrees, 0 .. 360
    QString langFile;                               ///< path of the language file
    std::unique_ptr<Ui::Option> ui;
    QMap<QString, QString> showString; ///< message texts by key

    explicit Option(QWidget *parent = nullptr);
    ~Option() override;

    /// Takes the texts from langFile; call it before exec().
    void readShowString();

    /// Shows the members in the fields (any value; real numbers with six significant digits) and runs the
    /// dialog. The members hold what was typed afterwards, also when the dialog was cancelled after a refused
    /// OK.
    /// @return QDialog::Accepted or QDialog::Rejected
    int exec() override;

protected:
    bool event(QEvent *event) override;

private slots:
    void on_btnOk_clicked();
    void on_btnCancel_clicked();
    void on_btnDefault_clicked();

private:
    void showMembers();
    void readFields();
    QVector<QLineEdit *> fieldsOutOfRange() const;
    void selectRefusedAgain();

    QVector<QLineEdit *> m_refused; // fields out of range at the last OK, until the warning is gone
};
