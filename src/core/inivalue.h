#pragma once

#include <QByteArray>
#include <QVariant>

#include <optional>

// A value of an ini file and its text, in the form in which QSettings writes it with the codec UTF-8.

/// @return nothing for a serialized object, which is not decoded; see IniText::value() for the rest
std::optional<QVariant> iniValue(const QByteArray &text);

/// @param value  a type that turns into text (bool, numbers, text), or a QByteArray. Half of a surrogate pair that
///               stands alone has no UTF-8 form and is left out.
QByteArray iniValueText(const QVariant &value);
