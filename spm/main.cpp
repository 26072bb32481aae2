#include "spm/Console.h"
#include "spm/doctor/Doctor.h"
#include "spm/Error.h"
#include "spm/Instrument.h"
#include "spm/measure/Measure.h"
#include "spm/measure/OutputFile.h"
#include "spm/Module.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <iostream>
#include <map>

namespace {

constexpr int usageError = 2;

constexpr const char* measureHelp =
    R"(Calibrates the instrument on its white reference, then measures a chart row by row, or single spots. Values go to
standard output or to a file, in which each row is saved as soon as it is measured; instructions and errors go to
standard error. A row that fails can be repeated or skipped. Ctrl-C closes the instrument and keeps the values so far.

Exit status:
  0  everything was measured
  1  something failed; the values measured before are still written
  2  the command line is wrong
  3  some patches were not measured: rows were skipped, or Ctrl-C stopped the run
  4  everything was measured, but differences from the reference exceed the tolerance

Examples:
  spm measure --chart chart.csv --patches 6
  spm measure --lab --spectra --output chart.cgats --report chart.html
  spm measure --illuminant D50 --observer 2 --xyz
  spm measure --spots 3 --names paper,black,red --format json
  spm measure --chart chart.csv --reference expected.csv --tolerance mean=2,max=5)";

constexpr const char* doctorHelp =
    R"(Checks everything that measuring needs: the module and the SDK library, the settings and the log file, the instrument
and its calibration. Reports the state of each, and how to fix what is wrong.

Exit status:
  0  ready to measure
  1  not ready
  2  the command line is wrong

Examples:
  spm doctor
  spm doctor --module /opt/colour/spm_i1pro3.so)";

const std::map<std::string, spm::Format> formats{{"table", spm::Format::table},
                                                 {"csv", spm::Format::csv},
                                                 {"json", spm::Format::json},
                                                 {"cgats", spm::Format::cgats}};

const std::map<std::string, spm::Formula> formulas{
    {"2000", spm::Formula::ciede2000}, {"94", spm::Formula::cie94}, {"76", spm::Formula::cie76}};

CLI::Option* addFile(CLI::App& command, const char* name, std::filesystem::path& path, const char* description) {
    const auto assign = [&path, name](const std::string& file) {
        if (file.empty()) throw CLI::ValidationError(name, "the file name is empty");
        path = std::u8string(file.begin(), file.end());
    };
    return command.add_option_function<std::string>(name, assign, description)->option_text("FILE");
}

CLI::Option* addModule(CLI::App& command, std::filesystem::path& path) {
    path = spm::defaultModule();
    return addFile(command, "--module", path,
                   "module to load (default: the one in this program's folder, or installed with it)");
}

CLI::App* addDoctor(CLI::App& app, std::filesystem::path& module) {
    CLI::App* const doctor = app.add_subcommand("doctor", "check the installation and suggest fixes");
    doctor->footer(doctorHelp);
    addModule(*doctor, module);
    return doctor;
}

void addConditions(CLI::App& measure, spm::Conditions& conditions) {
    const auto calculate = [&conditions](const std::string&) { conditions.isCalculated = true; };
    measure.add_option("--illuminant", conditions.illuminant, "calculate CIELab from spectra for this illuminant")
        ->option_text("A|D50|D65 (with --observer alone: D65)")
        ->check(CLI::IsMember(std::vector<std::string>(spm::illuminants.begin(), spm::illuminants.end())))
        ->each(calculate);
    measure.add_option("--observer", conditions.observer, "calculate CIELab from spectra for this standard observer")
        ->option_text("2|10 (with --illuminant alone: 10)")
        ->check(CLI::IsMember({2, 10}))
        ->each(calculate);
}

void addComparison(CLI::App& measure, spm::MeasureOptions& options) {
    auto* const reference =
        addFile(measure, "--reference", options.reference,
                "file of expected values (name, L*, a*, b*) to compare with, in a format as for --chart");
    measure
        .add_option_function<std::string>(
            "--difference", [&options](const std::string& name) { options.difference = formulas.at(name); },
            "colour difference formula: CIEDE2000 (the default), CIE94 or CIE76")
        ->option_text("2000|94|76")
        ->check(CLI::IsMember(&formulas))
        ->needs(reference);
    measure
        .add_option_function<std::string>(
            "--tolerance", [&options](const std::string& text) { options.limits = spm::parseLimits(text); },
            "upper limits of the differences: mean, median, p90, p95, max")
        ->option_text("mean=2,max=5,...")
        ->needs(reference);
}

void addMeasure(CLI::App& app, spm::MeasureOptions& options) {
    CLI::App* const measure = app.add_subcommand("measure", "measure a chart or spots");
    measure->footer(measureHelp);
    addModule(*measure, options.module);
    auto* const rows = measure->add_option("--rows", options.rows, "rows of the chart");
    auto* const patches = measure->add_option("--patches", options.patchesInRow, "patches in a row");
    rows->check(CLI::Range(1, 1000))->option_text("1..1000 (default: as the number of names requires, or 4)");
    patches->check(CLI::Range(2, 1000))->option_text("2..1000 (default: 6)");
    measure->add_option("--spots", options.spots, "measure this many spots instead of rows")
        ->option_text("1..100000")
        ->check(CLI::Range(1, 100'000))
        ->excludes(rows)
        ->excludes(patches);
    auto* const chart = addFile(*measure, "--chart", options.chart,
                                "file that names the patches: CSV with a header line, CGATS, or JSON from spm");
    measure
        ->add_option("--names", options.names,
                     "patch names separated by commas; for names with commas, use a chart file")
        ->option_text("NAMES")
        ->delimiter(',')
        ->excludes(chart);
    measure->add_flag("--lab", options.lab, "measure CIELab for D65 and 10 degree (the default)");
    measure->add_flag("--spectra", options.spectra, "measure reflectance spectra; with --lab both, in two passes");
    addConditions(*measure, options.conditions);
    measure->add_flag("--xyz", options.withXyz, "write X, Y and Z in addition to CIELab");
    measure
        ->add_option_function<std::string>(
            "--format", [&options](const std::string& name) { options.format = formats.at(name); },
            "output format (default: by the output file's extension, otherwise a table)")
        ->option_text("table|csv|json|cgats")
        ->check(CLI::IsMember(&formats));
    addFile(*measure, "--output", options.output, "file to write the values to instead of standard output");
    addFile(*measure, "--report", options.report, "HTML report to write");
    measure->add_flag("--overwrite", options.overwrite, "replace existing output files");
    measure->add_option("--first-row", options.firstRow, "continue with this row or spot, and complete the output file")
        ->option_text("1..100000")
        ->check(CLI::Range(1, 100'000));
    addComparison(*measure, options);
}

int diagnose(const std::filesystem::path& module) {
    const std::vector<spm::Finding> findings = spm::examine(module);
    spm::writeToStdout(spm::formatFindings(findings, spm::colourDepth(spm::isTerminal(stdout))));
    return spm::isReady(findings) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int list(const std::filesystem::path& file) {
    const spm::Module module(file);
    const spm::Instrument instrument(module);
    const std::string simulation = module.simulation();
    spm::writeToStdout(fmt::format("{}, {}{}\n", instrument.name(),
                                   instrument.isResponding() ? "responding" : "not responding",
                                   simulation.empty() ? "" : ", SIMULATED: " + simulation));
    std::fprintf(stderr, "spm: %s\n", spm::Instrument::caveat);
    return EXIT_SUCCESS;
}

void addList(CLI::App& app, bool& isListWanted, std::filesystem::path& module) {
    CLI::Option* const list = app.add_flag("--list", isListWanted, "show the instrument that the module uses");
    addModule(app, module)->needs(list);
    for (CLI::App* const command : app.get_subcommands({})) {
        command->excludes(list);
    }
}

/// The error for the first word that is neither a command nor an option, with the names that are.
spm::UsageError unknownName(const CLI::App& app) {
    const std::string word = app.remaining(true).front();
    const bool hasCommand = !app.get_subcommands().empty();
    std::vector<std::string> known;
    for (const CLI::Option* const option : (hasCommand ? *app.get_subcommands().front() : app).get_options()) {
        known.push_back(option->get_name());
    }
    if (!hasCommand) known.insert(known.end(), {"doctor", "measure"});
    const char* const kind = word.starts_with('-') ? "option" : hasCommand ? "argument" : "command";
    return {fmt::format("unknown {} \"{}\"", kind, word), fmt::format("expected one of {}", fmt::join(known, ", "))};
}

int run(std::vector<std::string> arguments) {
    CLI::App app{"spm - measures colour through the spectrophotometer module", "spm"};
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "spm " SPM_PROGRAM_VERSION, "show this program's version");
    std::filesystem::path module;
    const CLI::App* const doctor = addDoctor(app, module);
    spm::MeasureOptions options;
    addMeasure(app, options);
    bool isListWanted = false;
    addList(app, isListWanted, module);
    try {
        std::reverse(arguments.begin(), arguments.end()); // as CLI11 expects them
        app.parse(arguments);
        if (!isListWanted && app.get_subcommands().empty()) throw CLI::RequiredError::Subcommand(1);
    } catch (const CLI::ExtrasError&) {
        throw unknownName(app);
    } catch (const CLI::ParseError& error) {
        const bool isHelp = app.exit(error) == 0;
        if (!std::cout.flush()) return EXIT_FAILURE;
        return isHelp ? EXIT_SUCCESS : usageError;
    }
    if (isListWanted) return list(module);
    if (doctor->parsed()) return diagnose(module);
    return static_cast<int>(spm::measure(options));
}

int report(const std::exception& error, int status) {
    std::fprintf(stderr, "spm: %s\n", error.what());
    return status;
}

} // namespace

int main(int argc, char** argv) {
    try {
        spm::prepareStreams();
        return run(spm::arguments(argc, argv));
    } catch (const spm::UsageError& error) {
        return report(error, usageError);
    } catch (const std::exception& error) {
        return report(error, EXIT_FAILURE);
    }
}
