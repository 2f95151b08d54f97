#pragma once

namespace Tesseret::Files {

struct PngHeader;

/// The indices of the picture's channels in the file; -1 for none. A grey file has one index three
/// times.
struct ChannelPlaces {
    int red = -1, green = -1, blue = -1, alpha = -1;

    bool isColour() const { return red != green; }
};

/// Data kept of a file besides its colours and alpha, so that a result becomes the same kind of
/// file. Only the readers and the writers know what it holds.
struct FileRecord {
    FileRecord() = default;
    virtual ~FileRecord() = default;
    FileRecord(const FileRecord&) = delete;
    FileRecord& operator=(const FileRecord&) = delete;

    /// Of a PNG that was read without OpenImageIO; null for every other file.
    virtual const PngHeader* png() const { return nullptr; }
};

}  // namespace Tesseret::Files
