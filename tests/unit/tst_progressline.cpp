#include "progressline.h"

#include <QtTest>

class tst_ProgressLine : public QObject
{
    Q_OBJECT

private slots:
    void text_data();
    void text();
};

void tst_ProgressLine::text_data()
{
    QTest::addColumn<int>("all");
    QTest::addColumn<int>("done");
    QTest::addColumn<int>("skipped");
    QTest::addColumn<int>("failed");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");
    QTest::newRow("at the beginning") << 100 << 0 << 0 << 0 << 0.0 << "0 of 100";
    QTest::newRow("nothing finished yet") << 100 << 0 << 0 << 0 << 9.0 << "0 of 100";
    QTest::newRow("in the middle") << 100 << 40 << 0 << 0 << 20.0
                                   << "40 of 100, 2.0 photographs/s, 0:30 left";
    QTest::newRow("with failures") << 100 << 38 << 0 << 2 << 20.0
                                   << "40 of 100, 2 failed, 2.0 photographs/s, 0:30 left";
    QTest::newRow("one has failed") << 100 << 39 << 0 << 1 << 20.0
                                    << "40 of 100, 1 failed, 2.0 photographs/s, 0:30 left";
    QTest::newRow("what was there says nothing about the rest")
        << 100 << 60 << 50 << 0 << 20.0 << "60 of 100, 0.5 photographs/s, 1:20 left";
    QTest::newRow("only passed over so far") << 100 << 50 << 50 << 0 << 1.0 << "50 of 100";
    QTest::newRow("hours") << 100000 << 10 << 0 << 0 << 10.0
                           << "10 of 100000, 1.0 photographs/s, 27:46:30 left";
    QTest::newRow("beyond the clock")
        << 2000000000 << 1 << 0 << 0 << 10.0 << "1 of 2000000000, 0.1 photographs/s, 99:59:59 left";
    QTest::newRow("quick") << 5000 << 2500 << 0 << 0 << 10.0 << "2500 of 5000, 250 photographs/s, 0:10 left";
    QTest::newRow("at the end") << 100 << 100 << 0 << 0 << 50.0 << "100 of 100, 2.0 photographs/s";
}

void tst_ProgressLine::text()
{
    QFETCH(int, all);
    QFETCH(int, done);
    QFETCH(int, skipped);
    QFETCH(int, failed);
    QFETCH(double, seconds);
    QFETCH(QString, expected);
    QCOMPARE(progressText({all, done, skipped, failed, seconds}), expected);
}

QTEST_GUILESS_MAIN(tst_ProgressLine)
#include "tst_progressline.moc"
