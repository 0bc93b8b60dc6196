#include "applicationsetup.h"
#include "mainwindow.h"
#include "programarguments.h"

#include <QApplication>
#include <QFile>
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

/// A batch shows nothing, so it needs no display; without this the toolkit aborts where there is none.
void chooseOffscreenWithoutDisplay()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    const bool display =
        !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (!display && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
}

/// Only right once there is an application: it sets the locale.
QStringList decoded(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return arguments;
}

} // namespace

int main(int argc, char *argv[])
{
    followDisplayScale();
    // Whatever follows the switch is a photograph, also where the toolkit would take it for an option of its own.
    const bool unattended = isUnattended(argc, argv);
    int argumentsForToolkit = unattended ? 1 : argc;
    if (unattended)
        chooseOffscreenWithoutDisplay();
    QApplication application(argumentsForToolkit, argv);
    MainWindow window;
    window.arguments = unattended ? decoded(argc, argv) : QCoreApplication::arguments();

    const QFileInfo program(window.arguments.first());
    const QString base = program.absolutePath() + '/' + program.baseName();
    window.settingFile = base + ".ini";
    window.langFile = base + "_lang.ini";
    if (!unattended) { // a batch shows nothing
        setWindowIcons();
        translateToolkit(window.langFile);
    }
    window.readShowString();

    if (!unattended)
        window.show();
    else if (photographsOf(window.arguments, true).size() < 2) // nothing will close the hidden window
        window.startUpPassBegins = [&application] {
            QTimer::singleShot(0, &application, endBatchWithoutInputs); // even while the pass shows a message
        };
    return QApplication::exec();
}
