#pragma once

#include <filesystem>

namespace Tesseret::Files {

/// Whether a PNG file is complete: its chunks follow one another up to the end chunk, with correct
/// checksums. Detects a damaged file before libpng does, which would print a line of its own.
bool isWholePng(const std::filesystem::path& file);

}  // namespace Tesseret::Files
