#include "vectorstate.h"

#include <QtTest>

using namespace projection;

class tst_VectorState : public QObject
{
    Q_OBJECT

private slots:
    void upperHalvesAreCleared();
};

#if defined(__GNUC__) && defined(__x86_64__)

namespace
{

/// Fills the whole of a register that nothing else uses here.
__attribute__((target("avx"), noinline)) void fillRegister()
{
    asm volatile("vxorps %%ymm15, %%ymm15, %%ymm15\n\tvcmpps $15, %%ymm15, %%ymm15, %%ymm15" ::: "xmm15");
}

/// The upper half of that register, as far as two numbers show it.
__attribute__((target("avx"), noinline)) quint64 upperHalf()
{
    quint64 bits[2];
    asm volatile("vextractf128 $1, %%ymm15, %0" : "=m"(bits)::"memory");
    return bits[0] | bits[1];
}

} // namespace

void tst_VectorState::upperHalvesAreCleared()
{
    if (!__builtin_cpu_supports("avx"))
        return; // there are none
    fillRegister();
    clearUpperHalves();
    QCOMPARE(upperHalf(), quint64(0));
}

#else

void tst_VectorState::upperHalvesAreCleared()
{
    clearUpperHalves();
}

#endif

QTEST_GUILESS_MAIN(tst_VectorState)
#include "tst_vectorstate.moc"
