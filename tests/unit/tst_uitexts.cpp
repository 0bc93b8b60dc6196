#include "uitexts.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace
{

/// Stands for a widget with a caption: texts are set through a base class, as with buttons.
class CaptionBase
{
public:
    void setText(const QString &text)
    {
        m_text = text;
        ++m_changes;
    }
    QString text() const { return m_text; }
    int changes() const { return m_changes; }

private:
    QString m_text = QStringLiteral("built-in");
    int m_changes = 0;
};

class Caption : public CaptionBase
{
};

} // namespace

class tst_UiTexts : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void textOfTheFile_data();
    void textOfTheFile();
    void missingFileGivesBuiltInTexts();
    void builtInTextIsUtf8();
    void sameKeyInEachGroup();
    void keyOutsideEveryGroupIsNotTaken();
    void messagesOfOtherKeysStay();
    void readingTwiceSeesTheEditedFile();
    void fileIsOnlyRead();
    void damagedFileGivesBuiltInTexts_data();
    void damagedFileGivesBuiltInTexts();

private:
    QString langFile() const { return m_folder->filePath(QStringLiteral("ovmic_lang.ini")); }
    void writeLangFile(const QByteArray &contents);
    QString message(const char *group, const char *key) const;
    QString caption(const char *group, const char *key) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_UiTexts::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_UiTexts::cleanup()
{
    m_folder.reset();
}

void tst_UiTexts::writeLangFile(const QByteArray &contents)
{
    QFile file(langFile());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), qint64(contents.size()));
}

QString tst_UiTexts::message(const char *group, const char *key) const
{
    QMap<QString, QString> messages;
    UiTexts(langFile(), QString::fromLatin1(group), messages).message(key, "built-in");
    return messages.value(QString::fromLatin1(key));
}

QString tst_UiTexts::caption(const char *group, const char *key) const
{
    QMap<QString, QString> messages;
    Caption widget;
    UiTexts(langFile(), QString::fromLatin1(group), messages).caption(key, &widget, &Caption::setText);
    const bool changed = widget.text() != QStringLiteral("built-in");
    return messages.isEmpty() && widget.changes() == (changed ? 1 : 0) ? widget.text()
                                                                       : QStringLiteral("wrong");
}

void tst_UiTexts::textOfTheFile_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("text");
    const QString builtIn = QStringLiteral("built-in");
    QTest::newRow("a text") << QByteArray("[main]\nkey=Open\n") << "Open";
    QTest::newRow("Japanese text as UTF-8") << QByteArray("[main]\nkey=画像を開く\n") << "画像を開く";
    QTest::newRow("character beyond the basic plane") << QByteArray("[main]\nkey=𠮷田🌏\n") << "𠮷田🌏";
    QTest::newRow("full-width blanks")
        << QByteArray("[main]\nkey=　入力　（順番）　\n") << "　入力　（順番）　";
    QTest::newRow("escape for a line break") << QByteArray("[main]\nkey=first\\nsecond\n") << "first\nsecond";
    QTest::newRow("the same in quotes") << QByteArray("[main]\nkey=\"first\\nsecond\"\n") << "first\nsecond";
    QTest::newRow("outer blanks vanish") << QByteArray("[main]\nkey=  was saved  \n") << "was saved";
    QTest::newRow("outer blanks in quotes stay")
        << QByteArray("[main]\nkey=\" was saved \"\n") << " was saved ";
    QTest::newRow("trailing comma and blank in quotes")
        << QByteArray("[main]\nkey=\" done, \"\n") << " done, ";
    QTest::newRow("unquoted comma makes a list") << QByteArray("[main]\nkey=a, b\n") << builtIn;
    QTest::newRow("unquoted semicolon starts a comment") << QByteArray("[main]\nkey=a; b\n") << "a";
    QTest::newRow("quoted semicolon") << QByteArray("[main]\nkey=\"a; b\"\n") << "a; b";
    QTest::newRow("equals sign and brackets") << QByteArray("[main]\nkey=a=(*.ini) [b]\n") << "a=(*.ini) [b]";
    QTest::newRow("ampersand and percent sign") << QByteArray("[main]\nkey=&Open 50%\n") << "&Open 50%";
    QTest::newRow("empty value") << QByteArray("[main]\nkey=\n") << builtIn;
    QTest::newRow("empty quotes") << QByteArray("[main]\nkey=\"\"\n") << builtIn;
    QTest::newRow("only blanks") << QByteArray("[main]\nkey=   \n") << builtIn;
    QTest::newRow("quoted blank is a text") << QByteArray("[main]\nkey=\" \"\n") << " ";
    QTest::newRow("an invalid value") << QByteArray("[main]\nkey=@Invalid()\n") << builtIn;
    QTest::newRow("missing key") << QByteArray("[main]\nother=Open\n") << builtIn;
    QTest::newRow("missing group") << QByteArray("[config]\nkey=Open\n") << builtIn;
    QTest::newRow("empty file") << QByteArray() << builtIn;
    QTest::newRow("key in another letter case") << QByteArray("[main]\nKey=Open\n") << builtIn;
    QTest::newRow("the group twice") << QByteArray("[main]\nkey=first\n[config]\nkey=x\n[main]\nkey=last\n")
                                     << "last";
    QTest::newRow("Windows line ends") << QByteArray("[main]\r\nkey=Open\r\n") << "Open";
    QTest::newRow("byte order mark in front") << QByteArray("\xef\xbb\xbf[main]\nkey=開く\n") << "開く";
    QTest::newRow("no line break at the end") << QByteArray("[main]\nkey=Open") << "Open";
    QTest::newRow("group without its closing bracket") << QByteArray("[main\nkey=Open\n") << "Open";
    QTest::newRow("a number") << QByteArray("[main]\nkey=42\n") << "42";
}

void tst_UiTexts::textOfTheFile()
{
    QFETCH(QByteArray, contents);
    QFETCH(QString, text);
    writeLangFile(contents);
    QCOMPARE(message("main", "key"), text);
    QCOMPARE(caption("main", "key"), text);
}

void tst_UiTexts::missingFileGivesBuiltInTexts()
{
    QCOMPARE(message("main", "title"), QStringLiteral("built-in"));
    QCOMPARE(caption("main", "lbl_1"), QStringLiteral("built-in"));
    QVERIFY(!QFile::exists(langFile()));
}

void tst_UiTexts::builtInTextIsUtf8()
{
    QMap<QString, QString> messages;
    UiTexts texts(langFile(), QStringLiteral("main"), messages);
    texts.message("overwrite_question", " は既に\n（𠮷）");
    texts.message("title", "");
    QCOMPARE(messages.value("overwrite_question"), QStringLiteral(" は既に\n（𠮷）"));
    QVERIFY(messages.contains("title"));
}

void tst_UiTexts::sameKeyInEachGroup()
{
    writeLangFile("[main]\nlbl_1=of main\n[batch_convert]\nlbl_1=of batch\n[config]\ntitle=of config\n");
    QCOMPARE(caption("main", "lbl_1"), QStringLiteral("of main"));
    QCOMPARE(caption("batch_convert", "lbl_1"), QStringLiteral("of batch"));
    QCOMPARE(caption("config", "lbl_1"), QStringLiteral("built-in"));
    QCOMPARE(message("main", "title"), QStringLiteral("built-in"));
    QCOMPARE(message("config", "title"), QStringLiteral("of config"));
}

void tst_UiTexts::keyOutsideEveryGroupIsNotTaken()
{
    writeLangFile("title=no group\n[General]\nlbl_1=general\n");
    QCOMPARE(message("main", "title"), QStringLiteral("built-in"));
    QCOMPARE(message("main", "lbl_1"), QStringLiteral("built-in"));
}

void tst_UiTexts::messagesOfOtherKeysStay()
{
    writeLangFile("[main]\ntitle=new\n");
    QMap<QString, QString> messages{{"title", "old"}, {"other", "kept"}};
    UiTexts texts(langFile(), QStringLiteral("main"), messages);
    texts.message("title", "built-in");
    texts.message("open_file", "built-in");
    QCOMPARE(messages,
             (QMap<QString, QString>{{"title", "new"}, {"other", "kept"}, {"open_file", "built-in"}}));
}

void tst_UiTexts::readingTwiceSeesTheEditedFile()
{
    for (const char *text : {"first", "other", "third", "short", "first"}) { // all of one size
        writeLangFile(QByteArray("[config]\ntitle=") + text + "\n");
        QCOMPARE(message("config", "title"), QString::fromLatin1(text));
    }
    QVERIFY(QFile::remove(langFile()));
    QCOMPARE(message("config", "title"), QStringLiteral("built-in"));
}

void tst_UiTexts::fileIsOnlyRead()
{
    const QByteArray contents = "; a comment\n[main]\n  key = a, b\n";
    writeLangFile(contents);
    QCOMPARE(message("main", "missing"), QStringLiteral("built-in"));
    QFile file(langFile());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), contents);
}

void tst_UiTexts::damagedFileGivesBuiltInTexts_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("no equals sign") << QByteArray("[main]\nkey Open\n");
    QTest::newRow("zeros") << QByteArray(10000, '\0');
    QTest::newRow("a picture") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16).repeated(1000);
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe[\0m\0a\0i\0n\0]\0\n\0k\0e\0y\0=\0x\0", 24);
    QTest::newRow("a value that asks for all memory")
        << QByteArray("[main]\nkey=@Variant(\\0\\0\\0\\v\\x7f\\xff\\xff\\xff)\n");
}

void tst_UiTexts::damagedFileGivesBuiltInTexts()
{
    QFETCH(QByteArray, contents);
    writeLangFile(contents);
    QCOMPARE(message("main", "key"), QStringLiteral("built-in"));
    QCOMPARE(caption("main", "key"), QStringLiteral("built-in"));
}

QTEST_GUILESS_MAIN(tst_UiTexts)
#include "tst_uitexts.moc"
