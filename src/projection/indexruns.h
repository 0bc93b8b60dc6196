#pragma once

#include <cstddef>
#include <cstdint>

/// Asks the cache for a pixel that will be read soon. Any address is allowed.
inline void prefetch(const uint32_t *pixel)
{
#if defined(__GNUC__)
    __builtin_prefetch(pixel);
#else
    static_cast<void>(pixel);
#endif
}

/// Source pixel numbers of neighbouring map pixels: the answer of a kernel, before any pixel is read.
struct IndexRun {
    static constexpr int capacity = 512;
    static constexpr int32_t none = -1; ///< the map pixel keeps its colour

    int32_t indexes[capacity];
    int count = 0;
    uint32_t *out = nullptr; ///< map pixel of the first index
    ptrdiff_t step = 1;      ///< map pixels from one index to the next: 1 or -1
};

/// Reads runs one turn late. Where a pixel lies is known long before it is needed, so by then the cache has
/// it: without this delay a conversion spends most of its time waiting for the photograph.
/// @tparam Finish  turns a source pixel into the map pixel
template <typename Finish>
class RunReader
{
public:
    RunReader(const uint32_t *pixels, Finish finish) : m_pixels(pixels), m_finish(finish) {}

    /// The run to fill next; filled() takes it.
    IndexRun &empty() { return m_runs[m_filling]; }
    /// Prefetches the pixels of the run just filled and reads those of the one before.
    void filled()
    {
        prefetchAll(m_runs[m_filling]);
        m_filling = 1 - m_filling;
        read(m_runs[m_filling]);
    }
    /// Reads what is left.
    void flush() { read(m_runs[1 - m_filling]); }

private:
    void prefetchAll(const IndexRun &run) const
    {
        for (int i = 0; i < run.count; ++i)
            prefetch(m_pixels + run.indexes[i]);
    }

    void read(IndexRun &run) const
    {
        // Copies, because for all the compiler knows the pixels written could be these.
        const uint32_t *pixels = m_pixels;
        const Finish finish = m_finish;
        const int count = run.count;
        const ptrdiff_t step = run.step;
        uint32_t *out = run.out;
        for (int i = 0; i < count; ++i, out += step)
            if (run.indexes[i] >= 0)
                *out = finish(pixels[run.indexes[i]]);
        run.count = 0;
    }

    const uint32_t *m_pixels;
    Finish m_finish;
    IndexRun m_runs[2];
    int m_filling = 0;
};
