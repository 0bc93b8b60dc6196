#include "modaldriver.h"

#include <QDialog>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

constexpr int shortLimitMs = 50;

QMessageBox::StandardButton ask()
{
    return QMessageBox::question(nullptr, QStringLiteral("title"), QStringLiteral("text"));
}

ModalDriver::Message question(QMessageBox::StandardButton press)
{
    return {QStringLiteral("title"), QStringLiteral("text"), QMessageBox::Question,
            QMessageBox::Yes | QMessageBox::No, press};
}

} // namespace

/// The driver is what makes a missing or a wrong modal window fail a test, so its own failures are tested.
class tst_ModalDriver : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    void announcedMessage_isAnswered()
    {
        ModalDriver driver;
        driver.expectMessage(question(QMessageBox::Yes));
        QCOMPARE(ask(), QMessageBox::Yes);
        QVERIFY(driver.done());
    }

    void titleBarOfAQuestion_answersNo()
    {
        ModalDriver driver;
        driver.expectMessage(question(QMessageBox::NoButton));
        QCOMPARE(ask(), QMessageBox::No);
        QVERIFY(driver.done());
    }

    void severalMessages_areAnsweredInOrder()
    {
        ModalDriver driver;
        driver.expectMessage(question(QMessageBox::Yes));
        driver.expectMessage(question(QMessageBox::No));
        QCOMPARE(ask(), QMessageBox::Yes);
        QCOMPARE(ask(), QMessageBox::No);
        QVERIFY(driver.done());
    }

    void sameBoxRunTwice_isAnsweredTwice()
    {
        QMessageBox box(QMessageBox::Question, QStringLiteral("title"), QStringLiteral("text"),
                        QMessageBox::Yes | QMessageBox::No);
        ModalDriver driver;
        driver.expectMessage(question(QMessageBox::Yes));
        driver.expectMessage(question(QMessageBox::No));
        QCOMPARE(box.exec(), int(QMessageBox::Yes));
        QCOMPARE(box.exec(), int(QMessageBox::No));
        QVERIFY(driver.done());
    }

    void messageInsideADialog_isAnsweredWhileTheDialogWaits()
    {
        QDialog dialog;
        QPushButton button(&dialog);
        connect(&button, &QPushButton::clicked, [] { ask(); });
        ModalDriver driver;
        driver.expect<QDialog>([&](QDialog *open) {
            QTest::mouseClick(&button, Qt::LeftButton);
            QTest::keyClick(open, Qt::Key_Escape);
        });
        driver.expectMessage(question(QMessageBox::Yes));
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void windowOpenedLater_isWaitedFor()
    {
        ModalDriver driver;
        driver.expectMessage(question(QMessageBox::Yes));
        QTimer::singleShot(100, [] { ask(); });
        QVERIFY(driver.done());
    }

    void nothingAnnounced_nothingOpened_isFine()
    {
        ModalDriver driver;
        QVERIFY(driver.done());
    }

    void missingWindow_isAFailure()
    {
        ModalDriver driver(shortLimitMs);
        driver.expect<QFileDialog>([](QFileDialog *) {});
        QTest::ignoreMessage(QtWarningMsg, "no QFileDialog opened");
        QVERIFY(!driver.done());
    }

    void unannouncedWindow_isClosedAndAFailure()
    {
        ModalDriver driver(shortLimitMs);
        ask();
        QTest::ignoreMessage(QtWarningMsg, "QMessageBox \"title\" (text) opened unannounced");
        QVERIFY(!driver.done());
    }

    void otherType_isClosedAndAFailure()
    {
        ModalDriver driver(shortLimitMs);
        driver.expect<QFileDialog>([](QFileDialog *) {});
        ask();
        QTest::ignoreMessage(QtWarningMsg, "QMessageBox \"title\" (text) opened instead of a QFileDialog");
        QTest::ignoreMessage(QtWarningMsg, "QMessageBox \"title\" (text) was left open");
        QVERIFY(!driver.done());
    }

    void windowLeftOpen_isClosedAndAFailure()
    {
        ModalDriver driver(shortLimitMs);
        driver.expect<QMessageBox>([](QMessageBox *) {});
        ask();
        QTest::ignoreMessage(QtWarningMsg, "QMessageBox \"title\" (text) was left open");
        QVERIFY(!driver.done());
    }

    void everyWrongPropertyOfAMessage_isAFailure()
    {
        ModalDriver driver(shortLimitMs);
        driver.expectMessage({QStringLiteral("other title"), QStringLiteral("other text"),
                              QMessageBox::Warning, QMessageBox::Yes, QMessageBox::Yes, QMessageBox::No});
        QCOMPARE(ask(), QMessageBox::Yes);
        for (const char *what : {"title", "text", "icon", "buttons", "default button"})
            QTest::ignoreMessage(
                QtWarningMsg,
                QRegularExpression(
                    QStringLiteral("^the message box has the %1 .*, not ").arg(QString::fromLatin1(what))));
        QVERIFY(!driver.done());
    }

    void picker_returnsTheTypedPaths_data()
    {
        QTest::addColumn<QFileDialog::FileMode>("mode");
        QTest::addColumn<QStringList>("names");

        QTest::newRow("one existing file") << QFileDialog::ExistingFile << QStringList{"b c.png"};
        QTest::newRow("several existing files, in the typed order")
            << QFileDialog::ExistingFiles << QStringList{"b c.png", "a.png"};
        QTest::newRow("a folder") << QFileDialog::Directory << QStringList{"folder"};
        QTest::newRow("a file to be written") << QFileDialog::AnyFile << QStringList{"new.png"};
    }

    void picker_returnsTheTypedPaths()
    {
        QFETCH(QFileDialog::FileMode, mode);
        QFETCH(QStringList, names);
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("folder")));
        for (const char *name : {"a.png", "b c.png"}) {
            QFile file(folder.filePath(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QStringList paths;
        for (const QString &name : names)
            paths += folder.filePath(name);

        QFileDialog picker;
        picker.setFileMode(mode);
        if (mode == QFileDialog::AnyFile)
            picker.setAcceptMode(QFileDialog::AcceptSave);
        ModalDriver driver;
        driver.expect<QFileDialog>([&](QFileDialog *open) { pickPaths(open, paths); });
        QCOMPARE(picker.exec(), int(QDialog::Accepted));
        QCOMPARE(picker.selectedFiles(), paths);
        QVERIFY(driver.done());
    }

    void pathThatDoesNotExist_leavesThePickerOpen()
    {
        QFileDialog picker;
        picker.setFileMode(QFileDialog::ExistingFile);
        ModalDriver driver;
        driver.expect<QFileDialog>([&](QFileDialog *open) {
            pickPath(open, QStringLiteral("/no/such/file"));
            QVERIFY(open->isVisible());
            QTest::keyClick(open, Qt::Key_Escape);
        });
        driver.expect<QMessageBox>([](QMessageBox *box) { box->close(); });
        QCOMPARE(picker.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }
};

QTEST_MAIN(tst_ModalDriver)
#include "tst_modaldriver.moc"
