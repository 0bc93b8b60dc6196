#pragma once

#include <QRandomGenerator>

#include <initializer_list>

/// The random source of all tests: from a seed that stands in the test, so that every machine draws the same.
/// Draw twice in one expression only inside braces, where the order is fixed.
class Rng
{
public:
    explicit Rng(quint32 seed) : m_generator(seed) {}

    /// All 32 bits.
    quint32 word() { return m_generator.generate(); }
    /// From the first to the last, both included; any ints in order.
    int between(int first, int last)
    {
        const auto count = static_cast<quint64>(qint64{last} - first + 1);
        return static_cast<int>(first + static_cast<qint64>(word() * count >> 32U));
    }
    /// From the first to before the last.
    double real(double first, double last) { return first + (last - first) * m_generator.generateDouble(); }
    bool oneIn(int n) { return between(1, n) == 1; }
    /// One of some values.
    template <typename T>
    T of(std::initializer_list<T> values)
    {
        return values.begin()[between(0, static_cast<int>(values.size()) - 1)];
    }
    template <typename List>
    typename List::value_type of(const List &values)
    {
        return values[static_cast<typename List::size_type>(between(0, static_cast<int>(values.size()) - 1))];
    }

private:
    QRandomGenerator m_generator;
};
