#include "files/StandardStreams.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

#include "files/FileError.h"
#include "files/FileFormat.h"

namespace Tesseret::Files {

namespace fs = std::filesystem;

namespace {

constexpr const char* kStream = "-";
constexpr std::string_view kStreamAfterFormat = ":-";

int dataDescriptor = STDOUT_FILENO;  ///< where standard output's bytes go

void writeAll(const fs::path& file, int descriptor, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            throw FileError(file, std::string("cannot be written: ") + std::strerror(errno));
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

/// Standard input in memory, as a file that libraries can open. It lives as long as the process.
int readStandardInput()
{
    const fs::path file = kStream;
    if (::isatty(STDIN_FILENO) == 1) {
        throw FileError(file, "is a terminal; send a picture into it, as in < photo.png");
    }
    const int descriptor = ::memfd_create("standard input", MFD_CLOEXEC);
    if (descriptor < 0) throw FileError(file, std::strerror(errno));
    std::array<std::byte, 1 << 16> buffer{};
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            throw FileError(file, std::string("cannot be read: ") + std::strerror(errno));
        if (count == 0) return descriptor;
        writeAll(file, descriptor, std::span(buffer).first(static_cast<std::size_t>(count)));
    }
}

}  // namespace

bool isStandardInput(const fs::path& file)
{
    return file == kStream;
}

bool isStandardOutput(const fs::path& file)
{
    return file == kStream || !formatOfStandardOutput(file.string()).empty();
}

fs::path standardOutputIn(const FileFormat& format)
{
    return std::string(format.extensions.front().substr(1)).append(kStreamAfterFormat);
}

std::string_view formatOfStandardOutput(const std::string& name)
{
    const std::string_view text(name);
    const bool isStream = text.ends_with(kStreamAfterFormat) && text.find('/') == text.npos;
    return isStream ? text.substr(0, text.size() - kStreamAfterFormat.size()) : "";
}

fs::path storedFile(const fs::path& file)
{
    if (!isStandardInput(file)) return file;
    static std::mutex mutex;
    static int stored = -1;
    const std::lock_guard lock(mutex);
    if (stored < 0) stored = readStandardInput();
    return "/proc/self/fd/" + std::to_string(stored);
}

void checkStandardOutput(const fs::path& file)
{
    if (::isatty(dataDescriptor) == 1) {
        throw FileError(file, "is a terminal; send the picture to a file or a program");
    }
}

void writeStandardOutput(const fs::path& file, std::span<const std::byte> bytes)
{
    std::fflush(stdout);
    writeAll(file, dataDescriptor, bytes);
}

DataOutput::DataOutput()
{
    std::fflush(stdout);
    dataDescriptor = ::dup(STDOUT_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

DataOutput::~DataOutput()
{
    std::fflush(stdout);
    ::dup2(dataDescriptor, STDOUT_FILENO);
    ::close(std::exchange(dataDescriptor, STDOUT_FILENO));
}

}  // namespace Tesseret::Files
