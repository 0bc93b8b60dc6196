#include "freshwindow.h"

#include <QPushButton>

#include <algorithm>
#include <cmath>

namespace
{

/// Relative luminance, 0 .. 1, and the contrast of two colours, 1 .. 21, as the Web Content Accessibility Guidelines
/// define them.
double luminance(QRgb colour)
{
    const auto linear = [](int value) {
        const double part = value / 255.0;
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

double contrast(QRgb a, QRgb b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

/// The least contrast of the icon's solid pixels with what the button shows there without an icon; 0 without any.
double iconContrast(QPushButton &button)
{
    const QImage with = button.grab().toImage();
    const QIcon icon = button.icon();
    button.setIcon(QIcon());
    const QImage without = button.grab().toImage();
    button.setIcon(icon);

    // Edges are blended with the button; the ink itself is the colour that occurs most often.
    QMap<QRgb, QVector<QPoint>> inks;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            if (with.pixel(x, y) != without.pixel(x, y))
                inks[with.pixel(x, y)].append({x, y});
        }
    }
    QVector<QPoint> solid;
    for (const QVector<QPoint> &points : qAsConst(inks))
        solid = points.size() > solid.size() ? points : solid;
    double least = solid.size() < 15 ? 0 : 21;
    for (const QPoint &point : qAsConst(solid))
        least = std::min(least, contrast(with.pixel(point), without.pixel(point)));
    return least;
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x31, 0x36, 0x3B), QColor(0x31, 0x36, 0x3B));
    palette.setColor(QPalette::Base, QColor(0x1B, 0x1E, 0x20));
    palette.setColor(QPalette::Highlight, QColor(0x3D, 0xAE, 0xE9));
    return palette;
}

} // namespace

/// The icons of the six small buttons, as they are on the screen.
class tst_InkIcon : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { QApplication::setPalette(m_usual); }

    void standsOut_data()
    {
        QTest::addColumn<QPalette>("palette");
        QTest::addColumn<QString>("state");
        for (const char *state : {"normal", "disabled", "pressed", "hovered", "focused", "checked"}) {
            QTest::addRow("light, %s", state) << m_usual << state;
            QTest::addRow("dark, %s", state) << darkPalette() << state;
        }
    }

    void standsOut()
    {
        QFETCH(QPalette, palette);
        QFETCH(QString, state);
        FreshWindow window; // icons follow a palette that changes while the window is open
        QApplication::setPalette(palette);
        QApplication::setActiveWindow(&window);
        for (const char *name : {"btnUp", "btnDown", "btnLeft", "btnRight", "btnSizeUp", "btnSizeDown"}) {
            auto *button = window.findChild<QPushButton *>(name);
            button->setEnabled(state != "disabled");
            button->setDown(state == "pressed");
            button->setAttribute(Qt::WA_UnderMouse, state == "hovered");
            if (state == "focused")
                button->setFocus();
            button->setCheckable(state == "checked");
            button->setChecked(state == "checked");
            const double found = iconContrast(*button);
            QVERIFY2(found >= 3, qPrintable(QString("%1: %2").arg(name).arg(found)));
        }
    }

    void isTheFileOnLightButtons()
    {
        const FreshWindow window;
        const QImage shown = window.ui->btnUp->icon().pixmap(QSize(16, 16)).toImage();
        QCOMPARE(shown, QImage(":/up.png").convertToFormat(shown.format()));
    }

    void hasTheLargerVersion()
    {
        const FreshWindow window;
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled})
            QVERIFY(window.ui->btnUp->icon().availableSizes(mode).contains(QSize(32, 32)));
    }

private:
    const QPalette m_usual = QApplication::palette();
};

WINDOW_TEST_MAIN(tst_InkIcon)
#include "tst_inkicon.moc"
