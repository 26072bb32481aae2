#include "bench/Table.h"

#include <algorithm>
#include <fmt/format.h>

namespace bench {

namespace {

constexpr const char* moduleSuffix = ", module";
constexpr const char* limitSuffix = ", limit";

struct Row {
    std::string name;
    Goal goal;
};

std::vector<Row>& rows() {
    static std::vector<Row> all;
    return all;
}

std::string verdict(const Goal& goal, double module, double limit) {
    if (goal.ratio > 0) {
        return fmt::format("{:>6.2f} <= {:<6.2f} {}", module / limit, goal.ratio,
                           module <= limit * goal.ratio ? "met" : "MISSED");
    }
    if (goal.nanoseconds > 0) {
        return fmt::format("+{:.1f} ns <= {:.0f} ns {}", module - limit, goal.nanoseconds,
                           module - limit <= goal.nanoseconds ? "met" : "MISSED");
    }
    return fmt::format("{:>6.2f}, {:.2f} ns a patch", module / limit, module / goal.patches);
}

} // namespace

void add(const std::string& row, const Goal& goal, const std::function<void()>& module,
         const std::function<void()>& limit) {
    rows().push_back({row, goal});
    const auto run = [](const std::function<void()>& operation) {
        return [operation](benchmark::State& state) {
            for (auto _ : state) {
                operation();
            }
        };
    };
    benchmark::RegisterBenchmark((row + moduleSuffix).c_str(), run(module));
    benchmark::RegisterBenchmark((row + limitSuffix).c_str(), run(limit));
}

bool Table::ReportContext(const Context& /*context*/) {
    return true;
}

void Table::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type == Run::RT_Iteration) times[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
    }
}

double Table::median(const std::string& name) {
    std::vector<double>& all = times.at(name);
    const auto middle = all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2);
    std::nth_element(all.begin(), middle, all.end());
    return *middle;
}

void Table::Finalize() {
    fmt::print("{:<44} {:>12} {:>12}   {}\n", "", "module, ns", "limit, ns", "ratio or difference, and goal");
    for (const Row& row : rows()) {
        if (!times.contains(row.name + moduleSuffix)) continue;
        const double module = median(row.name + moduleSuffix);
        const double limit = median(row.name + limitSuffix);
        fmt::print("{:<44} {:>12.1f} {:>12.1f}   {}\n", row.name, module, limit, verdict(row.goal, module, limit));
    }
}

} // namespace bench
