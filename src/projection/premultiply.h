#pragma once

#include <cstdint>

namespace projection
{

/// A straight ARGB pixel as a premultiplied canvas stores it: each colour channel c with alpha a becomes
/// (2 * c * a + 255) / 510 in whole numbers, which is c * a / 255 rounded to nearest; alpha stays. This is
/// what QImage::setPixelColor writes for the colour of an ARGB32 pixel, for every c and a (qPremultiply and
/// QImage::convertToFormat differ from it in 24 pairs).
constexpr uint32_t premultiplied(uint32_t argb)
{
    // Two channels at once. With t = c * a + 128 the quotient is (t + t / 256) / 256, exact up to 255 * 255.
    const uint32_t alpha = argb >> 24;
    uint32_t redBlue = (argb & 0x00ff00ffU) * alpha + 0x00800080U;
    redBlue = (redBlue + ((redBlue >> 8) & 0x00ff00ffU)) >> 8 & 0x00ff00ffU;
    uint32_t green = (argb >> 8 & 0xffU) * alpha + 0x80U;
    green = (green + (green >> 8)) & 0x0000ff00U;
    return (argb & 0xff000000U) | redBlue | green;
}

} // namespace projection
