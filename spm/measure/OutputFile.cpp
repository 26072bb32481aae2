#include "spm/measure/OutputFile.h"

#include "common/Files.h"
#include "spm/Error.h"

#include <cerrno>
#include <cstdio>
#include <fmt/format.h>
#include <random>
#include <system_error>

namespace spm {

namespace {

namespace fs = std::filesystem;

Error failure(const fs::path& file, const std::string& reason) {
    return Error(fmt::format("can't write {}: {}", file.string(), reason),
                 "choose another file, or check permissions and free space in its folder");
}

std::string lastReason() {
    return std::generic_category().message(errno);
}

/// A file beside another one, which it can replace; the destructor removes it if it didn't.
class TemporaryFile {
public:
    TemporaryFile(const fs::path& file, const std::string& content) : target(fs::weakly_canonical(file)), path(target) {
        if (fs::exists(target) && !fs::is_regular_file(target)) throw failure(file, "it is not a regular file");
        path += fmt::format(".{:08x}.part", std::random_device{}());
        std::FILE* const stream = common::createFile(path, "w");
        if (stream == nullptr) throw failure(file, lastReason());
        const bool isWritten = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
        const std::string reason = lastReason();
        if (std::fclose(stream) == 0 && isWritten) return;
        std::error_code ignored;
        fs::remove(path, ignored);
        throw failure(file, isWritten ? lastReason() : reason);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }

    void replaceTarget() const {
        if (fs::exists(target)) fs::permissions(path, fs::status(target).permissions());
        fs::rename(path, target);
    }

private:
    fs::path target;
    fs::path path;
};

} // namespace

void replaceFile(const fs::path& file, const std::string& content) try {
    TemporaryFile(file, content).replaceTarget();
} catch (const fs::filesystem_error& error) {
    throw failure(file, error.code().message());
}

void requireWritable(const fs::path& file) try {
    const TemporaryFile temporary(file, "");
} catch (const fs::filesystem_error& error) {
    throw failure(file, error.code().message());
}

bool isSameFile(const fs::path& one, const fs::path& other) {
    std::error_code ignored;
    return fs::equivalent(one, other, ignored) ||
           fs::weakly_canonical(fs::absolute(one)) == fs::weakly_canonical(fs::absolute(other));
}

void writeToStdout(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    throw Error(fmt::format("can't write to standard output: {}", lastReason()));
}

void writeToStderr(const std::string& text) {
    static_cast<void>(std::fputs(text.c_str(), stderr));
}

} // namespace spm
