#include "messagecollector.h"

namespace
{

QStringList collected;

void collect(QtMsgType /*type*/, const QMessageLogContext & /*context*/, const QString &text)
{
    collected.append(text.simplified());
}

} // namespace

MessageCollector::MessageCollector()
{
    collected.clear();
    m_previous = qInstallMessageHandler(collect);
}

MessageCollector::~MessageCollector()
{
    qInstallMessageHandler(m_previous);
}

QStringList MessageCollector::messages() const
{
    return collected;
}
