#pragma once

#include "picturescale.h"

#include <QPixmap>

class QLabel;

/// What the two picture widgets, MyImage and MyImage2, have in common: a label that shows its pixmap at the
/// top-left corner, fitted to the widget while its contents are scaled and 1:1 otherwise.

/// The label's picture; null when none was set, and when a null one was.
QPixmap pictureOf(const QLabel &label);

/// How that picture lies in the label now.
PictureScale pictureScaleOf(const QLabel &label, const QPixmap &picture);

/// Paints the picture and nothing else: no frame, no text, and nothing at all without a picture.
void paintPicture(QLabel &label);
