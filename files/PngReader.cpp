#include "files/PngReader.h"

#include <bit>
#include <csetjmp>
#include <cstring>
#include <utility>

#include "files/StandardStreams.h"

namespace Tesseret::Files {

namespace {

constexpr std::size_t kBufferBytes = 1 << 16;

[[noreturn]] void leave(png_structp png, png_const_charp /*text*/)
{
    png_longjmp(png, 1);
}

void keepQuiet(png_structp /*png*/, png_const_charp /*text*/) {}

/// False when libpng gives up. A jump leaves `work` at once, so it holds nothing to destroy.
template <typename Work>
bool succeeds(png_structp png, const Work& work)
{
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    work();
    return true;
}

/// Copies channels [first, last) of a row of the file.
template <typename Channel>
void copyChannels(const png_byte* row, int channels, int first, int last, Picture& picture, int y,
                  int target)
{
    const auto* from = reinterpret_cast<const Channel*>(row) + first;
    auto* to = picture.pixel<Channel>(picture.bounds().x1, y) + target;
    const int step = picture.channels();
    for (int x = 0; x < picture.width(); ++x, from += channels, to += step) {
        for (int c = 0; c < last - first; ++c) to[c] = from[c];
    }
}

}  // namespace

std::unique_ptr<PngReader> PngReader::open(const std::filesystem::path& file)
{
    std::unique_ptr<PngReader> reader(new PngReader(file));
    if (!reader->start() || !reader->takeHeader()) return nullptr;
    reader->describe();
    return reader;
}

PngReader::~PngReader()
{
    stop();
}

/// Opens the file and leaves the stream at the pixels: 8 or 16 bits in the order of the machine.
bool PngReader::start()
{
    stop();
    stream_ = std::fopen(storedFile(file_).c_str(), "rbe");
    if (stream_ == nullptr) return false;
    std::setvbuf(stream_, nullptr, _IOFBF, kBufferBytes);
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, leave, keepQuiet);
    pngInfo_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    if (pngInfo_ == nullptr) return false;
    atPixels_ = succeeds(png_, [this] {
        // The checksums have been compared before.
        png_set_crc_action(png_, PNG_CRC_QUIET_USE, PNG_CRC_QUIET_USE);
        png_init_io(png_, stream_);
        png_read_info(png_, pngInfo_);
        png_set_expand(png_);
        if constexpr (std::endian::native == std::endian::little) png_set_swap(png_);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, pngInfo_);
    });
    return atPixels_;
}

void PngReader::stop()
{
    png_destroy_read_struct(&png_, &pngInfo_, nullptr);
    if (stream_ != nullptr) std::fclose(std::exchange(stream_, nullptr));
    atPixels_ = false;
}

/// False for a picture that is placed on a page.
bool PngReader::takeHeader()
{
    record_ = std::make_shared<PngRecord>();
    PngHeader& header = record_->header;
    header = headerOf(png_, pngInfo_);
    checkSize(file_, header.width, header.height);
    const long position = std::ftell(stream_);
    const bool isPlaced = png_get_x_offset_pixels(png_, pngInfo_) != 0 ||
                          png_get_y_offset_pixels(png_, pngInfo_) != 0;
    if (position < 0 || isPlaced || std::fseek(stream_, 0, SEEK_SET) != 0) return false;
    header.bytes.resize(static_cast<std::size_t>(position));
    return std::fread(header.bytes.data(), 1, header.bytes.size(), stream_) == header.bytes.size();
}

void PngReader::describe()
{
    const PngHeader& header = record_->header;
    places_.red = 0;
    places_.green = header.channels >= 3 ? 1 : 0;
    places_.blue = header.channels >= 3 ? 2 : 0;
    places_.alpha = header.channels % 2 == 0 ? header.channels - 1 : -1;
    info_.file = file_;
    info_.displayWindow = info_.dataWindow = {0, 0, header.width, header.height};
    info_.pixelAspectRatio = header.pixelAspectRatio;
    info_.depth = header.depth;
    info_.isColour = places_.isColour();
    info_.hasAlpha = places_.alpha >= 0;
    if (info_.hasAlpha) info_.alpha = Alpha::Unpremultiplied;
}

bool PngReader::readChannels(int first, int last, Picture& picture, int target)
{
    if (!atPixels_ && !start()) return false;
    atPixels_ = false;
    return picture.depth() == Depth::Byte ? readRows<std::uint8_t>(first, last, picture, target)
                                          : readRows<std::uint16_t>(first, last, picture, target);
}

/// The rows of an interlaced file are complete only after the last pass, so all are kept.
template <typename Channel>
bool PngReader::readRows(int first, int last, Picture& picture, int target)
{
    const PngHeader& header = record_->header;
    const std::size_t rowBytes = png_get_rowbytes(png_, pngInfo_);
    const auto kept = static_cast<std::size_t>(passes_ > 1 ? header.height : 1);
    std::vector<png_byte> rows(rowBytes * kept);
    return succeeds(png_, [&] {
        for (int pass = 0; pass < passes_; ++pass) {
            for (int y = 0; y < header.height; ++y) {
                png_byte* const row =
                    &rows[passes_ > 1 ? rowBytes * static_cast<std::size_t>(y) : 0];
                png_read_row(png_, row, nullptr);
                if (pass + 1 < passes_) continue;
                copyChannels<Channel>(row, header.channels, first, last, picture,
                                      header.height - 1 - y, target);
            }
        }
        png_read_end(png_, nullptr);
    });
}

bool PngReader::finish(bool succeeded, std::vector<std::string>& /*warnings*/)
{
    return succeeded;
}

std::shared_ptr<const FileRecord> PngReader::takeRecord()
{
    return std::move(record_);
}

}  // namespace Tesseret::Files
