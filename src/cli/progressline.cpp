#include "progressline.h"

#include <cmath>

namespace
{

/// "0:07", "12:34", "1:02:03"
QString asClock(double seconds)
{
    constexpr double longest = 359999; // 99:59:59
    const int whole = static_cast<int>(std::ceil(std::fmin(seconds, longest)));
    const auto twoDigits = [](int number) {
        return QString::number(number).rightJustified(2, QLatin1Char('0'));
    };
    const int hours = whole / 3600;
    const int minutes = whole / 60 % 60;
    const QString front =
        hours > 0 ? QString::number(hours) + QLatin1Char(':') + twoDigits(minutes) : QString::number(minutes);
    return front + QLatin1Char(':') + twoDigits(whole % 60);
}

} // namespace

QString progressText(const Progress &progress)
{
    QString text = QStringLiteral("%1 of %2").arg(progress.done + progress.failed).arg(progress.all);
    if (progress.failed > 0)
        text += QStringLiteral(", %1 failed").arg(progress.failed);
    // What was passed over took no time and says nothing about the rest.
    const int worked = progress.done + progress.failed - progress.skipped;
    if (worked <= 0 || progress.seconds <= 0)
        return text;
    const double rate = worked / progress.seconds;
    const int left = progress.all - progress.done - progress.failed;
    text += QStringLiteral(", %1 photographs/s").arg(rate, 0, 'f', rate < 100 ? 1 : 0);
    if (left > 0)
        text += QStringLiteral(", %1 left").arg(asClock(left / rate));
    return text;
}
