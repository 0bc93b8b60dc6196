#pragma once

#include <QObject>

/// Counts the turns of event handling while it lives.
class TickCounter : public QObject
{
public:
    TickCounter() { startTimer(0); }
    int ticks = 0;

protected:
    void timerEvent(QTimerEvent *) override { ++ticks; }
};
