#include "discverdict.h"

#include "disclimb.h"

#include <algorithm>

double discMerit(const LimbFit &fit)
{
    // Whatever the frame cuts off cannot speak for a disc, but it speaks less against one than a gap inside.
    const double seen = fit.backed / (0.4 + 0.6 * fit.visible);
    const double oneWay = 0.7 + 0.3 * fit.oneWay;
    const double roughness = 1.0 + 6.0 * fit.skyScatter + 40.0 * fit.scatter;
    return std::clamp(seen * oneWay * fit.clear * fit.clear / roughness, 0.0, 1.0);
}

bool isDisc(const LimbFit &fit)
{
    constexpr double leastVisible = 0.5;     // less than that is any arc
    constexpr double leastMerit = 0.25;      // discs reach it, and other things hardly ever do
    constexpr double meritOfItself = 0.4;    // above it, doubts about the place do not count
    constexpr double leastConfidence = 0.06; // a limb so rough is none
    const double merit = discMerit(fit);
    return fit.visible >= leastVisible && merit >= leastMerit &&
           (merit >= meritOfItself || discConfidence(fit) >= leastConfidence);
}

double discConfidence(const LimbFit &fit)
{
    // Knots of evidence and confidence, measured on drawn photographs; straight lines between them.
    struct Knot {
        double evidence;
        double confidence;
    };
    static constexpr Knot knots[] = {{-3.0, 0.05}, {0.0, 0.25},  {1.0, 0.45}, {1.75, 0.65},
                                     {2.25, 0.78}, {2.75, 0.85}, {3.1, 0.9},  {3.45, 0.94},
                                     {3.8, 0.97},  {4.3, 0.985}, {5.5, 0.995}};
    const double seen = fit.backed / (0.4 + 0.6 * fit.visible);
    const double evidence = 1.0 + 2.7 * seen + 2.0 * fit.backed - 1.9 * std::min(100.0 * fit.error, 3.0) -
                            4.2 * std::min(100.0 * fit.scatter, 3.0) - 18.0 * std::min(fit.skyScatter, 0.3);
    const Knot *last = &knots[0];
    for (const Knot &knot : knots) {
        if (evidence < knot.evidence) {
            const double share = (evidence - last->evidence) / (knot.evidence - last->evidence);
            return last == &knot ? knot.confidence
                                 : last->confidence + share * (knot.confidence - last->confidence);
        }
        last = &knot;
    }
    return last->confidence;
}
