#pragma once

/// Standard input and output in place of files: "-", and for output also "png:-" or "exr:-", which
/// names the format.

#include <cstddef>
#include <filesystem>
#include <span>
#include <string_view>

namespace Tesseret::Files {

struct FileFormat;

bool isStandardInput(const std::filesystem::path& file);
bool isStandardOutput(const std::filesystem::path& file);

/// The name of standard output in a format, "png:-".
std::filesystem::path standardOutputIn(const FileFormat& format);
/// "png" of "png:-"; empty for any other name.
std::string_view formatOfStandardOutput(const std::string& name);

/// Where a file's bytes can be read by name, more than once: the file itself. Standard input is
/// read to its end for that, the first time, and kept in memory. Throws `FileError`.
std::filesystem::path storedFile(const std::filesystem::path& file);

/// Throws `FileError` where standard output shows on a terminal.
void checkStandardOutput(const std::filesystem::path& file);

/// Writes to standard output, also while it is kept for data. Throws `FileError`.
void writeStandardOutput(const std::filesystem::path& file, std::span<const std::byte> bytes);

/// Keeps standard output for data: while it lives, what the process prints there goes to standard
/// error. One at a time.
class DataOutput {
public:
    DataOutput();
    ~DataOutput();
    DataOutput(const DataOutput&) = delete;
    DataOutput& operator=(const DataOutput&) = delete;
};

}  // namespace Tesseret::Files
