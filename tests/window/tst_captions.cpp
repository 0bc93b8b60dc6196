#include "applicationsetup.h"
#include "batchconvertdialog.h"
#include "freshwindow.h"
#include "option.h"
#include "status.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFontInfo>
#include <QIcon>
#include <QRadioButton>
#include <QStyleOptionButton>

#include <algorithm>

namespace
{

/// How many pixels the text of a label covers when the label has this size.
int inkOf(QLabel &label, QSize size)
{
    const QString text = label.text();
    label.resize(size);
    const QImage written = label.grab().toImage();
    label.setText(QString());
    const QImage blank = label.grab().toImage();
    label.setText(text);
    int ink = 0;
    for (int y = 0; y < written.height(); ++y) {
        for (int x = 0; x < written.width(); ++x)
            ink += written.pixel(x, y) != blank.pixel(x, y);
    }
    return ink;
}

/// Whether a label shows as much of its text as it does with more room. The lines of a text may be higher than
/// the label as long as no letter is.
bool fits(QLabel &label)
{
    const QSize given = label.size();
    const QSize more(label.wordWrap() ? 0 : 400, 40); // whole pixels at every scale
    const int ink = inkOf(label, given);
    const int wholeInk = inkOf(label, given + more);
    label.resize(given);
    return ink == wholeInk;
}

bool fits(const QPushButton &button)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    const QSize room = button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button).size();
    const QSize text = button.fontMetrics().size(Qt::TextShowMnemonic, button.text());
    return text.width() <= room.width() && text.height() <= room.height();
}

/// Radio buttons, check boxes and lists.
bool fits(const QWidget &widget)
{
    const QSize needed = widget.sizeHint();
    return needed.width() <= widget.width() && needed.height() <= widget.height();
}

template <typename Widget>
QStringList cutIn(const QWidget &window)
{
    QStringList cut;
    for (auto *widget : window.findChildren<Widget *>()) {
        if (widget->window() == &window && !fits(*widget))
            cut += QStringLiteral("%1.%2 with %3 pixels, hint %4")
                       .arg(window.objectName(), widget->objectName())
                       .arg(widget->width())
                       .arg(widget->sizeHint().width());
    }
    return cut;
}

/// The widgets of a window whose captions do not fit.
QStringList cutCaptions(const QWidget &window)
{
    return cutIn<QLabel>(window) + cutIn<QPushButton>(window) + cutIn<QRadioButton>(window) +
           cutIn<QCheckBox>(window) + cutIn<QComboBox>(window);
}

} // namespace

/// Every caption has room in its widget, in every language, with the usual fonts of desktops.
class tst_Captions : public QObject
{
    Q_OBJECT

private:
    static void addLanguagesAndFonts()
    {
        QTest::addColumn<QString>("langFile");
        QTest::addColumn<QFont>("font");
        const QDir lang(QFINDTESTDATA("../../lang"));
        const QStringList languages = lang.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QVERIFY(languages.contains(QStringLiteral("en")));
        for (const QFont &font : {QFont("DejaVu Sans", 9), QFont("DejaVu Sans", 11), QFont("Cantarell", 11),
                                  QFont("Noto Sans CJK JP", 10)}) {
            const QByteArray name = font.family().toUtf8();
            QTest::addRow("built-in, %s %d", name.data(), font.pointSize()) << QString() << font;
            for (const QString &language : languages)
                QTest::addRow("%s, %s %d", qUtf8Printable(language), name.data(), font.pointSize())
                    << lang.filePath(language + "/ovmic_lang.ini") << font;
        }
    }

private slots:
    void windowIconComesInEverySize()
    {
        setWindowIcons();
        const QIcon icon = QGuiApplication::windowIcon();
        QList<QSize> sizes = icon.availableSizes();
        std::sort(sizes.begin(), sizes.end(), [](QSize a, QSize b) { return a.width() < b.width(); });
        QCOMPARE(sizes, QList<QSize>({{16, 16}, {32, 32}, {48, 48}, {128, 128}}));
    }
    void initTestCase()
    {
        // Set by ctest: 1.25 on a display of 125 per cent, say.
        const double scale = qEnvironmentVariableIntValue("QT_FONT_DPI") / 96.0;
        QVERIFY2(scale >= 1, "QT_FONT_DPI is to be 96 or more");
        QCOMPARE(qApp->devicePixelRatio(), scale);
    }

    void everyCaptionFits_data() { addLanguagesAndFonts(); }
    void everyCaptionFits()
    {
        QFETCH(QString, langFile);
        QFETCH(QFont, font);
        QVERIFY2(QFontInfo(font).family() == font.family(),
                 qPrintable(font.family() + " is missing: scripts/bootstrap test installs it"));
        QApplication::setFont(font);

        InstalledWindow window;
        window.langFile = langFile;
        window.appear();
        BatchConvertDialog batch(&window);
        batch.langFile = langFile;
        batch.readShowString();
        Option option(&window);
        option.langFile = langFile;
        option.readShowString();
        Status status(&window);
        status.setStop(window.showString.value("batch_btn_stop"));
        QCOMPARE(cutCaptions(window) + cutCaptions(batch) + cutCaptions(option) + cutCaptions(status),
                 QStringList());
    }
};

int main(int argc, char *argv[])
{
    followDisplayScale();
    QApplication application(argc, argv);
    tst_Captions test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_captions.moc"
