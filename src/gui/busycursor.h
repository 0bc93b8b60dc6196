#pragma once

#include <QGuiApplication>

/// While it lives, the pointer says that the program is busy. Only around work that handles no events: those push and
/// pop pointers of their own.
class BusyCursor
{
public:
    BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY(BusyCursor)
};
