#pragma once

#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

/// A fuzz target: libFuzzer calls it for each input that it makes up, corpusdriver.cpp for each of the corpus.
/// @return 0
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size);

/// A property of the unit that has to hold for every input. The end of the process is what a fuzzer notices.
inline void require(bool holds, const char *property)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", property);
    std::abort();
}

/// The bytes of an input, taken from the front.
class FuzzInput
{
public:
    FuzzInput(const unsigned char *data, size_t size)
        : m_bytes(reinterpret_cast<const char *>(data), static_cast<int>(size))
    {
    }

    /// A number of any value; zeros where the input has ended.
    template <typename T>
    T take()
    {
        T value{};
        const int count = std::min(static_cast<int>(sizeof value), m_bytes.size() - m_at);
        std::memcpy(&value, m_bytes.constData() + m_at, static_cast<size_t>(count));
        m_at += count;
        return value;
    }

    /// From the first to the last, both included.
    int takeBetween(int first, int last) { return first + take<quint16>() % (last - first + 1); }

    /// The text up to the next line end, without it.
    QByteArray takeLine()
    {
        const int end = m_bytes.indexOf('\n', m_at);
        const QByteArray line = m_bytes.mid(m_at, end < 0 ? -1 : end - m_at);
        m_at = end < 0 ? m_bytes.size() : end + 1;
        return line;
    }

    bool atEnd() const { return m_at == m_bytes.size(); }
    QByteArray rest() const { return m_bytes.mid(m_at); }

private:
    QByteArray m_bytes;
    int m_at = 0;
};
