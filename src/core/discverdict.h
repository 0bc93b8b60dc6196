#pragma once

struct LimbFit;

/// How much speaks for a disc rather than for something that merely bends: 0 .. 1. Discs reach 0.25 and more
/// and other things hardly ever do; the figures are in docs/disc.md.
double discMerit(const LimbFit &fit);

/// The least merit that is called a disc.
constexpr double leastDiscMerit = 0.25;

/// How sure it is that centre and radius are within 1 % of the radius, 0 .. 1.
double discConfidence(const LimbFit &fit);
