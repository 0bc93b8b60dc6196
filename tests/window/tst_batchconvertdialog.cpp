#include "batchconvertdialog.h"
#include "modaldriver.h"
#include "taborder.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMetaMethod>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const QString title = QStringLiteral("Orvane 画像変換ツール（複数画像ファイル変換）");
const QString filesSelected = QStringLiteral(" 個のファイルが選択されました");

template <typename Widget>
Widget *child(const BatchConvertDialog &dialog, const char *name)
{
    auto *widget = dialog.findChild<Widget *>(QString::fromLatin1(name));
    if (!widget)
        qFatal("no widget %s", name);
    return widget;
}

void press(const BatchConvertDialog &dialog, const char *button)
{
    QTest::mouseClick(child<QAbstractButton>(dialog, button), Qt::LeftButton);
}

/// A click on the mark of a radio button or a check box; these are wider than their texts.
void mark(const BatchConvertDialog &dialog, const char *button)
{
    auto *widget = child<QAbstractButton>(dialog, button);
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, widget->height() / 2));
}

QString labelText(const BatchConvertDialog &dialog, const char *label)
{
    return child<QLabel>(dialog, label)->text();
}

bool checked(const BatchConvertDialog &dialog, const char *button)
{
    return child<QAbstractButton>(dialog, button)->isChecked();
}

/// A dialog with its texts, as the main window opens it.
class ReadyDialog : public BatchConvertDialog
{
public:
    ReadyDialog() { readShowString(); }
};

} // namespace

class tst_BatchConvertDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        QVERIFY(m_folder.isValid());
        for (const char *name : {"a.PNG", "b.jpg", "c.jpeg", "e.txt", ".hidden.png"})
            touch(path("photographs"), QString::fromLatin1(name));
        QVERIFY(QDir(path("photographs")).mkdir("d.png"));
        touch(path("others"), QStringLiteral("x.gif"));
        touch(path("others"), QStringLiteral("月 y.GIF"));
        touch(path("texts"), QStringLiteral("readme.txt"));
    }

    void constructor_startsEmpty()
    {
        const BatchConvertDialog dialog;
        QVERIFY(dialog.fileList.isEmpty());
        QVERIFY(dialog.outputFolder.isEmpty());
        QVERIFY(dialog.inputFolder.isEmpty());
        QVERIFY(dialog.langFile.isEmpty());
        QVERIFY(dialog.showString.isEmpty());
    }

    void form_hasItsSizeAndItsWidgetsInCreationOrder()
    {
        const BatchConvertDialog dialog;
        QCOMPARE(dialog.objectName(), QStringLiteral("BatchConvertDialog"));
        QCOMPARE(dialog.size(), QSize(489, 452));
        QStringList names;
        for (const QWidget *widget : dialog.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly))
            names += widget->objectName();
        const QStringList expected = {
            "btnSelectFiles",   "btnSelectFolder",   "label_2",        "label_4",    "btnOutputFolder",
            "labelSelectCount", "labelOutputFolder", "radioSortType2", "label_3",    "radioSortType1",
            "radioFilename1",   "label_5",           "radioFilename2", "btnConvert", "btnClose",
            "label_1",          "checkOpenFiler",    "checkOverwrite"};
        QCOMPARE(names, expected);
    }

    void tabGoesInReadingOrder()
    {
        const BatchConvertDialog dialog;
        QCOMPARE(tabOrder(child<QWidget>(dialog, "btnSelectFiles")),
                 (QStringList{"btnSelectFiles", "btnSelectFolder", "radioSortType1", "radioSortType2",
                              "btnOutputFolder", "radioFilename1", "radioFilename2", "checkOverwrite",
                              "checkOpenFiler", "btnConvert", "btnClose"}));
    }

    void everyWidgetHasItsOwnRoom()
    {
        const BatchConvertDialog dialog;
        const QList<QWidget *> widgets =
            dialog.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        for (const QWidget *widget : widgets) {
            QVERIFY2(dialog.rect().contains(widget->geometry()), qPrintable(widget->objectName()));
            for (const QWidget *other : widgets)
                QVERIFY2(widget == other || !widget->geometry().intersects(other->geometry()),
                         qPrintable(widget->objectName() + " " + other->objectName()));
        }
    }

    void form_checksNoRadioButton_butBothBoxes()
    {
        const BatchConvertDialog dialog;
        for (const char *radio : {"radioSortType1", "radioSortType2", "radioFilename1", "radioFilename2"})
            QVERIFY(!checked(dialog, radio));
        QVERIFY(checked(dialog, "checkOpenFiler"));
        QVERIFY(checked(dialog, "checkOverwrite"));
    }

    void radioButtons_excludeEachOtherInPairs()
    {
        const BatchConvertDialog dialog;
        const auto *sort = dialog.findChild<QButtonGroup *>(QStringLiteral("buttonGroup"));
        const auto *naming = dialog.findChild<QButtonGroup *>(QStringLiteral("buttonGroup_2"));
        QVERIFY(sort && naming);
        QCOMPARE(sort->buttons().size(), 2);
        QCOMPARE(naming->buttons().size(), 2);
        for (const char *radio : {"radioSortType1", "radioSortType2"})
            QCOMPARE(child<QRadioButton>(dialog, radio)->group(), sort);
        for (const char *radio : {"radioFilename1", "radioFilename2"})
            QCOMPARE(child<QRadioButton>(dialog, radio)->group(), naming);
    }

    void slots_standInMetaObjectOrder()
    {
        const QMetaObject &meta = BatchConvertDialog::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            names += QString::fromLatin1(meta.method(i).methodSignature());
        QCOMPARE(names, (QStringList{"on_btnSelectFiles_clicked()", "on_btnSelectFolder_clicked()",
                                     "on_btnOutputFolder_clicked()", "on_btnConvert_clicked()",
                                     "on_btnClose_clicked()"}));
    }

    // -- texts

    void builtInTexts_withoutLanguageFile()
    {
        BatchConvertDialog dialog;
        dialog.langFile = m_folder.filePath(QStringLiteral("missing_lang.ini"));
        dialog.readShowString();
        const QVector<QPair<const char *, QString>> captions = {
            {"label_1", "現在の中心点と半径で複数の画像を一括変換します"},
            {"label_2", "入力ファイル\u3000（複数ファイル、又はフォルダを選択）"},
            {"label_3", "入力ファイル\u3000（処理順番を選択）"},
            {"label_4", "出力ファイル"},
            {"label_5", "出力ファイル名"},
            {"btnSelectFiles", "ファイル選択"},
            {"btnSelectFolder", "フォルダ選択"},
            {"btnOutputFolder", "フォルダ選択"},
            {"btnConvert", "画像変換開始"},
            {"btnClose", "キャンセル"},
            {"radioSortType1", "ファイル名(昇順)"},
            {"radioSortType2", "更新日（降順）"},
            {"radioFilename1", "入力ファイル名と同じ"},
            {"radioFilename2", "連番ファイル：map_0, map_1, ..."},
            {"checkOverwrite", "出力ファイルを上書きする"},
            {"checkOpenFiler", "変換後、エクスプローラーで開く\u3000(Windowsのみ)"},
            {"labelSelectCount", ""},
            {"labelOutputFolder", ""}};
        for (const auto &caption : captions)
            QCOMPARE(child<QWidget>(dialog, caption.first)->property("text").toString(), caption.second);
        QCOMPARE(dialog.windowTitle(), title);
        const QMap<QString, QString> messages = {
            {"file_filter", "画像ファイル (*.gif *.png *.jpg)"},
            {"file_open_title", "変換するファイルを選択して下さい"},
            {"file_selected", filesSelected},
            {"folder_open_title", "変換するファイルが含まれるフォルダを選択して下さい"},
            {"output_open_title", "変換後のファイルを保存するフォルダを選択して下さい"}};
        QCOMPARE(dialog.showString, messages);
    }

    void languageFile_replacesEveryTextThatHasAKey()
    {
        const QVector<QPair<QByteArray, const char *>> captions = {{"lbl_1", "label_1"},
                                                                   {"lbl_2", "label_2"},
                                                                   {"lbl_3", "label_3"},
                                                                   {"lbl_4", "label_4"},
                                                                   {"lbl_5", "label_5"},
                                                                   {"btn_file", "btnSelectFiles"},
                                                                   {"btn_folder", "btnSelectFolder"},
                                                                   {"btn_output", "btnOutputFolder"},
                                                                   {"btn_convert", "btnConvert"},
                                                                   {"btn_cancel", "btnClose"},
                                                                   {"btn_sort1", "radioSortType1"},
                                                                   {"btn_sort2", "radioSortType2"},
                                                                   {"btn_filename1", "radioFilename1"},
                                                                   {"btn_filename2", "radioFilename2"},
                                                                   {"chk_overwrite", "checkOverwrite"},
                                                                   {"chk_open_filer", "checkOpenFiler"}};
        QByteArray lines = "[batch_convert]\ntitle=\"new title\"\n";
        for (const auto &caption : captions)
            lines += caption.first + "=\"new " + caption.first + "\"\n";
        const QByteArrayList messages = {"file_filter", "file_open_title", "file_selected",
                                         "folder_open_title", "output_open_title"};
        for (const QByteArray &message : messages)
            lines += message + "=\"new " + message + "\"\n";

        BatchConvertDialog dialog;
        dialog.langFile = languageFile(lines);
        dialog.readShowString();
        for (const auto &caption : captions)
            QCOMPARE(child<QWidget>(dialog, caption.second)->property("text").toString(),
                     QString::fromLatin1("new " + caption.first));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("new title"));
        QCOMPARE(dialog.showString.size(), messages.size());
        for (const QByteArray &message : messages)
            QCOMPARE(dialog.showString.value(QString::fromLatin1(message)),
                     QString::fromLatin1("new " + message));
    }

    void otherGroupsAndEmptyTexts_leaveTheBuiltInOnes()
    {
        BatchConvertDialog dialog;
        dialog.langFile = languageFile("[main]\nlbl_1=main\ntitle=main\n[batch_convert]\nlbl_4=\nfile_filter="
                                       "\"\"\n[config]\nlbl_5=config\n");
        dialog.readShowString();
        QCOMPARE(labelText(dialog, "label_1"),
                 QStringLiteral("現在の中心点と半径で複数の画像を一括変換します"));
        QCOMPARE(labelText(dialog, "label_4"), QStringLiteral("出力ファイル"));
        QCOMPARE(labelText(dialog, "label_5"), QStringLiteral("出力ファイル名"));
        QCOMPARE(dialog.windowTitle(), title);
        QCOMPARE(dialog.showString.value("file_filter"), QStringLiteral("画像ファイル (*.gif *.png *.jpg)"));
    }

    // -- pickers

    void pickersOpenAtThePictures_whileNoFolderIsKnown_data()
    {
        QTest::addColumn<bool>("hasPictures");
        QTest::addColumn<QString>("folder");
        QTest::newRow("pictures") << true << "Pictures";
        QTest::newRow("home") << false << ".";
    }

    void pickersOpenAtThePictures_whileNoFolderIsKnown()
    {
        QFETCH(bool, hasPictures);
        QFETCH(QString, folder);
        const QTemporaryDir home;
        if (hasPictures)
            QVERIFY(QDir(home.path()).mkdir("Pictures"));
        const QByteArray oldHome = qgetenv("HOME");
        qputenv("HOME", home.path().toUtf8());
        const QString wanted = QDir(home.filePath(folder)).canonicalPath();
        for (const char *button : {"btnSelectFiles", "btnSelectFolder", "btnOutputFolder"}) {
            ReadyDialog dialog;
            ModalDriver driver;
            driver.expect<QFileDialog>([&](QFileDialog *picker) {
                picker->reject();
                QCOMPARE(picker->directory().canonicalPath(), wanted);
            });
            press(dialog, button);
            QVERIFY(driver.done());
        }
        qputenv("HOME", oldHome);
    }

    // -- showing the members

    void exec_showsCountFolderAndOptions()
    {
        ReadyDialog dialog;
        dialog.fileList = QStringList{"/in/a.png", "/in/b.png", "/in/c.png"};
        dialog.outputFolder = QStringLiteral("/out/<b>bold</b>/&月");
        dialog.overwrite = false;
        dialog.openFiler = true;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([](BatchConvertDialog *open) {
            QTest::keyClick(open, Qt::Key_Escape);
            QCOMPARE(labelText(*open, "labelSelectCount"), "3" + filesSelected);
            QCOMPARE(labelText(*open, "labelOutputFolder"), QStringLiteral("/out/<b>bold</b>/&月"));
            QCOMPARE(child<QLabel>(*open, "labelOutputFolder")->textFormat(), Qt::PlainText);
            QVERIFY(!checked(*open, "checkOverwrite"));
            QVERIFY(checked(*open, "checkOpenFiler"));
        });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

    void exec_checksTheRadioButtonsOfTheMembers_data()
    {
        QTest::addColumn<int>("sortType");
        QTest::addColumn<int>("nameType");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("file name, same name") << 0 << 0 << QStringList{"radioFilename1", "radioSortType1"};
        QTest::newRow("file name, numbered") << 0 << 1 << QStringList{"radioFilename2", "radioSortType1"};
        QTest::newRow("modification, same name") << 1 << 0 << QStringList{"radioFilename1", "radioSortType2"};
        QTest::newRow("modification, numbered") << 1 << 1 << QStringList{"radioFilename2", "radioSortType2"};
        QTest::newRow("unknown values check none") << 2 << -1 << QStringList{};
        QTest::newRow("huge values check none") << 2147483647 << -2147483647 - 1 << QStringList{};
    }

    void exec_checksTheRadioButtonsOfTheMembers()
    {
        QFETCH(int, sortType);
        QFETCH(int, nameType);
        QFETCH(QStringList, expected);

        ReadyDialog dialog;
        dialog.sortType = sortType;
        dialog.nameType = nameType;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            press(*open, "btnClose");
            QStringList names;
            for (const QRadioButton *radio : open->findChildren<QRadioButton *>()) {
                if (radio->isChecked())
                    names += radio->objectName();
            }
            names.sort();
            QCOMPARE(names, expected);
        });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(dialog.sortType, sortType); // with no button checked the value stays
        QCOMPARE(dialog.nameType, nameType);
    }

    // -- the ways out

    void convertAndClose_readTheChoices_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<int>("result");

        QTest::newRow("convert") << QByteArray("btnConvert") << int(QDialog::Accepted);
        QTest::newRow("close") << QByteArray("btnClose") << int(QDialog::Rejected);
    }

    void convertAndClose_readTheChoices()
    {
        QFETCH(QByteArray, button);
        QFETCH(int, result);

        ReadyDialog dialog;
        dialog.overwrite = false;
        dialog.openFiler = true;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            mark(*open, "radioSortType2");
            mark(*open, "radioFilename2");
            mark(*open, "checkOverwrite");
            mark(*open, "checkOpenFiler");
            press(*open, button);
        });
        QCOMPARE(dialog.exec(), result);
        QVERIFY(driver.done());
        QCOMPARE(dialog.sortType, 1);
        QCOMPARE(dialog.nameType, 1);
        QCOMPARE(dialog.overwrite, true);
        QCOMPARE(dialog.openFiler, false);
    }

    void convertWithoutFiles_isAccepted()
    {
        ReadyDialog dialog;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([](BatchConvertDialog *open) { press(*open, "btnConvert"); });
        QCOMPARE(dialog.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QVERIFY(dialog.fileList.isEmpty());
        QVERIFY(dialog.outputFolder.isEmpty());
    }

    void closingTheWindow_readsNoChoices_data()
    {
        QTest::addColumn<bool>("titleBar");

        QTest::newRow("title bar") << true;
        QTest::newRow("Esc") << false;
    }

    void closingTheWindow_readsNoChoices()
    {
        QFETCH(bool, titleBar);

        ReadyDialog dialog;
        dialog.overwrite = false;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            mark(*open, "radioSortType2");
            mark(*open, "radioFilename2");
            mark(*open, "checkOverwrite");
            if (titleBar)
                open->close();
            else
                QTest::keyClick(open, Qt::Key_Escape);
        });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(dialog.sortType, 0);
        QCOMPARE(dialog.nameType, 0);
        QCOMPARE(dialog.overwrite, false);
    }

    void returnKey_closesWithoutARun_andReadsTheChoices_data()
    {
        QTest::addColumn<QByteArray>("focus");

        QTest::newRow("right after opening") << QByteArray();
        for (const char *name :
             {"btnSelectFiles", "btnSelectFolder", "btnOutputFolder", "radioSortType1", "radioFilename2",
              "btnConvert", "btnClose", "checkOpenFiler", "checkOverwrite"})
            QTest::addRow("focus on %s", name) << QByteArray(name);
    }

    void returnKey_closesWithoutARun_andReadsTheChoices()
    {
        QFETCH(QByteArray, focus);

        ReadyDialog dialog;
        dialog.overwrite = false;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            child<QCheckBox>(*open, "checkOverwrite")->setChecked(true);
            if (!focus.isEmpty())
                child<QWidget>(*open, focus)->setFocus();
            QTest::keyClick(open->focusWidget(), Qt::Key_Return);
        });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done()); // no picker has opened
        QCOMPARE(dialog.overwrite, true);
    }

    // -- picking files

    void filePicker_isSetUp()
    {
        ReadyDialog dialog;
        dialog.inputFolder = path("photographs");
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([](BatchConvertDialog *open) {
            press(*open, "btnSelectFiles");
            press(*open, "btnClose");
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) {
            QTest::keyClick(picker, Qt::Key_Escape);
            QCOMPARE(picker->parentWidget(), &dialog);
            QCOMPARE(picker->windowTitle(), QStringLiteral("変換するファイルを選択して下さい"));
            QCOMPARE(picker->fileMode(), QFileDialog::ExistingFiles);
            QCOMPARE(picker->acceptMode(), QFileDialog::AcceptOpen);
            QCOMPARE(picker->nameFilters(), QStringList{QStringLiteral("画像ファイル (*.gif *.png *.jpg)")});
            QCOMPARE(picker->directory().absolutePath(), path("photographs"));
        });
        dialog.exec();
        QVERIFY(driver.done());
    }

    void pickedFiles_keepThePickersOrder_andMoveTheInputFolder()
    {
        const QStringList picked = {path("photographs/b.jpg"), path("photographs/a.PNG")};
        ReadyDialog dialog;
        dialog.inputFolder = path("others");
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            press(*open, "btnSelectFiles");
            const QString count = labelText(*open, "labelSelectCount");
            press(*open, "btnConvert");
            QCOMPARE(count, "2" + filesSelected);
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPaths(picker, picked); });
        QCOMPARE(dialog.exec(), int(QDialog::Accepted));
        QVERIFY(driver.done());
        QCOMPARE(dialog.fileList, picked);
        QCOMPARE(dialog.inputFolder, path("photographs"));
    }

    void pickingFilesTwice_replacesTheFirstSelection()
    {
        ReadyDialog dialog;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([](BatchConvertDialog *open) {
            press(*open, "btnSelectFiles");
            press(*open, "btnSelectFiles");
            const QString count = labelText(*open, "labelSelectCount");
            press(*open, "btnClose");
            QCOMPARE(count, "1" + filesSelected);
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) {
            pickPaths(picker, {path("photographs/a.PNG"), path("photographs/b.jpg")});
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPath(picker, path("others/x.gif")); });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(dialog.fileList, QStringList{path("others/x.gif")});
        QCOMPARE(dialog.inputFolder, path("others"));
    }

    // -- picking a folder

    void folderPicker_isSetUp()
    {
        ReadyDialog dialog;
        dialog.inputFolder = path("photographs");
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([](BatchConvertDialog *open) {
            press(*open, "btnSelectFolder");
            press(*open, "btnClose");
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) {
            QTest::keyClick(picker, Qt::Key_Escape);
            QCOMPARE(picker->parentWidget(), &dialog);
            QCOMPARE(picker->windowTitle(),
                     QStringLiteral("変換するファイルが含まれるフォルダを選択して下さい"));
            QCOMPARE(picker->fileMode(), QFileDialog::Directory);
            QCOMPARE(picker->directory().absolutePath(), path("photographs"));
        });
        dialog.exec();
        QVERIFY(driver.done());
    }

    void pickedFolder_givesItsPhotographs_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QStringList>("names");

        QTest::newRow("any letter case; no jpeg, no folder, no hidden file")
            << "photographs" << QStringList{"a.PNG", "b.jpg"};
        QTest::newRow("blanks and Japanese") << "others" << QStringList{"x.gif", "月 y.GIF"};
        QTest::newRow("none") << "texts" << QStringList{};
    }

    void pickedFolder_givesItsPhotographs()
    {
        QFETCH(QString, folder);
        QFETCH(QStringList, names);

        ReadyDialog dialog;
        dialog.fileList = QStringList{"/earlier/choice.png"};
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            press(*open, "btnSelectFolder");
            const QString count = labelText(*open, "labelSelectCount");
            press(*open, "btnClose");
            QCOMPARE(count, QString::number(names.size()) + filesSelected);
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPath(picker, path(folder)); });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QStringList expected;
        for (const QString &name : names)
            expected += path(folder) + '/' + name;
        dialog.fileList.sort(); // the file system decides the order
        QCOMPARE(dialog.fileList, expected);
        QCOMPARE(dialog.inputFolder, path(folder));
    }

    // -- picking the output folder

    void outputPicker_isSetUp()
    {
        ReadyDialog dialog;
        dialog.inputFolder = path("photographs");
        dialog.outputFolder = path("others");
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([](BatchConvertDialog *open) {
            press(*open, "btnOutputFolder");
            press(*open, "btnClose");
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) {
            QTest::keyClick(picker, Qt::Key_Escape);
            QCOMPARE(picker->parentWidget(), &dialog);
            QCOMPARE(picker->windowTitle(),
                     QStringLiteral("変換後のファイルを保存するフォルダを選択して下さい"));
            QCOMPARE(picker->fileMode(), QFileDialog::Directory);
            QCOMPARE(picker->directory().absolutePath(), path("others"));
        });
        dialog.exec();
        QVERIFY(driver.done());
    }

    void pickedOutputFolder_isShownAndKept()
    {
        ReadyDialog dialog;
        dialog.inputFolder = path("photographs");
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            press(*open, "btnOutputFolder");
            const QString shown = labelText(*open, "labelOutputFolder");
            QTest::keyClick(open, Qt::Key_Escape);
            QCOMPARE(shown, path("others"));
        });
        driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPath(picker, path("others")); });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(dialog.outputFolder, path("others"));
        QCOMPARE(dialog.inputFolder, path("photographs"));
    }

    // -- cancelled and lost

    void cancelledPicker_changesNothing_data()
    {
        QTest::addColumn<QByteArray>("button");

        QTest::newRow("files") << QByteArray("btnSelectFiles");
        QTest::newRow("folder") << QByteArray("btnSelectFolder");
        QTest::newRow("output folder") << QByteArray("btnOutputFolder");
    }

    void cancelledPicker_changesNothing()
    {
        QFETCH(QByteArray, button);

        ReadyDialog dialog;
        dialog.fileList = QStringList{"/in/a.png", "/in/b.png"};
        dialog.inputFolder = path("photographs");
        dialog.outputFolder = path("texts");
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            press(*open, button);
            const QString count = labelText(*open, "labelSelectCount");
            const QString folder = labelText(*open, "labelOutputFolder");
            press(*open, "btnClose");
            QCOMPARE(count, "2" + filesSelected);
            QCOMPARE(folder, path("texts"));
        });
        driver.expect<QFileDialog>([](QFileDialog *picker) { QTest::keyClick(picker, Qt::Key_Escape); });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
        QCOMPARE(dialog.fileList, (QStringList{"/in/a.png", "/in/b.png"}));
        QCOMPARE(dialog.inputFolder, path("photographs"));
        QCOMPARE(dialog.outputFolder, path("texts"));
    }

    void startFolderThatIsGone_harmsNoPicker_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<QString>("folder");

        for (const char *button : {"btnSelectFiles", "btnSelectFolder", "btnOutputFolder"}) {
            QTest::addRow("%s, no folder yet", button) << QByteArray(button) << QString();
            QTest::addRow("%s, folder gone", button) << QByteArray(button) << path("gone");
            QTest::addRow("%s, no path at all", button) << QByteArray(button) << QStringLiteral(":/\n*?\"");
        }
    }

    void startFolderThatIsGone_harmsNoPicker()
    {
        QFETCH(QByteArray, button);
        QFETCH(QString, folder);

        ReadyDialog dialog;
        dialog.inputFolder = dialog.outputFolder = folder;
        ModalDriver driver;
        driver.expect<BatchConvertDialog>([&](BatchConvertDialog *open) {
            press(*open, button);
            press(*open, "btnClose");
        });
        driver.expect<QFileDialog>([](QFileDialog *picker) { QTest::keyClick(picker, Qt::Key_Escape); });
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QVERIFY(driver.done());
    }

private:
    QString path(const QString &name) const { return QDir(m_folder.path()).absoluteFilePath(name); }

    static void touch(const QString &folder, const QString &name)
    {
        QFile file(folder + '/' + name);
        if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly))
            qFatal("cannot create %s", qUtf8Printable(file.fileName()));
    }

    QString languageFile(const QByteArray &contents)
    {
        QFile file(path("tst_lang.ini"));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("cannot write %s", qUtf8Printable(file.fileName()));
        return file.fileName();
    }

    QTemporaryDir m_folder;
};

QTEST_MAIN(tst_BatchConvertDialog)
#include "tst_batchconvertdialog.moc"
