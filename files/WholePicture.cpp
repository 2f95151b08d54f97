#include "files/WholePicture.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "files/FileError.h"
#include "files/FileFormat.h"

namespace Tesseret::Files {

namespace {

struct Size {
    std::uint64_t width, height;
    bool operator==(const Size&) const = default;
};

/// Numbers of a file by their place. A number beyond its end is 0, and the file is not whole.
class Bytes {
public:
    explicit Bytes(const std::filesystem::path& file) : stream_(file, std::ios::binary)
    {
        stream_.seekg(0, std::ios::end);
        const std::streamoff end = stream_.tellg();
        size_ = end < 0 ? 0 : static_cast<std::uint64_t>(end);
        isWhole_ = end >= 0;
    }

    std::uint64_t size() const { return size_; }
    bool isWhole() const { return isWhole_; }
    void setLittleEndian(bool on) { isLittle_ = on; }
    bool isInside(std::uint64_t at, std::uint64_t count) const
    {
        return at <= size_ && count <= size_ - at;
    }

    std::uint64_t number(std::uint64_t at, std::size_t count)
    {
        std::array<char, 8> bytes{};
        if (!read(at, std::span(bytes).first(count))) return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t place = isLittle_ ? count - 1 - i : i;
            value = value << 8 | static_cast<unsigned char>(bytes.at(place));
        }
        return value;
    }
    std::int64_t signedNumber(std::uint64_t at)
    {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(number(at, 4)));
    }
    /// A text that ends with a zero byte; empty where there is none.
    std::string text(std::uint64_t at)
    {
        constexpr std::size_t kMost = 256;
        std::string found(
            static_cast<std::size_t>(std::min<std::uint64_t>(kMost, at < size_ ? size_ - at : 0)),
            '\0');
        if (!read(at, found)) return {};
        const std::size_t end = found.find('\0');
        if (end == std::string::npos) isWhole_ = false;
        return found.substr(0, end);
    }

private:
    bool read(std::uint64_t at, std::span<char> bytes)
    {
        if (!isInside(at, bytes.size())) {
            isWhole_ = false;
            return false;
        }
        stream_.seekg(static_cast<std::streamoff>(at));
        stream_.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        isWhole_ = isWhole_ && stream_.good();
        return isWhole_;
    }

    std::ifstream stream_;
    std::uint64_t size_ = 0;
    bool isWhole_ = false;
    bool isLittle_ = false;
};

constexpr std::uint64_t fourLetters(std::string_view name)
{
    std::uint64_t value = 0;
    for (const char letter : name) value = value << 8 | static_cast<unsigned char>(letter);
    return value;
}

/// Each format's size in pixels, if the rest of the file is there.

std::optional<Size> wholePng(Bytes& file)
{
    constexpr std::uint64_t kAroundData = 12;  // length, type, checksum
    const Size size{file.number(16, 4), file.number(20, 4)};
    bool hasPixels = false;
    for (std::uint64_t at = 8; file.isWhole();) {
        const std::uint64_t length = file.number(at, 4);
        const std::uint64_t type = file.number(at + 4, 4);
        if (!file.isInside(at, length + kAroundData)) break;
        if (type == fourLetters("IDAT")) hasPixels = true;
        if (type == fourLetters("IEND")) return hasPixels ? std::optional(size) : std::nullopt;
        at += length + kAroundData;
    }
    return std::nullopt;
}

std::optional<Size> wholeJpeg(Bytes& file)
{
    constexpr std::uint64_t kEndOfImage = 0xffd9;
    if (file.size() < 4 || file.number(file.size() - 2, 2) != kEndOfImage) return std::nullopt;
    for (std::uint64_t at = 2; file.isWhole();) {
        const std::uint64_t marker = file.number(at, 2);
        const bool isTable = marker == 0xffc4 || marker == 0xffc8 || marker == 0xffcc;
        if (marker >= 0xffc0 && marker <= 0xffcf && !isTable) {
            return Size{file.number(at + 7, 2), file.number(at + 5, 2)};
        }
        if (marker < 0xff00 || marker == 0xffda) break;  // the pixels, without a frame header
        at += marker == 0xffff ? 1 : 2 + file.number(at + 2, 2);
    }
    return std::nullopt;
}

/// The first directory of a TIFF.
class TiffDirectory {
public:
    explicit TiffDirectory(Bytes& file) : file_(file)
    {
        file.setLittleEndian(file.number(0, 1) == 'I');
        isBig_ = file.number(2, 2) == 43;
        at_ = file.number(isBig_ ? 8 : 4, isBig_ ? 8 : 4);
        count_ = file.number(at_, isBig_ ? 8 : 2);
        if (!file.isInside(at_, count_)) count_ = 0;
    }

    /// The values of a tag; empty when it is not there.
    std::vector<std::uint64_t> values(std::uint64_t tag)
    {
        const std::uint64_t entryBytes = isBig_ ? 20 : 12;
        const std::size_t field = isBig_ ? 8 : 4;
        for (std::uint64_t i = 0; i < count_ && file_.isWhole(); ++i) {
            const std::uint64_t at = at_ + (isBig_ ? 8 : 2) + i * entryBytes;
            if (file_.number(at, 2) != tag) continue;
            const std::uint64_t type = file_.number(at + 2, 2);
            const std::size_t bytes = type == 3 ? 2 : type == 16 ? 8 : 4;
            const std::uint64_t count = file_.number(at + 4, field);
            std::uint64_t from = at + 4 + field;
            if (count > field / bytes) from = file_.number(from, field);
            if (count > file_.size() || !file_.isInside(from, count * bytes)) return {};
            std::vector<std::uint64_t> values;
            for (std::uint64_t value = 0; value < count; ++value) {
                values.push_back(file_.number(from + value * bytes, bytes));
            }
            return values;
        }
        return {};
    }
    std::uint64_t value(std::uint64_t tag)
    {
        const std::vector<std::uint64_t> all = values(tag);
        return all.size() == 1 ? all.front() : 0;
    }

private:
    Bytes& file_;
    bool isBig_ = false;
    std::uint64_t at_ = 0, count_ = 0;
};

std::optional<Size> wholeTiff(Bytes& file)
{
    constexpr std::uint64_t kWidth = 256, kHeight = 257;
    constexpr std::uint64_t kStripPlaces = 273, kStripBytes = 279;
    constexpr std::uint64_t kTilePlaces = 324, kTileBytes = 325;
    TiffDirectory directory(file);
    const Size size{directory.value(kWidth), directory.value(kHeight)};
    std::vector<std::uint64_t> places = directory.values(kStripPlaces);
    std::vector<std::uint64_t> bytes = directory.values(kStripBytes);
    if (places.empty()) {
        places = directory.values(kTilePlaces);
        bytes = directory.values(kTileBytes);
    }
    if (places.empty() || places.size() != bytes.size() || !file.isWhole()) return std::nullopt;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (places[i] == 0 || bytes[i] == 0 || !file.isInside(places[i], bytes[i])) {
            return std::nullopt;
        }
    }
    return size;
}

/// Rows of pixels in a chunk, by the number of the compression; 0 where it is not known.
std::uint64_t exrRows(std::uint64_t compression)
{
    constexpr std::array<std::uint64_t, 10> kRows{1, 1, 1, 16, 32, 16, 32, 32, 32, 256};
    return compression < kRows.size() ? kRows.at(compression) : 0;
}

/// One part of scan lines, as all files that are written here.
std::optional<Size> wholeExr(Bytes& file)
{
    constexpr std::uint64_t kOtherKinds = 0x200 | 0x800 | 0x1000;  // tiles, deep, several parts
    file.setLittleEndian(true);
    if ((file.number(4, 4) & kOtherKinds) != 0) return std::nullopt;
    Size size{0, 0};
    std::uint64_t rows = 0, at = 8;
    for (std::string name = file.text(at); !name.empty(); name = file.text(at)) {
        at += name.size() + 1;
        at += file.text(at).size() + 1;  // the type
        const std::uint64_t bytes = file.number(at, 4);
        at += 4;
        if (name == "compression") rows = exrRows(file.number(at, 1));
        if (name == "dataWindow") {
            const std::int64_t width = file.signedNumber(at + 8) - file.signedNumber(at) + 1;
            const std::int64_t height = file.signedNumber(at + 12) - file.signedNumber(at + 4) + 1;
            if (width < 1 || height < 1) return std::nullopt;
            size = {static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height)};
        }
        at += bytes;
        if (!file.isWhole()) return std::nullopt;
    }
    ++at;
    if (rows == 0 || size.height == 0) return std::nullopt;
    const std::uint64_t chunks = (size.height + rows - 1) / rows;
    for (std::uint64_t chunk = 0; chunk < chunks; ++chunk) {
        const std::uint64_t place = file.number(at + 8 * chunk, 8);
        if (place < at + 8 * chunks || !file.isInside(place, 8)) return std::nullopt;
        const std::uint64_t bytes = file.number(place + 4, 4);
        if (bytes == 0 || !file.isInside(place + 8, bytes)) return std::nullopt;
    }
    return size;
}

std::optional<Size> wholeDpx(Bytes& file)
{
    constexpr std::uint64_t kUnknown = 0xffffffff;
    file.setLittleEndian(file.number(0, 4) == fourLetters("XPDS"));
    const std::uint64_t pixels = file.number(4, 4);
    const std::uint64_t told = file.number(16, 4);
    const Size size{file.number(772, 4), file.number(776, 4)};
    const std::uint64_t kind = file.number(800, 1);
    const std::uint64_t bits = file.number(803, 1);
    if (!file.isWhole() || (told != kUnknown && told > file.size())) return std::nullopt;
    const std::uint64_t channels = kind == 50 ? 3 : kind == 51 || kind == 52 ? 4 : 1;
    constexpr std::uint64_t kMost = 1 << 20;
    if (size.width > kMost || size.height > kMost) return std::nullopt;
    // At least, since some packings leave bits unused.
    const std::uint64_t bytes = size.width * size.height * channels * bits / 8;
    return file.isInside(pixels, bytes) ? std::optional(size) : std::nullopt;
}

std::optional<Size> wholeSize(Bytes& file, std::string_view format)
{
    if (format == "png") return wholePng(file);
    if (format == "jpeg") return wholeJpeg(file);
    if (format == "tiff") return wholeTiff(file);
    if (format == "openexr") return wholeExr(file);
    return wholeDpx(file);
}

}  // namespace

bool isWholePicture(const std::filesystem::path& file, int width, int height)
{
    try {
        const FileFormat& format = formatByName(file);
        if (&formatByContent(file) != &format) return false;
        Bytes bytes(file);
        const std::optional<Size> size = wholeSize(bytes, format.name);
        return bytes.isWhole() && width > 0 && height > 0 &&
               size == Size{static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height)};
    } catch (const FileError&) {
        return false;  // no such file, or one of another format
    }
}

}  // namespace Tesseret::Files
