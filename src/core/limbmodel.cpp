#include "limbmodel.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr int samples = static_cast<int>(profileSamples);
constexpr int offsets = static_cast<int>(limbOffsets);

// Depths below the limb come in half steps, from that of the last sample at the first offset.
constexpr int firstDepth = -(2 * (samples - 1) - (samples - 1) + offsets / 2);
constexpr int depthCount = 2 * (samples - 1) + offsets;

/// The share of a blurred edge that lies below u: the integral of the cubic B-spline, whose standard deviation
/// is 0.577.
double blurredStep(double u)
{
    if (u <= -2.0)
        return 0.0;
    if (u >= 2.0)
        return 1.0;
    const double a = std::abs(u);
    double above = 0.0; // beyond a
    if (a > 1.0)
        above = (2.0 - a) * (2.0 - a) * (2.0 - a) * (2.0 - a) / 24.0;
    else
        above = 0.5 - a * (2.0 / 3.0 - a * a * (1.0 / 3.0 - a / 8.0));
    return u > 0.0 ? 1.0 - above : above;
}

/// Means of a function over the blur's B-spline, taken at its nodes.
template <typename Function>
double blurredMean(const Function &function, double at, double width)
{
    constexpr int nodes = 8; // on either side
    double sum = 0.0;
    double weights = 0.0;
    for (int k = -nodes + 1; k < nodes; ++k) {
        const double u = 2.0 * k / nodes;
        const double a = std::abs(u);
        const double weight =
            a > 1.0 ? (2.0 - a) * (2.0 - a) * (2.0 - a) / 6.0 : 2.0 / 3.0 - a * a * (1.0 - 0.5 * a);
        sum += weight * function(at + u * width);
        weights += weight;
    }
    return sum / weights;
}

double position(int i)
{
    return i - 0.5 * (samples - 1);
}

/// Sum of the products, plus one more pair of values that stands beside the samples.
double product(const LimbProfile &a, const LimbProfile &b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += static_cast<double>(a[i]) * static_cast<double>(b[i]);
    return sum;
}

float quickProduct(const LimbProfile &a, const LimbProfile &b)
{
    // Eight sums side by side: the order is fixed here, so that the compiler may use vectors.
    std::array<float, 8> sums{};
    for (std::size_t i = 0; i < a.size(); i += 8)
        for (std::size_t k = 0; k < 8; ++k)
            sums[k] += a[i + k] * b[i + k];
    return ((sums[0] + sums[4]) + (sums[1] + sums[5])) + ((sums[2] + sums[6]) + (sums[3] + sums[7]));
}

void subtract(LimbProfile &from, const LimbProfile &what, double times)
{
    for (std::size_t i = 0; i < from.size(); ++i)
        from[i] = static_cast<float>(static_cast<double>(from[i]) - times * static_cast<double>(what[i]));
}

/// A shape with a price: a value that counts in its length but meets no sample. It keeps shapes that resemble
/// each other from great coefficients of opposite signs.
struct PricedShape {
    LimbProfile values;
    std::array<double, 3> prices;
};

double product(const PricedShape &a, const PricedShape &b)
{
    return product(a.values, b.values) + a.prices[0] * b.prices[0] + a.prices[1] * b.prices[1] +
           a.prices[2] * b.prices[2];
}

void makeUpright(PricedShape &shape, const PricedShape &other)
{
    const double share = product(shape, other);
    subtract(shape.values, other.values, share);
    for (std::size_t k = 0; k < 3; ++k)
        shape.prices[k] -= share * other.prices[k];
}

void normalize(PricedShape &shape)
{
    const double length = std::sqrt(product(shape, shape));
    const double factor = length > 0.1 ? 1.0 / length : 0.0; // a shape without extent explains nothing
    for (float &value : shape.values)
        value = static_cast<float>(static_cast<double>(value) * factor);
    for (double &price : shape.prices)
        price *= factor;
}

} // namespace

LimbModel::LimbModel(double radius, double blur) : m_limbs(limbOffsets)
{
    constexpr double muPrice = 0.02;
    constexpr double depthPrice = 0.08;
    constexpr double stepPrice = 0.04;
    const double width = blur * 1.7320508075688772;
    const double deepest = 0.5 * samples;
    const auto mu = [radius](double depth) {
        const double d = std::clamp(depth / radius, 0.0, 1.0);
        return std::sqrt(d * (2.0 - d));
    };
    const auto ramp = [](double depth) { return std::max(depth, 0.0); };
    std::vector<std::array<double, 3>> tables(static_cast<std::size_t>(depthCount));
    for (int k = 0; k < depthCount; ++k) {
        const double depth = 0.5 * (firstDepth + k);
        tables[static_cast<std::size_t>(k)] = {blurredStep(depth / width),
                                               blurredMean(mu, depth, width) / mu(deepest),
                                               blurredMean(ramp, depth, width) / deepest};
    }
    for (int j = 0; j < offsets; ++j) {
        std::array<PricedShape, 3> shapes{};
        shapes[0].prices[0] = stepPrice;
        shapes[1].prices[1] = muPrice;
        shapes[2].prices[2] = depthPrice;
        for (std::size_t s = 0; s < 3; ++s) {
            for (int i = 0; i < samples; ++i) {
                const int depth = j - offsets / 2 - 2 * i + samples - 1; // half steps
                shapes[s].values[static_cast<std::size_t>(i)] =
                    static_cast<float>(tables[static_cast<std::size_t>(depth - firstDepth)][s]);
            }
            shapes[s].values = calmed(shapes[s].values);
            for (std::size_t other = 0; other < s; ++other)
                makeUpright(shapes[s], shapes[other]);
            normalize(shapes[s]);
            m_limbs[static_cast<std::size_t>(j)].shapes[s] = shapes[s].values;
        }
    }
}

LimbRest LimbModel::rest(const LimbProfile &calm) const
{
    LimbRest result{};
    const float whole = quickProduct(calm, calm);
    for (std::size_t j = 0; j < limbOffsets; ++j) {
        float left = whole;
        for (const Shape &shape : m_limbs[j].shapes) {
            const float share = quickProduct(shape, calm);
            left -= share * share;
        }
        result[j] = std::max(left, 0.0F);
    }
    return result;
}

LimbProfile calmed(const LimbProfile &profile)
{
    double level = 0.0;
    double slope = 0.0;
    double squares = 0.0;
    for (int i = 0; i < samples; ++i) {
        level += static_cast<double>(profile[static_cast<std::size_t>(i)]) / samples;
        slope += static_cast<double>(profile[static_cast<std::size_t>(i)]) * position(i);
        squares += position(i) * position(i);
    }
    slope /= squares;
    LimbProfile result{};
    for (int i = 0; i < samples; ++i)
        result[static_cast<std::size_t>(i)] = static_cast<float>(
            static_cast<double>(profile[static_cast<std::size_t>(i)]) - level - slope * position(i));
    return result;
}

float restWithoutLimb(const LimbProfile &calm)
{
    LimbProfile parabola{};
    for (int i = 0; i < samples; ++i)
        parabola[static_cast<std::size_t>(i)] = static_cast<float>(position(i) * position(i));
    parabola = calmed(parabola);
    const double share = product(calm, parabola) / product(parabola, parabola);
    LimbProfile left = calm;
    subtract(left, parabola, share);
    return sumOfSquares(left);
}

float sumOfSquares(const LimbProfile &profile)
{
    return quickProduct(profile, profile);
}
