#pragma once

/// What OpenImageIO does for us, in a module that is loaded when a file first needs it: its
/// hundreds of libraries take longer to load than a PNG takes to render.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "files/FileFormat.h"
#include "files/OpenPicture.h"
#include "files/PictureWriter.h"
#include "files/PngLayout.h"

namespace Tesseret::Files {

/// A file in memory.
struct EncodedPicture {
    std::vector<std::byte> bytes;
    std::vector<std::string> losses;  ///< data that the file cannot hold, one phrase each
};

class PictureLibrary {
public:
    PictureLibrary() = default;
    PictureLibrary(const PictureLibrary&) = delete;
    PictureLibrary& operator=(const PictureLibrary&) = delete;

    /// Sets the number of threads that it reads and writes with.
    virtual void useThreads(unsigned count) = 0;

    /// Opens a file of this format, whose bytes are in `stored`. Throws `FileError`.
    virtual std::unique_ptr<OpenPicture> open(const std::filesystem::path& file,
                                              const std::filesystem::path& stored,
                                              const FileFormat& format) = 0;

    /// The record of a picture that came from no file.
    virtual std::shared_ptr<const FileRecord> newRecord(const FileFormat& format,
                                                        const Picture& picture, bool isColour) = 0;

    /// Encodes a picture in any format but PNG. A format that stores the file's name takes it from
    /// `file`. Throws `FileError`.
    virtual EncodedPicture encode(const std::filesystem::path& file, const FileFormat& format,
                                  const Picture& picture, const FileRecord& record,
                                  const WriteOptions& options) = 0;

    /// The layout of a PNG file with the record's metadata. Throws `FileError`.
    virtual PngLayout pngLayout(const std::filesystem::path& file, const Picture& picture,
                                const FileRecord& record, const WriteOptions& options) = 0;

protected:
    ~PictureLibrary() = default;  // lives as long as the process
};

/// The name of the module's one function and its type.
inline constexpr const char* kPictureLibraryEntry = "tesseretPictureLibrary";
using PictureLibraryEntry = PictureLibrary* (*)();

/// Loads the module if it is not loaded yet. Throws `FileError` with the name of the file that
/// needs it.
PictureLibrary& pictureLibrary(const std::filesystem::path& neededBy);

}  // namespace Tesseret::Files
