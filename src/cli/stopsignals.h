#pragma once

/// While it lives, a first SIGINT or SIGTERM is only remembered, so that work in hand can come to its end; a
/// second one ends the process at once, with status 128 and the signal's number. A signal that the process was
/// told to ignore when it was started stays ignored. SIGPIPE does nothing: the write that caused it fails.
class StopSignals
{
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;

    /// The number of the first signal; 0 as long as there was none. From any thread.
    static int received();
};

/// Ends the process by SIGPIPE, as if it had never been caught.
[[noreturn]] void endByBrokenPipe();
