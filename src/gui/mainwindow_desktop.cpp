// MainWindow: what a desktop expects of a window: icons for its palette, names for screen readers, shortcuts.

#include "mainwindow.h"

#include "inkicon.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QIcon>
#include <QShortcut>
#include <QUrl>

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

// They belong to the window and not to its buttons, whose own shortcuts come and go with their captions.
void MainWindow::addShortcuts()
{
    const auto add = [this](const QKeySequence &keys) {
        shortcuts.append(new QShortcut(keys, this));
        return shortcuts.last();
    };
    connect(add(QKeySequence::Open), &QShortcut::activated, ui->btnImageRead, &QPushButton::click);
    connect(add(QKeySequence::Save), &QShortcut::activated, ui->btnConvert, &QPushButton::click);
    connect(add(QKeySequence::HelpContents), &QShortcut::activated, this, &MainWindow::showManual);
    // The toolkit has one for this only where it knows the desktop.
    connect(add(QKeySequence::fromString(QStringLiteral("Ctrl+Q"))), &QShortcut::activated, this,
            &MainWindow::close);
}

// In the language of the texts, as far as there is a manual in it. The program may lie in an unpacked archive, in an
// installation or in a build folder.
void MainWindow::showManual() const
{
    const char *const name = QFileInfo::exists(langFile) ? "manual.md" : "manual.ja.md";
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char *folder : {"docs/", "../../share/doc/ovmic/docs/", "../../docs/"}) {
        const QString manual = QDir::cleanPath(program.filePath(QString(folder) + name));
        if (QFileInfo::exists(manual)) {
            QDesktopServices::openUrl(QUrl::fromLocalFile(manual));
            return;
        }
    }
}
