#pragma once

#include <QStringList>
#include <QtGlobal>

/// Collects what the program writes through qDebug and its siblings, instead of printing it, while it lives.
/// At most one at a time.
class MessageCollector
{
public:
    MessageCollector();
    ~MessageCollector();
    MessageCollector(const MessageCollector &) = delete;
    MessageCollector &operator=(const MessageCollector &) = delete;

    /// The messages so far, one entry each, in order, blanks simplified.
    QStringList messages() const;

private:
    QtMessageHandler m_previous;
};
