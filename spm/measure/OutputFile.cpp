#include "spm/measure/OutputFile.h"

#include "spm/Error.h"

#include <cerrno>
#include <cstdio>
#include <fmt/format.h>
#include <fstream>
#include <system_error>

namespace spm {

namespace {

namespace fs = std::filesystem;

constexpr const char* advice = "choose another file or free its folder";

/// A file beside another, removed with the object unless it took the other's place.
class PartFile {
public:
    explicit PartFile(const fs::path& file) : whole(fs::weakly_canonical(file)), part(whole) {
        if (fs::exists(whole) && !fs::is_regular_file(whole)) {
            throw Error(fmt::format("can't write {}: it is no ordinary file", file.string()), advice);
        }
        part += ".part";
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    ~PartFile() {
        std::error_code ignored;
        fs::remove(part, ignored);
    }

    void write(const std::string& content) const try {
        std::ofstream stream;
        stream.exceptions(std::ios::badbit | std::ios::failbit);
        stream.open(part);
        stream << content;
        stream.close();
    } catch (const std::ios::failure&) {
        throw Error(fmt::format("can't write {}: {}", part.string(), std::generic_category().message(errno)), advice);
    }

    void takePlace() const {
        std::error_code error;
        if (fs::exists(whole)) fs::permissions(part, fs::status(whole).permissions(), error);
        fs::rename(part, whole, error);
        if (error) throw Error(fmt::format("can't write {}: {}", whole.string(), error.message()), advice);
    }

private:
    fs::path whole;
    fs::path part;
};

} // namespace

void replaceFile(const fs::path& file, const std::string& content) {
    const PartFile part(file);
    part.write(content);
    part.takePlace();
}

void writeOut(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    throw Error(fmt::format("can't write to standard output: {}", std::generic_category().message(errno)));
}

void requireWritable(const fs::path& file) {
    PartFile(file).write("");
}

} // namespace spm
