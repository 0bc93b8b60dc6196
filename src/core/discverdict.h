#pragma once

struct LimbFit;

/// How much speaks for a disc rather than for something that merely bends: 0 .. 1.
double discMerit(const LimbFit &fit);

/// Whether a fit is good enough to be called a disc.
bool isDisc(const LimbFit &fit);

/// How sure it is that centre and radius are within 1 % of the radius, 0 .. 1.
double discConfidence(const LimbFit &fit);
