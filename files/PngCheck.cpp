#include "files/PngCheck.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <vector>

#include <zlib.h>

#include "files/PngChunk.h"

namespace Tesseret::Files {

namespace {

constexpr std::streamoff kSignatureBytes = 8;
constexpr std::uint32_t kMaxChunkBytes = 0x7fffffff;
constexpr std::size_t kBufferBytes = 1 << 16;

bool readBytes(std::ifstream& stream, unsigned char* bytes, std::size_t count)
{
    return static_cast<bool>(
        stream.read(reinterpret_cast<char*>(bytes), static_cast<std::streamsize>(count)));
}

}  // namespace

bool isWholePng(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(kSignatureBytes);
    std::vector<unsigned char> buffer(kBufferBytes);
    std::array<unsigned char, 8> head{};  // length, type
    while (readBytes(stream, head.data(), head.size())) {
        std::uint32_t left = bigEndian(head.data());
        if (left > kMaxChunkBytes) return false;
        uLong checksum = crc32(0, head.data() + 4, 4);  // over the type and the data
        while (left > 0) {
            const std::uint32_t count = left < kBufferBytes ? left : std::uint32_t{kBufferBytes};
            if (!readBytes(stream, buffer.data(), count)) return false;
            checksum = crc32(checksum, buffer.data(), count);
            left -= count;
        }
        std::array<unsigned char, 4> stored{};
        if (!readBytes(stream, stored.data(), stored.size())) return false;
        if (bigEndian(stored.data()) != checksum) return false;
        if (std::memcmp(head.data() + 4, "IEND", 4) == 0) return true;
    }
    return false;
}

}  // namespace Tesseret::Files
