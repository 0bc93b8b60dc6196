#include "discview.h"

#include "discpixels.h"

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

/// Adds the pixels of one row of the photograph to the sums of one row of the view.
void addRow(const QRgb *pixels, const std::vector<int> &columns, int samples, std::vector<int> &sums)
{
    const int *column = columns.data();
    for (std::size_t cell = 0; cell < sums.size(); cell += 3) {
        int red = 0;
        int green = 0;
        int blue = 0;
        for (int k = 0; k < samples; ++k) {
            const QRgb pixel = pixels[*column++];
            red += qRed(pixel);
            green += qGreen(pixel);
            blue += qBlue(pixel);
        }
        sums[cell] += red;
        sums[cell + 1] += green;
        sums[cell + 2] += blue;
    }
}

Planes reducedColors(DiscPixels &photograph, int width, int height, double scale)
{
    const int samples = std::clamp(qRound(scale), 1, mostSamples);
    const std::vector<int> columns = sampleLines(width, samples, scale);
    const std::vector<int> rows = sampleLines(height, samples, scale);
    const float share = 1.0F / static_cast<float>(samples * samples);
    Planes planes = {DiscPlane(width, height), DiscPlane(width, height), DiscPlane(width, height)};
    std::vector<int> sums(static_cast<std::size_t>(width) * 3);
    auto row = rows.begin();
    for (int y = 0; y < height; ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        for (int k = 0; k < samples; ++k)
            addRow(photograph.row(*row++), columns, samples, sums);
        for (std::size_t channel = 0; channel < 3; ++channel)
            for (int x = 0; x < width; ++x)
                planes[channel].at(x, y) =
                    static_cast<float>(sums[static_cast<std::size_t>(x) * 3 + channel]) * share;
    }
    return planes;
}

/// The median along the frame: mostly sky.
float frameMedian(const DiscPlane &plane)
{
    std::vector<float> frame;
    const int depth = std::max(1, std::min(plane.width, plane.height) / 40);
    for (int y = 0; y < plane.height; ++y) {
        const bool isWhole = y < depth || y >= plane.height - depth;
        const int sides = isWhole ? plane.width : depth;
        const float *row = &plane.values[plane.index(0, y)];
        frame.insert(frame.end(), row, row + sides);
        if (!isWhole)
            frame.insert(frame.end(), row + plane.width - depth, row + plane.width);
    }
    const auto middle = frame.begin() + static_cast<std::ptrdiff_t>(frame.size() / 2);
    std::nth_element(frame.begin(), middle, frame.end());
    return *middle;
}

/// The direction in which the colours differ most from the sky's. Found by multiplying a vector with the matrix
/// of their products again and again; it starts from grey, which remains where nothing differs.
ColorAxis strongestAxis(const Planes &planes)
{
    std::array<float, 3> sky{};
    for (std::size_t i = 0; i < 3; ++i)
        sky[i] = frameMedian(planes[i]);
    std::array<std::array<double, 3>, 3> products{};
    for (std::size_t p = 0; p < planes[0].values.size(); p += 7) {
        std::array<double, 3> difference{};
        for (std::size_t i = 0; i < 3; ++i)
            difference[i] = static_cast<double>(planes[i].values[p] - sky[i]);
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                products[i][j] += difference[i] * difference[j];
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
    view.plane = DiscPlane(width, height);
    for (std::size_t p = 0; p < view.plane.values.size(); ++p)
        view.plane.values[p] = planes[0].values[p] * view.axis[0] + planes[1].values[p] * view.axis[1] +
                               planes[2].values[p] * view.axis[2];
    return view;
}
