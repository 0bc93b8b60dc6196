#pragma once

#include "disccircle.h"

#include <vector>

struct DiscEdges;

/// Circles along which many edges run, the best supported first, at most 10, all different, in view pixels.
std::vector<DiscCircle> candidateCircles(const DiscEdges &edges);
