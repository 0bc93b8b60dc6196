#include "discview.h"

#include "discpixels.h"
#include "framestripes.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int longestSide = 600;
constexpr int shortestSide = 24;
constexpr int mostSamples = 3; // a side: nine of the pixels under a view pixel are enough to calm the noise

using Planes = std::array<DiscPlane, 3>;

/// The photograph's columns or rows to read for each of the view's, several for each.
std::vector<int> sampleLines(int count, int samples, double scale)
{
    std::vector<int> lines;
    lines.reserve(static_cast<std::size_t>(count) * static_cast<std::size_t>(samples));
    for (int i = 0; i < count; ++i)
        for (int k = 0; k < samples; ++k)
            lines.push_back(static_cast<int>((i + (2 * k + 1) / (2.0 * samples)) * scale));
    return lines;
}

/// Sums of the pixels under a row of the view. Red and blue share a word: a few pixels fit into 16 bits.
struct RowSums {
    std::vector<quint32> redBlue;
    std::vector<quint32> green;
};

void addRow(const QRgb *pixels, const std::vector<int> &columns, int samples, RowSums &sums)
{
    const int *column = columns.data();
    for (std::size_t cell = 0; cell < sums.green.size(); ++cell) {
        quint32 redBlue = 0;
        quint32 green = 0;
        for (int k = 0; k < samples; ++k) {
            const QRgb pixel = pixels[*column++];
            redBlue += pixel & 0x00ff00ffU;
            green += pixel & 0x0000ff00U;
        }
        sums.redBlue[cell] += redBlue;
        sums.green[cell] += green >> 8;
    }
}

Planes reducedColors(DiscPixels &photograph, int width, int height, double scale)
{
    const int samples = std::clamp(qRound(scale), 1, mostSamples);
    const std::vector<int> columns = sampleLines(width, samples, scale);
    const std::vector<int> rows = sampleLines(height, samples, scale);
    const float share = 1.0F / static_cast<float>(samples * samples);
    Planes planes = {DiscPlane(width, height), DiscPlane(width, height), DiscPlane(width, height)};
    const auto cells = static_cast<std::size_t>(width);
    RowSums sums;
    auto row = rows.begin();
    for (int y = 0; y < height; ++y) {
        sums.redBlue.assign(cells, 0);
        sums.green.assign(cells, 0);
        for (int k = 0; k < samples; ++k)
            addRow(photograph.row(*row++), columns, samples, sums);
        const std::size_t first = planes[0].index(0, y);
        for (std::size_t cell = 0; cell < cells; ++cell) {
            planes[0].values[first + cell] = static_cast<float>(sums.redBlue[cell] >> 16) * share;
            planes[1].values[first + cell] = static_cast<float>(sums.green[cell]) * share;
            planes[2].values[first + cell] = static_cast<float>(sums.redBlue[cell] & 0xffffU) * share;
        }
    }
    return planes;
}

/// The direction in which neighbouring colours differ most, a few pixels apart: across the limb, while a sloping
/// sky changes little over such a distance. Found by multiplying a vector with the matrix of the differences'
/// products again and again; it starts from grey, which remains where nothing differs.
ColorAxis strongestAxis(const Planes &planes)
{
    constexpr int apart = 12;
    constexpr int every = 3;
    std::array<std::array<double, 3>, 3> products{};
    const auto addDifference = [&](std::size_t p, std::size_t q) {
        std::array<double, 3> difference{};
        for (std::size_t i = 0; i < 3; ++i)
            difference[i] = static_cast<double>(planes[i].values[p] - planes[i].values[q]);
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                products[i][j] += difference[i] * difference[j];
    };
    const DiscPlane &plane = planes[0];
    for (int y = 0; y + apart < plane.height; y += every) {
        for (int x = 0; x + apart < plane.width; x += every) {
            addDifference(plane.index(x, y), plane.index(x + apart, y));
            addDifference(plane.index(x, y), plane.index(x, y + apart));
        }
    }
    std::array<double, 3> axis = {1.0, 1.0, 1.0};
    for (int turn = 0; turn < 24; ++turn) {
        std::array<double, 3> next{};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                next[i] += products[i][j] * axis[j];
        const double length = std::sqrt(next[0] * next[0] + next[1] * next[1] + next[2] * next[2]);
        if (!(length > 1e-6))
            break;
        axis = {next[0] / length, next[1] / length, next[2] / length};
    }
    const double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
    return {static_cast<float>(axis[0] / length), static_cast<float>(axis[1] / length),
            static_cast<float>(axis[2] / length)};
}

DiscPlane part(const DiscPlane &whole, const QRect &place)
{
    DiscPlane result(place.width(), place.height());
    for (int y = 0; y < result.height; ++y)
        std::copy_n(&whole.values[whole.index(place.left(), place.top() + y)], result.width,
                    &result.values[result.index(0, y)]);
    return result;
}

} // namespace

DiscView reducedView(DiscPixels &photograph)
{
    DiscView view;
    const int longer = std::max(photograph.width(), photograph.height());
    view.scale = std::max(1.0, static_cast<double>(longer) / longestSide);
    const int width = std::min(static_cast<int>(photograph.width() / view.scale), longestSide);
    const int height = std::min(static_cast<int>(photograph.height() / view.scale), longestSide);
    if (width < shortestSide || height < shortestSide)
        return view;
    const Planes planes = reducedColors(photograph, width, height, view.scale);
    view.axis = strongestAxis(planes);
    DiscPlane whole(width, height);
    for (std::size_t p = 0; p < whole.values.size(); ++p)
        whole.values[p] = planes[0].values[p] * view.axis[0] + planes[1].values[p] * view.axis[1] +
                          planes[2].values[p] * view.axis[2];
    const QRect inside = insideStripes(whole);
    if (inside.width() < shortestSide || inside.height() < shortestSide)
        return view;
    view.left = inside.left();
    view.top = inside.top();
    view.plane = part(whole, inside);
    return view;
}
