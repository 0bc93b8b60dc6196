#include "duringconversion.h"
#include "modaldriver.h"
#include "savingwindow.h"

#include <QFileDialog>
#include <QShortcut>

#include <memory>
#include <vector>

/// Keys that every desktop program has. What the one for the manual does needs a desktop: tst_desktopwalk.
class tst_Shortcuts : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<SavingWindow>();
        QApplication::setActiveWindow(m_window.get());
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }
    void cleanup() { m_window.reset(); }

    void openShowsTheDialogOfTheButton()
    {
        ModalDriver driver;
        driver.expect<QFileDialog>([](QFileDialog *picker) {
            QCOMPARE(picker->windowTitle(), QStringLiteral("表示したい画像ファイルを選択して下さい"));
            picker->reject();
        });
        QTest::keyClick(m_window.get(), Qt::Key_O, Qt::ControlModifier);
        QVERIFY(driver.done());
    }

    void saveConverts()
    {
        m_window->ui->lineSaveFilename->setText("map.jpg");
        m_window->ui->lineSaveFilename->setFocus();
        ModalDriver driver;
        driver.expectMessage(confirmation(m_window->filePath("map.jpg")));
        QTest::keyClick(m_window->ui->lineSaveFilename, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(driver.done());
        QVERIFY(QFile::exists(m_window->filePath("map.jpg")));
    }

    void quitClosesTheWindow()
    {
        QTest::keyClick(m_window.get(), Qt::Key_Q, Qt::ControlModifier);
        QVERIFY(!m_window->isVisible());
        QVERIFY(QFile::exists(m_window->settingFile));
    }

    void nothingOfItHappensDuringAConversion_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("open") << Qt::Key_O << Qt::KeyboardModifiers(Qt::ControlModifier);
        QTest::newRow("convert") << Qt::Key_S << Qt::KeyboardModifiers(Qt::ControlModifier);
        QTest::newRow("quit") << Qt::Key_Q << Qt::KeyboardModifiers(Qt::ControlModifier);
        QTest::newRow("help") << Qt::Key_F1 << Qt::KeyboardModifiers(Qt::NoModifier);
    }

    void nothingOfItHappensDuringAConversion()
    {
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        std::vector<std::unique_ptr<QSignalSpy>> activations;
        for (const auto *shortcut : m_window->findChildren<QShortcut *>())
            activations.push_back(std::make_unique<QSignalSpy>(shortcut, &QShortcut::activated));
        QCOMPARE(activations.size(), size_t(4));
        ModalDriver driver; // expects nothing, and closes what opens all the same
        m_window->ui->lineSaveFilename->setText("map.jpg");
        QVERIFY(duringConversion(
            m_window.get(), [this] { m_window->convertImage(); },
            [&] {
                // A conversion inside another one does not end the peace.
                m_window->convertImage();
                QTest::keyClick(m_window.get(), key, modifiers);
            }));
        QVERIFY(driver.done());
        QVERIFY(m_window->isVisible());
        QVERIFY(!QFile::exists(m_window->filePath("map.jpg")));
        for (const auto &activation : activations)
            QVERIFY(activation->isEmpty());
        for (const auto *shortcut : m_window->findChildren<QShortcut *>())
            QVERIFY(shortcut->isEnabled()); // again
    }

    // What a field does with a key comes first.
    void fieldsKeepTheirKeys()
    {
        QLineEdit *field = m_window->ui->lineSaveFilename;
        field->setText("name");
        field->setFocus();
        for (const auto *shortcut : m_window->findChildren<QShortcut *>()) {
            const int key = shortcut->key()[0];
            QKeyEvent event(QEvent::ShortcutOverride, key & ~Qt::KeyboardModifierMask,
                            Qt::KeyboardModifiers(key & Qt::KeyboardModifierMask));
            event.ignore();
            QApplication::sendEvent(field, &event);
            QVERIFY2(!event.isAccepted(), qPrintable(shortcut->key().toString()));
        }
        field->selectAll();
        QTest::keyClicks(field, "oqs");
        QCOMPARE(field->text(), QStringLiteral("oqs"));
    }

    void captionsStayAsTheyAre()
    {
        for (const QAction *action : m_window->findChildren<QAction *>())
            QVERIFY(action->shortcut().isEmpty());
        QCOMPARE(m_window->ui->btnImageRead->text(), QStringLiteral("開く"));
        QCOMPARE(m_window->ui->btnConvert->text(), QStringLiteral("画像変換"));
    }

private:
    std::unique_ptr<SavingWindow> m_window;
};

WINDOW_TEST_MAIN(tst_Shortcuts)
#include "tst_shortcuts.moc"
