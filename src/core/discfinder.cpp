#include "discfinder.h"

#include "disccandidates.h"
#include "discedges.h"
#include "disclimb.h"
#include "discpixels.h"
#include "discverdict.h"
#include "discview.h"
#include "integers.h"

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

/// The part of the photograph that the view shows.
class PhotographSource : public LimbSource
{
public:
    PhotographSource(DiscPixels &pixels, const DiscView &view)
        : m_pixels(pixels)
        , m_axis(view.axis)
        , m_left(qRound(view.left * view.scale))
        , m_top(qRound(view.top * view.scale))
        , m_width(std::min(qRound(view.plane.width * view.scale), pixels.width() - m_left))
        , m_height(std::min(qRound(view.plane.height * view.scale), pixels.height() - m_top))
    {
    }
    int left() const { return m_left; }
    int top() const { return m_top; }
    int width() const override { return m_width; }
    int height() const override { return m_height; }
    float at(int x, int y) override
    {
        const QRgb pixel = m_pixels.at(x + m_left, y + m_top);
        return static_cast<float>(qRed(pixel)) * m_axis[0] + static_cast<float>(qGreen(pixel)) * m_axis[1] +
               static_cast<float>(qBlue(pixel)) * m_axis[2];
    }

private:
    DiscPixels &m_pixels;
    const ColorAxis m_axis;
    const int m_left;
    const int m_top;
    const int m_width;
    const int m_height;
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

LimbFit betterOf(const LimbFit &wide, const LimbFit &narrow)
{
    constexpr double stillGood = 0.7;
    return discMerit(narrow) >= stillGood * discMerit(wide) ? narrow : wide;
}

/// Fits again in narrower profiles, the last time in the photograph itself. Narrow profiles place the limb better;
/// but where noise leaves too little of it in them, the wider ones keep the word. In photograph pixels.
LimbFit refined(DiscPixels &pixels, const DiscView &view, const LimbFit &rough)
{
    ViewSource viewSource(view.plane);
    const double mediumHalfWidth = 3.0 + 0.035 * rough.circle.radius;
    LimbFit fit = betterOf(rough, fitLimb(viewSource, rough.circle, mediumHalfWidth, LimbEffort::Fine));
    const double halfWidth = narrowHalfWidth(fit);
    if (view.scale <= 1.0) {
        fit = betterOf(fit, fitLimb(viewSource, fit.circle, halfWidth, LimbEffort::Fine));
        fit.circle.x += view.left;
        fit.circle.y += view.top;
        return fit;
    }
    PhotographSource source(pixels, view);
    fit.circle.x = (fit.circle.x + view.left) * view.scale - source.left();
    fit.circle.y = (fit.circle.y + view.top) * view.scale - source.top();
    fit.circle.radius *= view.scale;
    fit.blur *= view.scale;
    fit = betterOf(fit, fitLimb(source, fit.circle, halfWidth * view.scale, LimbEffort::Fine));
    fit.circle.x += source.left();
    fit.circle.y += source.top();
    return fit;
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

SelectionCircle selectionCircle(const FoundDisc &disc)
{
    using projection::truncateToInt;
    return {truncateToInt(std::floor(disc.centerX)), truncateToInt(std::floor(disc.centerY)),
            truncateToInt(std::floor(disc.radius + 0.5))};
}
