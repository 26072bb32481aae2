#pragma once

#include <benchmark/benchmark.h>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench {

/// How much more than the limit a row may cost: as a ratio, or in nanoseconds on top.
struct Goal {
    double ratio = 0;
    double nanoseconds = 0;
    /// Where there is no goal: how many patches the row's cost is for.
    int patches = 0;
};

/// Registers a row: what the module does, and the limit for it. Both are measured in turns.
void add(const std::string& row, const Goal& goal, const std::function<void()>& module,
         const std::function<void()>& limit);

/// Prints a line per row, with the medians of all repetitions.
class Table : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    double median(const std::string& name);

    std::map<std::string, std::vector<double>> times;
};

} // namespace bench
