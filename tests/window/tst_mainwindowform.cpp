#include "taborder.h"
#include "ui_mainwindow.h"

#include <QMainWindow>
#include <QStatusBar>
#include <QtTest>

#include <memory>

namespace
{

constexpr Qt::Alignment leftCentred = Qt::AlignLeft | Qt::AlignVCenter;

QStringList names(const QObjectList &objects)
{
    QStringList list;
    for (const QObject *object : objects)
        list += object->objectName();
    return list;
}

/// The menu's entries by object name; a separator is "-".
QStringList entries(const QMenu &menu)
{
    QStringList list;
    for (const QAction *action : menu.actions())
        list += action->isSeparator() ? QStringLiteral("-") : action->objectName();
    return list;
}

} // namespace

/// The main window's form on a plain window: names, order, places and texts are what slots, language files and
/// the tab key rely on.
class tst_MainWindowForm : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<QMainWindow>();
        ui.setupUi(m_window.get());
    }

    void window()
    {
        QCOMPARE(m_window->objectName(), QStringLiteral("MainWindow"));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Orvane 画像変換ツール"));
        QCOMPARE(m_window->size(), QSize(655, 606));
        QCOMPARE(m_window->minimumSize(), QSize(600, 550));
        QVERIFY(m_window->acceptDrops());
        QCOMPARE(m_window->centralWidget(), ui.centralWidget);
        QCOMPARE(m_window->menuBar(), ui.menuBar);
        QVERIFY(!m_window->findChild<QStatusBar *>());
    }

    void actions_standInCreationOrder()
    {
        QStringList list;
        for (const QAction *action : m_window->findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly))
            list += action->objectName();
        QCOMPARE(list,
                 (QStringList{"actionOption", "actionExport", "actionImport", "actionDefault", "actionOpen",
                              "actionConvert_Save", "actionPreview_Window", "actionAuto_Preview",
                              "actionBatch_Convert", "actionAuto_Size", "actionSave_Param",
                              "actionLoad_Param", "actionSetting", "actionParam_Reset"}));
    }

    void action_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("checkable");

        QTest::newRow("actionOption") << "Setting" << false;
        QTest::newRow("actionExport") << "Save Setting" << false;
        QTest::newRow("actionImport") << "Load Setting" << false;
        QTest::newRow("actionDefault") << "Default Setting" << false;
        QTest::newRow("actionOpen") << "Open..." << false;
        QTest::newRow("actionConvert_Save") << "Convert" << false;
        QTest::newRow("actionPreview_Window") << "プレビューウィンドウ" << true;
        QTest::newRow("actionAuto_Preview") << "オートプレビュー" << true;
        QTest::newRow("actionBatch_Convert") << "複数画像ファイル変換" << false;
        QTest::newRow("actionAuto_Size") << "自動拡大縮小" << true;
        QTest::newRow("actionSave_Param") << "中心点、半径の保存..." << false;
        QTest::newRow("actionLoad_Param") << "中心点、半径の読込..." << false;
        QTest::newRow("actionSetting") << "設定..." << false;
        QTest::newRow("actionParam_Reset") << "中心点、半径のリセット" << false;
    }

    void action()
    {
        QFETCH(QString, text);
        QFETCH(bool, checkable);

        const auto *action = m_window->findChild<QAction *>(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(action);
        QCOMPARE(action->text(), text);
        QCOMPARE(action->isCheckable(), checkable);
        QVERIFY(!action->isChecked());
        QVERIFY(action->isEnabled());
        QVERIFY(action->shortcut().isEmpty());
    }

    void menus()
    {
        QCOMPARE(ui.menuBar->actions(),
                 (QList<QAction *>{ui.menuFile->menuAction(), ui.menuView->menuAction()}));
        QCOMPARE(ui.menuFile->title(), QStringLiteral("ファイル"));
        QCOMPARE(ui.menuView->title(), QStringLiteral("表示"));
        QCOMPARE(entries(*ui.menuFile),
                 (QStringList{"actionLoad_Param", "actionSave_Param", "actionParam_Reset", "-",
                              "actionBatch_Convert", "-", "actionSetting"}));
        QCOMPARE(entries(*ui.menuView),
                 (QStringList{"actionPreview_Window", "actionAuto_Preview", "actionAuto_Size"}));
    }

    void layouts()
    {
        QCOMPARE(ui.centralWidget->sizePolicy(), QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
        QCOMPARE(ui.centralWidget->minimumSize(), QSize(0, 0));
        QCOMPARE(ui.centralWidget->layout(), ui.horizontalLayout);
        QCOMPARE(ui.horizontalLayout->objectName(), QStringLiteral("horizontalLayout"));
        QCOMPARE(ui.horizontalLayout->spacing(), 0);
        QCOMPARE(ui.horizontalLayout->contentsMargins(), QMargins(0, 0, 0, 0));
        QCOMPARE(ui.horizontalLayout->count(), 1);
        QCOMPARE(ui.horizontalLayout->itemAt(0)->layout(), ui.gridLayout);
        QCOMPARE(ui.gridLayout->objectName(), QStringLiteral("gridLayout"));
        QCOMPARE(ui.gridLayout->spacing(), 0);
        QCOMPARE(ui.gridLayout->contentsMargins(), QMargins(4, 0, 0, 0)); // 0: the default of an inner layout
        QCOMPARE(ui.gridLayout->itemAtPosition(0, 0)->widget(), ui.widget);
        QCOMPARE(ui.gridLayout->itemAtPosition(0, 1)->widget(), ui.scrollArea);
        QCOMPARE(ui.gridLayout->count(), 2);
    }

    void picture()
    {
        QVERIFY(ui.scrollArea->widgetResizable());
        QCOMPARE(ui.scrollArea->widget(), ui.scrollAreaWidgetContents);
        QCOMPARE(ui.scrollAreaWidgetContents->layout(), ui.horizontalLayout_3);
        QCOMPARE(ui.horizontalLayout_3->spacing(), 0);
        QCOMPARE(ui.horizontalLayout_3->contentsMargins(), QMargins(0, 0, 0, 0));
        QCOMPARE(ui.horizontalLayout_3->itemAt(0)->widget(), ui.label);
        QCOMPARE(ui.label->objectName(), QStringLiteral("label"));
        QCOMPARE(ui.label->metaObject()->className(), "MyImage");
        QCOMPARE(ui.label->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
        QCOMPARE(ui.label->focusPolicy(), Qt::ClickFocus);
        QCOMPARE(ui.label->frameShape(), QFrame::Box);
        QCOMPARE(ui.label->alignment(), Qt::AlignLeft | Qt::AlignTop);
        QCOMPARE(ui.label->text(), QString());
    }

    void controlPanel_holdsItsWidgetsInCreationOrder()
    {
        QCOMPARE(names(ui.widget->children()),
                 (QStringList{"lineCenterX",  "lineCenterY", "btnUp",        "btnSizeUp",        "btnRight",
                              "label_1",      "btnSizeDown", "label_radius", "btnDown",          "lineRadius",
                              "label_center", "btnLeft",     "btnConvert",   "btnImageRead",     "btnPreview",
                              "label_2",      "label_3",     "label_4",      "lineSaveFilename", "label_4_2",
                              "btnBrowse"}));
        QCOMPARE(names(ui.centralWidget->children()),
                 (QStringList{"horizontalLayout", "scrollArea", "widget"}));
        QCOMPARE(ui.widget->sizePolicy(), QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred));
        QCOMPARE(ui.widget->minimumSize(), QSize(200, 500));
        QVERIFY(!ui.widget->layout());
    }

    void tabGoesInReadingOrder()
    {
        QCOMPARE(tabOrder(ui.btnImageRead),
                 (QStringList{"btnImageRead", "lineCenterX", "lineCenterY", "lineRadius", "btnUp", "btnLeft",
                              "btnRight", "btnDown", "btnSizeUp", "btnSizeDown", "btnPreview", "btnConvert",
                              "lineSaveFilename", "btnBrowse", "scrollArea"}));
    }

    void labelsNameTheirFields()
    {
        QCOMPARE(ui.label_center->buddy(), ui.lineCenterX);
        QCOMPARE(ui.label_radius->buddy(), ui.lineRadius);
        QCOMPARE(ui.label_4_2->buddy(), ui.lineSaveFilename);
    }

    void label_data()
    {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<QString>("text");
        QTest::addColumn<Qt::Alignment>("alignment");

        QTest::newRow("label_1") << QRect(10, 0, 191, 31) << "1) 画像を開く" << leftCentred;
        QTest::newRow("label_2") << QRect(10, 70, 191, 41)
                                 << "2) マウスで円の中心点・\n半径を選択、下記で微調整" << leftCentred;
        QTest::newRow("label_center")
            << QRect(10, 120, 111, 21) << "中心点 (横, 縦)" << Qt::Alignment(Qt::AlignCenter);
        QTest::newRow("label_radius") << QRect(120, 120, 71, 21) << "半径" << Qt::Alignment(Qt::AlignCenter);
        QTest::newRow("label_3") << QRect(10, 300, 191, 41) << "3) プレビューウィンドウで\n変換結果を確認"
                                 << leftCentred;
        QTest::newRow("label_4") << QRect(10, 390, 191, 41) << "4) 画像変換をし、ファイル\nへ保存"
                                 << leftCentred;
        QTest::newRow("label_4_2") << QRect(20, 470, 151, 31) << "保存ファイル名" << leftCentred;
    }

    void label()
    {
        QFETCH(QRect, place);
        QFETCH(QString, text);
        QFETCH(Qt::Alignment, alignment);

        const auto *label = child<QLabel>();
        QVERIFY(label);
        QCOMPARE(label->geometry(), place);
        QCOMPARE(label->text(), text);
        QCOMPARE(label->alignment(), alignment);
        QCOMPARE(label->wordWrap(), label == ui.label_4);
        QCOMPARE(label->indent(), label == ui.label_4 ? 0 : -1);
    }

    void lineEdit_data()
    {
        QTest::addColumn<QRect>("place");

        QTest::newRow("lineCenterX") << QRect(10, 140, 51, 30);
        QTest::newRow("lineCenterY") << QRect(70, 140, 51, 30);
        QTest::newRow("lineRadius") << QRect(130, 140, 51, 30);
        QTest::newRow("lineSaveFilename") << QRect(20, 500, 171, 30);
    }

    void lineEdit()
    {
        QFETCH(QRect, place);

        const auto *edit = child<QLineEdit>();
        QVERIFY(edit);
        QCOMPARE(edit->geometry(), place);
        QCOMPARE(edit->text(), QString());
        QCOMPARE(edit->toolTip(), QString());
        QVERIFY(!edit->validator());
    }

    void button_data()
    {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("icon");

        QTest::newRow("btnImageRead") << QRect(30, 30, 71, 30) << "開く" << QString();
        QTest::newRow("btnUp") << QRect(40, 180, 51, 30) << QString() << ":/up.png";
        QTest::newRow("btnSizeUp") << QRect(130, 200, 51, 30) << QString() << ":/large.png";
        QTest::newRow("btnLeft") << QRect(10, 220, 51, 30) << QString() << ":/left.png";
        QTest::newRow("btnRight") << QRect(70, 220, 51, 30) << QString() << ":/right.png";
        QTest::newRow("btnSizeDown") << QRect(130, 240, 51, 30) << QString() << ":/small.png";
        QTest::newRow("btnDown") << QRect(40, 260, 51, 30) << QString() << ":/down.png";
        QTest::newRow("btnPreview") << QRect(30, 340, 111, 30) << "プレビュー" << QString();
        QTest::newRow("btnConvert") << QRect(30, 430, 111, 30) << "画像変換" << QString();
        QTest::newRow("btnBrowse") << QRect(120, 540, 71, 30) << "参照" << QString();
    }

    void button()
    {
        QFETCH(QRect, place);
        QFETCH(QString, text);
        QFETCH(QString, icon);

        const auto *button = child<QPushButton>();
        QVERIFY(button);
        QCOMPARE(button->geometry(), place);
        QCOMPARE(button->text(), text);
        QVERIFY(!button->autoRepeat()); // the window repeats by itself
        QCOMPARE(button->icon().isNull(), icon.isEmpty());
        if (!icon.isEmpty()) {
            QCOMPARE(button->iconSize(), QSize(16, 16));
            const QImage shown = button->icon().pixmap(QSize(16, 16), QIcon::Normal, QIcon::Off).toImage();
            const QImage drawn(icon);
            QVERIFY(!drawn.isNull());
            QCOMPARE(shown, drawn.convertToFormat(shown.format()));
        }
    }

    void icons_areSixDifferentPictures_inTwoSizes()
    {
        QVector<QImage> seen;
        for (const char *name : {"up", "down", "left", "right", "large", "small"}) {
            const QImage plain(QStringLiteral(":/%1.png").arg(QString::fromLatin1(name)));
            const QImage fine(QStringLiteral(":/%1@2x.png").arg(QString::fromLatin1(name)));
            QCOMPARE(plain.size(), QSize(16, 16));
            QCOMPARE(fine.size(), QSize(32, 32));
            QVERIFY(plain.hasAlphaChannel() && qAlpha(plain.pixel(0, 0)) == 0);
            QVERIFY(!seen.contains(plain));
            seen.append(plain);
        }
    }

private:
    /// The widget that the current row is named after.
    template <typename Widget>
    Widget *child() const
    {
        return m_window->findChild<Widget *>(QString::fromLatin1(QTest::currentDataTag()));
    }

    std::unique_ptr<QMainWindow> m_window;
    Ui::MainWindow ui;
};

QTEST_MAIN(tst_MainWindowForm)
#include "tst_mainwindowform.moc"
