#pragma once

#include <QStringList>
#include <QtGlobal>

/// Collects the lines written through qDebug(), qWarning() and their like while it lives, blanks simplified.
/// One at a time.
class MessageLog
{
public:
    MessageLog() : m_previous(qInstallMessageHandler(collect)) { current = this; }
    ~MessageLog() { qInstallMessageHandler(m_previous); }
    Q_DISABLE_COPY_MOVE(MessageLog)

    QStringList lines;

private:
    static void collect(QtMsgType, const QMessageLogContext &, const QString &text)
    {
        current->lines.append(text.simplified());
    }

    static inline MessageLog *current = nullptr;
    QtMessageHandler m_previous;
};
