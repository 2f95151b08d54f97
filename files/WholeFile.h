#pragma once

/// Files as a whole: where one can be written, writing one that appears whole or not at all, and
/// telling one from another.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>

namespace Tesseret::Files {

/// Throws `FileError` when the file's folder does not exist or takes no files, or the file is a
/// folder itself.
void checkPlace(const std::filesystem::path& file);

/// Writes a file. The bytes go beside it under another name, are flushed to the disk, and take the
/// file's name then. On any failure `FileError` is thrown, what stood there before still stands,
/// and nothing else is left.
void writeWhole(const std::filesystem::path& file, std::span<const std::byte> bytes);

/// Tells one existing file from another, through links and odd spellings too.
using FileIdentity = std::pair<std::uintmax_t, std::uintmax_t>;
/// Nothing when there is no such file.
std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file);

}  // namespace Tesseret::Files
