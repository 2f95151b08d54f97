#pragma once

#include <cstdint>

namespace Tesseret::Files {

/// The four bytes at an address as PNG stores numbers.
inline std::uint32_t bigEndian(const void* address)
{
    const auto* const bytes = static_cast<const unsigned char*>(address);
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | std::uint32_t{bytes[3]};
}

inline void putBigEndian(std::uint32_t value, void* address)
{
    auto* const bytes = static_cast<unsigned char*>(address);
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(value >> (24 - 8 * i));
}

}  // namespace Tesseret::Files
