#pragma once

#include "photographlist.h"
#include "progressline.h"

#include <QString>

#include <chrono>
#include <mutex>

/// Writes one line to the standard error, with the program's name in front and everything in it that could
/// break the line or a terminal spelled out, as \n or \xff.
void printProblem(const QString &text);

/// Tells the world how a run goes, from any thread: finished maps on the standard output, failures and progress
/// on the standard error. Writes at once and keeps nothing.
class Report
{
public:
    enum class ProgressLine { Never, OnTerminal, Always };

    Report(int all, Separator separator, ProgressLine progressLine);
    ~Report();
    Report(const Report &) = delete;
    Report &operator=(const Report &) = delete;

    void finished(const QString &map);
    void skipped();
    void failed(const QString &photograph, const QString &reason);

    /// Whether nobody reads the standard output any more.
    bool isReaderGone() const;
    /// Whether the standard output could not be written for another reason.
    bool isOutputLost() const;
    int failures() const;

private:
    using Clock = std::chrono::steady_clock;
    enum class Moment { Between, End };

    void erase();
    void show(Moment moment);

    mutable std::mutex m_mutex; // over everything below, and both outputs
    const Separator m_separator;
    const Clock::time_point m_begin = Clock::now();
    Clock::time_point m_shown; // the last time that the line was written
    bool m_line;               // there is a progress line
    bool m_terminal;
    int m_columns = 0; // that it takes on the screen now
    Progress m_progress;
    bool m_readerGone = false;
    bool m_outputLost = false;
};
