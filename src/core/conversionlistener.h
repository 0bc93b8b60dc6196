#pragma once

#include <QtGlobal>

#include <functional>

/// Who hears of a conversion while it runs, in the thread that converts. Nobody, as it comes.
struct ConversionListener {
    std::function<void()> rowDone;              ///< after every row of the projection step
    std::function<void(qint64)> samplesCounted; ///< at its end: how many samples lay above the top of the map
};

/// The listener of a window: handles pending events after every row, so that the window stays alive, and ends
/// with the debug line "Convert error " and the number of samples.
ConversionListener windowListener();
