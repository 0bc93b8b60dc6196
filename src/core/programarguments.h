#pragma once

#include <QStringList>

/// Whether the program was asked to convert a batch without a window: "/batch" is the first argument after its
/// name, in exactly these bytes.
bool isUnattended(int argc, const char *const *argv);

/// The photographs among the arguments: what follows the program's name.
/// @param unattended  the first of them is the switch then and does not count, whatever it says
QStringList photographsOf(const QStringList &arguments, bool unattended);
