#include "files/oiio/PictureEncoder.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>
#include <string>

#include <OpenImageIO/filesystem.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/FileError.h"

namespace Tesseret::Files {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const fs::path& file, const std::string& reason)
{
    throw FileError(file, "cannot be written: " + reason.substr(0, reason.find('\n')));
}

/// Without the library's own words, which are taken since one that is left is printed at its end.
[[noreturn]] void failToEncode(OIIO::ImageOutput& output, const fs::path& file,
                               const FileFormat& format)
{
    output.geterror();
    fail(file, "this picture cannot be stored as " + std::string(format.label));
}

/// The first of the picture's channels in the file's top left pixel.
const std::byte* topLeft(const Picture& picture, int channel)
{
    return picture.row(picture.bounds().y2 - 1) +
           channel * static_cast<std::ptrdiff_t>(channelBytes(picture.depth()));
}

bool areNeighbours(const std::vector<int>& channels)
{
    return channels.back() - channels.front() + 1 == static_cast<int>(channels.size());
}

/// The picture's channel for a channel of the file.
int channelAt(int place, const OutputSpec& out, const ChannelPlaces& places)
{
    if (!out.keepsExtra) return out.channels[static_cast<std::size_t>(place)];
    if (place == places.alpha) return 3;
    if (place == places.red) return 0;
    return place == places.green ? 1 : 2;
}

/// All of the file's channels, each in its own type, pixel by pixel from the top.
std::vector<std::byte> interleave(const OutputSpec& out, const Picture& picture,
                                  const SpecRecord& record)
{
    const OIIO::ImageSpec& spec = out.spec;
    const auto pixelBytes = static_cast<OIIO::stride_t>(spec.pixel_bytes(true));
    const OIIO::stride_t rowBytes = pixelBytes * spec.width;
    std::vector<std::byte> pixels(static_cast<std::size_t>(rowBytes) *
                                  static_cast<std::size_t>(spec.height));
    std::byte* to = pixels.data();
    for (int c = 0; c < spec.nchannels; ++c) {
        const OIIO::TypeDesc type = spec.channelformat(c);
        const auto size = static_cast<OIIO::stride_t>(type.size());
        const auto extra = std::ranges::find(record.extra, c, &ExtraChannel::index);
        if (out.keepsExtra && extra != record.extra.end()) {
            OIIO::convert_image(1, spec.width, spec.height, 1, extra->samples.data(), type, size,
                                size * spec.width, OIIO::AutoStride, to, type, pixelBytes, rowBytes,
                                OIIO::AutoStride);
        } else {
            OIIO::convert_image(
                1, spec.width, spec.height, 1, topLeft(picture, channelAt(c, out, record.places)),
                typeOf(picture.depth()), static_cast<OIIO::stride_t>(picture.pixelBytes()),
                static_cast<OIIO::stride_t>(-picture.rowBytes()), OIIO::AutoStride, to, type,
                pixelBytes, rowBytes, OIIO::AutoStride);
        }
        to += size;
    }
    return pixels;
}

bool writePixels(OIIO::ImageOutput& file, const OutputSpec& out, const Picture& picture,
                 const SpecRecord& record)
{
    if (!out.keepsExtra && areNeighbours(out.channels)) {
        return file.write_image(typeOf(picture.depth()), topLeft(picture, out.channels.front()),
                                static_cast<OIIO::stride_t>(picture.pixelBytes()),
                                static_cast<OIIO::stride_t>(-picture.rowBytes()));
    }
    const std::vector<std::byte> pixels = interleave(out, picture, record);
    const bool mixed = !out.spec.channelformats.empty();
    return file.write_image(mixed ? OIIO::TypeDesc() : out.spec.format, pixels.data());
}

/// A file in memory. The libraries' reaction to a failed write is not under our control (one ends
/// the process), so none fails here: running out of memory is recorded and reported later.
class MemoryFile final : public OIIO::Filesystem::IOProxy {
public:
    MemoryFile() : IOProxy("", Write) {}

    const char* proxytype() const override { return "memory"; }
    std::size_t size() const override { return bytes_.size(); }
    std::size_t write(const void* data, std::size_t count) override
    {
        pwrite(data, count, m_pos);
        m_pos += static_cast<std::int64_t>(count);
        return count;
    }
    std::size_t pwrite(const void* data, std::size_t count, std::int64_t offset) override
    {
        const auto first = static_cast<std::size_t>(offset);
        if (makeRoom(first + count) && count > 0) std::memcpy(&bytes_[first], data, count);
        return count;
    }

    bool isShort() const { return isShort_; }
    std::vector<std::byte> take() { return std::move(bytes_); }

private:
    bool makeRoom(std::size_t size)
    {
        try {
            if (!isShort_ && size > bytes_.size()) bytes_.resize(size);
        } catch (const std::bad_alloc&) {
            isShort_ = true;
        }
        return !isShort_;
    }

    std::vector<std::byte> bytes_;
    bool isShort_ = false;
};

/// A file of the system in memory, not on disk, with a name that libraries can open.
class SystemMemoryFile {
public:
    explicit SystemMemoryFile(const fs::path& shown)
        : shown_(shown), descriptor_(::memfd_create("picture", MFD_CLOEXEC))
    {
        if (descriptor_ < 0) fail(shown_, std::strerror(errno));
    }
    ~SystemMemoryFile() { ::close(descriptor_); }
    SystemMemoryFile(const SystemMemoryFile&) = delete;
    SystemMemoryFile& operator=(const SystemMemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

    std::vector<std::byte> read() const
    {
        struct stat found = {};
        if (::fstat(descriptor_, &found) != 0) fail(shown_, std::strerror(errno));
        std::vector<std::byte> bytes(static_cast<std::size_t>(found.st_size));
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t count =
                ::pread(descriptor_, &bytes[done], bytes.size() - done, static_cast<off_t>(done));
            if (count <= 0) fail(shown_, std::strerror(errno));
            done += static_cast<std::size_t>(count);
        }
        return bytes;
    }

private:
    fs::path shown_;
    int descriptor_;
};

/// Detects that the limit on file sizes, which applies in memory too, stopped a write of this
/// thread: the system then sends a signal, which is pending here.
class SizeLimitWatch {
public:
    SizeLimitWatch()
    {
        sigemptyset(&watched_);
        sigaddset(&watched_, SIGXFSZ);
        ::pthread_sigmask(SIG_BLOCK, &watched_, &before_);
    }
    ~SizeLimitWatch()
    {
        wasReached();
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    SizeLimitWatch(const SizeLimitWatch&) = delete;
    SizeLimitWatch& operator=(const SizeLimitWatch&) = delete;

    bool wasReached() const
    {
        constexpr timespec kNoWait{};
        return ::sigtimedwait(&watched_, nullptr, &kNoWait) == SIGXFSZ;
    }

private:
    sigset_t watched_{}, before_{};
};

bool encode(OIIO::ImageOutput& output, const std::string& name, const OutputSpec& out,
            const Picture& picture, const SpecRecord& record)
{
    return output.open(name, out.spec) && writePixels(output, out, picture, record) &&
           output.close();
}

/// libtiff does not report a directory that it cannot write at the very end.
void checkEncoded(const fs::path& file, const FileFormat& format, const OutputSpec& out,
                  const std::string& path)
{
    const auto input = OIIO::ImageInput::create(std::string(format.name));
    OIIO::ImageSpec spec;
    const bool isRight = input && input->open(path, spec) && spec.width == out.spec.width &&
                         spec.height == out.spec.height && spec.nchannels == out.spec.nchannels;
    if (!isRight) fail(file, "the encoded file cannot be read back");
}

std::vector<std::byte> encodeNamed(OIIO::ImageOutput& output, const fs::path& file,
                                   const FileFormat& format, const OutputSpec& out,
                                   const Picture& picture, const SpecRecord& record)
{
    const SystemMemoryFile memory(file);
    {
        const SizeLimitWatch limit;
        const bool isWritten = encode(output, memory.path(), out, picture, record);
        if (limit.wasReached()) fail(file, std::strerror(EFBIG));
        if (!isWritten) failToEncode(output, file, format);
    }
    checkEncoded(file, format, out, memory.path());
    return memory.read();
}

}  // namespace

std::vector<std::byte> encodePicture(const fs::path& file, const FileFormat& format,
                                     const OutputSpec& out, const Picture& picture,
                                     const SpecRecord& record)
{
    const auto output = OIIO::ImageOutput::create(std::string(format.name));
    if (!output) {
        throw FileError(file, "this OpenImageIO cannot write " + std::string(format.label));
    }
    if (format.needsNamedFile) return encodeNamed(*output, file, format, out, picture, record);
    MemoryFile memory;
    output->set_ioproxy(&memory);
    const bool isWritten = encode(*output, file.filename().string(), out, picture, record);
    if (!isWritten) failToEncode(*output, file, format);
    if (memory.isShort()) fail(file, std::strerror(ENOMEM));
    return memory.take();
}

}  // namespace Tesseret::Files
