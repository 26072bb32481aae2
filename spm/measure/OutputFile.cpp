#include "spm/measure/OutputFile.h"

#include "common/Files.h"
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
    return Error(fmt::format("can't write {}: {}", file, reason),
                 "choose another file, or check permissions and free space in its folder");
}

std::string lastReason() {
    return std::generic_category().message(errno);
}

/// A temporary file in the target's folder. The destructor removes it unless it replaced the target.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& file) : target(fs::weakly_canonical(file)) {
        const bool isUsable = fs::is_regular_file(target) || !fs::exists(target);
        if (!isUsable) throw failure(file.string(), "it is not a regular file");
        do {
            path = target;
            path += fmt::format(".{:08x}.part", std::random_device{}());
            stream = common::createFile(path, "w");
        } while (stream == nullptr && errno == EEXIST);
        if (stream == nullptr) throw failure(file.string(), lastReason());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (stream != nullptr) std::fclose(stream);
        std::error_code ignored;
        if (!path.empty()) fs::remove(path, ignored);
    }

    void write(const std::string& content) {
        const bool isWritten = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
        const int error = errno;
        if (std::fclose(std::exchange(stream, nullptr)) == 0 && isWritten) return;
        if (!isWritten) errno = error;
        throw failure(target.string(), lastReason());
    }

    void replaceTarget() {
        if (fs::exists(target)) fs::permissions(path, fs::status(target).permissions());
        fs::rename(path, target);
        path.clear();
    }

private:
    fs::path target;
    fs::path path;
    std::FILE* stream = nullptr;
};

/// Runs an operation on a file, and turns std::filesystem's errors into ours.
template <class Operation>
void convertErrors(const fs::path& file, Operation operation) try {
    operation();
} catch (const fs::filesystem_error& error) {
    throw failure(file.string(), error.code().message());
}

} // namespace

void replaceFile(const fs::path& file, const std::string& content) {
    convertErrors(file, [&] {
        TemporaryFile temporary(file);
        temporary.write(content);
        temporary.replaceTarget();
    });
}

void requireWritable(const fs::path& file) {
    convertErrors(file, [&] { const TemporaryFile temporary(file); });
}

bool isSameFile(const fs::path& one, const fs::path& other) {
    std::error_code ignored;
    return fs::equivalent(one, other, ignored) ||
           fs::weakly_canonical(fs::absolute(one), ignored) == fs::weakly_canonical(fs::absolute(other), ignored);
}

void writeToStdout(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    throw Error(fmt::format("can't write to standard output: {}", lastReason()));
}

void writeToStderr(const std::string& text) {
    static_cast<void>(std::fputs(text.c_str(), stderr));
}

} // namespace spm
