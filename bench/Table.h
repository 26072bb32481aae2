#pragma once

#include <benchmark/benchmark.h>
#include <map>
#include <string>
#include <vector>

/// An operation of the module, and the least that could be done in its place.
struct Row {
    using Function = void (*)();

    const char* name;
    Function operation;
    /// What the operation is compared with; null for nothing.
    const char* referenceName = nullptr;
    Function reference = nullptr;
    /// How many times the reference's time the operation may take.
    double limit = 0;
};

/// Measures the operations and references of all rows, and prints the rows with the medians of the repetitions.
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
