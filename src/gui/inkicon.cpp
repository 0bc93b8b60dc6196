#include "inkicon.h"

#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace
{

struct Inks {
    QRgb enabled;
    QRgb disabled; // paler, and still 3 to 1: the style's own disabled icons are not
};

constexpr Inks forLightButtons = {0xFF2F4F6F, 0xFF6B7B8B}; // the first one is the colour of the files
constexpr Inks forDarkButtons = {0xFFC8DCF0, 0xFF9AA8B6};

/// A picture with its transparency, but all in one colour.
QPixmap inked(QPixmap picture, QRgb ink)
{
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(picture.rect(), QColor(ink));
    return picture;
}

} // namespace

QIcon inkIcon(const QString &name, const QPalette &palette)
{
    const bool dark = palette.color(QPalette::Button).lightness() < 128;
    const Inks &inks = dark ? forDarkButtons : forLightButtons;
    QIcon icon;
    for (const char *version : {"", "@2x"}) {
        const QPixmap shape(QStringLiteral(":/%1%2.png").arg(name, QString::fromLatin1(version)));
        icon.addPixmap(inked(shape, inks.enabled), QIcon::Normal);
        icon.addPixmap(inked(shape, inks.disabled), QIcon::Disabled);
    }
    return icon;
}
