#include "vectorstate.h"

namespace projection
{

#if defined(__GNUC__) && defined(__x86_64__)

namespace
{

__attribute__((target("avx"))) void zeroUpper()
{
    __builtin_ia32_vzeroupper();
}

} // namespace

void clearUpperHalves()
{
    if (__builtin_cpu_supports("avx"))
        zeroUpper();
}

#else

void clearUpperHalves()
{
}

#endif

} // namespace projection
