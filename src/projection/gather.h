#pragma once

#include <cstddef>
#include <cstdint>

namespace projection
{

/// Asks the cache for a pixel that will be read soon. Any address is allowed.
inline void prefetch(const uint32_t *pixel)
{
#if defined(__GNUC__)
    __builtin_prefetch(pixel);
#else
    static_cast<void>(pixel);
#endif
}

/// Source pixel numbers of neighbouring map pixels, computed before any of the pixels is read.
struct GatherBatch {
    static constexpr int capacity = 512;
    static constexpr int32_t none = -1; ///< the map pixel keeps its colour

    int32_t indexes[capacity];
    int count = 0;
    uint32_t *out = nullptr; ///< map pixel of the first index
    ptrdiff_t step = 1;      ///< map pixels from one index to the next: 1 or -1
};

/// Gathers batch after batch, each while the next one is being filled. Where a pixel lies is known long before
/// it is needed, so by then the cache has it: without this delay a conversion spends most of its time waiting
/// for the photograph.
/// @tparam Finish  turns a source pixel into the map pixel
template <typename Finish>
class GatherQueue
{
public:
    GatherQueue(const uint32_t *pixels, Finish finish) : m_pixels(pixels), m_finish(finish) {}

    /// The batch to fill next; submit() takes it.
    GatherBatch &next() { return m_batches[m_filling]; }
    /// Prefetches the pixels of the batch just filled and gathers those of the one before.
    void submit()
    {
        prefetchAll(m_batches[m_filling]);
        m_filling = 1 - m_filling;
        gather(m_batches[m_filling]);
    }
    /// Gathers what is left.
    void flush() { gather(m_batches[1 - m_filling]); }

private:
    void prefetchAll(const GatherBatch &batch) const
    {
        for (int i = 0; i < batch.count; ++i)
            prefetch(m_pixels + batch.indexes[i]);
    }

    void gather(GatherBatch &batch) const
    {
        // Copies, because for all the compiler knows the pixels written could be these.
        const uint32_t *pixels = m_pixels;
        const Finish finish = m_finish;
        const int count = batch.count;
        const ptrdiff_t step = batch.step;
        uint32_t *out = batch.out;
        for (int i = 0; i < count; ++i, out += step)
            if (batch.indexes[i] >= 0)
                *out = finish(pixels[batch.indexes[i]]);
        batch.count = 0;
    }

    const uint32_t *m_pixels;
    Finish m_finish;
    GatherBatch m_batches[2];
    int m_filling = 0;
};

} // namespace projection
