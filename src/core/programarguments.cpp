#include "programarguments.h"

bool isUnattended(int argc, const char *const *argv)
{
    return argc >= 2 && qstrcmp(argv[1], "/batch") == 0;
}

QStringList photographsOf(const QStringList &arguments, bool unattended)
{
    return arguments.mid(unattended ? 2 : 1);
}
