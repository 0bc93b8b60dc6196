// The program as a screen reader hears it, on a real accessibility bus.

#include "desktop.h"
#include "files.h"
#include "patience.h"
#include "photographs.h"
#include "screenreader.h"

#include <QtTest>

#include <memory>

class tst_ScreenReader : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_locale = qgetenv("LC_ALL");
        m_reader = std::make_unique<ScreenReader>();
        QVERIFY2(m_reader->isReady(), "no accessibility bus: scripts/bootstrap test installs at-spi2-core");
    }

    void init() { m_desktop = std::make_unique<Desktop>(); }

    void cleanup()
    {
        m_desktop.reset();
        qputenv("LC_ALL", m_locale);
        QTRY_VERIFY_WITH_TIMEOUT(m_reader->names("application").isEmpty(), patienceMs);
    }

    void cleanupTestCase() { m_reader.reset(); }

    void mainWindowNamesFieldsAndButtons_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QStringList>("buttons");
        QTest::newRow("built-in texts")
            << QString() << QStringList{"中心点 (横, 縦) ↔", "中心点 (横, 縦) ↕", "半径", "保存ファイル名"}
            << QStringList{"中心点 (横, 縦) ↑", "半径 +",
                           "中心点 (横, 縦) →", "半径 −",
                           "中心点 (横, 縦) ↓", "中心点 (横, 縦) ←",
                           "画像変換",          "開く",
                           "プレビュー",        "参照"};
        QTest::newRow("language file")
            << "en" << QStringList{"Centre (x, y) ↔", "Centre (x, y) ↕", "Radius", "Output file name"}
            << QStringList{"Centre (x, y) ↑", "Radius +",        "Centre (x, y) →", "Radius −",
                           "Centre (x, y) ↓", "Centre (x, y) ←", "Convert",         "Open",
                           "Preview",         "Browse"};
    }

    void mainWindowNamesFieldsAndButtons()
    {
        QFETCH(QString, language);
        QFETCH(QStringList, fields);
        QFETCH(QStringList, buttons);
        start(language);
        QTRY_COMPARE_WITH_TIMEOUT(m_reader->names("text"), fields, patienceMs);
        QCOMPARE(m_reader->names("push button"), buttons);
    }

    void settingsNameTheirFields()
    {
        start("en");
        QVERIFY(m_reader->activate("menu item", "Settings..."));
        QTRY_COMPARE_WITH_TIMEOUT(m_reader->names("dialog"), QStringList{"Orvane Image Converter (Settings)"},
                                  patienceMs);
        const QStringList inMainWindow{"Centre (x, y) ↔", "Centre (x, y) ↕", "Radius", "Output file name"};
        QCOMPARE(m_reader->names("text"),
                 inMainWindow + QStringList({"Camera distance (in globe radii, 1 - 100)",
                                             "Pixel size of the map\n(1024x1024 - 8192x8192) ↔",
                                             "Pixel size of the map\n(1024x1024 - 8192x8192) ↕",
                                             "JPG quality (1-100)", "Centre longitude\n(-180 - +180)",
                                             "Circle colour\n( #AARRGGBB )", "Circle width\n(1 - 32)",
                                             "Azimuth\n(0 - 360)", "Centre latitude\n(-90 - +90)"}));
        // The toolkit names a list of choices after the chosen one, and says which label it has.
        QCOMPARE(m_reader->labelOf("combo box", "JPG"), QStringLiteral("Image format"));
    }

    void toolkitSpeaksOneLanguageWithTheProgram_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QByteArray>("locale");
        QTest::addColumn<QString>("convert");
        QTest::addColumn<QString>("yes");
        QTest::newRow("Japanese without a language file")
            << QString() << QByteArray("de_DE.UTF-8") << "画像変換"
            << "はい(Y)";
        QTest::newRow("the system's with one") << "de" << QByteArray("de_DE.UTF-8") << "Umwandeln"
                                               << "Ja";
        QTest::newRow("English without a translation") << "en" << QByteArray("C.UTF-8") << "Convert"
                                                       << "Yes";
    }

    void toolkitSpeaksOneLanguageWithTheProgram()
    {
        QFETCH(QString, language);
        QFETCH(QByteArray, locale);
        QFETCH(QString, convert);
        QFETCH(QString, yes);
        qputenv("LC_ALL", locale);
        m_desktop->folder().write("OV-photo.jpg", "an older map");
        start(language);
        QVERIFY(m_reader->activate("push button", convert));
        QTRY_VERIFY2_WITH_TIMEOUT(m_reader->names("push button").contains(yes),
                                  qPrintable(m_reader->names("push button").join(", ")), patienceMs);
    }

private:
    /// Starts the program with a photograph, and waits until it is loaded.
    void start(const QString &language)
    {
        const ProgramFolder &folder = m_desktop->folder();
        const QString photograph = folder.filePath("photo.png");
        QVERIFY(colourfulPhotograph({400, 300}).save(photograph));
        if (!language.isEmpty())
            folder.write("ovmic_lang.ini",
                         contentsOf(QFINDTESTDATA("../../lang/" + language + "/ovmic_lang.ini")));
        m_desktop->start({photograph});
        QVERIFY(m_desktop->waitForLine("timeout"));
        QVERIFY(m_desktop->waitForLine("SetScreenParameter"));
    }

    QByteArray m_locale;
    std::unique_ptr<ScreenReader> m_reader;
    std::unique_ptr<Desktop> m_desktop;
};

QTEST_GUILESS_MAIN(tst_ScreenReader)
#include "tst_screenreader.moc"
