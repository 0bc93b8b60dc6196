#include "cputime.h"
#include "initext.h"
#include "rng.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

/// Random text of the characters that mean something in an ini file, and of some that do not.
QByteArray randomText(Rng &rng)
{
    static const QVector<QByteArray> pieces{
        "[General]\n", "[other]\n",   "[%General]", "[",          "]",    "=",
        "\"",          "\\",          ";",          ",",          "@",    "\n",
        "\r\n",        "\r",          " ",          "\t",         "A",    "B",
        "7",           "x4",          "\\x41",      "\\101",      "\\n",  "\\\n",
        "\\\r\n",      "%",           "%20",        "%U65e5",     "写",   "\xf0\xa0\xae\xb7",
        "\\0",         "A=",          "B =",        "C=\"",       "(",    ")",
        "@@",          "a, b",        "\\\"",       "/",          "true", "\v",
        "\f",          "@ByteArray(", "@String(",   "@Size(1 2)", "\\y"};
    QByteArray text;
    for (int length = rng.between(1, 39); length > 0; --length)
        text += rng.of(pieces);
    return text;
}

/// What the toolkit reads, under the keys that it can look up: those without an empty part.
QMap<QString, QVariant> readByToolkit(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("cannot write");
    file.close();
    QSettings settings(path, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    QMap<QString, QVariant> values;
    for (const QString &key : settings.allKeys())
        if (!key.split('/').contains(QString()) && settings.contains(key))
            values[key] = settings.value(key);
    return values;
}

QString shown(const QVariant &value)
{
    return QStringLiteral("%1: %2 | %3")
        .arg(QString::fromLatin1(value.typeName()), value.toString(), value.toStringList().join('|'));
}

} // namespace

/// The text of an ini file. What it understands is compared with the toolkit's own reader.
class tst_IniText : public QObject
{
    Q_OBJECT

private slots:
    void readsAsTheToolkit();
    void serializedTypesAreAbsent();
    void brokenUtf8GivesReplacementCharacters_data();
    void brokenUtf8GivesReplacementCharacters();
    void changesNothingElse_data();
    void changesNothingElse();
    void newKeyIsReadBackBehindAnything();
    void newKeysStandInOrder();
    void lastValueOfAKeyCountsAndChanges();
    void readsLongLinesInLinearTime();
};

void tst_IniText::readsAsTheToolkit()
{
    const QTemporaryDir folder;
    Rng rng(41); // any seed will do
    int keys = 0;
    for (int i = 0; i < 6000; ++i) {
        const QByteArray contents = randomText(rng);
        // A file name of its own: the toolkit answers from its cache for one that it knows.
        const QString path = folder.filePath(QString::number(i));
        const QMap<QString, QVariant> expected = readByToolkit(path, contents);
        const IniText text(contents);
        for (auto it = expected.begin(); it != expected.end(); ++it) {
            ++keys;
            const QString what = QString::fromLatin1("\n%1\n%2").arg(QString::fromUtf8(contents), it.key());
            QVERIFY2(text.contains(it.key()), qPrintable(what));
            const QVariant value = text.value(it.key());
            QVERIFY2(value.toString() == it->toString() && value.toInt() == it->toInt() &&
                         value.toBool() == it->toBool() && value.toByteArray() == it->toByteArray(),
                     qPrintable(what + "\nours " + shown(value) + "\nthe toolkit's " + shown(*it)));
        }
        QFile::remove(path);
    }
    QVERIFY2(keys > 2500, qPrintable(QString::number(keys)));
}

void tst_IniText::serializedTypesAreAbsent()
{
    const IniText text(
        "A=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x5)\nB=@DateTime(\\0)\nC=1,@Variant()\nD=@Variant(\n");
    QCOMPARE(text.allKeys(), QStringList{"D"});
    QVERIFY(!text.contains("A"));
    QCOMPARE(text.value("A", 3).toInt(), 3);
    QCOMPARE(text.value("B", "default").toString(), QStringLiteral("default"));
    QCOMPARE(text.value("C", 9).toInt(), 9);
    QCOMPARE(text.value("D").toString(), QStringLiteral("@Variant("));
}

void tst_IniText::brokenUtf8GivesReplacementCharacters_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("text");
    const QString lost(QChar::ReplacementCharacter);
    QTest::newRow("cut after one byte") << QByteArray("a\xe5") << "a" + lost;
    QTest::newRow("cut after two bytes, nothing else") << QByteArray("\xe5\x86") << lost;
    QTest::newRow("cut before a comma in quotes") << QByteArray("\"a\xe5\x86,b\"") << "a" + lost + ",b";
    QTest::newRow("a byte order mark is a character") << QByteArray("\xef\xbb\xbf"
                                                                    "a")
                                                      << QString(QChar(0xfeff)) + "a";
}

void tst_IniText::brokenUtf8GivesReplacementCharacters()
{
    QFETCH(QByteArray, value);
    const IniText text("[General]\nText=" + value + "\n");
    QTEST(text.value("Text").toString(), "text");
}

void tst_IniText::changesNothingElse_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const char *before, const char *after) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after);
    };
    row("empty", "", "[General]\nKey=1\n");
    row("in place", "[General]\nA=  x ; why\nKey = 5 ; mine\nZ=\"\n",
        "[General]\nA=  x ; why\nKey =1; mine\nZ=\"\n");
    row("in order", "[General]\nA=1\nZ=2\n", "[General]\nA=1\nKey=1\nZ=2\n");
    row("at the end of the section", "[General]\nA=1\n\n\n[other]\nKey=2\n",
        "[General]\nA=1\nKey=1\n\n\n[other]\nKey=2\n");
    row("other sections only", "; mine\n[other]\nKey=2", "[General]\nKey=1\n\n; mine\n[other]\nKey=2\n");
    row("keys without a header", "A=1\r\nZ=2\r\n", "A=1\nKey=1\r\nZ=2\r\n");
    row("before the first key", "Z=2\n", "Key=1\nZ=2\n");
    row("behind a byte order mark", "\xef\xbb\xbf[other]\nA=@Variant(\\0)\n",
        "\xef\xbb\xbf[General]\nKey=1\n\n[other]\nA=@Variant(\\0)\n");
    row("behind an escaped half of a line end", "A\\\r\rZ=1\n", "A\\\r\n\nKey=1\rZ=1\n");
    row("no line end at the end", "[General]\nA=1", "[General]\nA=1\nKey=1\n");
}

void tst_IniText::changesNothingElse()
{
    QFETCH(QByteArray, before);
    IniText text(before);
    QCOMPARE(text.contents(), before);
    text.setValue("Key", 1);
    QTEST(text.contents(), "after");
    QCOMPARE(IniText(text.contents()).value("Key").toInt(), 1);
}

// Whatever stands in the file, what was set is there afterwards, and what could be read before still can.
void tst_IniText::newKeyIsReadBackBehindAnything()
{
    Rng rng(43);
    for (int i = 0; i < 20000; ++i) {
        const QByteArray before = randomText(rng);
        IniText text(before);
        QCOMPARE(text.contents(), before);
        const QStringList keys = text.allKeys();
        text.setValue("Radius", 440);
        text.setValue("A", "a; \"b\" 写");
        const IniText again(text.contents());
        const QString what = QString::fromUtf8("\n" + before + "\nbecomes\n" + text.contents());
        QVERIFY2(again.value("Radius").toInt() == 440, qPrintable(what));
        QVERIFY2(again.value("A").toString() == QStringLiteral("a; \"b\" 写"), qPrintable(what));
        for (const QString &key : keys)
            QVERIFY2(key == "A" || again.value(key).toString() == IniText(before).value(key).toString(),
                     qPrintable(what + '\n' + key));
    }
}

void tst_IniText::newKeysStandInOrder()
{
    IniText text;
    for (const char *key : {"Radius", "CenterX", "OutputSizeX", "CenterY"})
        text.setValue(key, 1);
    QCOMPARE(text.contents(), QByteArray("[General]\nCenterX=1\nCenterY=1\nOutputSizeX=1\nRadius=1\n"));
    QCOMPARE(text.allKeys(), (QStringList{"CenterX", "CenterY", "OutputSizeX", "Radius"}));
}

void tst_IniText::lastValueOfAKeyCountsAndChanges()
{
    IniText text("[General]\nA=1\nA=2\n[other]\nA=3\n[General]\nA=4\n");
    QCOMPARE(text.value("A").toInt(), 4);
    QCOMPARE(text.allKeys(), (QStringList{"other/A", "A"}));
    text.setValue("A", 5);
    QCOMPARE(text.contents(), QByteArray("[General]\nA=1\nA=2\n[other]\nA=3\n[General]\nA=5\n"));
}

void tst_IniText::readsLongLinesInLinearTime()
{
    const QByteArray contents = "Text=\"" + QByteArray(R"(,\x41""a b)").repeated(1000000) + "\"\n" +
                                QByteArray("K=1\n").repeated(500000);
    const qint64 begin = cpuMilliseconds();
    const IniText text(contents);
    QVERIFY(!text.value("Text").toString().isNull());
    QCOMPARE(text.allKeys().size(), 2);
    const qint64 took = cpuMilliseconds() - begin;
    QVERIFY2(took < 30000, qPrintable(QString::number(took))); // quadratic: hours
}

QTEST_GUILESS_MAIN(tst_IniText)
#include "tst_initext.moc"
