#pragma once

#include <filesystem>
#include <memory>

#include "render/JobInputs.h"
#include "viewer/model/MattePaint.h"

namespace Tesseret::Viewer {

/// The matte of a session: painted, read from a file, or both, and the file that holds it.
class MatteDocument {
public:
    /// As large as the source. `depth` is that of the render.
    MatteDocument(const OfxRectI& window, Depth depth) : paint_(window), depth_(depth) {}

    MattePaint& paint() { return paint_; }
    const MattePaint& paint() const { return paint_; }

    /// The matte that the render reads from a file by itself.
    void follow(const Render::ClipPicture& matte, const std::filesystem::path& file);
    /// As the render gets it, the same object until a step changes it; null while the file that it
    /// follows is unchanged.
    std::shared_ptr<const Picture> painted();

    /// Within a step: replaces the matte by a file's. Throws `FileError`, and `UsageError` for a
    /// file of another size.
    void load(const std::filesystem::path& file, const Files::PictureInfo& source);
    /// The step of `load` is complete: the file holds the matte.
    void setFile(const std::filesystem::path& file);
    /// Writes a grey PNG, white where it masks. Throws `FileError`, and `UsageError` for a name of
    /// another format.
    void save(const std::filesystem::path& file);

    /// Where the matte was last read from or saved to; empty: nowhere.
    const std::filesystem::path& file() const { return file_; }
    /// Whether that file holds the matte as it is.
    bool isSaved() const { return !file_.empty() && savedRevision_ == paint_.revision(); }
    /// The matte is in some file, though not byte for byte.
    void markKept() { keptRevision_ = paint_.revision(); }
    /// Whether something would be lost with the matte.
    bool hasUnsavedPaint() const
    {
        const bool isKept = keptRevision_ == paint_.revision();
        return !isKept && (!file_.empty() || !isEmpty(paint_.maskedBox()));
    }

private:
    MattePaint paint_;
    Depth depth_;
    bool follows_ = false;
    std::filesystem::path file_;
    std::uint64_t savedRevision_ = 0, keptRevision_ = 0;
    std::shared_ptr<const Picture> painted_;  ///< of paintedRevision_
    std::uint64_t paintedRevision_ = 0;
};

/// Throws `UsageError` unless the name is that of a PNG file.
void checkMatteName(const std::filesystem::path& file);

}  // namespace Tesseret::Viewer
