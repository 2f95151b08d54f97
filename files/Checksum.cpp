#include "files/Checksum.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <vector>

#include "files/FileError.h"

namespace Tesseret::Files {

std::uint64_t checksum(std::span<const std::byte> bytes, std::uint64_t before)
{
    constexpr std::uint64_t kPrime = 0x100000001b3;
    std::uint64_t sum = before;
    for (const std::byte byte : bytes) sum = (sum ^ std::to_integer<std::uint64_t>(byte)) * kPrime;
    return sum;
}

std::string checksumOf(const std::filesystem::path& file)
{
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::uint64_t sum = checksum({});
    std::vector<char> buffer(1 << 20);
    while (stream) {
        stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        const auto count = static_cast<std::size_t>(stream.gcount());
        sum = checksum(std::as_bytes(std::span(buffer).first(count)), sum);
    }
    if (!stream.eof())
        throw FileError(file, std::string("cannot be read: ") + std::strerror(errno));
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(sum));
    return text.data();
}

}  // namespace Tesseret::Files
