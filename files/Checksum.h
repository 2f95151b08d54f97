#pragma once

/// FNV-1a with 64 bits (Fowler, Noll and Vo 1991): tells files apart and finds damage, not forgery.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace Tesseret::Files {

/// Of bytes; `before` continues the checksum of those in front of them.
std::uint64_t checksum(std::span<const std::byte> bytes, std::uint64_t before = 0xcbf29ce484222325);

/// Of a file's bytes, as 16 hexadecimal digits. Throws `FileError` when it cannot be read.
std::string checksumOf(const std::filesystem::path& file);

}  // namespace Tesseret::Files
