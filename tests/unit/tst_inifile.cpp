#include "inifile.h"
#include "rng.h"

#include "faults.h"
#include "files.h"
#include "memorylimit.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <sys/stat.h>
#include <thread>

using Values = QVector<QPair<QString, QVariant>>;

namespace
{

QVariant read(const QString &path, const char *key)
{
    return openIniFile(path).value(QString::fromLatin1(key));
}

quint64 bitsOf(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// One variable of every type that settings have, with defaults that differ from the empty values.
struct State {
    bool flag = true;
    int number = 3;
    double real = 100.0;
    QString text = QStringLiteral("default");
    QByteArray bytes = "default";

    QVector<Setting> settings()
    {
        return {{QStringLiteral("Bytes"), QByteArray("default"), [this] { return bytes; },
                 [this](const QVariant &value) { bytes = value.toByteArray(); }},
                boundSetting("Flag", true, flag),
                boundSetting("Number", 3, number),
                boundSetting("Real", 100.0, real),
                boundSetting("Text", QStringLiteral("default"), text)};
    }
};

/// Two sets of values that differ everywhere, one longer than the other.
Values manyValues(int set)
{
    Values values;
    for (int i = 0; i < 60; ++i)
        values.append({QStringLiteral("Key%1").arg(i),
                       QString(20 + 400 * set, QChar(set == 0 ? 0x3042 : 0x30a2)) + QString::number(i)});
    return values;
}

bool holds(const QString &path, const Values &values)
{
    const IniText file = openIniFile(path);
    return file.allKeys().size() == values.size() &&
           std::all_of(values.cbegin(), values.cend(),
                       [&](const auto &entry) { return file.value(entry.first) == entry.second; });
}

} // namespace

class tst_IniFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void textSurvives_data();
    void textSurvives();
    void everyCharacterSurvives();
    void japaneseTextIsPlainUtf8InTheFile();
    void loneHalfOfACharacterDoesNotSpoilTheRest();
    void doubleSurvivesBitForBit();
    void everyByteSurvives();
    void fileIsWhatTheToolkitWrites();
    void otherKeysAndGroupsStay();
    void emptyFileAndNoValues();
    void missingFolderIsMade();
    void linkToTheFileStaysALink();

    void absentKeyGivesDefault();
    void presentButEmptyKeyIsNotAbsent();
    void hostileValueConverts_data();
    void hostileValueConverts();
    void textWithCommaIsAList();
    void settingsSurviveInAnotherProcess();
    void settingsAreTakenInOrder();
    void settingsFileIsReadAsParameterFile();

    void loadAfterSaveSeesNewValues();
    void changedFileOfSameSizeAndTimeIsReadAnew();

    void hostileFileIsReadAndSaved_data();
    void hostileFileIsReadAndSaved();
    void serializedObjectIsNeverDecoded_data();
    void serializedObjectIsNeverDecoded();
    void folderInPlaceOfTheFile();
    void pipeInPlaceOfTheFile();
    void unreadableFileIsLeftAlone();
    void readOnlyFolderIsRefused();
    void noFolderForTemporaryFilesIsNeeded();
    void fullDiskLeavesOldFile();
    void fullSmallDiskLeavesOldFile();
    void killedProcessLeavesWholeFile();
    void twoWritersLeaveOneWholeFile();
    void littleMemoryIsEnoughOrLeavesTheFile();

private:
    QString in(const char *name) const { return m_folder->filePath(QString::fromUtf8(name)); }
    QString ini() const { return in("ovmic.ini"); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_IniFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_IniFile::cleanup()
{
    m_folder.reset();
}

void tst_IniFile::textSurvives_data()
{
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QString &text) { QTest::newRow(name) << text; };
    row("empty", QString());
    row("Japanese path", QStringLiteral("/srv/山田/写真 １.jpg"));
    row("beyond the basic plane", QStringLiteral("/srv/𠮷田/𠮷.jpg"));
    row("only one such character", QStringLiteral("𠮷"));
    row("emoji sequence", QStringLiteral("👩‍🚀🌏🇯🇵"));
    row("such a character before a hexadecimal digit", QStringLiteral("𠮷a𠮷1"));
    row("such a character before an escape", QStringLiteral("𠮷\n𠮷\"𠮷\\𠮷;"));
    row("comma, semicolon, equals sign", QStringLiteral("a,b;c=d"));
    row("quotes and backslashes", QStringLiteral("\"C:\\new\\table\""));
    row("leading at sign", QStringLiteral("@home"));
    row("two leading at signs", QStringLiteral("@@home"));
    row("looks like a byte array", QStringLiteral("@ByteArray(x)"));
    row("looks like an invalid value", QStringLiteral("@Invalid()"));
    row("looks like a variant", QStringLiteral("@Variant(x)"));
    row("percent signs", QStringLiteral("100%20%"));
    row("outer blanks", QStringLiteral("  x  "));
    row("only blanks", QStringLiteral("   "));
    row("full-width blanks", QStringLiteral("　x　"));
    row("line breaks and tabs", QStringLiteral("a\nb\r\nc\td"));
    row("control characters before digits", QStringLiteral("\x01"
                                                           "1\x1f"
                                                           "f\x7f"
                                                           "a"));
    row("a zero character", QString(QStringLiteral("a")) + QChar(0) + QStringLiteral("0b"));
    row("a byte order mark in front", QChar(0xfeff) + QStringLiteral("x"));
    row("a byte order mark after an escape", QStringLiteral("\n") + QChar(0xfeff) + QStringLiteral("x"));
    row("10,000 characters", QString(10000, QChar(0x6f22)));
}

void tst_IniFile::textSurvives()
{
    QFETCH(QString, text);
    QVERIFY(writeIniFile(ini(), {{"Before", "a"}, {"Text", text}, {"Unit", "b"}}));
    QVERIFY(openIniFile(ini()).contains("Text"));
    QCOMPARE(read(ini(), "Text").toString(), text);
    QCOMPARE(read(ini(), "Before").toString(), QStringLiteral("a"));
    QCOMPARE(read(ini(), "Unit").toString(), QStringLiteral("b"));
    // Once more over what is there: nothing grows or changes.
    const QByteArray first = contentsOf(ini());
    QVERIFY(writeIniFile(ini(), {{"Text", text}}));
    QCOMPARE(contentsOf(ini()), first);
    QCOMPARE(namesIn(m_folder->path()), QStringList{"ovmic.ini"});
}

void tst_IniFile::everyCharacterSurvives()
{
    Values values;
    for (uint block = 0; block < 0x110000; block += 0x400) {
        if (block >= 0xd800 && block < 0xe000)
            continue;
        QVector<uint> characters;
        for (uint character = block; character < block + 0x400; ++character)
            characters.append(character);
        values.append(
            {QString::number(block, 16), QString::fromUcs4(characters.constData(), characters.size())});
    }
    QVERIFY(writeIniFile(ini(), values));
    const IniText file = openIniFile(ini());
    for (const auto &[key, value] : values)
        QVERIFY2(file.value(key).toString() == value.toString(), qPrintable(key));
}

void tst_IniFile::japaneseTextIsPlainUtf8InTheFile()
{
    const QString text = QStringLiteral("/写真/𠮷田 🌏.jpg");
    QVERIFY(writeIniFile(ini(), {{"LoadFileName", text}}));
    QCOMPARE(contentsOf(ini()), QByteArray("[General]\nLoadFileName=" + text.toUtf8() + "\n"));
}

void tst_IniFile::loneHalfOfACharacterDoesNotSpoilTheRest()
{
    const QString high = QChar(0xd842);
    const QString low = QChar(0xdfb7);
    const QString betweenNumberAndDigit = QChar(1) + low + '6';
    QVERIFY(writeIniFile(ini(), {{"A", high + "x"},
                                 {"B", low + "y"},
                                 {"C", low + "z" + high},
                                 {"D", "𠮷"},
                                 {"E", betweenNumberAndDigit}}));
    QCOMPARE(read(ini(), "C").toString(), QStringLiteral("z"));
    QCOMPARE(read(ini(), "D").toString(), QStringLiteral("𠮷"));
    QCOMPARE(read(ini(), "E").toString(), QStringLiteral("\x01"
                                                         "6"));
}

void tst_IniFile::doubleSurvivesBitForBit()
{
    using Limits = std::numeric_limits<double>;
    QVector<double> numbers{0.0,           0.1,          1.0 / 3.0,          6.6,
                            35.681236,     -139.7671248, Limits::max(),      5e-324,
                            Limits::min(), 1e300,        Limits::infinity(), -Limits::infinity()};
    Rng rng(5);
    for (int i = 0; i < 1000; ++i)
        numbers.append(rng.real(-360, 360));
    Values values;
    for (const double number : numbers)
        values.append({QStringLiteral("Key%1").arg(values.size()), number});
    QVERIFY(writeIniFile(ini(), values));
    const IniText file = openIniFile(ini());
    for (int i = 0; i < numbers.size(); ++i)
        QCOMPARE(bitsOf(file.value(values[i].first).toDouble()), bitsOf(numbers[i]));
}

void tst_IniFile::everyByteSurvives()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes.append(static_cast<char>(i)).append(static_cast<char>(255 - i)).append("0");
    QVERIFY(writeIniFile(ini(), {{"Geometry", bytes}, {"None", QByteArray()}}));
    QCOMPARE(read(ini(), "Geometry").toByteArray(), bytes);
    QVERIFY(openIniFile(ini()).contains("None"));
    QCOMPARE(read(ini(), "None").toByteArray(), QByteArray());
}

void tst_IniFile::fileIsWhatTheToolkitWrites()
{
    const Values values{
        {"Real", 6.6},       {"Flag", true},   {"Geometry", QByteArray("\x01\xd9\xd0\xcb", 4)},
        {"Number", -5},      {"Text", "a, b"}, {"Folder", "/写真"},
        {"None", QString()}, {"Off", false}};
    QVERIFY(writeIniFile(ini(), values));
    {
        QSettings plain(in("plain.ini"), QSettings::IniFormat);
        plain.setIniCodec("UTF-8");
        for (const auto &[key, value] : values)
            plain.setValue(key, value);
    }
    QCOMPARE(contentsOf(ini()), contentsOf(in("plain.ini")));
    QVERIFY(contentsOf(ini()).contains("Real=6.6\n"));
}

void tst_IniFile::otherKeysAndGroupsStay()
{
    writeFile(ini(),
              "[General]\nCenterX=1\nMine=\"a, b\"\nList=a, b\n\n[other]\nText=写真 𠮷\nDeep\\Key=7\n");
    QVERIFY(writeIniFile(ini(), {{"CenterX", 2}, {"CenterY", 3}}));
    const IniText file = openIniFile(ini());
    QCOMPARE(file.value("CenterX").toInt(), 2);
    QCOMPARE(file.value("CenterY").toInt(), 3);
    QCOMPARE(file.value("Mine").toString(), QStringLiteral("a, b"));
    QCOMPARE(file.value("List").toStringList(), (QStringList{"a", "b"}));
    QCOMPARE(file.value("other/Text").toString(), QStringLiteral("写真 𠮷"));
    QCOMPARE(file.value("other/Deep/Key").toInt(), 7);
    QCOMPARE(file.allKeys().size(), 6);
}

void tst_IniFile::emptyFileAndNoValues()
{
    writeFile(ini(), "");
    QVERIFY(writeIniFile(ini(), {{"A", 1}}));
    const QByteArray before = contentsOf(ini());
    QCOMPARE(before, QByteArray("[General]\nA=1\n"));
    QVERIFY(writeIniFile(ini(), {}));
    QCOMPARE(contentsOf(ini()), before);
}

void tst_IniFile::missingFolderIsMade()
{
    const QString path = in("new/deep/circle.ini");
    QVERIFY(writeIniFile(path, {{"Radius", 5}}));
    QCOMPARE(contentsOf(path), QByteArray("[General]\nRadius=5\n"));
}

void tst_IniFile::linkToTheFileStaysALink()
{
    writeFile(in("real.ini"), "[General]\nA=1\n");
    QVERIFY(QFile::link(in("real.ini"), ini()));
    QVERIFY(writeIniFile(ini(), {{"B", 2}}));
    QVERIFY(QFileInfo(ini()).isSymLink());
    QCOMPARE(contentsOf(in("real.ini")), QByteArray("[General]\nA=1\nB=2\n"));
}

void tst_IniFile::absentKeyGivesDefault()
{
    State state{false, 1, 1.0, "x", "y"};
    loadSettings(in("missing.ini"), state.settings());
    QCOMPARE(state.flag, true);
    QCOMPARE(state.number, 3);
    QCOMPARE(state.real, 100.0);
    QCOMPARE(state.text, QStringLiteral("default"));
    QCOMPARE(state.bytes, QByteArray("default"));
    QCOMPARE(namesIn(m_folder->path()), QStringList());
}

void tst_IniFile::presentButEmptyKeyIsNotAbsent()
{
    State state;
    writeFile(ini(), "Bytes=\nFlag=\nNumber=\nReal=\nText=\n");
    loadSettings(ini(), state.settings());
    QCOMPARE(state.flag, false);
    QCOMPARE(state.number, 0);
    QCOMPARE(bitsOf(state.real), bitsOf(0.0));
    QCOMPARE(state.text, QString());
    QCOMPARE(state.bytes, QByteArray());
}

void tst_IniFile::hostileValueConverts_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("flag");
    QTest::addColumn<int>("number");
    QTest::addColumn<double>("real");
    QTest::addColumn<QString>("text");
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto row = [](const char *value, bool flag, int number, double real, const char *text) {
        QTest::newRow(value) << QByteArray(value) << flag << number << real << QString::fromUtf8(text);
    };
    row("99999999999", true, 1215752191, 99999999999.0, "99999999999");
    row("2147483647", true, 2147483647, 2147483647.0, "2147483647");
    row("2147483648", true, -2147483647 - 1, 2147483648.0, "2147483648");
    row("-2147483648", true, -2147483647 - 1, -2147483648.0, "-2147483648");
    row("99999999999999999999", true, 0, 1e20, "99999999999999999999");
    row("3.7", true, 0, 3.7, "3.7");
    row("1e3", true, 0, 1000.0, "1e3");
    row("0x10", true, 0, 0.0, "0x10");
    row("yes", true, 0, 0.0, "yes");
    row("true", true, 0, 0.0, "true");
    row("false", false, 0, 0.0, "false");
    row("FALSE", false, 0, 0.0, "FALSE");
    row("0", false, 0, 0.0, "0");
    row("0.0", true, 0, 0.0, "0.0");
    row("inf", true, 0, infinity, "inf");
    row("-inf", true, 0, -infinity, "-inf");
    row("nan", true, 0, nan, "nan");
    row("1e999", true, 0, infinity, "1e999");
    row("6,6", false, 0, 0.0, "");
    row("a, b", false, 0, 0.0, "");
    row("\"6,6\"", true, 0, 0.0, "6,6");
    row("@Invalid()", false, 0, 0.0, "");
    row("@Nonsense(1)", true, 0, 0.0, "@Nonsense(1)");
    row("@Rect(1 2 3 4)", false, 0, 0.0, "");
    row("@Size(1)", true, 0, 0.0, "@Size(1)");
    // Serialized objects are absent.
    row(R"(@Variant(\0\0\0\x2\0\0\0\x5))", true, 3, 100.0, "default");
    row("@Variant(garbage)", true, 3, 100.0, "default");
    row("@ByteArray(7)", true, 7, 7.0, "7");
    row("@ByteArray(", true, 0, 0.0, "@ByteArray(");
    row("\\xffffffffff", true, 0, 0.0, "\xef\xbf\xbf");
    row("7 ; a comment", true, 7, 7.0, "7");
    row("１", true, 0, 0.0, "１");
}

void tst_IniFile::hostileValueConverts()
{
    QFETCH(QByteArray, value);
    QFETCH(double, real);
    writeFile(ini(), "[General]\nBytes=x\nFlag=" + value + "\nNumber=" + value + "\nReal=" + value +
                         "\nText=" + value + "\n");
    State state;
    loadSettings(ini(), state.settings());
    QTEST(state.flag, "flag");
    QTEST(state.number, "number");
    QCOMPARE(std::isnan(state.real), std::isnan(real));
    if (!std::isnan(real))
        QCOMPARE(bitsOf(state.real), bitsOf(real));
    QTEST(state.text, "text");
    QCOMPARE(state.bytes, QByteArray("x"));
    // What was understood is what the next run understands.
    QVERIFY(saveSettings(ini(), state.settings()));
    State next;
    loadSettings(ini(), next.settings());
    QCOMPARE(next.flag, state.flag);
    QCOMPARE(next.number, state.number);
    QVERIFY(bitsOf(next.real) == bitsOf(state.real) || (std::isnan(next.real) && std::isnan(state.real)));
    QCOMPARE(next.text, state.text);
    QCOMPARE(next.bytes, state.bytes);
}

void tst_IniFile::textWithCommaIsAList()
{
    writeFile(ini(), "Text=a, b\n");
    QCOMPARE(read(ini(), "Text").toStringList(), (QStringList{"a", "b"}));
    QCOMPARE(read(ini(), "Text").toString(), QString());
}

void tst_IniFile::settingsSurviveInAnotherProcess()
{
    State state{false, -7, 0.1, "/写真/𠮷.jpg", QByteArray("\0\xff)", 3)};
    QCOMPARE(inChild([&] { return saveSettings(ini(), state.settings()); }), Answer::Yes);
    QCOMPARE(contentsOf(ini()), QByteArray("[General]\nBytes=@ByteArray(\\0\\xff))\nFlag=false\nNumber=-7\n"
                                           "Real=0.1\nText=/写真/𠮷.jpg\n"));
    State next;
    loadSettings(ini(), next.settings());
    QCOMPARE(next.flag, false);
    QCOMPARE(next.number, -7);
    QCOMPARE(bitsOf(next.real), bitsOf(0.1));
    QCOMPARE(next.text, state.text);
    QCOMPARE(next.bytes, state.bytes);
}

void tst_IniFile::settingsAreTakenInOrder()
{
    QStringList taken;
    QVector<Setting> settings;
    for (const char *key : {"Zebra", "Apple", "Middle"})
        settings.append({QString::fromLatin1(key), QString(), [] { return QVariant("x"); },
                         [&taken, key](const QVariant &) { taken.append(QString::fromLatin1(key)); }});
    QVERIFY(saveSettings(ini(), settings));
    loadSettings(ini(), settings);
    QCOMPARE(taken, (QStringList{"Zebra", "Apple", "Middle"}));
}

void tst_IniFile::settingsFileIsReadAsParameterFile()
{
    int x = 512;
    int y = -3;
    State state;
    QVector<Setting> settings = state.settings();
    settings << boundSetting("CenterX", 0, x) << boundSetting("CenterY", 0, y);
    QVERIFY(saveSettings(ini(), settings));
    const IniText parameters = openIniFile(ini());
    QCOMPARE(parameters.value("CenterX", 0).toInt(), 512);
    QCOMPARE(parameters.value("CenterY", 0).toInt(), -3);
    QCOMPARE(parameters.value("Radius", 0).toInt(), 0);
}

void tst_IniFile::loadAfterSaveSeesNewValues()
{
    for (int i = 100; i < 115; ++i) { // always the same size, within one tick of the file's clock
        State state;
        state.number = i;
        QVERIFY(saveSettings(ini(), state.settings()));
        State next;
        loadSettings(ini(), next.settings());
        QCOMPARE(next.number, i);
    }
}

void tst_IniFile::changedFileOfSameSizeAndTimeIsReadAnew()
{
    writeFile(ini(), "[main]\ntitle=first\n");
    const QDateTime time = QFileInfo(ini()).lastModified();
    QCOMPARE(read(ini(), "main/title").toString(), QStringLiteral("first"));
    QFile file(ini());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.write("[main]\ntitle=other\n"), qint64(19));
    QVERIFY(file.flush());
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
    file.close();
    QCOMPARE(read(ini(), "main/title").toString(), QStringLiteral("other"));
}

void tst_IniFile::hostileFileIsReadAndSaved_data()
{
    QTest::addColumn<QByteArray>("contents");
    Rng rng(11);
    const auto noise = [&rng](int size) {
        QByteArray bytes(size, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(rng.word());
        return bytes;
    };
    for (const int size : {1, 100, 5000, 300000})
        QTest::addRow("%d bytes of noise", size) << noise(size);
    QTest::newRow("10 MB of noise") << noise(10000000);
    QTest::newRow("a line of 10 MB") << "Text=" + QByteArray(10000000, 'x');
    QTest::newRow("10 MB of line breaks") << QByteArray(10000000, '\n');
    QTest::newRow("10 MB of zeros") << QByteArray(10000000, '\0');
    QTest::newRow("100,000 groups") << QByteArray("[g]\n").repeated(100000);
    QTest::newRow("100,000 equals signs") << QByteArray(100000, '=');
    QTest::newRow("100,000 commas") << "Text=" + QByteArray(100000, ',');
    QTest::newRow("open quotation") << QByteArray("Text=\"\n[General]\nNumber=1");
    QTest::newRow("open group") << QByteArray("[General\nNumber=1");
    QTest::newRow("keys without a name") << QByteArray("=1\n[/]\n=2\nk=3\n[a//b]\n/=4\n");
    QTest::newRow("lone halves of characters") << QByteArray("a=\\xd842\nb=\\xdfb7, \\xd842\n%Ud842=1\n");
    QTest::newRow("UTF-16 with a byte order mark") << QByteArray("\xff\xfe[\0a\0]\0\n\0", 10);
    QTest::newRow("UTF-8 with a byte order mark") << QByteArray("\xef\xbb\xbf[General]\nOther=1\n");
    QTest::newRow("Windows line ends") << QByteArray("[General]\r\nOther=1\r\n");
    QTest::newRow("the same key twice") << QByteArray("Number=1\nNumber=2\n[General]\nNumber=3\n");
}

void tst_IniFile::hostileFileIsReadAndSaved()
{
    QFETCH(QByteArray, contents);
    writeFile(ini(), contents);
    State state;
    loadSettings(ini(), state.settings());
    QCOMPARE(contentsOf(ini()), contents);
    const State meant{false, 42, 0.1, "/写真/𠮷.jpg", "bytes"};
    state = meant;
    QVERIFY(saveSettings(ini(), state.settings()));
    State next;
    loadSettings(ini(), next.settings());
    QCOMPARE(next.flag, meant.flag);
    QCOMPARE(next.number, meant.number);
    QCOMPARE(bitsOf(next.real), bitsOf(meant.real));
    QCOMPARE(next.text, meant.text);
    QCOMPARE(next.bytes, meant.bytes);
}

void tst_IniFile::serializedObjectIsNeverDecoded_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("more memory than there is") << QByteArray(R"(@Variant(\0\0\0\v\x7f\xff\xff\xff))");
    QTest::newRow("polygon") << QByteArray(R"(@Variant(\0\0\0G\x10\0\0\0))");
    QTest::newRow("region") << QByteArray(R"(@Variant(\0\0\0H\0\0\0\xb\x7f\xff\xff\xff))");
    QTest::newRow("escaped letters") << QByteArray(R"(\x40Variant(\0\0\0G\x10\0\0\0))");
    QTest::newRow("quoted") << QByteArray(R"x("@Variant(\0\0\0G\x10\0\0\0)")x");
    QTest::newRow("in a list") << QByteArray(R"(1, @Variant(\0\0\0G\x10\0\0\0), 2)");
    QTest::newRow("date") << QByteArray(R"(@DateTime(\0\0\0\x10\0\0\0))");
    QTest::newRow("deep nesting") << "@Variant(" + QByteArray(R"(\0\0\0\t\0\0\0\x1)").repeated(200000) + ')';
}

void tst_IniFile::serializedObjectIsNeverDecoded()
{
    QFETCH(QByteArray, value);
    const QByteArray foreign = "Foreign=" + value + "\n";
    writeFile(ini(), "[General]\n" + foreign + "Number=7\nText=" + value + "\n");
    State state;
    loadSettings(ini(), state.settings());
    QCOMPARE(state.number, 7);
    QCOMPARE(state.text, QStringLiteral("default"));
    QVERIFY(saveSettings(ini(), state.settings()));
    QVERIFY(contentsOf(ini()).contains('\n' + foreign));
    QVERIFY(contentsOf(ini()).contains("\nText=default\n"));
}

void tst_IniFile::folderInPlaceOfTheFile()
{
    QVERIFY(QDir(m_folder->path()).mkdir("ovmic.ini"));
    writeFile(in("ovmic.ini/inside"), "x");
    State state;
    loadSettings(ini(), state.settings());
    QCOMPARE(state.number, 3);
    QVERIFY(!saveSettings(ini(), state.settings()));
    QCOMPARE(namesIn(m_folder->path()), QStringList{"ovmic.ini"});
    QCOMPARE(namesIn(ini()), QStringList{"inside"});
}

void tst_IniFile::pipeInPlaceOfTheFile()
{
    QCOMPARE(mkfifo(QFile::encodeName(ini()).constData(), 0600), 0);
    State state;
    loadSettings(ini(), state.settings()); // must not wait for a writer
    QCOMPARE(state.number, 3);
    QVERIFY(!saveSettings(ini(), state.settings()));
}

void tst_IniFile::unreadableFileIsLeftAlone()
{
    const QByteArray contents = "[General]\nNumber=7\n";
    writeFile(ini(), contents);
    handOver({ini(), m_folder->path()});
    QCOMPARE(chmod(QFile::encodeName(ini()).constData(), 0200), 0);
    const auto load = [&] {
        State state;
        loadSettings(ini(), state.settings());
        return state.number == 3;
    };
    const auto save = [&] {
        State state;
        return saveSettings(ini(), state.settings());
    };
    QCOMPARE(asOrdinaryUser(load), Answer::Yes);
    QCOMPARE(asOrdinaryUser(save), Answer::No);
    QCOMPARE(chmod(QFile::encodeName(ini()).constData(), 0600), 0);
    QCOMPARE(contentsOf(ini()), contents);
    QCOMPARE(asOrdinaryUser(save), Answer::Yes); // it was the permission, nothing else
}

void tst_IniFile::readOnlyFolderIsRefused()
{
    const QByteArray contents = "[General]\nNumber=7\n";
    writeFile(ini(), contents);
    handOver({ini(), m_folder->path()});
    const QByteArray folder = QFile::encodeName(m_folder->path());
    QCOMPARE(chmod(folder.constData(), 0555), 0);
    const Answer answer = asOrdinaryUser([&] { return writeIniFile(ini(), {{"Number", 8}}); });
    QCOMPARE(chmod(folder.constData(), 0700), 0);
    QCOMPARE(answer, Answer::No);
    QCOMPARE(contentsOf(ini()), contents);
    QCOMPARE(namesIn(m_folder->path()), QStringList{"ovmic.ini"});
}

void tst_IniFile::noFolderForTemporaryFilesIsNeeded()
{
    writeFile(ini(), "[General]\nNumber=7\n");
    const auto saveAndLoad = [&] {
        qputenv("TMPDIR", "/no such folder");
        return writeIniFile(ini(), {{"Text", "𠮷"}}) && read(ini(), "Number").toInt() == 7 &&
               read(ini(), "Text").toString() == QStringLiteral("𠮷");
    };
    QCOMPARE(inChild(saveAndLoad), Answer::Yes);
    QCOMPARE(namesIn(m_folder->path()), QStringList{"ovmic.ini"});
}

void tst_IniFile::fullDiskLeavesOldFile()
{
    QVERIFY(writeIniFile(in("complete.ini"), manyValues(1)));
    const qint64 size = QFileInfo(in("complete.ini")).size();
    QVERIFY(writeIniFile(ini(), manyValues(0)));
    const QByteArray old = contentsOf(ini());
    const QStringList before = namesIn(m_folder->path());
    const auto write = [&] { return writeIniFile(ini(), manyValues(1)); };
    QVERIFY(old.size() < size / 2);
    for (const qint64 room : {qint64(0), qint64(1), qint64(4096), qint64(old.size()), size / 2, size - 1}) {
        QCOMPARE(withFileSizeLimit(static_cast<rlim_t>(room), write), Answer::No);
        QCOMPARE(contentsOf(ini()), old);
        QCOMPARE(namesIn(m_folder->path()), before);
    }
    QCOMPARE(withFileSizeLimit(static_cast<rlim_t>(size), write), Answer::Yes);
    QCOMPARE(contentsOf(ini()), contentsOf(in("complete.ini")));
}

void tst_IniFile::fullSmallDiskLeavesOldFile()
{
    const SmallDisk disk(m_folder->path(), "64k");
    if (!disk.isMounted()) {
        qInfo("only the file size limit was tested: no small disk can be mounted here");
        return;
    }
    qInfo("tested on a mounted small disk too");
    QVERIFY(writeIniFile(ini(), manyValues(0)));
    const QByteArray old = contentsOf(ini());
    QVERIFY(!writeIniFile(ini(), manyValues(1))); // 75 kB
    QCOMPARE(contentsOf(ini()), old);
    const auto writeThere = [&] { // everything on the small disk, the work folder too
        qputenv("TMPDIR", QFile::encodeName(m_folder->path()));
        return writeIniFile(ini(), manyValues(1));
    };
    QCOMPARE(inChild(writeThere), Answer::No);
    QCOMPARE(contentsOf(ini()), old);
    QCOMPARE(namesIn(m_folder->path()), QStringList{"ovmic.ini"});
}

void tst_IniFile::killedProcessLeavesWholeFile()
{
    QVERIFY(QDir(m_folder->path()).mkdir("work"));
    Rng rng(20261122);
    const auto writeTwice = [&] {
        qputenv("TMPDIR",
                QFile::encodeName(in("work"))); // what a killed process leaves behind goes with the test
        writeIniFile(ini(), manyValues(0));
        writeIniFile(ini(), manyValues(1));
    };
    const auto within = durationOf(writeTwice);
    for (int i = 0; i < 60; ++i) {
        QVERIFY(killedInTheMiddle(writeTwice, within, rng));
        QVERIFY2(holds(ini(), manyValues(0)) || holds(ini(), manyValues(1)),
                 contentsOf(ini()).right(80).constData());
    }
}

void tst_IniFile::twoWritersLeaveOneWholeFile()
{
    const auto writer = [&](int set) {
        return [this, set] {
            bool written = true;
            for (int i = 0; i < 6; ++i)
                written = writeIniFile(ini(), manyValues(set)) && written;
            return written;
        };
    };
    const auto both = [&] {
        Answer other = Answer::Crashed;
        std::thread second([&] { other = inChild(writer(1)); });
        const Answer own = inChild(writer(0));
        second.join();
        return own == Answer::Yes && other == Answer::Yes;
    };
    QVERIFY(both());
    QVERIFY(holds(ini(), manyValues(0)) || holds(ini(), manyValues(1)));
    QCOMPARE(namesIn(m_folder->path()), QStringList{"ovmic.ini"});
}

void tst_IniFile::littleMemoryIsEnoughOrLeavesTheFile()
{
    const auto write = [this](rlim_t bytes) {
        return inChild([&] {
            const MemoryLimit limit(unlessSanitized(bytes));
            return writeIniFile(ini(), {{"Radius", 7}});
        });
    };
    writeFile(ini(), "[General]\nRadius=1\n");
    QCOMPARE(write(4 * mebibyte), Answer::Yes);
    QCOMPARE(valueIn(contentsOf(ini()), "Radius"), QByteArray("7"));
    // The values of another program, too many for the memory; at one moment or another it is not enough.
    const QByteArray large = "[General]\n" + QByteArray("Key=0123456789\n").repeated(2000000);
    for (const rlim_t megabytes : {1, 30, 60, 90, 120}) {
        writeFile(ini(), large);
        const Answer answer = write(megabytes * mebibyte);
        QVERIFY2(answer != Answer::Crashed, qPrintable(QString::number(megabytes)));
        QVERIFY((answer == Answer::No) == (contentsOf(ini()) == large));
    }
}

QTEST_GUILESS_MAIN(tst_IniFile)
#include "tst_inifile.moc"
