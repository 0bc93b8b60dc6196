#include "mainwindow.h"
#include "programarguments.h"

#include <QApplication>
#include <QFileInfo>
#include <QTimer>

#include <cstdio>

namespace
{

void endBatchWithoutInputs()
{
    std::fputs("usage: ovmic /batch IMAGE IMAGE...  (at least two images)\n", stderr);
    QCoreApplication::exit(2);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true); // the icons' larger versions
    QApplication application(argc, argv);
    MainWindow window;

    const QStringList arguments = QCoreApplication::arguments();
    const QFileInfo program(arguments.first());
    const QString base = program.absolutePath() + '/' + program.baseName();
    window.settingFile = base + ".ini";
    window.langFile = base + "_lang.ini";
    window.readShowString();

    const bool unattended = isUnattended(arguments);
    if (!unattended)
        window.show();
    else if (photographsOf(arguments, true).size() < 2) // nothing will close the hidden window
        window.startUpPassBegins = [&application] {
            QTimer::singleShot(0, &application, endBatchWithoutInputs); // even while the pass shows a message
        };
    return QApplication::exec();
}
