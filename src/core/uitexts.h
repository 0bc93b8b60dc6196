#pragma once

#include "initext.h"

#include <QMap>
#include <QString>

/// Reads one group of the language file. Every window walks its own keys, in the file's order; a key that is
/// missing or empty leaves the built-in text.
class UiTexts
{
public:
    /// @param group     "main", "batch_convert" or "config"
    /// @param messages  the window's text map, filled by message()
    UiTexts(const QString &langFile, QString group, QMap<QString, QString> &messages);

    /// A caption: calls (object->*setText)(text) when the file has a text, otherwise leaves the form's own.
    template <typename Object, typename Base>
    void caption(const char *key, Object *object, void (Base::*setText)(const QString &))
    {
        const QString text = value(key);
        if (!text.isEmpty())
            (object->*setText)(text);
    }

    /// A text that the program uses later: stored in the window's map under its key.
    void message(const char *key, const char *builtInText);

private:
    QString value(const char *key) const; // empty when the file has none

    IniText m_file;
    QString m_group;
    QMap<QString, QString> &m_messages;
};
