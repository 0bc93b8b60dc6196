#include "batchconvertdialog.h"
#include "files.h"
#include "freshwindow.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "referencemap.h"
#include "status.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace
{

const QString boxTitle = QStringLiteral("複数画像ファイル変換");
const QString successText = QStringLiteral("複数画像ファイル変換が終了しました");

QString failureText(int succeeded, int failed)
{
    return QStringLiteral("複数画像ファイル変換は失敗しました\n(%1個成功, %2個失敗)")
        .arg(succeeded)
        .arg(failed);
}

/// Calls a function once, from the event loop, as soon as a condition holds: in the middle of a run.
class WhenTrue : public QObject
{
public:
    WhenTrue(std::function<bool()> condition, std::function<void()> action)
        : m_condition(std::move(condition)), m_action(std::move(action))
    {
        startTimer(0);
    }
    bool happened() const { return m_happened; }

protected:
    void timerEvent(QTimerEvent *event) override
    {
        if (!m_condition())
            return;
        killTimer(event->timerId());
        m_happened = true;
        m_action();
    }

private:
    std::function<bool()> m_condition;
    std::function<void()> m_action;
    bool m_happened = false;
};

} // namespace

class tst_BatchRun : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyMapEqualsTheReference();
    void runWithoutInputsSucceeds();
    void runWithoutInputsUnattendedIsSilent();
    void twoInputsOfOneName_data();
    void twoInputsOfOneName();
    void numbersMatchListPositions();
    void azimuthWithoutLaterStepsFailsEverySave();
    void azimuthWithLaterStepsGivesEmptyMaps();
    void inputsAreSortedByPath();
    void sortedByTimeNewestFirst();
    void unsortedKeepsTheOrder();
    void stopDuringTheThirdOfTen();
    void stopDuringTheLastFileStillReportsSuccess();
    void escapeAndTitleBarMeanStop_data();
    void escapeAndTitleBarMeanStop();
    void progressSkipsUnreadableInputs();
    void onlyStopCanBeUsedMeanwhile();
    void allMapsHaveTheValuesOfTheStart();
    void runLeavesNoPicture();
    void unattendedShowsNothing();
    void closingTheWindowEndsTheRun();
    void extensionFollowsTheFormat();
    void outputFolderThatFails_data();
    void outputFolderThatFails();
    void badInputsAreCountedAndSkipped();
    void nameTypeTestsNonZero();

    void dialogGetsAndGivesAllValues_data();
    void dialogGetsAndGivesAllValues();
    void acceptedDialogTakesTheTypedCircle();
    void titleFollowsTheActionsText();
    void stopTextComesFromTheLanguageFile();

private:
    QString photograph(const QString &name, int number = 1);
    QString output(const QString &name) const { return m_window->filePath("out/" + name); }
    QStringList outputs() const { return QDir(output("")).entryList(QDir::Files, QDir::Name); }
    void run(const QString &message);
    QImage expectedMap(const QString &path) const;
    /// Whether a run is in the middle of this photograph; photographs differ by their numbers.
    bool isConverting(const QString &path) const { return m_window->image == QImage(path); }

    std::unique_ptr<FreshWindow> m_window;
};

void tst_BatchRun::init()
{
    m_window = std::make_unique<FreshWindow>();
    QVERIFY(QDir(m_window->folder()).mkdir("out"));
    m_window->centerX = 30;
    m_window->centerY = 20;
    m_window->radius = 18;
    m_window->distance = 6.6;
    m_window->latitude = 35;
    m_window->longitude = 139;
    m_window->format = 1;
    m_window->outputFolder = m_window->filePath("out");
}

void tst_BatchRun::cleanup()
{
    m_window.reset();
}

QString tst_BatchRun::photograph(const QString &name, int number)
{
    const QString path = m_window->filePath(name);
    if (!seriesPhotograph({60, 40}, number).save(path))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void tst_BatchRun::run(const QString &message)
{
    ModalDriver driver;
    driver.expectMessage(
        {boxTitle, message, QMessageBox::Information, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok});
    m_window->batchConvert();
    QVERIFY(driver.done());
}

QImage tst_BatchRun::expectedMap(const QString &path) const
{
    return referenceMap(QImage(path), mapParameters({{30, 20}, 18, 6.6}, {64, 32}, {35, 139}));
}

void tst_BatchRun::everyMapEqualsTheReference()
{
    m_window->fileList = QStringList{photograph("a.png", 1), photograph("b.png", 2), photograph("c.png", 3)};
    run(successText);
    QCOMPARE(outputs(), (QStringList{"a.png", "b.png", "c.png"}));
    for (const QString &name : outputs())
        COMPARE_IMAGES(QImage(output(name)), expectedMap(m_window->filePath(name)));
    QCOMPARE(m_window->imageWidth, 60);
    QCOMPARE(m_window->ratioX, 64.0 / 60);
    QCOMPARE(m_window->ratioY, 16.0 / 40);
}

void tst_BatchRun::runWithoutInputsSucceeds()
{
    run(successText);
    QVERIFY(m_window->isEnabled());
}

void tst_BatchRun::runWithoutInputsUnattendedIsSilent()
{
    m_window->unattended = 1;
    ModalDriver driver;
    m_window->batchConvert();
    QVERIFY(driver.done());
}

void tst_BatchRun::twoInputsOfOneName_data()
{
    QTest::addColumn<bool>("overwrite");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("number");
    QTest::newRow("the second overwrites the first") << true << successText << 2;
    QTest::newRow("the second is refused") << false << failureText(1, 1) << 1;
}

void tst_BatchRun::twoInputsOfOneName()
{
    QFETCH(bool, overwrite);
    QFETCH(QString, message);
    QFETCH(int, number);
    // In path order: a.bmp comes before a.png.
    m_window->fileList = QStringList{photograph("a.png", 2), photograph("a.bmp", 1)};
    m_window->overwrite = overwrite;
    run(message);
    QCOMPARE(outputs(), QStringList{"a.png"});
    COMPARE_IMAGES(QImage(output("a.png")), expectedMap(photograph("again.png", number)));
}

void tst_BatchRun::numbersMatchListPositions()
{
    m_window->nameType = 1;
    m_window->fileList =
        QStringList{photograph("a.png", 1), m_window->filePath("b-missing.png"), photograph("c.png", 3)};
    run(failureText(2, 1));
    QCOMPARE(outputs(), (QStringList{"map_0.png", "map_2.png"}));
    COMPARE_IMAGES(QImage(output("map_2.png")), expectedMap(m_window->filePath("c.png")));
}

void tst_BatchRun::azimuthWithoutLaterStepsFailsEverySave()
{
    m_window->azimuth = 30;
    m_window->latitude = 90;
    m_window->longitude = -90;
    m_window->fileList = QStringList{photograph("a.png"), photograph("b.png")};
    run(failureText(0, 2));
    QCOMPARE(outputs(), QStringList());
}

void tst_BatchRun::azimuthWithLaterStepsGivesEmptyMaps()
{
    m_window->azimuth = 30;
    m_window->fileList = QStringList{photograph("a.png")};
    run(successText);
    const QImage map(output("a.png"));
    QCOMPARE(map.size(), QSize(64, 32));
    QVERIFY(isBlank(map));

    m_window->format = 0;
    run(successText);
    QCOMPARE(QImage(output("a.jpg")).pixelColor(32, 16), QColor(Qt::black));
}

void tst_BatchRun::inputsAreSortedByPath()
{
    m_window->nameType = 1;
    m_window->fileList = QStringList{photograph("img9.png", 9), photograph("img10.png", 10),
                                     photograph("a.png", 3), photograph("B.png", 4)};
    run(successText);
    const QStringList order{m_window->filePath("B.png"), m_window->filePath("a.png"),
                            m_window->filePath("img10.png"), m_window->filePath("img9.png")};
    QCOMPARE(QStringList(m_window->fileList), order); // stays sorted after the run
    for (int i = 0; i < order.size(); ++i)
        COMPARE_IMAGES(QImage(output(QStringLiteral("map_%1.png").arg(i))), expectedMap(order.at(i)));
}

void tst_BatchRun::sortedByTimeNewestFirst()
{
    m_window->sortType = 1;
    const QStringList paths{photograph("old.png"), photograph("newest.png"), photograph("middle.png")};
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QVector<int> age{300, 0, 60}; // seconds
    for (int i = 0; i < paths.size(); ++i) {
        QFile file(paths.at(i));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(now.addSecs(-age[i]), QFileDevice::FileModificationTime));
    }
    m_window->fileList = paths;
    const QStringList order{paths.at(1), paths.at(2), paths.at(0)};
    ModalDriver driver;
    driver.expectMessage({boxTitle, successText});
    const MessageCollector collector;
    m_window->batchConvert();
    QVERIFY(driver.done());
    QCOMPARE(QStringList(m_window->fileList), order);
    // Each sorted path is written as a debug line, in order.
    QStringList written = collector.messages();
    QCOMPARE(written.takeFirst(), QString("batchConvert"));
    for (const QString &path : order)
        QCOMPARE(written.takeFirst(), '"' + path + '"');
}

void tst_BatchRun::unsortedKeepsTheOrder()
{
    m_window->sortType = 2;
    const QStringList order{photograph("b.png"), photograph("a.png"), photograph("c.png")};
    m_window->fileList = order;
    run(successText);
    QCOMPARE(QStringList(m_window->fileList), order);
}

void tst_BatchRun::stopDuringTheThirdOfTen()
{
    QStringList paths;
    for (int i = 0; i < 10; ++i)
        paths.append(photograph(QStringLiteral("p%1.png").arg(i), i + 1));
    m_window->fileList = paths;
    QString lastShown;
    const auto status = [this] { return m_window->findChild<Status *>(); };
    const auto shown = [&] {
        return status() ? status()->findChild<QLabel *>("lblCount")->text() : QString();
    };
    const WhenTrue stop(
        [&] { return isConverting(paths.at(2)); },
        [&] { QTest::mouseClick(status()->findChild<QPushButton *>("btnStop"), Qt::LeftButton); });
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox *box) {
        lastShown = shown();
        QCOMPARE(box->text(), failureText(3, 0));
        QVERIFY(!status()->isVisible());
        box->accept();
    });
    m_window->batchConvert();
    QVERIFY(driver.done());
    QVERIFY(stop.happened());
    QCOMPARE(lastShown, QString("3 / 10"));
    QCOMPARE(outputs(), (QStringList{"p0.png", "p1.png", "p2.png"}));
    COMPARE_IMAGES(QImage(output("p2.png")), expectedMap(paths.at(2)));
}

void tst_BatchRun::stopDuringTheLastFileStillReportsSuccess()
{
    // A single file: whatever fires after it was loaded fires in the middle of its conversion.
    m_window->fileList = QStringList{photograph("a.png")};
    const WhenTrue stop([this] { return !m_window->image.isNull(); },
                        [this] {
                            auto *button =
                                m_window->findChild<Status *>()->findChild<QPushButton *>("btnStop");
                            QTest::mouseClick(button, Qt::LeftButton);
                        });
    run(successText);
    QVERIFY(stop.happened());
    QCOMPARE(outputs(), QStringList{"a.png"});
}

void tst_BatchRun::escapeAndTitleBarMeanStop_data()
{
    QTest::addColumn<bool>("titleBar");
    QTest::newRow("Esc") << false;
    QTest::newRow("title bar") << true;
}

void tst_BatchRun::escapeAndTitleBarMeanStop()
{
    QFETCH(bool, titleBar);
    m_window->fileList = QStringList{photograph("a.png", 1), photograph("b.png", 2), photograph("c.png", 3)};
    const auto status = [this] { return m_window->findChild<Status *>(); };
    bool stayed = false;
    const WhenTrue stop([&] { return isConverting(m_window->filePath("b.png")); },
                        [&] {
                            if (titleBar)
                                status()->close();
                            else
                                QTest::keyClick(status(), Qt::Key_Escape);
                            stayed = status()->isVisible();
                        });
    run(failureText(2, 0));
    QVERIFY(stop.happened());
    QVERIFY(stayed);
}

void tst_BatchRun::progressSkipsUnreadableInputs()
{
    m_window->overwrite = false;
    QVERIFY(QFile::copy(photograph("c.png"), output("c.png"))); // will be refused, and still advances
    m_window->fileList = QStringList{photograph("a.png"), m_window->filePath("b.png"), photograph("c.png"),
                                     m_window->filePath("d.png")};
    QString lastShown;
    int percent = -1;
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox *box) {
        lastShown = m_window->findChild<Status *>()->findChild<QLabel *>("lblCount")->text();
        percent = m_window->findChild<Status *>()->findChild<QProgressBar *>("progStatus")->value();
        QCOMPARE(box->text(), failureText(1, 3));
        box->accept();
    });
    m_window->batchConvert();
    QVERIFY(driver.done());
    QCOMPARE(lastShown, QString("3 / 4"));
    QCOMPARE(percent, 75);
}

void tst_BatchRun::onlyStopCanBeUsedMeanwhile()
{
    m_window->loadFileName = photograph("shown.png");
    m_window->loadImage();
    QVERIFY(!m_window->ui->label->pixmap(Qt::ReturnByValue).isNull());
    m_window->fileList = QStringList{photograph("a.png")};
    bool windowEnabled = true;
    bool statusEnabled = false;
    bool statusShown = false;
    bool pictureGone = false;
    const WhenTrue look([&] { return m_window->findChild<Status *>() != nullptr; },
                        [&] {
                            const auto *status = m_window->findChild<Status *>();
                            windowEnabled = m_window->isEnabled();
                            statusEnabled = status->findChild<QPushButton *>("btnStop")->isEnabled();
                            statusShown = status->isVisible() && !status->isModal();
                            pictureGone = m_window->ui->label->pixmap(Qt::ReturnByValue).isNull();
                        });
    run(successText);
    QVERIFY(look.happened());
    QVERIFY(!windowEnabled);
    QVERIFY(statusEnabled);
    QVERIFY(statusShown);
    QVERIFY(pictureGone);
    QVERIFY(m_window->isEnabled());
    QVERIFY(m_window->findChild<Status *>() == nullptr);
}

// A button that was released outside itself goes on stepping, and events run during every conversion.
void tst_BatchRun::allMapsHaveTheValuesOfTheStart()
{
    QStringList paths;
    for (int i = 0; i < 4; ++i)
        paths.append(photograph(QStringLiteral("p%1.png").arg(i), i + 1));
    m_window->fileList = paths;
    const WhenTrue change([&] { return isConverting(paths.at(1)); },
                          [&] {
                              m_window->slot("on_btnSizeUp_pressed");
                              m_window->stepDelay = 0;
                              m_window->slot("click_timer");
                              m_window->latitude = -20;
                              m_window->outputSizeX = 32;
                              m_window->format = 0;
                              m_window->nameType = 1;
                              m_window->outputFolder = m_window->filePath("elsewhere");
                          });
    run(successText);
    m_window->clickTimer->stop();
    QVERIFY(change.happened());
    QVERIFY(m_window->radius > 18); // the button has stepped
    QCOMPARE(outputs(), (QStringList{"p0.png", "p1.png", "p2.png", "p3.png"}));
    for (const QString &name : outputs())
        COMPARE_IMAGES(QImage(output(name)), expectedMap(m_window->filePath(name)));
}

void tst_BatchRun::runLeavesNoPicture()
{
    m_window->loadFileName = photograph("shown.png");
    m_window->loadImage();
    QVERIFY(!m_window->ui->label->pixmap(Qt::ReturnByValue).isNull());
    m_window->fileList = QStringList{photograph("a.png")};
    run(successText);
    QVERIFY(m_window->image.isNull());
    QVERIFY(m_window->ui->label->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(m_window->centerX, 30);
    QCOMPARE(m_window->radius, 18);
}

void tst_BatchRun::unattendedShowsNothing()
{
    m_window->unattended = 1;
    m_window->hide();
    m_window->fileList = QStringList{photograph("a.png"), m_window->filePath("missing.png")};
    bool statusShown = false;
    const WhenTrue look([&] { return m_window->findChild<Status *>() != nullptr; },
                        [&] { statusShown = m_window->findChild<Status *>()->isVisible(); });
    ModalDriver driver;
    m_window->batchConvert();
    QVERIFY(driver.done());
    QVERIFY(look.happened());
    QVERIFY(!statusShown);
    QCOMPARE(m_window->unattended, 1);
    QCOMPARE(outputs(), QStringList{"a.png"});
}

void tst_BatchRun::closingTheWindowEndsTheRun()
{
    m_window->fileList = QStringList{photograph("a.png", 1), photograph("b.png", 2), photograph("c.png", 3)};
    const WhenTrue close([&] { return isConverting(m_window->filePath("b.png")); },
                         [&] { m_window->close(); });
    ModalDriver driver; // nobody is left to read a message
    m_window->batchConvert();
    QVERIFY(driver.done());
    QVERIFY(close.happened());
    QCOMPARE(outputs(), (QStringList{"a.png", "b.png"})); // the file in progress was finished
    QVERIFY(QFile::exists(m_window->settingFile));
}

void tst_BatchRun::extensionFollowsTheFormat()
{
    m_window->format = 0;
    m_window->quality = 40;
    m_window->fileList = QStringList{photograph("img.2020.png")};
    run(successText);
    QCOMPARE(outputs(), QStringList{"img.jpg"});
    QBuffer encoded;
    QVERIFY(encoded.open(QIODevice::WriteOnly));
    QVERIFY(expectedMap(m_window->filePath("img.2020.png")).save(&encoded, "jpg", 40));
    QCOMPARE(contentsOf(output("img.jpg")), encoded.data());
}

void tst_BatchRun::outputFolderThatFails_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("does not exist") << "missing";
    QTest::newRow("is a file") << "a.png";
    QTest::newRow("holds folders of the maps' names") << "occupied";
}

void tst_BatchRun::outputFolderThatFails()
{
    QFETCH(QString, folder);
    m_window->fileList = QStringList{photograph("a.png"), photograph("b.png")};
    QVERIFY(QDir(m_window->folder()).mkpath("occupied/a.png"));
    QVERIFY(QDir(m_window->folder()).mkpath("occupied/b.png"));
    m_window->outputFolder = m_window->filePath(folder);
    const QByteArray before = contentsOf(m_window->filePath("a.png"));
    run(failureText(0, 2));
    QCOMPARE(contentsOf(m_window->filePath("a.png")), before);
    QVERIFY(!QFile::exists(m_window->filePath("missing")));
}

// Unreadable inputs of every kind count as failures, the run goes on, and no output is left of them.
void tst_BatchRun::badInputsAreCountedAndSkipped()
{
    const auto write = [this](const QString &name, const QByteArray &contents) {
        QFile file(m_window->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("cannot write %s", qPrintable(name));
        return file.fileName();
    };
    const QByteArray whole = contentsOf(photograph("whole.png"));
    QVERIFY(QDir(m_window->folder()).mkdir("folder.png"));
    const QString good = photograph("good.jpg");
    m_window->sortType = 9;
    m_window->fileList = QStringList{write("empty.png", ""),
                                     write("text.jpg", "no image"),
                                     write("cut.png", whole.left(70)),
                                     m_window->filePath("folder.png"),
                                     m_window->filePath("missing.png"),
                                     good,
                                     good,
                                     write("really-a-png.jpg", whole)};
    run(failureText(3, 5));
    QCOMPARE(outputs(), (QStringList{"good.png", "really-a-png.png"}));
}

void tst_BatchRun::nameTypeTestsNonZero()
{
    m_window->nameType = -3;
    m_window->fileList = QStringList{photograph("a.png")};
    run(successText);
    QCOMPARE(outputs(), QStringList{"map_0.png"});
}

void tst_BatchRun::dialogGetsAndGivesAllValues_data()
{
    QTest::addColumn<bool>("accept");
    QTest::newRow("converted") << true;
    QTest::newRow("closed") << false;
}

void tst_BatchRun::dialogGetsAndGivesAllValues()
{
    QFETCH(bool, accept);
    m_window->fileList = QStringList{"/in/one.png", "/in/two.png"};
    m_window->inputFolder = "/in";
    m_window->outputFolder = "/nowhere/at/all";
    m_window->sortType = 1;
    m_window->nameType = 1;
    m_window->overwrite = false;
    m_window->openFiler = false;
    ModalDriver driver;
    driver.expect<BatchConvertDialog>([&](BatchConvertDialog *dialog) {
        QCOMPARE(QStringList(dialog->fileList), (QStringList{"/in/one.png", "/in/two.png"}));
        QCOMPARE(dialog->inputFolder, QString("/in"));
        QCOMPARE(dialog->outputFolder, QString("/nowhere/at/all"));
        QCOMPARE(dialog->sortType, 1);
        QCOMPARE(dialog->nameType, 1);
        QCOMPARE(dialog->overwrite, false);
        QCOMPARE(dialog->openFiler, false);
        QCOMPARE(dialog->langFile, m_window->langFile);
        dialog->fileList = QStringList{"/in/three.png"};
        dialog->inputFolder = "/other";
        dialog->outputFolder = "/nowhere/else";
        QTest::mouseClick(dialog->findChild<QAbstractButton *>("radioSortType1"), Qt::LeftButton);
        QTest::mouseClick(dialog->findChild<QAbstractButton *>("radioFilename1"), Qt::LeftButton);
        QTest::mouseClick(dialog->findChild<QAbstractButton *>("checkOverwrite"), Qt::LeftButton);
        QTest::mouseClick(dialog->findChild<QAbstractButton *>("checkOpenFiler"), Qt::LeftButton);
        QTest::mouseClick(dialog->findChild<QAbstractButton *>(accept ? "btnConvert" : "btnClose"),
                          Qt::LeftButton);
    });
    if (accept)
        driver.expectMessage({boxTitle, failureText(0, 1)});
    m_window->ui->actionBatch_Convert->trigger();
    QVERIFY(driver.done());
    QCOMPARE(QStringList(m_window->fileList), QStringList{"/in/three.png"});
    QCOMPARE(m_window->inputFolder, QString("/other"));
    QCOMPARE(m_window->outputFolder, QString("/nowhere/else"));
    QCOMPARE(m_window->sortType, 0);
    QCOMPARE(m_window->nameType, 0);
    QCOMPARE(m_window->overwrite, true);
    QCOMPARE(m_window->openFiler, true);
}

void tst_BatchRun::acceptedDialogTakesTheTypedCircle()
{
    m_window->fileList = QStringList{photograph("a.png")};
    m_window->ui->lineCenterX->setText("30");
    m_window->ui->lineCenterY->setText("20");
    m_window->ui->lineRadius->setText("18");
    m_window->centerX = m_window->centerY = m_window->radius = 1;
    {
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([](BatchConvertDialog *dialog) { dialog->reject(); });
        m_window->configConvert();
        QVERIFY(driver.done());
    }
    QCOMPARE(m_window->radius, 1); // only an accepted dialog reads the edits

    ModalDriver driver;
    driver.expect<BatchConvertDialog>([](BatchConvertDialog *dialog) { dialog->accept(); });
    driver.expectMessage({boxTitle, successText});
    m_window->configConvert();
    QVERIFY(driver.done());
    QCOMPARE(m_window->radius, 18);
    COMPARE_IMAGES(QImage(output("a.png")), expectedMap(m_window->filePath("a.png")));
}

void tst_BatchRun::titleFollowsTheActionsText()
{
    m_window->ui->actionBatch_Convert->setText("Many");
    ModalDriver driver;
    driver.expectMessage({"Many", successText});
    m_window->batchConvert();
    QVERIFY(driver.done());
}

void tst_BatchRun::stopTextComesFromTheLanguageFile()
{
    QFile file(m_window->langFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[main]\nbatch_btn_stop=\"Halt\"\nbatch_fail1=\"(\"\nbatch_fail2=\"|\"\nbatch_fail3=\")\"\n");
    file.close();
    m_window->readShowString();
    m_window->fileList = QStringList{m_window->filePath("missing.png")};
    QString caption;
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox *box) {
        caption = m_window->findChild<Status *>()->findChild<QPushButton *>("btnStop")->text();
        QCOMPARE(box->text(), QString("(0|1)"));
        box->accept();
    });
    m_window->batchConvert();
    QVERIFY(driver.done());
    QCOMPARE(caption, QString("Halt"));
}

WINDOW_TEST_MAIN(tst_BatchRun)
#include "tst_batchrun.moc"
