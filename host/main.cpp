#include "host/HostError.h"
#include "host/Measure.h"
#include "host/System.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>

namespace {

int run(int argc, char** argv) {
    CLI::App app{"spm - measures colour through the spectrophotometer module"};
    app.require_subcommand(1);

    host::MeasureOptions options;
    CLI::App* const measure = app.add_subcommand("measure", "calibrate, measure a chart row by row and one spectrum");
    measure->add_option("--module", options.module, "module to load (default: the one beside this program)");
    measure->add_option("--chart", options.chart, "CSV file whose lines begin with the patches' names");
    measure->add_option("--rows", options.rows, "rows of the chart")->check(CLI::Range(1, 1000))->capture_default_str();
    measure->add_option("--patches", options.patches, "patches in a row")
        ->check(CLI::Range(2, 1000))
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    if (options.module.empty()) options.module = host::programFolder() / host::moduleFileName;
    host::measure(options);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fflush(stdout);
        std::fprintf(stderr, "spm: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
