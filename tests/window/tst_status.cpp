#include "status.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QtTest>

#include <limits>

/// The progress dialog as the batch run uses it, and the Stop button as a user does.
class tst_Status : public QObject
{
    Q_OBJECT

private slots:
    void form_isAsTheRunExpectsIt()
    {
        const Status status;
        QCOMPARE(status.objectName(), QStringLiteral("Status"));
        QCOMPARE(status.windowTitle(), QStringLiteral("Dialog"));
        QCOMPARE(status.size(), QSize(400, 110));
        QVERIFY(!status.isModal());
        QCOMPARE(stopButton(status)->text(), QStringLiteral("中止"));
        QCOMPARE(bar(status)->value(), 24);
        QCOMPARE(bar(status)->minimum(), 0);
        QCOMPARE(bar(status)->maximum(), 100);
        QCOMPARE(bar(status)->alignment(), Qt::AlignCenter);
        QCOMPARE(count(status)->text(), QString());
        QCOMPARE(count(status)->alignment(), Qt::AlignCenter);
        QVERIFY(!status.isStopped());
    }

    void everyWidgetHasItsOwnRoom()
    {
        const Status status;
        const QList<QWidget *> widgets =
            status.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(widgets.size(), 3);
        for (const QWidget *widget : widgets) {
            QVERIFY(status.rect().contains(widget->geometry()));
            for (const QWidget *other : widgets)
                QVERIFY(widget == other || !widget->geometry().intersects(other->geometry()));
        }
    }

    void setMax_putsTheBarBackToZero()
    {
        Status status;
        status.setMax(12);
        QCOMPARE(bar(status)->value(), 0);
        QCOMPARE(bar(status)->minimum(), 0);
        QCOMPARE(bar(status)->maximum(), 100);
        QCOMPARE(count(status)->text(), QString());
    }

    void setCur_showsCountAndTruncatedPercentage_data()
    {
        QTest::addColumn<int>("maximum");
        QTest::addColumn<int>("current");
        QTest::addColumn<QString>("count");
        QTest::addColumn<int>("percentage");

        QTest::newRow("three of twelve") << 12 << 3 << "3 / 12" << 25;
        QTest::newRow("one of three is cut off, not rounded") << 3 << 1 << "1 / 3" << 33;
        QTest::newRow("two of three is cut off, not rounded") << 3 << 2 << "2 / 3" << 66;
        QTest::newRow("29 of 100 lies just below 29 percent") << 100 << 29 << "29 / 100" << 28;
        QTest::newRow("the last one") << 7 << 7 << "7 / 7" << 100;
        QTest::newRow("none yet") << 7 << 0 << "0 / 7" << 0;
        QTest::newRow("largest int") << 2147483647 << 2147483647 << "2147483647 / 2147483647" << 100;
    }

    void setCur_showsCountAndTruncatedPercentage()
    {
        QFETCH(int, maximum);
        QFETCH(int, current);
        QFETCH(QString, count);
        QFETCH(int, percentage);

        Status status;
        status.setMax(maximum);
        status.setCur(current);
        QCOMPARE(this->count(status)->text(), count);
        QCOMPARE(bar(status)->value(), percentage);
    }

    void percentageThatIsNone_leavesTheBar_data()
    {
        QTest::addColumn<int>("maximum");
        QTest::addColumn<int>("current");

        QTest::newRow("zero of zero") << 0 << 0;
        QTest::newRow("one of zero") << 0 << 1;
        QTest::newRow("minus one of zero") << 0 << -1;
        QTest::newRow("beyond the total") << 10 << 11;
        QTest::newRow("far beyond the total") << 1 << std::numeric_limits<int>::max();
        QTest::newRow("before the first") << 10 << -1;
    }

    void percentageThatIsNone_leavesTheBar()
    {
        QFETCH(int, maximum);
        QFETCH(int, current);

        Status status;
        status.setMax(10);
        status.setCur(5);
        QCOMPARE(bar(status)->value(), 50);
        status.setMax(maximum);
        status.setCur(current);
        QCOMPARE(bar(status)->value(), 0);
        QCOMPARE(count(status)->text(), QStringLiteral("%1 / %2").arg(current).arg(maximum));
    }

    void setStop_namesTheButton()
    {
        Status status;
        status.setStop(QStringLiteral("Halt"));
        QCOMPARE(stopButton(status)->text(), QStringLiteral("Halt"));
        QVERIFY(!status.isStopped());
    }

    void stopButton_setsTheFlag_andTheDialogStays()
    {
        Status status;
        show(status);
        QTest::mouseClick(stopButton(status), Qt::LeftButton);
        QVERIFY(status.isStopped());
        QVERIFY(status.isVisible());
        QTest::mouseClick(stopButton(status), Qt::LeftButton);
        QVERIFY(status.isStopped());
    }

    void escape_countsAsStop_andTheDialogStays()
    {
        Status status;
        show(status);
        QTest::keyClick(&status, Qt::Key_Escape);
        QVERIFY(status.isStopped());
        QVERIFY(status.isVisible());
    }

    void titleBar_countsAsStop_andTheDialogStays()
    {
        Status status;
        show(status);
        QVERIFY(!status.close());
        QVERIFY(status.isStopped());
        QVERIFY(status.isVisible());
    }

    void hidingAtTheEndOfTheRun_isNoStop()
    {
        Status status;
        show(status);
        status.hide();
        QVERIFY(!status.isVisible());
        QVERIFY(!status.isStopped());
    }

private:
    static void show(Status &status)
    {
        status.show();
        QVERIFY(QTest::qWaitForWindowExposed(&status));
    }
    static QPushButton *stopButton(const Status &status)
    {
        return status.findChild<QPushButton *>(QStringLiteral("btnStop"));
    }
    static QProgressBar *bar(const Status &status)
    {
        return status.findChild<QProgressBar *>(QStringLiteral("progStatus"));
    }
    static QLabel *count(const Status &status)
    {
        return status.findChild<QLabel *>(QStringLiteral("lblCount"));
    }
};

QTEST_MAIN(tst_Status)
#include "tst_status.moc"
