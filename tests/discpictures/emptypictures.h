#pragma once

#include "lightplane.h"

#include <QString>

class Draws;

/// A row of marks like letters, this high, from a place on the left as far as they fit.
void addWriting(LightPlane &plane, int left, int top, int height, int right, const Light &ink, Draws &draws);

/// A sky full of stars, points and spots, none larger than 3 pixels in standard deviation.
void addStars(LightPlane &plane, int count, Draws &draws);

/// A light that grows evenly from the left, or from wherever the angle says, by this much over the longer side.
void addSlope(LightPlane &plane, double angleDeg, double rise);

/// Paints something that is no disc, and names it.
QString paintEmptyPicture(LightPlane &plane, Draws &draws);
