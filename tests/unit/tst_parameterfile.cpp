#include "parameterfile.h"

#include "faults.h"
#include "files.h"
#include "rng.h"

#include <QTemporaryDir>
#include <QtTest>

namespace
{

QString asText(const SelectionCircle &circle)
{
    return QStringLiteral("%1,%2,%3").arg(circle.centerX).arg(circle.centerY).arg(circle.radius);
}

} // namespace

class tst_ParameterFile : public QObject
{
    Q_OBJECT

private slots:
    void circle_data();
    void circle();
    void settingsTakeEveryValue();
    void settingsKeepDefaultsForWhatIsMissing();
    void settingsSayWhatIsWrong_data();
    void settingsSayWhatIsWrong();
    void unreadableFileIsRefused();
    void serializedValuesAreHarmless_data();
    void serializedValuesAreHarmless();
    void randomBytesAreHarmless();

private:
    QString written(const QByteArray &contents)
    {
        writeFile(m_folder.filePath("file.ini"), contents);
        return m_folder.filePath("file.ini");
    }

    QTemporaryDir m_folder;
};

void tst_ParameterFile::circle_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("problem");
    QTest::newRow("whole") << QByteArray("[General]\nCenterX=640\nCenterY=-2\nRadius=440\n") << "640,-2,440"
                           << "";
    QTest::newRow("zeros are values") << QByteArray("[General]\nCenterX=0\nCenterY=0\nRadius=0\n") << "0,0,0"
                                      << "";
    QTest::newRow("a key missing") << QByteArray("[General]\nCenterX=640\nRadius=440\n") << "640,0,440"
                                   << "CenterY is missing";
    QTest::newRow("in another group") << QByteArray("[circle]\nCenterX=1\nCenterY=1\nRadius=1\n") << "0,0,0"
                                      << "CenterX is missing";
    QTest::newRow("no number") << QByteArray("[General]\nCenterX=640\nCenterY=many\nRadius=440\n")
                               << "640,0,440"
                               << "CenterY=many is no whole number";
    QTest::newRow("a fraction") << QByteArray("[General]\nCenterX=3.7\nCenterY=1\nRadius=440\n") << "0,1,440"
                                << "CenterX=3.7 is no whole number";
    QTest::newRow("a list") << QByteArray("[General]\nCenterX=3,7\nCenterY=1\nRadius=440\n") << "0,1,440"
                            << "CenterX=3,7 is no whole number";
    QTest::newRow("too large for an int")
        << QByteArray("[General]\nCenterX=1\nCenterY=1\nRadius=99999999999\n") << "1,1,1215752191"
        << "Radius=99999999999 is no whole number";
    QTest::newRow("empty") << QByteArray() << "0,0,0"
                           << "CenterX is missing";
    QTest::newRow("a byte array") << QByteArray("[General]\nCenterX=@ByteArray(12)\nCenterY=1\nRadius=2\n")
                                  << "12,1,2"
                                  << "";
}

void tst_ParameterFile::circle()
{
    QFETCH(QByteArray, contents);
    QFETCH(QString, expected);
    QFETCH(QString, problem);
    const CircleFile file = readCircleFile(written(contents));
    QCOMPARE(file.problem, problem);
    QCOMPARE(asText(file.circle), expected);
}

void tst_ParameterFile::settingsTakeEveryValue()
{
    const MapSettings settings = readMapSettings(
        written("[General]\nCenterX=1\nCenterY=2\nRadius=3\nDistance=6.6\nOutputSizeX=64\nOutputSizeY=32\n"
                "OutputFormat=1\nOutputQuality=77\nLatitude=-30.5\nLongitude=140.7\nAzimuth=12.25\n"
                "LoadFileName=\"C:\\\\x41\\\"@Variant(.png\"\nPenColor=#ffff0000\n"));
    QCOMPARE(settings.problem, QString());
    const MapParameters &p = settings.parameters;
    QCOMPARE(asText({p.centerX, p.centerY, p.radius}), QString("1,2,3"));
    QCOMPARE(p.distance, 6.6);
    QCOMPARE(QSize(p.outputSizeX, p.outputSizeY), QSize(64, 32));
    QCOMPARE(settings.format, 1);
    QVERIFY(settings.namesFormat);
    QCOMPARE(settings.quality, 77);
    QCOMPARE(p.latitude, -30.5);
    QCOMPARE(p.longitude, 140.7);
    QCOMPARE(p.azimuth, 12.25);
    QVERIFY(p.lens == projection::Lens::Corrected);
}

void tst_ParameterFile::settingsKeepDefaultsForWhatIsMissing()
{
    const MapSettings settings = readMapSettings(written("[General]\nLatitude=5\n"));
    QCOMPARE(settings.problem, QString());
    QCOMPARE(settings.parameters.latitude, 5.0);
    QCOMPARE(settings.parameters.distance, 100.0);
    QCOMPARE(settings.parameters.outputSizeX, 2048);
    QCOMPARE(settings.quality, 85);
    QVERIFY(!settings.namesFormat);
}

void tst_ParameterFile::settingsSayWhatIsWrong_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("problem");
    QTest::newRow("no file") << m_folder.filePath("missing.ini") << QByteArray()
                             << "No such file or directory";
    QTest::newRow("a folder") << m_folder.path() << QByteArray() << "Not a regular file";
    QTest::newRow("a device without end") << "/dev/zero" << QByteArray() << "Not a regular file";
    QTest::newRow("none of the keys")
        << QString() << QByteArray("[General]\nPenSize=3\n") << "holds no settings of a map";
    QTest::newRow("a comma in a number")
        << QString() << QByteArray("[General]\nDistance=\"6,6\"\n") << "Distance=6,6 is no number";
    QTest::newRow("an empty value") << QString() << QByteArray("[General]\nOutputSizeX=\n")
                                    << "OutputSizeX= is no whole number";
    QTest::newRow("larger than any") << QString() << QByteArray(33 << 20, 'x') << "Too large";
}

void tst_ParameterFile::settingsSayWhatIsWrong()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, contents);
    QFETCH(QString, problem);
    QCOMPARE(readMapSettings(path.isEmpty() ? written(contents) : path).problem, problem);
}

void tst_ParameterFile::unreadableFileIsRefused()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("settings.ini");
    writeFile(path, "[General]\nDistance=6.6\n");
    QVERIFY(QFile::setPermissions(path, QFile::WriteOwner));
    handOver({folder.path(), path});
    const auto isDenied = [&] { return readMapSettings(path).problem == QLatin1String("Permission denied"); };
    QCOMPARE(asOrdinaryUser(isDenied), Answer::Yes);
}

void tst_ParameterFile::serializedValuesAreHarmless_data()
{
    // Each would end the program if the toolkit decoded it.
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("a polygon") << QByteArray(R"(@Variant(\0\0\0G\x10\0\0\0))");
    QTest::newRow("with its mark escaped") << QByteArray(R"(\x40Variant(\0\0\0G\x10\0\0\0))");
    QTest::newRow("with its mark as an octal number") << QByteArray(R"(\100Variant(\0\0\0G\x10\0\0\0))");
    QTest::newRow("with its mark beyond 16 bits") << QByteArray(R"(\x10040Variant(\0\0\0G\x10\0\0\0))");
}

void tst_ParameterFile::serializedValuesAreHarmless()
{
    QFETCH(QByteArray, value);
    const MapSettings settings =
        readMapSettings(written("[General]\nCenterX=7\nPenColor=" + value + "\nRadius=" + value + "\n"));
    QCOMPARE(settings.parameters.centerX, 7);
    QCOMPARE(settings.parameters.radius, 0); // absent, as in the window
    QCOMPARE(settings.problem, QString());
}

void tst_ParameterFile::randomBytesAreHarmless()
{
    Rng rng(3);
    const QList<QByteArray> pieces = {"[General]", "\n",      "CenterX=",   "Radius=", "@Variant(", "\\x",
                                      "\\",        "\"",      "1",          "\\0",     ",",         ";",
                                      "@",         "%",       "/",          "[",       "]",         "\xff",
                                      "=",         "Azimuth", "@DateTime(", "12",      "-1e9",      " "};
    int read = 0;
    for (int i = 0; i < 2000; ++i) {
        QByteArray contents = "[General]\nCenterX=12\n";
        for (int piece = 0; piece < 40; ++piece)
            contents += pieces.at(rng.between(0, pieces.size() - 1));
        read += readMapSettings(written(contents)).parameters.centerX == 12 ? 1 : 0;
    }
    QVERIFY2(read > 1000, qPrintable(QString::number(read)));
}

QTEST_GUILESS_MAIN(tst_ParameterFile)
#include "tst_parameterfile.moc"
