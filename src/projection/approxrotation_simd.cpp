// Vector code for approxrotation.h: this file is compiled once for each instruction set, and the best one
// that the machine has is chosen when it runs. One vector is one step of approximateSourcesScalar(), in the same
// letters. Without the library behind it the file is empty, and approxrotation.cpp does the work.
#ifdef OVMIC_HIGHWAY

#include "approxrotation.h"

#include "arctangent.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "approxrotation_simd.cpp"
#include <hwy/foreach_target.h> // IWYU pragma: keep

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace projection::HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, ApproxSources::padding>;
using Ints = hn::RebindToSigned<Floats>;
using Vector = hn::Vec<Floats>;

HWY_INLINE Vector arcTangents(Vector t)
{
    const Floats d;
    const Vector square = hn::Mul(t, t);
    Vector sum = hn::Set(d, arcTangentCoefficients[8]);
    for (int i = 7; i >= 0; --i)
        sum = hn::MulAdd(sum, square, hn::Set(d, arcTangentCoefficients[i]));
    return hn::Mul(t, sum);
}

HWY_INLINE Vector distanceFromWhole(Vector v)
{
    return hn::Abs(hn::Sub(v, hn::Round(v)));
}

void approximate(const ApproxScale &scale, const RotatedRow &row, const float *HWY_RESTRICT cosines,
                 const float *HWY_RESTRICT sines, int count, ApproxSources &out)
{
    const Floats d;
    const Ints di;
    const int lanes = static_cast<int>(hn::Lanes(d));
    const auto one = hn::Set(d, 1.0F);
    const auto lastColumn = hn::Set(di, scale.width - 2);
    const auto width1 = hn::Set(di, scale.width - 1);
    const auto lastRow = hn::Set(di, scale.height - 2);
    int uncertainCount = 0;
    for (int i = 0; i < count; i += lanes) {
        const auto sine = hn::LoadU(d, sines + i);
        const auto x = hn::Mul(hn::Set(d, row.x), hn::LoadU(d, cosines + i));
        const auto y = hn::MulAdd(hn::Set(d, row.yBySine), sine, hn::Set(d, row.y));
        const auto z = hn::MulAdd(hn::Set(d, row.zBySine), sine, hn::Set(d, row.z));
        const auto r = hn::Sqrt(hn::MulAdd(x, x, hn::Mul(y, y)));
        const auto halfColumns = hn::Mul(arcTangents(hn::Min(hn::Div(hn::Abs(y), hn::Add(r, x)), one)),
                                         hn::Set(d, scale.halfColumnsPerHalfAngle));
        const auto poleRows = hn::Mul(arcTangents(hn::Min(hn::Div(r, hn::Add(one, hn::Abs(z))), one)),
                                      hn::Set(d, scale.poleRowsPerHalfAngle));
        const auto relativeErrorBound = hn::Set(d, scale.relativeErrorBound);
        const auto columnMargin =
            hn::Mul(hn::NegMulAdd(relativeErrorBound, halfColumns, distanceFromWhole(halfColumns)), r);
        const auto rowMargin = hn::NegMulAdd(relativeErrorBound, poleRows, distanceFromWhole(poleRows));
        const auto certain = hn::And(hn::And(hn::Gt(columnMargin, hn::Set(d, scale.columnErrorBound)),
                                             hn::Gt(rowMargin, hn::Set(d, scale.rowErrorBound))),
                                     hn::Ge(poleRows, hn::Set(d, scale.leastPoleRow)));
        if (HWY_UNLIKELY(!hn::AllTrue(d, certain))) {
            uint8_t bits[8 + ApproxSources::padding / 8]; // at least 8 are written
            hn::StoreMaskBits(d, certain, bits);
            for (int lane = 0; lane < lanes && i + lane < count; ++lane)
                if ((bits[lane / 8] >> (lane % 8) & 1) == 0)
                    out.uncertain[uncertainCount++] = i + lane;
        }
        const auto wholeHalves = hn::ConvertTo(di, hn::IfThenElseZero(certain, halfColumns));
        const auto wholePoleRows = hn::ConvertTo(di, hn::IfThenElseZero(certain, poleRows));
        const auto column = hn::ShiftRight<1>(wholeHalves);
        const auto yNegative = hn::RebindMask(di, hn::Lt(y, hn::Zero(d)));
        const auto zNegative = hn::RebindMask(di, hn::Lt(z, hn::Zero(d)));
        hn::StoreU(hn::IfThenElse(yNegative, hn::Sub(lastColumn, column), column), di, out.columns + i);
        hn::StoreU(hn::ShiftRight<1>(hn::IfThenElse(yNegative, hn::Add(width1, wholeHalves),
                                                    hn::Sub(lastColumn, wholeHalves))),
                   di, out.mirroredColumns + i);
        hn::StoreU(hn::IfThenElse(zNegative, wholePoleRows, hn::Sub(lastRow, wholePoleRows)), di,
                   out.rows + i);
    }
    out.uncertainCount = uncertainCount;
}

} // namespace projection::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace projection
{

HWY_EXPORT(approximate);

void approximateSources(const ApproxScale &scale, const RotatedRow &row, const float *cosines,
                        const float *sines, int count, ApproxSources &out)
{
    HWY_DYNAMIC_DISPATCH(approximate)(scale, row, cosines, sines, count, out);
}

} // namespace projection
#endif

#endif // OVMIC_HIGHWAY
