#pragma once

#include <benchmark/benchmark.h>
#include <map>
#include <string>
#include <vector>

/// An operation of the module, and a reference to compare it with: other code that does the same job.
struct Row {
    using Function = void (*)();

    const char* name;
    Function operation;
    /// Null if there is nothing to compare with.
    const char* referenceName = nullptr;
    Function reference = nullptr;
    /// The largest accepted ratio of the operation's time to the reference's.
    double limit = 0;
};

/// Benchmarks the operations and references of all rows, and prints the rows with the medians of the repetitions.
class Table : public benchmark::BenchmarkReporter {
public:
    explicit Table(std::vector<Row> rows);

    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    void print(const Row& row) const;

    std::vector<Row> rows;
    /// The medians in nanoseconds, by name.
    std::map<std::string, double> medians;
};
