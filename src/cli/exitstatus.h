#pragma once

/// How ovmic-map ends; 0 is all well.
enum ExitStatus {
    someFailed = 1,
    wrongUse = 2,
    stoppedBySignal = 128 ///< plus the number of the signal
};
