// What an installation and the archive put where, what their documents say, and the starter, which gives each user
// settings and a language of their own.

#include "mapfolder.h"
#include "patience.h"

#include <QDirIterator>
#include <QRegularExpression>

namespace
{

const QString source = QStringLiteral(OVMIC_SOURCE);

void install(const QString &prefix, const QStringList &more)
{
    QProcess cmake;
    cmake.start(OVMIC_CMAKE, QStringList{"--install", OVMIC_BUILD, "--prefix", prefix} + more);
    QVERIFY2(cmake.waitForFinished(patienceMs) && cmake.exitCode() == 0, cmake.readAllStandardError());
}

QStringList packagesOf(const QString &group)
{
    QProcess bootstrap;
    bootstrap.start(source + "/scripts/bootstrap", {"--names", group});
    return bootstrap.waitForFinished(patienceMs)
               ? QString(bootstrap.readAllStandardOutput().simplified()).split(' ', Qt::SkipEmptyParts)
               : QStringList();
}

/// All that a pattern's first group catches in a text.
QStringList caught(const QString &pattern, const QByteArray &text)
{
    QStringList all;
    auto matches =
        QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(QString(text));
    while (matches.hasNext())
        all.append(matches.next().captured(1));
    return all;
}

/// The anchors that pages on the web give the headings of a text.
QStringList anchorsOf(const QByteArray &text)
{
    const QRegularExpression punctuation(R"([^\w\s-])", QRegularExpression::UseUnicodePropertiesOption);
    QStringList anchors;
    for (const QString &heading : caught("^#+ (.+)$", text))
        anchors.append(heading.toLower().remove(punctuation).replace(' ', '-'));
    return anchors;
}

/// A user at home, with two photographs in a folder and settings for small maps, and the starter in the path.
class User
{
public:
    explicit User(const QString &installation)
    {
        m_folder.writePhotographs("photographs", 2);
        QProcessEnvironment &environment = m_folder.environment();
        environment.insert("PATH", installation + "/bin:" + environment.value("PATH"));
        environment.insert("HOME", m_folder.path());
        for (const char *name : {"XDG_CONFIG_HOME", "LC_ALL", "LC_MESSAGES", "LANG"})
            environment.remove(name);
    }

    const MapFolder &home() const { return m_folder; }
    void setVariable(const QString &name, const QString &value)
    {
        m_folder.environment().insert(name, value);
    }
    /// The settings that an earlier session has left.
    void writeSettings(const QString &configuration) const
    {
        m_folder.makeFolder(configuration + "/ovmic");
        m_folder.makeFolder("maps");
        m_folder.write(
            configuration + "/ovmic/ovmic.ini",
            "[General]\nOutputSizeX=64\nOutputSizeY=32\nCenterX=30\nCenterY=20\nRadius=19\nOutputFolder=\"" +
                m_folder.filePath("maps").toUtf8() + "\"\n");
    }
    /// @return whether the batch came to its end, without the debug lines of developers
    bool convert() const
    {
        const MapFolder::Result result =
            m_folder.shell("cd photographs && ovmic /batch photo000.png ./photo001.png");
        return result.finished && result.status == 0 && !result.errors.contains("batchConvert");
    }

private:
    MapFolder m_folder;
};

} // namespace

class tst_Installation : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void standardFoldersHoldEverything();
    void archiveIsFlat();
    void linksOfTheDocumentsResolve_data();
    void linksOfTheDocumentsResolve();
    void firstPageNamesThePackages_data();
    void firstPageNamesThePackages();
    void documentsNameOnlyPackagesOfTheList_data();
    void documentsNameOnlyPackagesOfTheList();
    void firstStartCopiesTheLanguageThatFits_data();
    void firstStartCopiesTheLanguageThatFits();
    void laterStartsLeaveTheTextsAlone();
    void photographsAreRelativeAndSettingsTheUsers();
    void configurationFolderIsTheOneThatIsSet();
    void starterWorksThroughALink();
    void convertsWhereNothingCanBeRemembered();

private:
    QTemporaryDir m_folder;
    QString m_standard;
    QString m_archive;
};

void tst_Installation::initTestCase()
{
    m_standard = m_folder.filePath("standard");
    m_archive = m_folder.filePath("archive");
    install(m_standard, {});
    install(m_archive, {"--component", "portable"});
}

void tst_Installation::standardFoldersHoldEverything()
{
    QCOMPARE(namesIn(m_standard), (QStringList{"bin", "lib", "share"}));
    QCOMPARE(namesIn(m_standard + "/bin"), (QStringList{"ovmic", "ovmic-map"}));
    QCOMPARE(namesIn(m_standard + "/lib"), QStringList{"ovmic"});
    QCOMPARE(namesIn(m_standard + "/lib/ovmic"), QStringList{"ovmic"});
}

void tst_Installation::archiveIsFlat()
{
    QCOMPARE(namesIn(m_archive), (QStringList{"CHANGELOG.md", "LICENSE", "README.ja.md", "README.md", "docs",
                                              "lang", "ovmic", "ovmic-map", "samples"}));
}

void tst_Installation::linksOfTheDocumentsResolve_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("archive") << m_archive;
    QTest::newRow("standard folders") << m_standard + "/share/doc/ovmic";
}

void tst_Installation::linksOfTheDocumentsResolve()
{
    QFETCH(QString, folder);
    int links = 0;
    QDirIterator pages(folder, {"*.md"}, QDir::Files, QDirIterator::Subdirectories);
    while (pages.hasNext()) {
        const QString page = pages.next();
        for (const QString &link : caught(R"(\]\(([^)]+)\))", contentsOf(page))) {
            if (link.contains("://"))
                continue;
            ++links;
            const QString name = link.section('#', 0, 0);
            const QString target = name.isEmpty() ? page : QFileInfo(page).path() + '/' + name;
            QVERIFY2(QFile::exists(target), qPrintable(page + ": " + link));
            const QString anchor = link.section('#', 1);
            QVERIFY2(anchor.isEmpty() || anchorsOf(contentsOf(target)).contains(anchor),
                     qPrintable(page + ": " + link));
        }
    }
    QVERIFY(links > 20);
}

void tst_Installation::firstPageNamesThePackages_data()
{
    QTest::addColumn<QString>("page");
    QTest::newRow("English") << "README.md";
    QTest::newRow("Japanese") << "README.ja.md";
}

void tst_Installation::firstPageNamesThePackages()
{
    QFETCH(QString, page);
    const QByteArray text = contentsOf(m_archive + '/' + page);
    const QStringList commands = caught("^    apt-get install ([^./].*)$", text);
    QCOMPARE(commands.size(), 1);
    QCOMPARE(commands.first().split(' '), packagesOf("run"));
    for (const char *developers : {"scripts/", "build/", "cmake", "@"})
        QVERIFY2(!text.contains(developers), developers);
}

void tst_Installation::documentsNameOnlyPackagesOfTheList_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path :
         {"README.md", "README.ja.md", "docs/manual.md", "docs/manual.ja.md", "packaging/README.md.in",
          "packaging/README.ja.md.in", "packaging/man/ovmic.1", "packaging/man/ja/ovmic.1"})
        QTest::newRow(path) << path;
}

void tst_Installation::documentsNameOnlyPackagesOfTheList()
{
    QFETCH(QString, path);
    const QStringList known = packagesOf("run") + packagesOf("build") + packagesOf("wayland");
    QVERIFY(known.size() > 5);
    const QByteArray text = contentsOf(source + '/' + path).replace("\\-", "-"); // as man pages write it
    for (const QString &name : caught(
             R"(\b(fonts-[\w-]+|lib(?:qt|hwy)[\w-]+|qtbase[\w-]+|qtwayland\w+|qttranslations[\w-]+))", text))
        QVERIFY2(known.contains(name), qPrintable(name));
}

void tst_Installation::firstStartCopiesTheLanguageThatFits_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("language");
    QTest::newRow("German") << "LANG"
                            << "de_DE.UTF-8"
                            << "de";
    QTest::newRow("Swiss French with a modifier") << "LANG"
                                                  << "fr_CH@euro"
                                                  << "fr";
    QTest::newRow("a language alone") << "LANG"
                                      << "es"
                                      << "es";
    QTest::newRow("Chinese of China") << "LANG"
                                      << "zh_CN.UTF-8"
                                      << "zh_CN";
    QTest::newRow("Chinese of Taiwan has no file") << "LANG"
                                                   << "zh_TW.UTF-8"
                                                   << "en";
    QTest::newRow("Finnish has no file") << "LANG"
                                         << "fi_FI.UTF-8"
                                         << "en";
    QTest::newRow("Japanese is built in") << "LANG"
                                          << "ja_JP.UTF-8"
                                          << "";
    QTest::newRow("no locale") << "LANG"
                               << "C.UTF-8"
                               << "en";
    QTest::newRow("nothing is said") << "LANG"
                                     << ""
                                     << "en";
    QTest::newRow("all over the others") << "LC_ALL"
                                         << "fr_FR.UTF-8"
                                         << "fr";
    QTest::newRow("messages over the others") << "LC_MESSAGES"
                                              << "es_ES.UTF-8"
                                              << "es";
}

void tst_Installation::firstStartCopiesTheLanguageThatFits()
{
    QFETCH(QString, variable);
    QFETCH(QString, locale);
    QFETCH(QString, language);
    User user(m_standard);
    user.setVariable("LANG", "de_DE.UTF-8");
    user.setVariable(variable, locale);
    QVERIFY(user.convert());
    const QString file = user.home().filePath(".config/ovmic/ovmic_lang.ini");
    QCOMPARE(QFile::exists(file), !language.isEmpty());
    if (!language.isEmpty())
        QCOMPARE(contentsOf(file), contentsOf(source + "/lang/" + language + "/ovmic_lang.ini"));
    QVERIFY(QFile::exists(user.home().filePath(".config/ovmic/ovmic.ini")));
}

void tst_Installation::laterStartsLeaveTheTextsAlone()
{
    User user(m_standard);
    user.setVariable("LANG", "de_DE.UTF-8");
    user.home().makeFolder(".config/ovmic");
    user.home().write(".config/ovmic/ovmic_lang.ini", "[main]\nbtn_open=\"mine\"\n");
    QVERIFY(user.convert());
    QCOMPARE(user.home().read(".config/ovmic/ovmic_lang.ini"), QByteArray("[main]\nbtn_open=\"mine\"\n"));

    QVERIFY(QFile::remove(user.home().filePath(".config/ovmic/ovmic_lang.ini"))); // for Japanese
    QVERIFY(user.convert());
    QCOMPARE(user.home().namesIn(".config/ovmic"), QStringList{"ovmic.ini"});
}

void tst_Installation::photographsAreRelativeAndSettingsTheUsers()
{
    const User user(m_standard);
    user.writeSettings(".config");
    QVERIFY(user.convert());
    QCOMPARE(user.home().namesIn("maps"), (QStringList{"photo000.jpg", "photo001.jpg"}));
    QCOMPARE(QImage(user.home().filePath("maps/photo001.jpg")).size(), QSize(64, 32));
    QCOMPARE(namesIn(m_standard + "/lib/ovmic"), QStringList{"ovmic"});
    QCOMPARE(user.home().namesIn("."), (QStringList{".config", "maps", "photographs"}));
}

void tst_Installation::configurationFolderIsTheOneThatIsSet()
{
    User user(m_standard);
    user.setVariable("XDG_CONFIG_HOME", user.home().filePath("my settings"));
    user.writeSettings("my settings");
    QVERIFY(user.convert());
    QCOMPARE(user.home().namesIn("maps").size(), 2);
    QVERIFY(!user.home().namesIn(".").contains(".config"));

    user.setVariable("XDG_CONFIG_HOME", "relative"); // such a value counts as none
    QVERIFY(user.convert());
    QVERIFY(QFile::exists(user.home().filePath(".config/ovmic/ovmic.ini")));
}

void tst_Installation::starterWorksThroughALink()
{
    User user(m_standard);
    user.home().makeFolder("bin");
    QVERIFY(QFile::link(m_standard + "/bin/ovmic", user.home().filePath("bin/ovmic")));
    user.setVariable("PATH", user.home().filePath("bin") + ":/usr/bin:/bin");
    user.writeSettings(".config");
    QVERIFY(user.convert());
    QCOMPARE(user.home().namesIn("maps").size(), 2);
    QCOMPARE(user.home().namesIn("bin"), QStringList{"ovmic"});
}

void tst_Installation::convertsWhereNothingCanBeRemembered()
{
    User user(m_standard);
    user.home().write(".config", "a file is in the way");
    QVERIFY(user.convert());
    QCOMPARE(user.home().read(".config"), QByteArray("a file is in the way"));
}

QTEST_GUILESS_MAIN(tst_Installation)
#include "tst_installation.moc"
