#pragma once

#include <QtGlobal>

#include <random>

/// Random draws that are the same with every compiler and library: std::mt19937 is defined to the bit, and the
/// standard's distributions are not.
class Draws
{
public:
    explicit Draws(quint32 seed) : m_engine(seed)
    {
        m_engine.discard(16); // neighbouring seeds begin alike
    }

    /// From 0, included, to 1, not included.
    double unit() { return static_cast<double>(m_engine()) / 4294967296.0; }
    double between(double low, double high) { return low + (high - low) * unit(); }
    /// From low to high, both included.
    int whole(int low, int high) { return low + static_cast<int>(unit() * (high - low + 1)); }
    bool happens(double chance) { return unit() < chance; }

    /// Mean 0, standard deviation 1: near enough to the normal distribution, at most 3.46 away from the mean.
    double noise()
    {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i)
            sum += unit();
        return sum;
    }
    /// The same from four draws, for every pixel: at most 3.46 away from the mean.
    double quickNoise()
    {
        const auto a = static_cast<quint32>(m_engine());
        const auto b = static_cast<quint32>(m_engine());
        const auto sum = static_cast<double>((a & 0xffffU) + (a >> 16) + (b & 0xffffU) + (b >> 16));
        return (sum / 65536.0 - 2.0) * 1.7320508075688772;
    }

private:
    std::mt19937 m_engine;
};
