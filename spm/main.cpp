#include "spm/Console.h"
#include "spm/doctor/Doctor.h"
#include "spm/Error.h"
#include "spm/measure/Measure.h"
#include "spm/measure/OutputFile.h"
#include "spm/Module.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace {

constexpr int usageError = 2;

constexpr const char* measureHelp =
    R"(Calibrates the instrument on its white reference, then measures a chart row by row, or single spots. Values go to
standard output or to a file, in which each row is saved as soon as it is measured; instructions and errors go to
standard error. A row that fails can be repeated or skipped. Ctrl-C closes the instrument and keeps the values so far;
--resume goes on with the file.

Exit status:
  0  everything was measured
  1  something failed; the values measured before are still written
  2  the command line is wrong
  3  some patches were not measured: rows were skipped, or Ctrl-C stopped the run
  4  everything was measured, but differences from the reference exceed the tolerance

Examples:
  $ spm measure --chart chart.csv --spectra --output values.cgats --report page.html
  $ spm measure --output values.cgats --resume
  $ spm measure --spots 3 --names paper,black,red --format json
  $ spm measure --chart chart.csv --reference expected.csv --tolerance mean=2,max=3)";

constexpr const char* doctorHelp =
    R"(Checks everything that measuring needs: the module and the SDK library, the settings and the log file, the instrument
and its calibration. Reports the state of each, and how to fix what is wrong.

Exit status:
  0  ready to measure
  1  not ready
  2  the command line is wrong)";

CLI::Option* addFile(CLI::App& command, const char* name, std::filesystem::path& path, const char* description) {
    const auto assign = [&path, name](const std::string& file) {
        if (file.empty()) throw CLI::ValidationError(name, "the file name is empty");
        path = std::u8string(file.begin(), file.end());
    };
    return command.add_option_function<std::string>(name, assign, description)->option_text("FILE");
}

void addModule(CLI::App& command, std::filesystem::path& path) {
    path = spm::defaultModule();
    addFile(command, "--module", path,
            "module to load (default: the one in this program's folder, or installed with it)");
}

void addChart(CLI::App& measure, spm::MeasureOptions& options) {
    auto* const chart = addFile(measure, "--chart", options.chart,
                                "file that names the patches: CSV with a header line, CGATS, or JSON from spm");
    measure.add_option("--names", options.names, "patch names separated by commas, instead of a chart file")
        ->delimiter(',')
        ->excludes(chart);
    auto* const rows =
        measure.add_option("--rows", options.rows, "rows of the chart (default: as the names require, or 4)");
    auto* const patches = measure.add_option("--patches", options.patchesInRow,
                                             "patches in a row (default: 6); the last row may be shorter");
    rows->check(CLI::Range(1, 1000));
    patches->check(CLI::Range(2, 1000));
    measure.add_option("--spots", options.spots, "measure this many spots instead of rows")
        ->check(CLI::Range(1, 100'000))
        ->excludes(rows)
        ->excludes(patches);
}

void addConditions(CLI::App& measure, spm::MeasureOptions& options) {
    measure.add_flag("--spectra", options.spectra,
                     "measure reflectance spectra, and calculate CIELab from them (default: CIELab by the instrument)");
    measure
        .add_option("--illuminant", options.illuminant, "measure spectra, for CIELab of this illuminant (default: D65)")
        ->check(CLI::IsMember(std::vector<std::string>(spm::illuminants.begin(), spm::illuminants.end())));
    measure.add_option("--observer", options.observer, "measure spectra, for CIELab of this observer (default: 10)")
        ->check(CLI::IsMember({2, 10}));
    measure.add_flag("--xyz", options.withXyz, "write X, Y and Z in addition to CIELab");
}

void addOutput(CLI::App& measure, spm::MeasureOptions& options) {
    auto* const output = addFile(measure, "--output", options.plan.output,
                                 "file to write the values to: .csv, .json, .cgats or .txt (CGATS)");
    measure.add_option("--format", options.format, "format of standard output (default: table)")
        ->check(CLI::IsMember({"table", "csv", "json", "cgats"}))
        ->excludes(output);
    addFile(measure, "--report", options.plan.report, "HTML report to write");
    auto* const overwrite = measure.add_flag("--overwrite", options.overwrite, "replace existing output files");
    measure.add_flag("--resume", options.plan.isResumed, "measure what is missing in the output file")
        ->needs(output)
        ->excludes(overwrite);
}

void addComparison(CLI::App& measure, spm::MeasureOptions& options) {
    auto* const reference =
        addFile(measure, "--reference", options.reference,
                "file of expected values (name, L*, a*, b*) to compare with by CIEDE2000, in a format as for --chart");
    measure
        .add_option("--tolerance", options.tolerance,
                    "upper limits of the differences, such as mean=2,max=5: mean, median, p90, p95, max; all patches "
                    "need an expected value then")
        ->delimiter(',')
        ->needs(reference);
}

void addMeasure(CLI::App& app, spm::MeasureOptions& options) {
    CLI::App* const measure = app.add_subcommand("measure", "measure a chart or spots");
    measure->footer(measureHelp);
    addModule(*measure, options.plan.module);
    addChart(*measure, options);
    addConditions(*measure, options);
    addOutput(*measure, options);
    addComparison(*measure, options);
    measure->add_option("--wait", options.plan.waitLimit, "how long to wait for the button, in seconds (default: 300)")
        ->check(CLI::Range(1, 86'400));
}

int diagnose(const std::filesystem::path& module) {
    const std::vector<spm::Finding> findings = spm::examine(module);
    spm::writeToStdout(spm::formatFindings(findings, spm::supportsColour()));
    return spm::isReady(findings) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int run(std::vector<std::string> arguments) {
    CLI::App app{"spm - measures colour through the spectrophotometer module", "spm"};
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "spm " SPM_PROGRAM_VERSION, "show this program's version");
    app.set_help_all_flag("--help-all", "show all help");
    std::filesystem::path module;
    CLI::App* const doctor = app.add_subcommand("doctor", "check the installation and suggest fixes");
    doctor->footer(doctorHelp);
    addModule(*doctor, module);
    spm::MeasureOptions options;
    addMeasure(app, options);
    options.words = arguments;
    try {
        std::reverse(arguments.begin(), arguments.end()); // as CLI11 expects them
        app.parse(arguments);
        if (app.get_subcommands().empty()) throw CLI::RequiredError::Subcommand(1);
    } catch (const CLI::ParseError& error) {
        const bool isHelp = app.exit(error) == 0;
        if (!std::cout.flush()) return EXIT_FAILURE;
        return isHelp ? EXIT_SUCCESS : usageError;
    }
    return doctor->parsed() ? diagnose(module) : static_cast<int>(spm::measure(options));
}

} // namespace

int main(int argc, char** argv) {
    try {
        spm::prepareStreams();
        return run(spm::arguments(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "spm: %s\n", error.what());
        return dynamic_cast<const spm::UsageError*>(&error) != nullptr ? usageError : EXIT_FAILURE;
    }
}
