#pragma once

class MapPlan;
class Report;
struct MapOptions;

/// Converts the photographs of a plan, several at a time, each from file to file in one thread. Begins no more of
/// them after a first stop signal, or when nobody reads the report; all that were begun are finished.
void runPlan(const MapPlan &plan, const MapOptions &options, Report &report);
