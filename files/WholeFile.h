#pragma once

/// Files as a whole: whether one can be written, writing one that appears whole or not at all, and
/// whether two names are one file.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>

namespace Tesseret::Files {

/// Throws `FileError` when the file's folder does not exist or is not writable, or the file is a
/// folder itself.
void checkPlace(const std::filesystem::path& file);

/// Writes a file: the bytes are written beside it under another name, flushed to the disk, and then
/// renamed. On failure it throws `FileError`, keeps the older file, and leaves no other file
/// behind. What a process that was killed left behind for this file is removed by the next that
/// writes it on the same machine. Several processes may write one file: each writes a whole one.
void writeWhole(const std::filesystem::path& file, std::span<const std::byte> bytes);

/// Identifies an existing file, whatever link or spelling leads to it.
using FileIdentity = std::pair<std::uintmax_t, std::uintmax_t>;
/// Returns nullopt when there is no such file.
std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file);

}  // namespace Tesseret::Files
