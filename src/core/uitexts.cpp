#include "uitexts.h"

#include "inifile.h"

#include <utility>

UiTexts::UiTexts(const QString &langFile, QString group, QMap<QString, QString> &messages)
    : m_file(openIniFile(langFile)), m_group(std::move(group)), m_messages(messages)
{
}

void UiTexts::message(const char *key, const char *builtInText)
{
    const QString text = value(key);
    m_messages[QString::fromLatin1(key)] = text.isEmpty() ? QString::fromUtf8(builtInText) : text;
}

QString UiTexts::value(const char *key) const
{
    return m_file.value(m_group + '/' + QString::fromLatin1(key)).toString();
}
