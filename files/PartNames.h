#pragma once

/// The names of files that are being written, beside those that they become: with the machine and
/// the process that writes them, so that what is left of a dead process is told from the rest.

#include <filesystem>

namespace Tesseret::Files {

/// The folder of a file; the current one where the name has none.
std::filesystem::path folderOf(const std::filesystem::path& file);

/// A name for the next file of this process; unique among all writers.
std::filesystem::path partNameOf(const std::filesystem::path& target);

/// Removes the files that dead processes of this machine left behind while they wrote `target`. The
/// folder is looked through once in each process.
void removeLeftovers(const std::filesystem::path& target);

}  // namespace Tesseret::Files
