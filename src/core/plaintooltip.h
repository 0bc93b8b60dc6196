#pragma once

#include <QString>
#include <QTextDocument>

/// A text in a form that a tool tip shows as it is: one that the toolkit would take for markup, as a file may be
/// called `<b>x.png`, becomes markup for itself; every other one stays.
inline QString plainToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}
