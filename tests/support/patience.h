#pragma once

/// How long a test waits for what an idle machine has done in a moment, milliseconds. Only where it does not come is all of
/// that waited for, so it is meant for a machine that is busy with other things, and below the limit that Qt Test and
/// ctest have for a function and for a test.
#ifdef OVMIC_COVERAGE // code that counts is slow
constexpr int patienceMs = 360000;
#else
constexpr int patienceMs = 120000;
#endif
