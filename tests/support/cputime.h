#pragma once

#include <QtGlobal>

#include <ctime>

/// Processor time that this process has used, milliseconds. A limit on it holds on a busy machine too.
inline qint64 cpuMilliseconds()
{
    return qint64{std::clock()} * 1000 / CLOCKS_PER_SEC;
}
