#pragma once

#include <QString>

/// A path in a form that the toolkit takes for a file, as the system does: with a colon in front it would be one
/// of the compiled-in resources.
inline QString plainPath(const QString &path)
{
    return path.startsWith(QLatin1Char(':')) ? QStringLiteral("./") + path : path;
}
