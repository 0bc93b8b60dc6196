#pragma once

#include <QtGlobal>

/// How thoroughly the engine is compared with the reference. The environment variable OVMIC_SETS asks for a
/// number of random sets; then the searches that are usually cut short are complete, too.

/// @param usually  number of sets when nobody asks
inline int setsToTry(int usually)
{
    const int asked = qEnvironmentVariableIntValue("OVMIC_SETS");
    return asked > 0 ? asked : usually;
}

inline bool searchesThoroughly()
{
    return qEnvironmentVariableIsSet("OVMIC_SETS");
}
