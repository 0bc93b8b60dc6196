#pragma once

#include "vectorstate.h"

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

    /// In each round the fast ones take turns, too.
    void run(int rounds)
    {
        int most = 0;
        for (const Entry &entry : m_entries)
            most = std::max(most, entry.repeats);
        for (int turn = 0; turn < rounds * most; ++turn)
            for (Entry &entry : m_entries)
                if (turn % most < entry.repeats)
                    entry.times.push_back(timed(entry.job));
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
    static double timed(const std::function<void()> &job)
    {
        projection::clearUpperHalves(); // nobody pays for what another one left
        const ProcessorTime start;
        job();
        return start.elapsedMs();
    }

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
