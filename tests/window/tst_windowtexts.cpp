#include "faults.h"
#include "freshwindow.h"
#include "modaldriver.h"
#include "previewwindow.h"

#include <QFile>

#include <functional>

namespace
{

/// One key of the language file's group "main": its built-in text, and where the window shows it.
struct Text {
    const char *key;
    const char *builtIn;
    std::function<QString(const TestWindow &)> shown;
};

Text label(const char *key, const char *builtIn, QLabel *Ui::MainWindow::*object)
{
    return {key, builtIn, [object](const TestWindow &window) { return (window.ui.get()->*object)->text(); }};
}

// MyImage and the line edits carry no texts of their own, so that labels and buttons are all there is.
Text button(const char *key, const char *builtIn, QPushButton *Ui::MainWindow::*object)
{
    return {key, builtIn, [object](const TestWindow &window) { return (window.ui.get()->*object)->text(); }};
}

Text menu(const char *key, const char *builtIn, QMenu *Ui::MainWindow::*object)
{
    return {key, builtIn, [object](const TestWindow &window) { return (window.ui.get()->*object)->title(); }};
}

Text action(const char *key, const char *builtIn, QAction *Ui::MainWindow::*object)
{
    return {key, builtIn, [object](const TestWindow &window) { return (window.ui.get()->*object)->text(); }};
}

Text message(const char *key, const char *builtIn)
{
    return {key, builtIn, [key](const TestWindow &window) { return window.showString.value(key); }};
}

using Form = Ui::MainWindow;

const QVector<Text> captions{
    label("lbl_1", "1) 画像を開く", &Form::label_1),
    label("lbl_2", "2) マウスで円の中心点・\n半径を選択、下記で微調整", &Form::label_2),
    label("lbl_3", "3) プレビューウィンドウで\n変換結果を確認", &Form::label_3),
    label("lbl_4", "4) 画像変換をし、ファイル\nへ保存", &Form::label_4),
    label("lbl_4_2", "保存ファイル名", &Form::label_4_2),
    button("btn_open", "開く", &Form::btnImageRead),
    button("btn_preview", "プレビュー", &Form::btnPreview),
    label("lbl_center", "中心点 (横, 縦)", &Form::label_center),
    label("lbl_radius", "半径", &Form::label_radius),
    button("btn_conv", "画像変換", &Form::btnConvert),
    button("btn_browse", "参照", &Form::btnBrowse),
    menu("menu_file", "ファイル", &Form::menuFile),
    menu("menu_show", "表示", &Form::menuView),
    action("cmd_load_param", "中心点、半径の読込...", &Form::actionLoad_Param),
    action("cmd_save_param", "中心点、半径の保存...", &Form::actionSave_Param),
    action("cmd_reset_param", "中心点、半径のリセット", &Form::actionParam_Reset),
    action("cmd_batch_conv", "複数画像ファイル変換", &Form::actionBatch_Convert),
    action("cmd_setting", "設定...", &Form::actionSetting),
    action("cmd_preview_window", "プレビューウィンドウ", &Form::actionPreview_Window),
    action("cmd_auto_preview", "オートプレビュー", &Form::actionAuto_Preview),
    action("cmd_auto_size", "自動拡大縮小", &Form::actionAuto_Size),
};

const QVector<Text> messages{
    message("title", "Orvane 画像変換ツール"),
    message("file_filter", "画像ファイル (*.gif *.png *.jpg)"),
    message("open_file", "表示したい画像ファイルを選択して下さい"),
    message("open_error", " は開けませんでした"),
    message("overwrite_question", " は既にファイルが存在します。\nファイルを上書きしますか？\n"
                                  "（上書する前のファイルには戻せません）"),
    message("saved_file", " へ保存されました"),
    message("inifile_filter", "選択範囲 (*.ini)"),
    message("save_inifile", "中心点、半径をファイルへ保存します、ファイル名を指定して下さい"),
    message("save_inifile_title", "中心点、半径の保存"),
    message("load_inifile", "中心点、半径をファイルから読込ます、ファイル名を指定して下さい"),
    message("batch_btn_stop", "中止"),
    message("batch_success", "複数画像ファイル変換が終了しました"),
    message("batch_fail1", "複数画像ファイル変換は失敗しました\n("),
    message("batch_fail2", "個成功, "),
    message("batch_fail3", "個失敗)"),
    message("save_image_filter", "画像ファイル (*."),
    message("save_image_title", "画像変換後のファイル名を指定して下さい"),
    message("preview_window_title", "Orvane 画像変換ツール（プレビュー）"),
};

const QVector<Text> allTexts = captions + messages;

QString replacementOf(const Text &text)
{
    return QStringLiteral(" new %1, 置換;\n\"%1\" ").arg(QString::fromLatin1(text.key));
}

// As somebody writes it who translates the program: quoted, with the escapes of ini files.
QByteArray line(const Text &text, QString value)
{
    value.replace('"', "\\\"").replace('\n', "\\n");
    return QByteArray(text.key) + "=\"" + value.toUtf8() + "\"\n";
}

QByteArray everyKeyReplaced()
{
    QByteArray lines;
    for (const Text &text : allTexts)
        lines += line(text, replacementOf(text));
    return lines;
}

} // namespace

class tst_WindowTexts : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formHasTheBuiltInCaptions();
    void withoutFileEverythingIsBuiltIn();
    void everyKeyIsReplaced();
    void oneKeyReplacesOneText_data();
    void oneKeyReplacesOneText();
    void contentsWithoutTextsGiveTheBuiltInOnes_data();
    void contentsWithoutTextsGiveTheBuiltInOnes();
    void messagesAreExactlyTheKnownKeys();
    void textsWithoutAKeyStay();
    void titlesOfTheWindows();
    void replacedTitleCarriesTheVersion();
    void lineBreaksAreEscaped();
    void handWrittenValuesAreRead_data();
    void handWrittenValuesAreRead();
    void fileIsReadEachTime();
    void dialogsReadTheFileEachTime_data();
    void dialogsReadTheFileEachTime();
    void everyWindowReadsItsOwnGroup();
    void fileIsNeverWritten();
    void unreadableFileGivesBuiltInTexts_data();
    void unreadableFileGivesBuiltInTexts();

private:
    void writeLanguageFile(const QByteArray &contents) const;
    void compareWithBuiltIn() const;

    std::unique_ptr<InstalledWindow> m_window;
};

void tst_WindowTexts::init()
{
    m_window = std::make_unique<InstalledWindow>();
}

void tst_WindowTexts::cleanup()
{
    m_window.reset();
}

void tst_WindowTexts::writeLanguageFile(const QByteArray &contents) const
{
    QFile file(m_window->langFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("cannot write the language file");
}

void tst_WindowTexts::compareWithBuiltIn() const
{
    for (const Text &text : allTexts)
        QCOMPARE(text.shown(*m_window), QString::fromUtf8(text.builtIn));
    QCOMPARE(m_window->windowTitle(), QString("Orvane 画像変換ツール 1.02"));
    QCOMPARE(m_window->previewWindow->windowTitle(), QString("Orvane 画像変換ツール（プレビュー）"));
}

void tst_WindowTexts::formHasTheBuiltInCaptions()
{
    for (const Text &text : captions)
        QCOMPARE(text.shown(*m_window), QString::fromUtf8(text.builtIn));
    QCOMPARE(m_window->windowTitle(), QString("Orvane 画像変換ツール"));
}

void tst_WindowTexts::withoutFileEverythingIsBuiltIn()
{
    m_window->readShowString();
    compareWithBuiltIn();
}

void tst_WindowTexts::everyKeyIsReplaced()
{
    writeLanguageFile("[main]\n" + everyKeyReplaced());
    m_window->readShowString();
    for (const Text &text : allTexts)
        QCOMPARE(text.shown(*m_window), replacementOf(text));
}

void tst_WindowTexts::oneKeyReplacesOneText_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < allTexts.size(); ++i)
        QTest::newRow(allTexts[i].key) << i;
}

void tst_WindowTexts::oneKeyReplacesOneText()
{
    QFETCH(int, index);
    writeLanguageFile("[main]\n" + line(allTexts[index], replacementOf(allTexts[index])));
    m_window->readShowString();
    for (const Text &text : allTexts)
        QCOMPARE(text.shown(*m_window),
                 &text == &allTexts[index] ? replacementOf(text) : QString::fromUtf8(text.builtIn));
}

void tst_WindowTexts::contentsWithoutTextsGiveTheBuiltInOnes_data()
{
    QByteArray emptyValues;
    for (const Text &text : allTexts)
        emptyValues += QByteArray(text.key) + "=\n";
    QByteArray quotedEmptyValues;
    for (const Text &text : allTexts)
        quotedEmptyValues += line(text, QString());
    QByteArray otherCase;
    for (const Text &text : allTexts)
        otherCase += QByteArray(text.key).toUpper() + "=loud\n";
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("group without keys") << QByteArray("[main]\n");
    QTest::newRow("empty values") << "[main]\n" + emptyValues;
    QTest::newRow("empty values in quotes") << "[main]\n" + quotedEmptyValues;
    QTest::newRow("keys of the batch dialog") << "[batch_convert]\n" + everyKeyReplaced();
    QTest::newRow("keys of the options dialog") << "[config]\n" + everyKeyReplaced();
    QTest::newRow("keys of no group") << everyKeyReplaced();
    QTest::newRow("keys of a group inside the group") << "[main/main]\n" + everyKeyReplaced();
    QTest::newRow("group in capitals") << "[MAIN]\n" + everyKeyReplaced();
    QTest::newRow("keys in capitals") << "[main]\n" + otherCase;
    QTest::newRow("unknown keys") << QByteArray("[main]\nlbl_9=x\nmenu_help=x\n");
}

void tst_WindowTexts::contentsWithoutTextsGiveTheBuiltInOnes()
{
    QFETCH(QByteArray, contents);
    writeLanguageFile(contents);
    m_window->readShowString();
    compareWithBuiltIn();
}

void tst_WindowTexts::messagesAreExactlyTheKnownKeys()
{
    QStringList keys;
    for (const Text &text : messages)
        keys.append(text.key);
    keys.sort();
    m_window->readShowString();
    QCOMPARE(QStringList(m_window->showString.keys()), keys);
}

void tst_WindowTexts::textsWithoutAKeyStay()
{
    writeLanguageFile("[main]\n" + everyKeyReplaced());
    m_window->readShowString();
    const auto &ui = *m_window->ui;
    QCOMPARE(ui.actionOption->text(), QString("Setting"));
    QCOMPARE(ui.actionExport->text(), QString("Save Setting"));
    QCOMPARE(ui.actionImport->text(), QString("Load Setting"));
    QCOMPARE(ui.actionDefault->text(), QString("Default Setting"));
    QCOMPARE(ui.actionOpen->text(), QString("Open..."));
    QCOMPARE(ui.actionConvert_Save->text(), QString("Convert"));
    for (const QPushButton *arrow :
         {ui.btnUp, ui.btnDown, ui.btnLeft, ui.btnRight, ui.btnSizeUp, ui.btnSizeDown})
        QCOMPARE(arrow->text(), QString());
    QCOMPARE(ui.label->text(), QString());
}

void tst_WindowTexts::titlesOfTheWindows()
{
    writeLanguageFile("[main]\ntitle=Map maker\npreview_window_title=Its map\n");
    m_window->readShowString();
    QCOMPARE(m_window->windowTitle(), QString("Map maker 1.02"));
    QCOMPARE(m_window->previewWindow->windowTitle(), QString("Its map"));
}

void tst_WindowTexts::replacedTitleCarriesTheVersion()
{
    for (const QString title : {"T", "地球 𠮷 🌏", "%1 %2", "a & b", "<b>x</b>"}) {
        writeLanguageFile("[main]\n" + line({"title", "", {}}, title));
        m_window->readShowString();
        QCOMPARE(m_window->windowTitle(), title + " 1.02");
    }
}

void tst_WindowTexts::lineBreaksAreEscaped()
{
    writeLanguageFile("[main]\nlbl_1=one\\ntwo\n");
    m_window->readShowString();
    QCOMPARE(m_window->ui->label_1->text(), QString("one\ntwo"));
    QVERIFY(m_window->ui->label_1->sizeHint().height() > m_window->ui->label_4_2->sizeHint().height());
}

void tst_WindowTexts::handWrittenValuesAreRead_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << QByteArray("Open") << "Open";
    QTest::newRow("Japanese") << QByteArray("画像") << "画像";
    QTest::newRow("beyond the basic plane") << QByteArray("𠮷🌏") << "𠮷🌏";
    QTest::newRow("outer blanks vanish") << QByteArray("  Open  ") << "Open";
    QTest::newRow("outer blanks in quotes stay") << QByteArray("\" Open \"") << " Open ";
    QTest::newRow("comma without quotes is a list") << QByteArray("Open, please") << "1) 画像を開く";
    QTest::newRow("comma in quotes") << QByteArray("\"Open, please\"") << "Open, please";
    QTest::newRow("semicolon begins a comment") << QByteArray("Open ; file") << "Open";
    QTest::newRow("semicolon in quotes") << QByteArray("\"Open ; file\"") << "Open ; file";
    QTest::newRow("only a blank in quotes") << QByteArray("\" \"") << " ";
    QTest::newRow("a number") << QByteArray("5") << "5";
    QTest::newRow("another escape") << QByteArray("\\x958b\\x304f") << "開く";
    QTest::newRow("place holders") << QByteArray("%1%n&&") << "%1%n&&";
    QTest::newRow("very long") << QByteArray(1000000, 'x') << QString(1000000, 'x');
}

void tst_WindowTexts::handWrittenValuesAreRead()
{
    QFETCH(QByteArray, written);
    writeLanguageFile("[main]\nlbl_1=" + written + "\nbtn_open=after it\n");
    m_window->readShowString();
    QTEST(m_window->ui->label_1->text(), "shown");
    QCOMPARE(m_window->ui->btnImageRead->text(), QString("after it"));
}

// A caption that an earlier file replaced stays when a later one has none; a message is built in again.
void tst_WindowTexts::fileIsReadEachTime()
{
    writeLanguageFile("[main]\nlbl_1=first\nsaved_file=first\n");
    m_window->readShowString();
    writeLanguageFile("[main]\nlbl_1=second\nsaved_file=other\n");
    m_window->readShowString();
    QCOMPARE(m_window->ui->label_1->text(), QString("second"));
    QCOMPARE(m_window->showString.value("saved_file"), QString("other"));
    writeLanguageFile("[main]\n");
    m_window->readShowString();
    QCOMPARE(m_window->ui->label_1->text(), QString("second"));
    QCOMPARE(m_window->showString.value("saved_file"), QString(" へ保存されました"));
}

void tst_WindowTexts::dialogsReadTheFileEachTime_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QByteArray>("group");
    QTest::addColumn<QString>("builtIn");
    QTest::newRow("options") << "actionSetting" << QByteArray("[config]\n")
                             << "Orvane 画像変換ツール（設定）";
    QTest::newRow("batch") << "actionBatch_Convert" << QByteArray("[batch_convert]\n")
                           << "Orvane 画像変換ツール（複数画像ファイル変換）";
}

void tst_WindowTexts::dialogsReadTheFileEachTime()
{
    QFETCH(QString, action);
    QFETCH(QByteArray, group);
    QFETCH(QString, builtIn);
    m_window->readShowString();
    m_window->show();
    const auto open = [&](const QString &title) {
        ModalDriver driver;
        driver.expect<QDialog>([title](QDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), title);
            dialog->reject();
        });
        m_window->findChild<QAction *>(action)->trigger();
        QVERIFY(driver.done());
    };
    open(builtIn);
    writeLanguageFile(group + "title=first\n");
    open("first");
    writeLanguageFile(group + "title=other\n"); // as long as the first
    open("other");
    QVERIFY(QFile::remove(m_window->langFile));
    open(builtIn);
}

void tst_WindowTexts::everyWindowReadsItsOwnGroup()
{
    writeLanguageFile("[main]\nlbl_1=of the window\nfile_filter=all (*)\n"
                      "[config]\nlbl_1=of the options\n[batch_convert]\nlbl_1=of the batch\n");
    m_window->readShowString();
    m_window->show();
    const auto labelOf = [](QDialog *dialog) { return dialog->findChild<QLabel *>("label_1")->text(); };
    ModalDriver driver;
    driver.expect<QDialog>([&](QDialog *dialog) {
        QCOMPARE(labelOf(dialog), QString("of the options"));
        dialog->reject();
    });
    m_window->ui->actionSetting->trigger();
    driver.expect<QDialog>([&](QDialog *dialog) {
        QCOMPARE(labelOf(dialog), QString("of the batch"));
        dialog->reject();
    });
    m_window->ui->actionBatch_Convert->trigger();
    QVERIFY(driver.done());
    QCOMPARE(m_window->ui->label_1->text(), QString("of the window"));
    QCOMPARE(m_window->showString.value("file_filter"), QString("all (*)"));
}

void tst_WindowTexts::fileIsNeverWritten()
{
    m_window->readShowString();
    m_window->show();
    m_window->close();
    QVERIFY(!QFile::exists(m_window->langFile));
    const QByteArray contents = "[main]\nlbl_1=x, y\n; a remark\n";
    writeLanguageFile(contents);
    m_window->readShowString();
    m_window->close();
    QFile file(m_window->langFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), contents);
}

void tst_WindowTexts::unreadableFileGivesBuiltInTexts_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("a folder in its place") << "folder";
    QTest::newRow("no permission") << "permission";
    QTest::newRow("a link to nowhere") << "link";
    QTest::newRow("binary noise") << "noise";
    QTest::newRow("UTF-16") << "utf16";
}

void tst_WindowTexts::unreadableFileGivesBuiltInTexts()
{
    QFETCH(QString, obstacle);
    if (obstacle == "folder") {
        QVERIFY(QDir().mkdir(m_window->langFile));
    } else if (obstacle == "permission") {
        writeLanguageFile("[main]\n" + everyKeyReplaced());
        QVERIFY(QFile::setPermissions(m_window->langFile, {}));
        handOver({m_window->langFile});
    } else if (obstacle == "link") {
        QVERIFY(QFile::link(m_window->filePath("nowhere"), m_window->langFile));
    } else if (obstacle == "noise") {
        QByteArray noise;
        for (unsigned i = 0, value = 1; i < 100000; ++i, value = value * 1103515245 + 12345)
            noise.append(static_cast<char>(value >> 16));
        writeLanguageFile(noise);
    } else {
        const QString text = QString::fromUtf8("[main]\n" + everyKeyReplaced());
        writeLanguageFile(QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2));
    }
    handOver({m_window->folder()});
    {
        const OrdinaryUser user;
        ModalDriver driver; // nothing is reported
        m_window->readShowString();
        m_window->show();
        QVERIFY(driver.done());
    }
    compareWithBuiltIn();
}

WINDOW_TEST_MAIN(tst_WindowTexts)
#include "tst_windowtexts.moc"
