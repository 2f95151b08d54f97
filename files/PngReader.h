#pragma once

#include <cstdio>

#include <png.h>

#include "files/OpenPicture.h"
#include "files/PngHeader.h"

namespace Tesseret::Files {

/// Reads a PNG file with libpng. What it cannot read is left to OpenImageIO, which names the
/// fault.
class PngReader final : public OpenPicture {
public:
    /// Null for a file that it cannot read. Throws `FileError` for a picture that is too large.
    static std::unique_ptr<PngReader> open(const std::filesystem::path& file);

    ~PngReader() override;

    bool readChannels(int first, int last, Picture& picture, int target) override;
    bool finish(bool succeeded, std::vector<std::string>& warnings) override;
    std::shared_ptr<const FileRecord> takeRecord() override;

private:
    explicit PngReader(std::filesystem::path file) : file_(std::move(file)) {}

    bool start();
    void stop();
    bool takeHeader();
    void describe();
    template <typename Channel>
    bool readRows(int first, int last, Picture& picture, int target);

    std::filesystem::path file_;
    std::FILE* stream_ = nullptr;
    png_structp png_ = nullptr;
    png_infop pngInfo_ = nullptr;
    bool atPixels_ = false;
    int passes_ = 1;  ///< 7 of an interlaced file
    std::shared_ptr<PngRecord> record_;
};

}  // namespace Tesseret::Files
