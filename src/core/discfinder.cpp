#include "discfinder.h"

#include "disccandidates.h"
#include "discedges.h"
#include "disclimb.h"
#include "discpixels.h"
#include "discverdict.h"
#include "discview.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace
{

class ViewSource : public LimbSource
{
public:
    explicit ViewSource(const DiscPlane &plane) : m_plane(plane) {}
    int width() const override { return m_plane.width; }
    int height() const override { return m_plane.height; }
    float at(int x, int y) override { return m_plane.at(x, y); }

private:
    const DiscPlane &m_plane;
};

class PhotographSource : public LimbSource
{
public:
    PhotographSource(DiscPixels &pixels, const ColorAxis &axis) : m_pixels(pixels), m_axis(axis) {}
    int width() const override { return m_pixels.width(); }
    int height() const override { return m_pixels.height(); }
    float at(int x, int y) override
    {
        const QRgb pixel = m_pixels.at(x, y);
        return static_cast<float>(qRed(pixel)) * m_axis[0] + static_cast<float>(qGreen(pixel)) * m_axis[1] +
               static_cast<float>(qBlue(pixel)) * m_axis[2];
    }

private:
    DiscPixels &m_pixels;
    const ColorAxis &m_axis;
};

LimbFit wideFit(LimbSource &view, const DiscCircle &circle)
{
    return fitLimb(view, circle, 4.0 + 0.05 * circle.radius, LimbEffort::Coarse);
}

bool areAlmostEqual(const DiscCircle &a, const DiscCircle &b)
{
    constexpr double most = 0.5;
    return std::abs(a.x - b.x) < most && std::abs(a.y - b.y) < most && std::abs(a.radius - b.radius) < most;
}

/// Fits again as long as it helps: a better circle has the whole limb in its profiles.
LimbFit settled(LimbSource &view, LimbFit fit, DiscCircle start)
{
    for (int turn = 0; turn < 3 && !areAlmostEqual(fit.circle, start); ++turn) {
        const LimbFit next = wideFit(view, fit.circle);
        if (discMerit(next) <= discMerit(fit))
            break;
        start = fit.circle;
        fit = next;
    }
    return fit;
}

/// The best circle of the view. Craters and storms are round too: of two that deserve it, the larger one.
std::optional<LimbFit> bestOfView(LimbSource &view, const std::vector<DiscCircle> &candidates)
{
    constexpr std::size_t mostSettled = 4;
    struct Trial {
        DiscCircle start;
        LimbFit fit;
    };
    std::vector<Trial> trials;
    trials.reserve(candidates.size());
    for (const DiscCircle &candidate : candidates)
        trials.push_back({candidate, wideFit(view, candidate)});
    std::stable_sort(trials.begin(), trials.end(),
                     [](const Trial &a, const Trial &b) { return discMerit(a.fit) > discMerit(b.fit); });
    if (trials.size() > mostSettled)
        trials.resize(mostSettled);
    std::optional<LimbFit> best;
    double bestWorth = 0.0;
    for (const Trial &trial : trials) {
        const LimbFit next = settled(view, trial.fit, trial.start);
        const double worth = discMerit(next) * std::sqrt(next.circle.radius);
        if (worth > bestWorth) {
            bestWorth = worth;
            best = next;
        }
    }
    return best;
}

/// Half the width of the last profiles, in view pixels: room for the blur on both sides, and no more of the
/// disc's texture than necessary.
double narrowHalfWidth(const LimbFit &fit)
{
    return std::max(3.0, 4.0 * fit.blur) + 0.025 * fit.circle.radius;
}

LimbFit scaled(LimbFit fit, double scale)
{
    fit.circle = {fit.circle.x * scale, fit.circle.y * scale, fit.circle.radius * scale};
    fit.blur *= scale;
    return fit;
}

/// Fits again in narrower profiles, the last time in the photograph itself. Narrow profiles place the limb better;
/// but where noise leaves too little of it in them, the wider ones keep the word. In photograph pixels.
LimbFit refined(DiscPixels &pixels, const DiscView &view, const LimbFit &rough)
{
    constexpr double stillGood = 0.7;
    ViewSource viewSource(view.plane);
    PhotographSource photographSource(pixels, view.axis);
    LimbFit fit = rough;
    const LimbFit medium = fitLimb(viewSource, fit.circle, 3.0 + 0.035 * fit.circle.radius, LimbEffort::Fine);
    if (discMerit(medium) >= stillGood * discMerit(fit))
        fit = medium;
    const double halfWidth = narrowHalfWidth(fit) * view.scale;
    fit = scaled(fit, view.scale);
    const LimbFit narrow = view.scale > 1.0
                               ? fitLimb(photographSource, fit.circle, halfWidth, LimbEffort::Fine)
                               : fitLimb(viewSource, fit.circle, halfWidth, LimbEffort::Fine);
    return discMerit(narrow) >= stillGood * discMerit(fit) ? narrow : fit;
}

} // namespace

std::optional<FoundDisc> findDisc(const QImage &photograph)
{
    DiscPixels pixels(photograph);
    const DiscView view = reducedView(pixels);
    if (view.plane.values.empty())
        return std::nullopt;
    ViewSource viewSource(view.plane);
    const std::optional<LimbFit> rough = bestOfView(viewSource, candidateCircles(findEdges(view.plane)));
    if (!rough)
        return std::nullopt;
    const LimbFit fit = refined(pixels, view, *rough);
    if (!isDisc(fit))
        return std::nullopt;
    return FoundDisc{fit.circle.x, fit.circle.y, fit.circle.radius, discConfidence(fit)};
}
