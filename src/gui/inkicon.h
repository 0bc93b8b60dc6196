#pragma once

class QIcon;
class QPalette;
class QString;

/// A button's icon in one colour that stands out from the palette's buttons, dark or light: at least 3 to 1, also where
/// the button is disabled.
/// @param name  of two resources, ":/name.png" and ":/name@2x.png", whose alpha says where the ink is
QIcon inkIcon(const QString &name, const QPalette &palette);
