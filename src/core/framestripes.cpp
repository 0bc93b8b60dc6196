#include "framestripes.h"

#include "discview.h"

#include <cmath>

namespace
{

constexpr int outerShare = 5;       // stripes lie in this part of the picture
constexpr int beside = 2;           // pixels from an edge to where its blur ends
constexpr float leastStep = 20.0F;  // levels, out of reach of all but a few of the noise's pixels
constexpr double wholeLength = 0.9; // of a line must have the step: text, stars and the disc lie across it

/// The lines of a picture, rows or columns, counted from one of its sides.
struct Side {
    const DiscPlane &plane;
    bool isRow;
    bool isFromEnd;

    int count() const { return isRow ? plane.height : plane.width; }
    int length() const { return isRow ? plane.width : plane.height; }
    float at(int line, int along) const
    {
        const int number = isFromEnd ? count() - 1 - line : line;
        return isRow ? plane.at(along, number) : plane.at(number, along);
    }

    /// Whether the light changes across a line nearly everywhere along it.
    bool hasStepAt(int line) const
    {
        int steps = 0;
        for (int along = 0; along < length(); ++along)
            steps += std::abs(at(line + beside, along) - at(line - beside, along)) >= leastStep ? 1 : 0;
        return steps >= wholeLength * length();
    }
    /// How many lines to cut off.
    int stripe() const
    {
        for (int line = count() / outerShare; line >= beside; --line)
            if (hasStepAt(line))
                return line + beside + 1;
        return 0;
    }
};

} // namespace

QRect insideStripes(const DiscPlane &plane)
{
    const int top = Side{plane, true, false}.stripe();
    const int bottom = Side{plane, true, true}.stripe();
    const int left = Side{plane, false, false}.stripe();
    const int right = Side{plane, false, true}.stripe();
    return {left, top, plane.width - left - right, plane.height - top - bottom};
}
