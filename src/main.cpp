#include "mainwindow.h"

#include <QApplication>
#include <QFileInfo>
#include <QTimer>

#include <cstdio>

namespace
{

// The start-up pass runs a second after construction; this ends a batch without inputs once it is over, even
// while the pass shows a message.
constexpr int batchWithoutInputsMs = 1500;

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

    const bool batch = arguments.size() >= 2 && arguments.at(1) == QLatin1String("/batch");
    if (!batch)
        window.show();
    else if (arguments.size() < 4)
        QTimer::singleShot(batchWithoutInputsMs, &application, endBatchWithoutInputs);
    return QApplication::exec();
}
