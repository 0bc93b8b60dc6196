#pragma once

#include <cstdint>

namespace projection
{

/// Integer part of a double, toward zero, with a result for every input.
/// @return the truncated value; -2147483648 for NaN and for everything whose integer part fits no int. The
///         plain conversion is undefined there; this is what the x86-64 instruction answers.
constexpr int truncateToInt(double value)
{
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<int>(value) : INT32_MIN;
}

/// The low 16 bits of a number, read as a signed 16-bit number: -32768 .. 32767, wrapping outside.
constexpr int wrapToInt16(int value)
{
    return static_cast<int16_t>(static_cast<uint16_t>(value));
}

} // namespace projection
