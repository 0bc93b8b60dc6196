// What the visible window makes of the file names on the command line. This executable starts itself with
// them, since an application has one command line for its whole life.

#include "modaldriver.h"
#include "patience.h"
#include "testwindow.h"

#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>

#include <vector>

namespace
{

const char *const childSwitch = "--window";

// The program's main part with its own arguments: prints what the start-up pass did, one line each.
int runWindow(int argc, char *argv[])
{
    QApplication application(argc, argv);
    TestWindow window;
    window.settingFile = qEnvironmentVariable("OVMIC_TEST_SETTINGS");
    window.langFile = window.settingFile + ".lang";
    window.readShowString();
    window.show();
    window.startTimer->start(0); // the pass need not wait for a second

    QStringList seen;
    ModalDriver driver;
    if (argc > 2)
        driver.expect<QDialog>([&](QDialog *dialog) {
            seen.append("dialog " + dialog->windowTitle());
            seen.append("count " + dialog->findChild<QLabel *>("labelSelectCount")->text());
            dialog->reject();
        });
    if (!QTest::qWaitFor([&] { return window.unattended == 0; }, patienceMs) || !driver.done())
        return 1;
    seen.append("loaded " + window.loadFileName);
    seen.append(QString("photograph %1 x %2").arg(window.image.width()).arg(window.image.height()));
    for (const QString &path : qAsConst(window.fileList))
        seen.append("input " + path);
    const QByteArray lines = seen.join('\n').toUtf8();
    return std::fwrite(lines.constData(), 1, static_cast<size_t>(lines.size()), stdout) > 0 ? 0 : 2;
}

} // namespace

class tst_CommandLine : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void nothingLoadsTheLastPhotograph();
    void nothingWithoutLastPhotograph();
    void onePathIsLoaded_data();
    void onePathIsLoaded();
    void onePathBeatsTheLastPhotograph();
    void severalPathsOpenTheBatchDialog();
    void severalPathsNeedNotExist();
    void severalPathsLoadNothing();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString photograph(const QString &name, QSize size) const;
    void remember(const QString &photograph) const;
    QStringList started(const QStringList &arguments) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_CommandLine::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

QString tst_CommandLine::photograph(const QString &name, QSize size) const
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    if (!picture.save(path(name), "PNG"))
        qFatal("cannot write a photograph");
    return path(name);
}

void tst_CommandLine::remember(const QString &photograph) const
{
    QFile file(path("tool.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(("[General]\nLoadFileName=" + photograph + '\n').toUtf8()) > 0);
}

QStringList tst_CommandLine::started(const QStringList &arguments) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("OVMIC_TEST_SETTINGS", path("tool.ini"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder->path());
    process.start(QCoreApplication::applicationFilePath(), QStringList{childSwitch} + arguments);
    if (!process.waitForFinished(patienceMs) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return {"the window failed", process.readAllStandardError()};
    return QString::fromUtf8(process.readAllStandardOutput()).split('\n');
}

void tst_CommandLine::nothingLoadsTheLastPhotograph()
{
    const QString last = photograph("last.png", {30, 20});
    remember(last);
    QCOMPARE(started({}), (QStringList{"loaded " + last, "photograph 30 x 20"}));
}

void tst_CommandLine::nothingWithoutLastPhotograph()
{
    QCOMPARE(started({}), (QStringList{"loaded ", "photograph 0 x 0"}));
}

void tst_CommandLine::onePathIsLoaded_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "one.png";
    QTest::newRow("with blanks") << "one or two.png";
    QTest::newRow("Japanese and beyond the basic plane") << "地球 𠮷🌏.png";
    QTest::newRow("looks like another switch") << "-batch";
    QTest::newRow("without suffix") << "photograph";
}

void tst_CommandLine::onePathIsLoaded()
{
    QFETCH(QString, name);
    photograph(name, {40, 30});
    QCOMPARE(started({name}), (QStringList{"loaded " + name, "photograph 40 x 30"}));
    QCOMPARE(started({path(name)}), (QStringList{"loaded " + path(name), "photograph 40 x 30"}));
}

void tst_CommandLine::onePathBeatsTheLastPhotograph()
{
    remember(photograph("last.png", {30, 20}));
    QCOMPARE(started({photograph("one.png", {40, 30})}),
             (QStringList{"loaded " + path("one.png"), "photograph 40 x 30"}));
}

void tst_CommandLine::severalPathsOpenTheBatchDialog()
{
    const QString first = photograph("b.png", {40, 30});
    const QString second = photograph("a 地球.png", {40, 30});
    QCOMPARE(started({first, second}),
             (QStringList{"dialog Orvane 画像変換ツール（複数画像ファイル変換）",
                          "count 2 個のファイルが選択されました", "loaded ", "photograph 0 x 0",
                          "input " + first, "input " + second}));
}

void tst_CommandLine::severalPathsNeedNotExist()
{
    QCOMPARE(started({"none.png", "/batch", "none.png"}),
             (QStringList{"dialog Orvane 画像変換ツール（複数画像ファイル変換）",
                          "count 3 個のファイルが選択されました", "loaded ", "photograph 0 x 0",
                          "input none.png", "input /batch", "input none.png"}));
}

void tst_CommandLine::severalPathsLoadNothing()
{
    const QString last = photograph("last.png", {30, 20});
    remember(last);
    QCOMPARE(started({last, last}).mid(2),
             (QStringList{"loaded " + last, "photograph 0 x 0", "input " + last, "input " + last}));
}

int main(int argc, char *argv[])
{
    if (argc >= 2 && QByteArray(argv[1]) == childSwitch) {
        std::vector<char *> arguments(argv, argv + argc);
        arguments.erase(arguments.begin() + 1);
        arguments.push_back(nullptr);
        return runWindow(argc - 1, arguments.data());
    }
    const QCoreApplication application(argc, argv);
    tst_CommandLine test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_commandline.moc"
