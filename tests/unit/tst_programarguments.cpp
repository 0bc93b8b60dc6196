#include "programarguments.h"

#include <QtTest>

/// What the arguments of the program mean.
class tst_ProgramArguments : public QObject
{
    Q_OBJECT

private slots:
    void onlyTheExactSwitchIsUnattended_data();
    void onlyTheExactSwitchIsUnattended();
    void photographsFollowNameAndSwitch_data();
    void photographsFollowNameAndSwitch();
};

void tst_ProgramArguments::onlyTheExactSwitchIsUnattended_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("unattended");
    QTest::newRow("no argument at all") << QStringList() << false;
    QTest::newRow("the name alone") << QStringList{"ovmic"} << false;
    QTest::newRow("the program is called /batch") << QStringList{"/batch"} << false;
    QTest::newRow("switch") << QStringList{"ovmic", "/batch"} << true;
    QTest::newRow("switch and photographs") << QStringList{"ovmic", "/batch", "a.png", "b.png"} << true;
    QTest::newRow("capitals") << QStringList{"ovmic", "/Batch", "a.png", "b.png"} << false;
    QTest::newRow("not first") << QStringList{"ovmic", "a.png", "/batch"} << false;
    QTest::newRow("longer") << QStringList{"ovmic", "/batch.png"} << false;
}

void tst_ProgramArguments::onlyTheExactSwitchIsUnattended()
{
    QFETCH(QStringList, arguments);
    QList<QByteArray> bytes;
    QVector<const char *> argv;
    for (const QString &argument : arguments)
        bytes.append(argument.toUtf8());
    for (const QByteArray &argument : qAsConst(bytes))
        argv.append(argument.constData());
    QTEST(isUnattended(argv.size(), argv.constData()), "unattended");
}

void tst_ProgramArguments::photographsFollowNameAndSwitch_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("unattended");
    QTest::addColumn<QStringList>("photographs");
    const QStringList two{"a.png", "b.png"};
    QTest::newRow("no argument at all") << QStringList() << false << QStringList();
    QTest::newRow("no argument at all, unattended") << QStringList() << true << QStringList();
    QTest::newRow("name") << QStringList{"ovmic"} << false << QStringList();
    QTest::newRow("name, unattended") << QStringList{"ovmic"} << true << QStringList();
    QTest::newRow("photographs") << (QStringList{"ovmic"} + two) << false << two;
    QTest::newRow("switch and photographs") << (QStringList{"ovmic", "/batch"} + two) << true << two;
    QTest::newRow("a hidden window drops the first, whatever it says")
        << (QStringList{"ovmic", "c.png"} + two) << true << two;
    QTest::newRow("a visible window takes the switch for a photograph")
        << QStringList{"ovmic", "/batch"} << false << QStringList{"/batch"};
}

void tst_ProgramArguments::photographsFollowNameAndSwitch()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, unattended);
    QTEST(photographsOf(arguments, unattended), "photographs");
}

QTEST_GUILESS_MAIN(tst_ProgramArguments)
#include "tst_programarguments.moc"
