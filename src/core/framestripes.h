#pragma once

#include <QRect>

struct DiscPlane;

/// What is left of a picture, in its pixels, when captions and border lines along its frame are cut off: stripes
/// and lines that run through at least nine tenths of a row or column, in the outer fifth on each side. The whole
/// picture when there are none.
QRect insideStripes(const DiscPlane &plane);
