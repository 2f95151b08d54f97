#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "files/FileRecord.h"
#include "files/PictureReader.h"

namespace Tesseret::Files {

/// A picture file whose header has been read.
class OpenPicture {
public:
    virtual ~OpenPicture() = default;
    OpenPicture(const OpenPicture&) = delete;
    OpenPicture& operator=(const OpenPicture&) = delete;

    const PictureInfo& info() const { return info_; }
    const ChannelPlaces& places() const { return places_; }

    /// Reads channels [first, last) of the file into those of the picture from `target` on. The
    /// picture has the bounds of the data window and the file's depth. Returns false on failure.
    virtual bool readChannels(int first, int last, Picture& picture, int target) = 0;
    /// Reads what the picture does not hold into the record. Returns false on failure.
    virtual bool readExtra() { return true; }
    /// Ends the reading, which has succeeded or not. Throws `FileError` for a damaged file; adds
    /// warnings for the user. Returns false when another reader has to read the file.
    virtual bool finish(bool succeeded, std::vector<std::string>& warnings) = 0;
    /// Once, at the end.
    virtual std::shared_ptr<const FileRecord> takeRecord() = 0;

protected:
    OpenPicture() = default;

    PictureInfo info_;
    ChannelPlaces places_;
};

/// Throws `FileError` for a picture that is too large.
void checkSize(const std::filesystem::path& file, int width, int height);

[[noreturn]] void failDamaged(const std::filesystem::path& file);

}  // namespace Tesseret::Files
