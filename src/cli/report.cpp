#include "report.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

/// @return 0, or the number of the error
int writeAll(int descriptor, const QByteArray &bytes)
{
    for (int written = 0; written < bytes.size();) {
        const ssize_t count =
            ::write(descriptor, bytes.constData() + written, size_t(bytes.size() - written));
        if (count < 0 && errno != EINTR)
            return errno;
        written += count > 0 ? int(count) : 0;
    }
    return 0;
}

/// The text on one line that a terminal can show. Single surrogates are bytes of a name: see useFileNameCodec().
QByteArray onOneLine(const QString &text)
{
    constexpr ushort byteNames = 0xdc00;
    QByteArray line;
    for (int i = 0; i < text.size(); ++i) {
        const ushort code = text.at(i).unicode();
        const bool pair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (code == '\n')
            line += "\\n";
        else if (code < 0x20 || (code >= 0x7f && code < 0xa0))
            line += "\\x" + QByteArray::number(code, 16).rightJustified(2, '0');
        else if (code >= byteNames && code <= byteNames + 0xff)
            line += "\\x" + QByteArray::number(code - byteNames, 16);
        else
            line += text.mid(i, pair ? 2 : 1).toUtf8();
        i += pair ? 1 : 0;
    }
    return line;
}

int terminalColumns()
{
    winsize size = {};
    constexpr int usual = 80;
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

} // namespace

void printProblem(const QString &text)
{
    writeAll(STDERR_FILENO, "ovmic-map: " + onOneLine(text) + '\n');
}

Report::Report(int all, Separator separator, ProgressLine progressLine)
    : m_separator(separator), m_terminal(isatty(STDERR_FILENO) != 0)
{
    m_line = progressLine == ProgressLine::Always || (progressLine == ProgressLine::OnTerminal && m_terminal);
    m_progress.all = all;
}

Report::~Report()
{
    if (m_terminal)
        erase();
    else
        show(Moment::End);
}

void Report::finished(const QString &map)
{
    const std::lock_guard lock(m_mutex);
    ++m_progress.done;
    erase();
    const char end = m_separator == Separator::Null ? '\0' : '\n';
    const int error =
        m_readerGone || m_outputLost ? 0 : writeAll(STDOUT_FILENO, QFile::encodeName(map) + end);
    if (error == EPIPE) {
        m_readerGone = true;
    } else if (error != 0) {
        m_outputLost = true;
        printProblem(QStringLiteral("standard output: ") + QString::fromLocal8Bit(std::strerror(error)));
    }
    show(Moment::Between);
}

void Report::skipped()
{
    const std::lock_guard lock(m_mutex);
    ++m_progress.done;
    ++m_progress.skipped;
    show(Moment::Between);
}

void Report::failed(const QString &photograph, const QString &reason)
{
    const std::lock_guard lock(m_mutex);
    ++m_progress.failed;
    erase();
    printProblem(photograph + QStringLiteral(": ") + reason);
    show(Moment::Between);
}

bool Report::isReaderGone() const
{
    const std::lock_guard lock(m_mutex);
    return m_readerGone;
}

bool Report::isOutputLost() const
{
    const std::lock_guard lock(m_mutex);
    return m_outputLost;
}

int Report::failures() const
{
    const std::lock_guard lock(m_mutex);
    return m_progress.failed;
}

/// Takes the progress line off the screen, so that another line can stand there.
void Report::erase()
{
    if (m_columns == 0)
        return;
    writeAll(STDERR_FILENO, '\r' + QByteArray(m_columns, ' ') + '\r');
    m_columns = 0;
}

/// Shows the progress line: on a terminal over the last one, ten times a second; elsewhere a line each second.
void Report::show(Moment moment)
{
    if (!m_line)
        return;
    const Clock::time_point now = Clock::now();
    const std::chrono::milliseconds pause(m_terminal ? 100 : 1000);
    if (moment == Moment::Between && now - m_shown < pause && !(m_terminal && m_columns == 0))
        return;
    m_shown = now;
    m_progress.seconds = std::chrono::duration<double>(now - m_begin).count();
    QByteArray text = progressText(m_progress).toUtf8();
    if (!m_terminal) {
        writeAll(STDERR_FILENO, "ovmic-map: " + text + '\n');
        return;
    }
    text.truncate(terminalColumns() - 1); // a longer line would wrap and could not be erased
    const int columns = text.size();
    writeAll(STDERR_FILENO, '\r' + text.leftJustified(m_columns, ' '));
    m_columns = std::max(columns, m_columns);
}
