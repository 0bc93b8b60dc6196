// What only several processes can show: this executable starts itself to play the program's next run, to be
// killed, and to run out of memory.

#include "files.h"
#include "freshwindow.h"
#include "messagecollector.h"
#include "patience.h"
#include "rng.h"
#include "settingsdump.h"
#include "windowreference.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <limits>
#include <sys/resource.h>

namespace
{

const QByteArrayList numberKeys{"PenSize",      "CenterX",      "CenterY",           "Radius",
                                "OutputSizeX",  "OutputSizeY",  "InputFileSortType", "OutputFileNameType",
                                "OutputFormat", "OutputQuality"};

// Numbers and names all tell the same number, so that a mixture of two saves shows.
void setAll(TestWindow &window, int number)
{
    for (int TestWindow::*member :
         {&TestWindow::penSize, &TestWindow::centerX, &TestWindow::centerY, &TestWindow::radius,
          &TestWindow::outputSizeX, &TestWindow::outputSizeY, &TestWindow::sortType, &TestWindow::nameType,
          &TestWindow::format, &TestWindow::quality})
        window.*member = number;
    window.loadFileName = QString("/地球/%1.jpg").arg(number);
}

std::unique_ptr<TestWindow> loadedWindow(const QString &settingFile)
{
    auto window = std::make_unique<TestWindow>();
    window->settingFile = settingFile;
    window->langFile = settingFile + ".lang";
    window->readShowString();
    return window;
}

// The next run of the program, as far as the settings: prints what it read.
int dump(const QString &settingFile)
{
    const auto window = loadedWindow(settingFile);
    const QByteArray lines = settingsOf(*window).join('\n').toUtf8();
    return std::fwrite(lines.constData(), 1, static_cast<size_t>(lines.size()), stdout) > 0 ? 0 : 1;
}

// Runs of the program without end, each of which changes what the one before has stored.
int closeForEver(const QString &settingFile)
{
    for (;;) {
        const auto window = loadedWindow(settingFile);
        setAll(*window, window->penSize + 1);
        window->show();
        window->close();
        std::fputs("closed\n", stdout);
        std::fflush(stdout);
    }
}

// Converts to a map of a size that does not fit into the memory, with the preview open.
int convertHuge(int width, int height)
{
    const rlimit seconds{10, 10}; // of processor time; then the process is killed
    if (setrlimit(RLIMIT_CPU, &seconds) != 0)
        return 1;
#ifndef __SANITIZE_ADDRESS__ // which needs all the addresses there are
    const rlimit memory{rlim_t{2} << 30, rlim_t{2} << 30};
    if (setrlimit(RLIMIT_AS, &memory) != 0)
        return 1;
#endif
    TestWindow window;
    window.image = colourfulPhotograph();
    window.centerX = window.centerY = window.radius = 30;
    window.outputSizeX = width;
    window.outputSizeY = height;
    window.show();
    window.previewWindow->show();
    const MessageCollector collector;
    const bool empty = window.convertImage().isNull();
    const bool atOnce = collector.messages().filter("Convert error").isEmpty();
    return empty && atOnce ? 0 : 2;
}

} // namespace

class tst_Restart : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void everyValueComesBack_data();
    void everyValueComesBack();
    void windowPlacesComeBack();
    void severalRestartsChangeNothing();
    void killedWhileClosingLeavesAWholeFile();
    void mapBeyondTheMemoryDoesNotCrash_data();
    void mapBeyondTheMemoryDoesNotCrash();

private:
    QString settingFile() const { return m_folder->filePath("tool.ini"); }
    QStringList nextRun() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_Restart::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

QStringList tst_Restart::nextRun() const
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {"--dump", settingFile()});
    if (!process.waitForFinished(patienceMs) || process.exitCode() != 0)
        return {"the next run failed", process.readAllStandardError()};
    return QString::fromUtf8(process.readAllStandardOutput()).split('\n');
}

void tst_Restart::everyValueComesBack_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QVector<double>>("reals");
    QTest::addColumn<bool>("flag");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QColor>("colour");
    const double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("ordinary") << 1234 << QVector<double>{6.6, 35.7, 139.7454321, 12.5} << true
                              << "/写真/地球.jpg" << QColor(1, 2, 3, 4);
    QTest::newRow("no short decimal") << -7 << QVector<double>{1.0 / 3, 0.1 + 0.2, -1e-7, 2.0 / 3} << false
                                      << "/𠮷田 🌏.jpg" << QColor(255, 255, 255);
    QTest::newRow("largest") << 2147483647 << QVector<double>{1.7976931348623157e308, inf, 1e22, 1e23} << true
                             << R"(a, b; "c" \d = %e)" << QColor(0, 0, 0, 0);
    QTest::newRow("smallest") << std::numeric_limits<int>::min()
                              << QVector<double>{4.9406564584124654e-324, 2.2250738585072014e-308, -inf,
                                                 1e-310}
                              << false << "" << QColor(Qt::blue);
    QTest::newRow("odd names") << 0 << QVector<double>{0.0, 0.0, 0.0, 0.0} << true
                               << " two\nlines\t@ByteArray(x) " << QColor(Qt::red);
}

void tst_Restart::everyValueComesBack()
{
    QFETCH(int, number);
    QFETCH(QVector<double>, reals);
    QFETCH(bool, flag);
    QFETCH(QString, text);
    QFETCH(QColor, colour);
    const auto window = loadedWindow(settingFile());
    setAll(*window, number);
    window->distance = reals[0];
    window->latitude = reals[1];
    window->longitude = reals[2];
    window->azimuth = reals[3];
    window->autoPreview = window->autoSize = window->overwrite = window->openFiler = flag;
    window->loadFileName = window->saveFileName = window->inputFolder = window->outputFolder = text;
    window->penColor = colour;
    window->setGeometry(50, 60, 700, 650);
    window->previewWindow->setGeometry(100, 120, 500, 400);
    window->close();
    QCOMPARE(nextRun(), settingsOf(*window));
}

void tst_Restart::windowPlacesComeBack()
{
    const auto window = loadedWindow(settingFile());
    window->setGeometry(30, 40, 610, 560);
    window->show();
    window->previewWindow->setGeometry(90, 80, 333, 444);
    window->previewWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(window->previewWindow.get()));
    window->close();
    const QStringList settings = nextRun();
    QCOMPARE(settingIn(settings, "Geometry"), QString("610 x 560 at 30, 40"));
    QCOMPARE(settingIn(settings, "PreviewGeometry"), QString("333 x 444 at 90, 80"));
    QCOMPARE(settingIn(settings, "PreviewWindow"), QString("true"));
}

void tst_Restart::severalRestartsChangeNothing()
{
    const auto first = loadedWindow(settingFile());
    setAll(*first, 5);
    first->setGeometry(30, 40, 610, 560);
    first->previewWindow->setGeometry(90, 80, 333, 444);
    first->longitude = 0.1;
    first->close();
    const QByteArray file = contentsOf(settingFile());
    for (int i = 0; i < 3; ++i)
        loadedWindow(settingFile())->close();
    QCOMPARE(contentsOf(settingFile()), file);
}

void tst_Restart::killedWhileClosingLeavesAWholeFile()
{
    {
        const auto window = loadedWindow(settingFile());
        setAll(*window, 1);
        window->close();
    }
    Rng rng(1);
    int last = 1;
    for (int i = 0; i < 40; ++i) {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {"--close-for-ever", settingFile()});
        QVERIFY(process.waitForReadyRead(patienceMs));
        QThread::usleep(static_cast<unsigned long>(rng.between(0, 50000)));
        process.kill();
        QVERIFY(process.waitForFinished(patienceMs));
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);

        const QByteArray file = contentsOf(settingFile());
        QCOMPARE(file.count('\n'), 27);
        QVERIFY(file.startsWith("[General]\n") && file.endsWith('\n'));
        const QByteArray number = valueIn(file, "PenSize");
        QVERIFY(number.toInt() > last);
        last = number.toInt();
        for (const QByteArray &key : numberKeys)
            QCOMPARE(key + valueIn(file, key), key + number);
        QCOMPARE(valueIn(file, "LoadFileName"), "/地球/" + number + ".jpg");
    }
}

void tst_Restart::mapBeyondTheMemoryDoesNotCrash_data()
{
    QTest::addColumn<QString>("width");
    QTest::addColumn<QString>("height");
#ifndef __SANITIZE_ADDRESS__
    QTest::newRow("one column") << "1"
                                << "2147483647";
    QTest::newRow("a square") << "65536"
                              << "65536";
#endif
    QTest::newRow("one row") << "2147483647"
                             << "1";
    QTest::newRow("more than can be counted") << "2147483647"
                                              << "2147483647";
}

void tst_Restart::mapBeyondTheMemoryDoesNotCrash()
{
    QFETCH(QString, width);
    QFETCH(QString, height);
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {"--convert", width, height});
    QVERIFY(process.waitForFinished(patienceMs));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

int main(int argc, char *argv[])
{
    int applicationArgc = 1; // the window's start-up pass sees no arguments
    const QApplication application(applicationArgc, argv);
    const QString mode = argc >= 3 ? argv[1] : "";
    if (mode == "--dump")
        return dump(QString::fromUtf8(argv[2]));
    if (mode == "--close-for-ever")
        return closeForEver(QString::fromUtf8(argv[2]));
    if (mode == "--convert" && argc >= 4)
        return convertHuge(std::atoi(argv[2]), std::atoi(argv[3]));
    tst_Restart test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_restart.moc"
