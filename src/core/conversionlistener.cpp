#include "conversionlistener.h"

#include <QCoreApplication>
#include <QDebug>

ConversionListener windowListener()
{
    return {[] { QCoreApplication::processEvents(); },
            [](qint64 samples) { qDebug() << "Convert error " << samples; }};
}
