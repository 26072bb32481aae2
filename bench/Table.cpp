#include "bench/Table.h"

#include <fmt/format.h>
#include <utility>

Table::Table(std::vector<Row> allRows) : rows(std::move(allRows)) {
    std::map<std::string, Row::Function> functions; // several rows can share an operation
    for (const Row& row : rows) {
        functions[row.name] = row.operation;
        if (row.reference != nullptr) functions[row.referenceName] = row.reference;
    }
    for (const auto& [name, function] : functions) {
        benchmark::RegisterBenchmark(name.c_str(), [function = function](benchmark::State& state) {
            for (auto _ : state) {
                function();
            }
        });
    }
}

bool Table::ReportContext(const Context& /*context*/) {
    return true;
}

void Table::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedRealTime();
    }
}

void Table::Finalize() {
    fmt::print("{:<30}{:>10}   {:<30}{:>8}{:>8}{:>8}\n", "operation", "ns", "compared with", "ns", "ratio", "limit");
    for (const Row& row : rows) {
        if (medians.contains(row.name)) print(row);
    }
}

void Table::print(const Row& row) const {
    const double operation = medians.at(row.name);
    fmt::print("{:<30}{:>10.0f}", row.name, operation);
    if (row.reference != nullptr && medians.contains(row.referenceName)) {
        const double reference = medians.at(row.referenceName);
        const double ratio = operation / reference;
        fmt::print("   {:<30}{:>8.0f}{:>8.2f}{:>8.2f}  {}", row.referenceName, reference, ratio, row.limit,
                   ratio <= row.limit ? "met" : "MISSED");
    }
    fmt::print("\n");
}
