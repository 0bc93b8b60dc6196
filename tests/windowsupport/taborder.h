#pragma once

#include <QWidget>

/// The names of the widgets that Tab visits, from one of them on. Of a group of radio buttons it visits the checked one;
/// here are all.
inline QStringList tabOrder(const QWidget *first)
{
    QStringList names;
    const QWidget *widget = first;
    do {
        if (widget->focusPolicy() & Qt::TabFocus)
            names += widget->objectName();
        widget = widget->nextInFocusChain();
    } while (widget != first);
    return names;
}
