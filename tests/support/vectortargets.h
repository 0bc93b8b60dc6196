#pragma once

#include "approxrotation.h"

#include <QString>
#include <QVector>

#ifdef OVMIC_HIGHWAY
#include <hwy/targets.h>
#endif

/// What the kernels can run on in this machine: scalar C++, or one of the vector instruction sets.
struct Target {
    QString name;
    qint64 code; ///< 0: scalar C++
};

/// The first one is scalar C++; convertToMap() then takes the best that the build has.
inline QVector<Target> targets()
{
    QVector<Target> result = {{QStringLiteral("scalar C++"), 0}};
#ifdef OVMIC_HIGHWAY
    for (const int64_t code : hwy::SupportedAndGeneratedTargets())
        result.append({QString::fromLatin1(hwy::TargetName(code)), code});
#endif
    return result;
}

/// While it lives, approximateSources() uses one target only.
class ForcedTarget
{
public:
    explicit ForcedTarget(const Target &target) : m_scalar(target.code == 0)
    {
#ifdef OVMIC_HIGHWAY
        hwy::SetSupportedTargetsForTest(target.code);
#endif
    }
    ~ForcedTarget()
    {
#ifdef OVMIC_HIGHWAY
        hwy::SetSupportedTargetsForTest(0);
#endif
    }
    Q_DISABLE_COPY_MOVE(ForcedTarget)

    projection::ApproximateSources approximate() const
    {
        return m_scalar ? projection::approximateSourcesScalar : projection::approximateSources;
    }

private:
    bool m_scalar;
};
