#include "spm/measure/OutputFile.h"

#include "common/System.h"
#include "spm/Error.h"

#include <cerrno>
#include <cstdio>
#include <fmt/format.h>
#include <random>
#include <system_error>
#include <utility>

namespace spm {

namespace {

namespace fs = std::filesystem;

Error failure(const std::string& file, const std::string& reason) {
    return {fmt::format("can't write {}: {}", file, reason), "choose another file or make room in its folder"};
}

std::string lastReason() {
    return std::generic_category().message(errno);
}

/// A new file beside another, removed with the object unless it took the other's place.
class PartFile {
public:
    explicit PartFile(const fs::path& file) : whole(fs::weakly_canonical(file)) {
        if (fs::exists(whole) && !fs::is_regular_file(whole)) throw failure(file.string(), "it is not a regular file");
        do {
            part = whole;
            part += fmt::format(".{:08x}.part", std::random_device{}());
            stream = common::createFile(part, "w");
        } while (stream == nullptr && errno == EEXIST);
        if (stream == nullptr) throw failure(file.string(), lastReason());
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    ~PartFile() {
        if (stream != nullptr) std::fclose(stream);
        std::error_code ignored;
        if (!part.empty()) fs::remove(part, ignored);
    }

    void write(const std::string& content) {
        const bool isWritten = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
        const int error = errno;
        if (std::fclose(std::exchange(stream, nullptr)) == 0 && isWritten) return;
        if (!isWritten) errno = error;
        throw failure(whole.string(), lastReason());
    }

    void takePlace() {
        if (fs::exists(whole)) fs::permissions(part, fs::status(whole).permissions());
        fs::rename(part, whole);
        part.clear();
    }

private:
    fs::path whole;
    fs::path part;
    std::FILE* stream = nullptr;
};

/// Runs what writes a file, and gives the system's errors the form of ours.
template <class Operation>
void writing(const fs::path& file, Operation operation) try {
    operation();
} catch (const fs::filesystem_error& error) {
    throw failure(file.string(), error.code().message());
}

} // namespace

void replaceFile(const fs::path& file, const std::string& content) {
    writing(file, [&] {
        PartFile part(file);
        part.write(content);
        part.takePlace();
    });
}

void writeOut(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    throw Error(fmt::format("can't write to standard output: {}", lastReason()));
}

void requireWritable(const fs::path& file) {
    writing(file, [&] { const PartFile part(file); });
}

bool isSameFile(const fs::path& one, const fs::path& other) {
    std::error_code ignored;
    if (fs::equivalent(one, other, ignored)) return true;
    const fs::path first = fs::weakly_canonical(one, ignored);
    const fs::path second = fs::weakly_canonical(other, ignored);
    return common::isSameFileName(first.filename(), second.filename()) &&
           (first.parent_path() == second.parent_path() ||
            fs::equivalent(first.parent_path(), second.parent_path(), ignored));
}

} // namespace spm
