#include "modaldriver.h"
#include "option.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

namespace
{

const QString title = QStringLiteral("Orvane 画像変換ツール（設定）");
const QString rangeError = QStringLiteral("範囲内で入力して下さい");

const char *const lineEdits[] = {"lineDistance", "lineOutputSizeX", "lineOutputSizeY",
                                 "lineQuality",  "lineLongitude",   "lineColor",
                                 "lineSize",     "lineAzimuth",     "lineLatitude"};

template <typename Widget>
Widget *child(const Option &option, const char *name)
{
    auto *widget = option.findChild<Widget *>(QString::fromLatin1(name));
    if (!widget)
        qFatal("no widget %s", name);
    return widget;
}

QString text(const Option &option, const char *lineEdit)
{
    return child<QLineEdit>(option, lineEdit)->text();
}

void type(const Option &option, const char *lineEdit, const QString &text)
{
    auto *edit = child<QLineEdit>(option, lineEdit);
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

void press(const Option &option, const char *button)
{
    QTest::mouseClick(child<QPushButton>(option, button), Qt::LeftButton);
}

ModalDriver::Message rangeWarning()
{
    return {title, rangeError, QMessageBox::Warning, QMessageBox::Ok, QMessageBox::Ok};
}

/// A dialog with values inside every range, as the main window hands them over.
class FilledOption : public Option
{
public:
    FilledOption()
    {
        distance = 6.6;
        outputSizeX = 4096;
        outputSizeY = 2048;
        quality = 70;
        format = 1;
        penColor = QStringLiteral("#80ffaa00");
        penSize = 5;
        latitude = 12.5;
        longitude = -140.25;
        azimuth = 359.5;
        readShowString();
    }
};

} // namespace

class tst_OptionDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_folder.isValid()); }

    void constructor_setsDefaults()
    {
        const Option option;
        QCOMPARE(option.distance, 0.0);
        QCOMPARE(option.outputSizeX, 0);
        QCOMPARE(option.outputSizeY, 0);
        QCOMPARE(option.quality, 85);
        QCOMPARE(option.format, 0);
        QCOMPARE(option.penColor, QStringLiteral("#FFFF0000"));
        QCOMPARE(option.penSize, 3);
        QCOMPARE(option.latitude, 0.0);
        QCOMPARE(option.longitude, 0.0);
        QCOMPARE(option.azimuth, 0.0);
        QVERIFY(option.langFile.isEmpty());
        QVERIFY(option.showString.isEmpty());
    }

    void widgets_standInCreationOrder()
    {
        const Option option;
        QCOMPARE(option.objectName(), QStringLiteral("Option"));
        QStringList names;
        for (const QWidget *widget : option.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
            names += widget->objectName();
        const QStringList expected = {
            "label_1",   "lineDistance",  "label_2",      "lineOutputSizeX", "lineOutputSizeY", "btnDefault",
            "label_3",   "cbFormat",      "lineQuality",  "label_3_2",       "label_1_2",       "label_5",
            "label_5_2", "lineLongitude", "label_4",      "label_4_2",       "lineColor",       "lineSize",
            "label_5_3", "lineAzimuth",   "lineLatitude", "btnOk",           "btnCancel"};
        QCOMPARE(names, expected);
        QVERIFY(!option.layout());
    }

    void everyWidgetHasItsOwnRoom()
    {
        const Option option;
        const QList<QWidget *> widgets =
            option.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        for (const QWidget *widget : widgets) {
            QVERIFY2(option.rect().contains(widget->geometry()), qPrintable(widget->objectName()));
            for (const QWidget *other : widgets)
                QVERIFY2(widget == other || !widget->geometry().intersects(other->geometry()),
                         qPrintable(widget->objectName() + " " + other->objectName()));
        }
    }

    void tabKey_followsCreationOrder()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            QStringList names;
            for (int i = 0; i < 13; ++i) {
                names += dialog->focusWidget()->objectName();
                QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
            }
            QTest::keyClick(dialog, Qt::Key_Escape);
            const QStringList expected = {"lineDistance", "lineOutputSizeX", "lineOutputSizeY", "btnDefault",
                                          "cbFormat",     "lineQuality",     "lineLongitude",   "lineColor",
                                          "lineSize",     "lineAzimuth",     "lineLatitude",    "btnOk",
                                          "btnCancel"};
            QCOMPARE(names, expected);
        });
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void slots_standInMetaObjectOrder()
    {
        const QMetaObject &meta = Option::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names += QString::fromLatin1(meta.method(i).methodSignature());
        QCOMPARE(names,
                 (QStringList{"on_btnOk_clicked()", "on_btnCancel_clicked()", "on_btnDefault_clicked()"}));
    }

    // -- texts

    void builtInTexts_withoutLanguageFile()
    {
        Option option;
        option.langFile = m_folder.filePath(QStringLiteral("missing_lang.ini"));
        option.readShowString();
        QCOMPARE(option.windowTitle(), title);
        QCOMPARE(child<QLabel>(option, "label_1")->text(),
                 QStringLiteral("カメラの距離（単位：地球半径 1 - 100）"));
        QCOMPARE(child<QLabel>(option, "label_1_2")->text(),
                 QStringLiteral("1:地表\u30006.6:静止軌道\u3000100:平行投影"));
        QCOMPARE(child<QLabel>(option, "label_2")->text(),
                 QStringLiteral("画像変換後のピクセルサイズ\n(1024x1024 - 8192x8192)"));
        QCOMPARE(child<QLabel>(option, "label_3")->text(), QStringLiteral("画像形式"));
        QCOMPARE(child<QLabel>(option, "label_3_2")->text(), QStringLiteral("JPG画質 (1-100)"));
        QCOMPARE(child<QLabel>(option, "label_4")->text(), QStringLiteral("選択枠の色\n( #AARRGGBB )"));
        QCOMPARE(child<QLabel>(option, "label_4_2")->text(), QStringLiteral("選択枠の太さ\n(1 - 32)"));
        QCOMPARE(child<QLabel>(option, "label_5")->text(), QStringLiteral("中心緯度\n(-90 - +90)"));
        QCOMPARE(child<QLabel>(option, "label_5_2")->text(), QStringLiteral("中心経度\n(-180 - +180)"));
        QCOMPARE(child<QLabel>(option, "label_5_3")->text(), QStringLiteral("方位角\n(0 - 360)"));
        QCOMPARE(child<QPushButton>(option, "btnDefault")->text(), QStringLiteral("初期値"));
        QCOMPARE(child<QPushButton>(option, "btnOk")->text(), QStringLiteral("OK"));
        QCOMPARE(child<QPushButton>(option, "btnCancel")->text(), QStringLiteral("キャンセル"));
        QCOMPARE(formats(option), (QStringList{"JPG", "PNG"}));
        QCOMPARE(option.showString, (QMap<QString, QString>{{"error_mess", rangeError}}));
    }

    void languageFile_replacesEveryTextThatHasAKey()
    {
        const QVector<QPair<QByteArray, const char *>> captions = {
            {"lbl_1", "label_1"},     {"lbl_1_2", "label_1_2"},      {"lbl_2", "label_2"},
            {"lbl_3", "label_3"},     {"lbl_3_2", "label_3_2"},      {"lbl_4", "label_4"},
            {"lbl_4_2", "label_4_2"}, {"lbl_5", "label_5"},          {"lbl_5_2", "label_5_2"},
            {"lbl_5_3", "label_5_3"}, {"btn_default", "btnDefault"}, {"btn_cancel", "btnCancel"}};
        QByteArray lines = "[config]\n";
        for (const auto &caption : captions)
            lines += caption.first + "=\"new " + caption.first + "\"\n";
        lines += "title=\"new title\"\nerror_mess=\"new error\"\nbtn_ok=\"never used\"\n";

        Option option;
        option.langFile = languageFile(lines);
        option.readShowString();
        for (const auto &caption : captions)
            QCOMPARE(child<QWidget>(option, caption.second)->property("text").toString(),
                     QString::fromLatin1("new " + caption.first));
        QCOMPARE(option.windowTitle(), QStringLiteral("new title"));
        QCOMPARE(option.showString, (QMap<QString, QString>{{"error_mess", "new error"}}));
        QCOMPARE(child<QPushButton>(option, "btnOk")->text(), QStringLiteral("OK"));
        QCOMPARE(formats(option), (QStringList{"JPG", "PNG"}));
    }

    void otherGroupsOfTheLanguageFile_changeNothing()
    {
        Option option;
        option.langFile = languageFile("[main]\nlbl_1=main\ntitle=main\n[batch_convert]\nlbl_1=batch\n");
        option.readShowString();
        QCOMPARE(child<QLabel>(option, "label_1")->text(),
                 QStringLiteral("カメラの距離（単位：地球半径 1 - 100）"));
        QCOMPARE(option.windowTitle(), title);
    }

    void emptyTexts_leaveTheBuiltInOnes()
    {
        Option option;
        option.langFile = languageFile("[config]\nlbl_3=\ntitle=\"\"\nerror_mess=\n");
        option.readShowString();
        QCOMPARE(child<QLabel>(option, "label_3")->text(), QStringLiteral("画像形式"));
        QCOMPARE(option.windowTitle(), title);
        QCOMPARE(option.showString.value("error_mess"), rangeError);
    }

    void escapedLineBreak_makesTwoLines()
    {
        Option option;
        option.langFile = languageFile("[config]\nlbl_2=\"\xe5\xb9\x85\\nheight\"\n");
        option.readShowString();
        QCOMPARE(child<QLabel>(option, "label_2")->text(), QStringLiteral("幅\nheight"));
    }

    void languageFile_isReadAgainForEveryDialog()
    {
        Option first;
        first.langFile = languageFile("[config]\ntitle=first\n");
        first.readShowString();
        QCOMPARE(first.windowTitle(), QStringLiteral("first"));

        Option second;
        second.langFile = languageFile("[config]\ntitle=second one\n");
        second.readShowString();
        QCOMPARE(second.windowTitle(), QStringLiteral("second one"));
    }

    // -- filling the fields

    void exec_fillsTheFields()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            QTest::keyClick(dialog, Qt::Key_Escape);
            QCOMPARE(text(*dialog, "lineDistance"), QStringLiteral("6.6"));
            QCOMPARE(text(*dialog, "lineOutputSizeX"), QStringLiteral("4096"));
            QCOMPARE(text(*dialog, "lineOutputSizeY"), QStringLiteral("2048"));
            QCOMPARE(text(*dialog, "lineQuality"), QStringLiteral("70"));
            QCOMPARE(child<QComboBox>(*dialog, "cbFormat")->currentText(), QStringLiteral("PNG"));
            QCOMPARE(text(*dialog, "lineSize"), QStringLiteral("5"));
            QCOMPARE(text(*dialog, "lineColor"), QStringLiteral("#80FFAA00"));
            QCOMPARE(text(*dialog, "lineLatitude"), QStringLiteral("12.5"));
            QCOMPARE(text(*dialog, "lineLongitude"), QStringLiteral("-140.25"));
            QCOMPARE(text(*dialog, "lineAzimuth"), QStringLiteral("359.5"));
        });
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void realNumbers_showSixDigits_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("shown");

        QTest::newRow("geostationary orbit") << 6.6 << "6.6";
        QTest::newRow("whole number without a point") << 100.0 << "100";
        QTest::newRow("six digits, rounded") << 35.67621234 << "35.6762";
        QTest::newRow("rounded across a range") << 99.99999999 << "100";
        QTest::newRow("seven digits before the point") << 1234567.0 << "1.23457e+06";
        QTest::newRow("minus zero without its sign") << -0.0 << "0";
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << "nan";
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "inf";
    }

    void realNumbers_showSixDigits()
    {
        QFETCH(double, value);
        QFETCH(QString, shown);

        FilledOption option;
        option.distance = option.latitude = option.longitude = option.azimuth = value;
        ModalDriver driver;
        driver.expect<Option>([&](Option *dialog) {
            QTest::keyClick(dialog, Qt::Key_Escape);
            for (const char *field : {"lineDistance", "lineLatitude", "lineLongitude", "lineAzimuth"})
                QCOMPARE(text(*dialog, field), shown);
        });
        option.exec();
        QVERIFY(driver.done());
    }

    void hostileMembers_areShownAsTheyAre()
    {
        FilledOption option;
        option.outputSizeX = std::numeric_limits<int>::max();
        option.outputSizeY = std::numeric_limits<int>::min();
        option.format = 99;
        option.penColor = QStringLiteral("<b>not a colour</b>");
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            QTest::keyClick(dialog, Qt::Key_Escape);
            QCOMPARE(text(*dialog, "lineOutputSizeX"), QStringLiteral("2147483647"));
            QCOMPARE(text(*dialog, "lineOutputSizeY"), QStringLiteral("-2147483648"));
            QCOMPARE(text(*dialog, "lineColor"), QStringLiteral("<B>NOT A COLOUR</B>"));
        });
        option.exec();
        QVERIFY(driver.done());
    }

    // -- accepting

    void ok_takesEveryField()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineDistance", "42.195");
            type(*dialog, "lineOutputSizeX", "1500");
            type(*dialog, "lineOutputSizeY", "1600");
            type(*dialog, "lineQuality", "99");
            QTest::keyClick(child<QComboBox>(*dialog, "cbFormat"), Qt::Key_Up);
            type(*dialog, "lineSize", "7");
            type(*dialog, "lineColor", "#1234abCD");
            type(*dialog, "lineLatitude", "-89.75");
            type(*dialog, "lineLongitude", "1e2");
            type(*dialog, "lineAzimuth", "0.5");
            press(*dialog, "btnOk");
        });
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(option.distance, 42.195);
        QCOMPARE(option.outputSizeX, 1500);
        QCOMPARE(option.outputSizeY, 1600);
        QCOMPARE(option.quality, 99);
        QCOMPARE(option.format, 0);
        QCOMPARE(option.penSize, 7);
        QCOMPARE(option.penColor, QStringLiteral("#1234abCD"));
        QCOMPARE(option.latitude, -89.75);
        QCOMPARE(option.longitude, 100.0);
        QCOMPARE(option.azimuth, 0.5);
    }

    void untouchedFields_areRoundedToWhatTheyShow()
    {
        FilledOption option;
        option.latitude = 35.67621234;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) { press(*dialog, "btnOk"); });
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(option.latitude, 35.6762);
    }

    void valueInRange_isAccepted_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QString>("typed");

        const auto rows = [](const char *field, std::initializer_list<const char *> values) {
            for (const char *value : values)
                QTest::addRow("%s %s", field, value) << QByteArray(field) << QString::fromUtf8(value);
        };
        rows("lineDistance", {"1", "100", "1.000", "1e2"});
        rows("lineOutputSizeX", {"1024", "8192", " 2048 ", "1025"});
        rows("lineOutputSizeY", {"1024", "8192"});
        rows("lineQuality", {"1", "100"});
        rows("lineSize", {"1", "32"});
        rows("lineLatitude", {"-90", "90", "+90", "abc", "6,6", "10 degrees"});
        rows("lineLongitude", {"-180", "180", "abc"});
        rows("lineAzimuth", {"0", "360", "-0", "abc"});
        rows("lineColor", {"red", "no colour at all", "#FFFF0000"});
    }

    void valueInRange_isAccepted()
    {
        QFETCH(QByteArray, field);
        QFETCH(QString, typed);

        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([&](Option *dialog) {
            type(*dialog, field, typed);
            press(*dialog, "btnOk");
        });
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
    }

    void unreadableAngle_countsAsZero()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineLatitude", "abc");
            type(*dialog, "lineLongitude", "");
            type(*dialog, "lineAzimuth", "6,6");
            press(*dialog, "btnOk");
        });
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(option.latitude, 0.0);
        QCOMPARE(option.longitude, 0.0);
        QCOMPARE(option.azimuth, 0.0);
    }

    void anyColourText_isTakenAsTyped()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineColor", " no Colour ");
            press(*dialog, "btnOk");
        });
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(option.penColor, QStringLiteral(" no Colour "));
    }

    // -- refusing

    void valueOutOfRange_isRefusedAndSelected_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QString>("typed");

        const auto rows = [](const char *field, std::initializer_list<const char *> values) {
            for (const char *value : values)
                QTest::addRow("%s %s", field, value) << QByteArray(field) << QString::fromUtf8(value);
        };
        rows("lineDistance", {"0.999", "100.001", "nan", "inf", "-inf", "abc", "1e400", "6,6"});
        rows("lineOutputSizeX", {"1023", "8193", "abc", "2048.5", "99999999999", "-2048", "0x800"});
        rows("lineOutputSizeY", {"1023", "8193", "abc"});
        rows("lineQuality", {"0", "101", "abc"});
        rows("lineSize", {"0", "33", "abc"});
        rows("lineLatitude", {"-90.001", "90.001", "nan", "inf"});
        rows("lineLongitude", {"-180.001", "180.001", "nan"});
        rows("lineAzimuth", {"-0.001", "360.001", "nan"});
    }

    void valueOutOfRange_isRefusedAndSelected()
    {
        QFETCH(QByteArray, field);
        QFETCH(QString, typed);

        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([&](Option *dialog) {
            type(*dialog, field, typed);
            press(*dialog, "btnOk");
            const bool stayed = dialog->isVisible();
            const auto selected = selection(*dialog);
            const QWidget *focus = dialog->focusWidget();
            QTest::keyClick(dialog, Qt::Key_Escape);
            QVERIFY(stayed);
            QCOMPARE(selected, (QStringList{QString::fromLatin1(field)}));
            QCOMPARE(focus->objectName(), QString::fromLatin1(field));
        });
        driver.expectMessage(rangeWarning());
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void emptyField_isRefusedAndFocused()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineQuality", "");
            press(*dialog, "btnOk");
            const QWidget *focus = dialog->focusWidget();
            QTest::keyClick(dialog, Qt::Key_Escape);
            QCOMPARE(focus->objectName(), QStringLiteral("lineQuality"));
        });
        driver.expectMessage(rangeWarning());
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void severalOutOfRange_areAllSelected_lastOneFocused_data()
    {
        QTest::addColumn<QStringList>("fields"); // in the order of the checks

        QTest::newRow("distance and azimuth") << QStringList{"lineDistance", "lineAzimuth"};
        QTest::newRow("pen size is checked after quality") << QStringList{"lineQuality", "lineSize"};
        QTest::newRow("longitude is checked after latitude") << QStringList{"lineLatitude", "lineLongitude"};
        QTest::newRow("all eight") << QStringList{"lineDistance",  "lineOutputSizeX", "lineOutputSizeY",
                                                  "lineQuality",   "lineSize",        "lineLatitude",
                                                  "lineLongitude", "lineAzimuth"};
    }

    void severalOutOfRange_areAllSelected_lastOneFocused()
    {
        QFETCH(QStringList, fields);

        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([&](Option *dialog) {
            for (const QString &field : fields)
                type(*dialog, field.toLatin1(), "-1000");
            press(*dialog, "btnOk");
            QStringList expected = fields;
            expected.sort();
            const QStringList selected = selection(*dialog);
            const QWidget *focus = dialog->focusWidget();
            QApplication::setActiveWindow(nullptr);
            QApplication::setActiveWindow(dialog); // as a desktop does when the warning has gone
            passTimersOfNoTime();
            const QStringList selectedLater = selection(*dialog);
            QTest::keyClick(dialog, Qt::Key_Escape);
            QCOMPARE(selected, expected);
            QCOMPARE(selectedLater, expected);
            QCOMPARE(focus->objectName(), fields.last());
        });
        driver.expectMessage(rangeWarning()); // one box for all of them
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void refusal_canBeCorrected()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineQuality", "101");
            press(*dialog, "btnOk");
            QTest::keyClicks(dialog->focusWidget(), "33"); // replaces the selected text
            press(*dialog, "btnOk");
        });
        driver.expectMessage(rangeWarning());
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(option.quality, 33);
    }

    void refusedValues_stayInTheMembers_andAreShownAgain()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineQuality", "101");
            type(*dialog, "lineSize", "9");
            press(*dialog, "btnOk");
            type(*dialog, "lineQuality", "50"); // not taken any more
            press(*dialog, "btnCancel");
        });
        driver.expectMessage(rangeWarning());
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QCOMPARE(option.quality, 101);
        QCOMPARE(option.penSize, 9);

        driver.expect<Option>([](Option *dialog) {
            QTest::keyClick(dialog, Qt::Key_Escape);
            QCOMPARE(text(*dialog, "lineQuality"), QStringLiteral("101"));
            QCOMPARE(text(*dialog, "lineSize"), QStringLiteral("9"));
        });
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void warning_hasTheTextsOfTheLanguageFile()
    {
        FilledOption option;
        option.langFile = languageFile("[config]\ntitle=\"Options\"\nerror_mess=\"Out of range\"\n");
        option.readShowString();
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineQuality", "0");
            press(*dialog, "btnOk");
            QTest::keyClick(dialog, Qt::Key_Escape);
        });
        driver.expectMessage(
            {"Options", "Out of range", QMessageBox::Warning, QMessageBox::Ok, QMessageBox::Ok});
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    // -- default values

    void defaultsThenCancel_leaveTheMembers()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            press(*dialog, "btnDefault");
            press(*dialog, "btnCancel");
        });
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(option.distance, 6.6);
        QCOMPARE(option.outputSizeX, 4096);
        QCOMPARE(option.penColor, QStringLiteral("#80ffaa00"));
        QCOMPARE(option.azimuth, 359.5);
    }

    void defaultsThenOk_setEveryMember()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            press(*dialog, "btnDefault");
            const QString shownDistance = text(*dialog, "lineDistance");
            const QString shownColour = text(*dialog, "lineColor");
            press(*dialog, "btnOk");
            QCOMPARE(shownDistance, QStringLiteral("100"));
            QCOMPARE(shownColour, QStringLiteral("#FFFF0000"));
        });
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(option.distance, 100.0);
        QCOMPARE(option.outputSizeX, 2048);
        QCOMPARE(option.outputSizeY, 1024);
        QCOMPARE(option.format, 0);
        QCOMPARE(option.quality, 85);
        QCOMPARE(option.penSize, 3);
        QCOMPARE(option.penColor, QStringLiteral("#FFFF0000"));
        QCOMPARE(option.latitude, 0.0);
        QCOMPARE(option.longitude, 0.0);
        QCOMPARE(option.azimuth, 0.0);
    }

    // -- the Return key

    void returnInAnyLineEdit_cancels_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<int>("key");

        for (const char *field : lineEdits) {
            QTest::addRow("Return in %s", field) << QByteArray(field) << int(Qt::Key_Return);
            QTest::addRow("Enter in %s", field) << QByteArray(field) << int(Qt::Key_Enter);
        }
    }

    void returnInAnyLineEdit_cancels()
    {
        QFETCH(QByteArray, field);
        QFETCH(int, key);

        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([&](Option *dialog) {
            type(*dialog, field, "17");
            QTest::keyClick(child<QLineEdit>(*dialog, field), static_cast<Qt::Key>(key));
        });
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(option.distance, 6.6);
    }

    void returnAfterARefusedOk_cancels()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            type(*dialog, "lineQuality", "0");
            press(*dialog, "btnOk");
            QTest::keyClicks(dialog->focusWidget(), "50");
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        });
        driver.expectMessage(rangeWarning());
        QCOMPARE(option.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(option.quality, 0);
    }

    void returnOnAButton_pressesThatButton()
    {
        FilledOption option;
        ModalDriver driver;
        driver.expect<Option>([](Option *dialog) {
            auto *defaults = child<QPushButton>(*dialog, "btnDefault");
            defaults->setFocus();
            QTest::keyClick(defaults, Qt::Key_Return);
            auto *ok = child<QPushButton>(*dialog, "btnOk");
            ok->setFocus();
            QTest::keyClick(ok, Qt::Key_Return);
        });
        QCOMPARE(option.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(option.distance, 100.0);
    }

private:
    static QStringList formats(const Option &option)
    {
        const auto *box = child<QComboBox>(option, "cbFormat");
        QStringList items;
        for (int i = 0; i < box->count(); ++i)
            items += box->itemText(i);
        return items;
    }

    /// Lets timers of no time fire, those that they start, and so on for a few rounds.
    static void passTimersOfNoTime()
    {
        for (int round = 0; round < 5; ++round) {
            QEventLoop loop;
            QTimer::singleShot(0, &loop, &QEventLoop::quit);
            loop.exec();
        }
    }

    static QStringList selection(const Option &option)
    {
        QStringList names;
        for (const QLineEdit *edit : option.findChildren<QLineEdit *>()) {
            if (!edit->text().isEmpty() && edit->selectedText() == edit->text())
                names += edit->objectName();
        }
        names.sort();
        return names;
    }

    QString languageFile(const QByteArray &contents)
    {
        QFile file(m_folder.filePath(QStringLiteral("tst_lang.ini")));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("cannot write %s", qUtf8Printable(file.fileName()));
        return file.fileName();
    }

    QTemporaryDir m_folder;
};

QTEST_MAIN(tst_OptionDialog)
#include "tst_optiondialog.moc"
