#include "programarguments.h"

bool isUnattended(const QStringList &arguments)
{
    return arguments.size() >= 2 && arguments.at(1) == QLatin1String("/batch");
}

QStringList photographsOf(const QStringList &arguments, bool unattended)
{
    return arguments.mid(unattended ? 2 : 1);
}
