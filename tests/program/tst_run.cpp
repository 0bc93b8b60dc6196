// scripts/run, in a project folder of its own whose program is built already.

#include "files.h"
#include "patience.h"
#include "photographs.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_Run : public QObject
{
    Q_OBJECT

private slots:
    void debugLinesAreShownOnlyWhenAskedFor_data()
    {
        QTest::addColumn<QString>("rules");
        QTest::addColumn<bool>("shown");
        QTest::newRow("nothing said") << QString() << false;
        QTest::newRow("asked for") << "default.debug=true" << true;
    }

    void debugLinesAreShownOnlyWhenAskedFor()
    {
        QFETCH(QString, rules);
        QFETCH(bool, shown);
        const QTemporaryDir project;
        for (const char *folder : {"scripts", "build/release", "tools"})
            QVERIFY(QDir(project.path()).mkpath(folder));
        QVERIFY(QFile::copy(QFINDTESTDATA("../../scripts/run"), project.filePath("scripts/run")));
        QVERIFY(QFile::copy(OVMIC_PROGRAM, project.filePath("build/release/ovmic")));
        for (const char *tool : {"scripts/bootstrap", "tools/cmake"}) {
            QFile file(project.filePath(tool));
            writeFile(file.fileName(), "#!/bin/sh\n");
            QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        }
        writeFile(project.filePath("build/release/ovmic.ini"),
                  "[General]\nOutputSizeX=64\nOutputSizeY=32\nOutputFolder=" + project.path().toUtf8() +
                      '\n');
        const QString photograph = project.filePath("photo.png");
        QVERIFY(colourfulPhotograph({40, 30}).save(photograph));

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PATH", project.filePath("tools:") + environment.value("PATH"));
        environment.insert("DISPLAY", ":0"); // said to be there, and not used: the platform is another one
        environment.remove("QT_LOGGING_RULES");
        if (!rules.isNull())
            environment.insert("QT_LOGGING_RULES", rules);
        QProcess run;
        run.setProcessEnvironment(environment);
        run.start(project.filePath("scripts/run"), {"/batch", photograph, photograph});
        QVERIFY(run.waitForFinished(patienceMs));
        QCOMPARE(run.exitCode(), 0);
        QVERIFY(QFile::exists(project.filePath("photo.jpg")));
        QCOMPARE(run.readAllStandardError().contains("batchConvert"), shown);
    }
};

QTEST_GUILESS_MAIN(tst_Run)
#include "tst_run.moc"
