#pragma once

#include "mapoptions.h"

#include <QHash>
#include <QString>

#include <optional>

/// One photograph and the map that is made of it.
struct MapJob {
    QString photograph;
    QString map;
};

/// What a run will do: which photographs of the list, into which files. Knows the whole list and makes each job
/// when it is asked for.
class MapPlan
{
public:
    /// @param options  outlive this
    /// @param problem  receives one line when the plan is impossible: two photographs with one map, a map in the
    ///                 place of a photograph, several photographs into one file
    static std::optional<MapPlan> made(const MapOptions &options, QString &problem);

    /// Makes the folder of the maps, if it is missing. @return why that is impossible; empty if it is not
    QString prepareFolder() const;

    /// The number of jobs in this run's share of the list.
    int count() const;
    /// @param index  0 .. count() - 1
    MapJob job(int index) const;
    /// "jpg" or "png"
    QString format() const { return m_format; }

private:
    explicit MapPlan(const MapOptions &options);
    MapJob jobAt(int position) const;
    QString collision() const;

    const MapOptions *m_options;
    bool m_intoFile = false; // the output is a file for the only photograph
    QString m_folder;        // with its slash; empty: beside each photograph
    QString m_format;
};
