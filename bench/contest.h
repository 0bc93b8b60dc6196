#pragma once

#include <QString>

#include <algorithm>
#include <ctime>
#include <functional>
#include <utility>
#include <vector>

/// Time that this process has spent computing since then. Unlike the time of the clock it does not count what
/// the machine does for others meanwhile.
class ProcessorTime
{
public:
    double elapsedMs() const { return double(std::clock() - m_start) * 1000 / CLOCKS_PER_SEC; }

private:
    std::clock_t m_start = std::clock();
};

/// Contestants that take turns; times in milliseconds.
class Contest
{
public:
    /// @param repeats  how often it runs in each round; fast ones run more often than slow ones
    void add(const QString &name, int repeats, std::function<void()> job)
    {
        m_entries.push_back({name, repeats, std::move(job), {}});
    }

    void run(int rounds)
    {
        for (int round = 0; round < rounds; ++round)
            for (Entry &entry : m_entries)
                for (int i = 0; i < entry.repeats; ++i) {
                    const ProcessorTime start;
                    entry.job();
                    entry.times.push_back(start.elapsedMs());
                }
    }

    bool has(const QString &name) const { return find(name) != m_entries.end(); }
    /// Median time of one over that of the other; 0 if one of them did not take part.
    double ratio(const QString &name, const QString &over) const
    {
        return has(name) && has(over) ? middle(find(name)->times) / middle(find(over)->times) : 0;
    }

    std::vector<std::pair<QString, double>> medians() const
    {
        std::vector<std::pair<QString, double>> result;
        for (const Entry &entry : m_entries)
            result.emplace_back(entry.name, middle(entry.times));
        return result;
    }

private:
    struct Entry {
        QString name;
        int repeats;
        std::function<void()> job;
        std::vector<double> times;
    };

    static double middle(std::vector<double> times)
    {
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }
    std::vector<Entry>::const_iterator find(const QString &name) const
    {
        return std::find_if(m_entries.begin(), m_entries.end(),
                            [&](const Entry &entry) { return entry.name == name; });
    }

    std::vector<Entry> m_entries;
};
