// The module's own cost, each row beside the least that could be done in its place, in the same process and in turns.
// The module is the built library, over an SDK library that does nothing.

#include "bench/Limits.h"
#include "bench/Table.h"
#include "cap/CAPLoggingFile.h"
#include "cap/CAPLoggingHandler.h"
#include "host/System.h"

#include <array>
#include <cstdlib>
#include <fmt/format.h>
#include <fstream>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t rowLength = 24;

/// The folder that the bench writes to, removed with the object.
class Folder {
public:
    Folder() : path(fs::temp_directory_path() / fmt::format("spm bench {}", std::rand())) {
        fs::create_directory(path);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(path); }

    const fs::path path;
};

/// A listener as a host has it, which does nothing.
class Listener : public ICAPLoggingListener {
    void HandleMessage(ICAPLoggingSource* /*source*/, const ICAPLoggingMessage& /*message*/) override {}
};

void useSettings(const fs::path& file, int logging) {
    std::ofstream(file) << "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\n\"Logging\"=dword:0000000"
                        << logging << "\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM\\xrite i1 Pro3]\n";
}

/// Room for many patches, of which the host measures some.
class Patches {
public:
    explicit Patches(std::size_t count) : lab(count), points(rowLength), spectra(rowLength) {
        for (std::size_t i = 0; i < rowLength; ++i) {
            spectra[i] = {36, points[i].data()};
        }
    }

    std::vector<SPM_LAB> lab;
    std::vector<std::array<SPM_REFLECTION, 36>> points;
    std::vector<SPM_SPECTRUM> spectra;
};

void addReads(const host::Module& module, const bench::Sdk& sdk, SPM_HANDLE handle, Patches& patches) {
    const auto read = [&module, handle, &patches](std::int32_t wanted) {
        std::int32_t count = wanted;
        module.read(handle, patches.lab.data(), &count);
    };
    const auto press = [&sdk](bool isPressed) { sdk.setGlobalOption("Button", isPressed ? "0" : "1001"); };
    const auto unpressed = [press](const auto& operation) {
        return [press, operation] {
            press(false);
            operation();
            press(true);
        };
    };
    bench::add(
        "SPM_read, 24 patches", {.ratio = 1.10}, [read] { read(24); }, [&sdk] { sdk.read(24); });
    const auto readSpectra = [&module, handle, &patches] {
        std::int32_t count = rowLength;
        module.readSpectrum(handle, patches.spectra.data(), &count);
    };
    bench::add("SPM_readSpectrum, 24 patches", {.ratio = 1.10}, readSpectra, [&sdk] { sdk.readSpectrum(24); });
    bench::add("the same, against calls and conversion", {.ratio = 1.10}, readSpectra,
               [&sdk, &patches] { sdk.readSpectrum(24, patches.spectra.data()); });
    bench::add("SPM_read, a poll of 24", {.nanoseconds = 30}, unpressed([read] { read(24); }),
               unpressed([&sdk] { sdk.read(24); }));
    bench::add(
        "SPM_read, a spot", {.nanoseconds = 30}, [read] { read(1); }, [&sdk] { sdk.read(1); });
    for (const int count : {2, 10, 100, 1'000, 10'000, 100'000, 1'000'000}) {
        bench::add(
            fmt::format("SPM_read, {} patches", count), {.patches = count}, [read, count] { read(count); },
            [&sdk, count] { sdk.read(count); });
    }
}

void addObjects(const host::Module& module, const fs::path& moduleFile, const fs::path& folder) {
    const auto pair = [&module](const fs::path& settings) {
        return [&module, settings] {
            setenv("SPM_REGISTRY", settings.c_str(), 1);
            module.destroy(module.create());
        };
    };
    const auto limit = [](const fs::path& settings, const auto& calls) {
        return [settings, calls] {
            setenv("SPM_REGISTRY", settings.c_str(), 1);
            calls();
        };
    };
    const fs::path quiet = folder / "quiet.reg";
    const fs::path logging = folder / "logging.reg";
    useSettings(quiet, 0);
    useSettings(logging, 1);
    bench::add("SPM_create and SPM_destroy", {.ratio = 1.5}, pair(quiet),
               limit(quiet, [quiet] { bench::createAndDestroy(quiet); }));
    bench::add("SPM_create and SPM_destroy, with a log", {.ratio = 1.5}, pair(logging),
               limit(logging, [logging, folder] { bench::createAndDestroy(logging, folder / "raw.log"); }));
    bench::add(
        "SPM_getVersion", {.ratio = 1.5}, [&module] { module.getVersion(nullptr); },
        [moduleFile] { bench::getVersion(moduleFile); });
}

/// What is logged: the message of a failure, as the instrument gives it.
constexpr const char* text = "open[%s] failed";

void addLogLines(const fs::path& folder) {
    static CAPLoggingFile file;
    static CAPLoggingHandler hub;
    static CAPLoggingHandler idleHub;
    file.OpenFile((folder / "hub.log").c_str(), "a");
    hub.AddListener(&file);
    const auto log = [] { hub.Log(CAPLevel::error, 7, text, "USB"); };
    log();
    std::string line;
    std::ifstream written(folder / "hub.log");
    while (std::getline(written, line) && line.find("open[USB]") == std::string::npos) {
    }
    line += '\n';

    static const bench::RawFile raw(folder / "raw.log");
    bench::add("a log line, against write(2)", {.ratio = 1.25}, log, [line] { raw.write(line); });
    const auto logger = spdlog::basic_logger_st("bench", (folder / "spdlog.log").string());
    logger->set_pattern("%Y-%m-%d %H:%M:%S (UTC%z) [%P:%t:%n] M7 E: %v");
    logger->flush_on(spdlog::level::trace);
    bench::add("a log line, against spdlog", {.ratio = 1.0}, log,
               [logger] { logger->error("open[{}] failed", "USB"); });
    bench::add(
        "a log call without a listener", {.nanoseconds = 5}, [] { idleHub.Log(CAPLevel::error, 7, text, "USB"); },
        [] { benchmark::ClobberMemory(); });
}

int run(int argc, char** argv) {
    const Folder folder;
    const fs::path moduleFile = host::programFolder() / "null" / host::moduleFileName;
    useSettings(folder.path / "quiet.reg", 0);
    setenv("SPM_REGISTRY", (folder.path / "quiet.reg").c_str(), 1);
    const host::Module module(moduleFile);
    const bench::Sdk sdk(module);
    Patches patches(1'000'000);
    SPM_HANDLE const handle = module.create();
    if (!module.open(handle, "USB")) throw std::runtime_error("not open");
    addReads(module, sdk, handle, patches);
    addObjects(module, moduleFile, folder.path);
    addLogLines(folder.path);

    std::vector<std::string> arguments{argv, argv + argc};
    arguments.insert(arguments.begin() + 1, {"--benchmark_enable_random_interleaving=true",
                                             "--benchmark_repetitions=11", "--benchmark_min_time=0.02"});
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    auto count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;
    bench::Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    module.destroy(handle);
    fs::remove(fs::path(moduleFile).replace_extension(".log"));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        fmt::print(stderr, "bench: {}\n", error.what());
        return 1;
    }
}
