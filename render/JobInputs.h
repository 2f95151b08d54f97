#pragma once

/// The input files of a render: finds them, checks that they fit together, and reads single frames.

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "effect/ParameterNames.h"
#include "files/PictureReader.h"
#include "files/Sequence.h"
#include "files/WholeFile.h"
#include "render/FramePictures.h"
#include "render/RenderSettings.h"
#include "render/TextureCrops.h"

namespace Tesseret::Render {

/// Throws `UsageError` unless the matte is as large as the source; its data window may be smaller.
void checkMatte(const Files::PictureInfo& matte, const Files::PictureInfo& source);

/// A matte that is in memory, as if read from a grey PNG of this size.
Files::PictureInfo paintedMatteInfo(const std::filesystem::path& name, const OfxRectI& window);

class JobInputs {
public:
    /// Finds every file and reads the headers of the shot's first frame, or, where its files are
    /// not there, of the first of the frames. Throws `UsageError` or `FileError`: a sequence
    /// without frames, missing frames (all of them listed), an output that is an input, files that
    /// cannot be used, a matte of another size than the source. Where a job keeps going, missing
    /// and damaged frames are no errors as long as there is another one.
    explicit JobInputs(const RenderSettings& settings);
    /// The same files with the textures cut as these settings say, and not as before. Throws
    /// `UsageError` for a box outside its picture.
    JobInputs withCrops(const RenderSettings& settings) const;

    const std::vector<int>& frames() const { return frames_; }
    bool isSequence() const { return isSequence_; }
    /// From the shot's first frame to the last one, or the other way round.
    OfxRangeD range() const { return range_; }
    /// The file of the source's last frame of those just before the frames that is there; else
    /// empty.
    std::filesystem::path earlierSource() const;
    std::filesystem::path outputFile(int frame) const { return output_.file(frame); }
    /// The headers of the first frame; connected clips only.
    const std::map<std::string, Files::PictureInfo>& infos() const { return infos_; }
    const Files::PictureInfo& source() const { return infos_.at(Names::kSource); }
    bool has(const std::string& clip) const { return infos_.contains(clip); }
    /// Whether a file is an input of any frame, whatever name or link leads to it.
    bool reads(const std::filesystem::path& file) const;

    const TextureCrops& crops() const { return crops_; }

    /// All pictures of a frame at a depth, without a painted matte, textures cut. Stills are read
    /// once. Throws `FileError`, and `UsageError` for a matte of another size. One call at a time.
    FramePictures read(int frame, Depth depth);
    /// Likewise with the matte alone; without it when there is none, or no file of this frame.
    FramePictures readMatte(int frame, Depth depth);

private:
    struct Input {
        std::string clip;
        Files::SequencePattern pattern;
        Files::ReadAs as;
    };

    void checkFrames(const RenderSettings& settings) const;
    bool hasFiles(int frame) const;
    void readInfos(const RenderSettings& settings);
    std::map<std::string, Files::PictureInfo> infosOf(int frame) const;
    ClipPicture readOnce(const Input& input, int frame, Depth depth);
    void findFilesRead();
    void checkOutputs() const;
    ClipPicture readClip(const Input& input, int frame, Depth depth);

    std::vector<Input> inputs_;
    Files::SequencePattern output_;
    std::vector<int> frames_;
    bool isSequence_;
    OfxRangeD range_;
    std::set<Files::FileIdentity> filesRead_;
    std::map<std::string, Files::PictureInfo> read_;   ///< as in the files
    std::map<std::string, Files::PictureInfo> infos_;  ///< with the textures cut
    TextureCrops crops_;
    /// Shared by no copy, which can be made while this is filled on another thread.
    std::shared_ptr<FramePictures> stills_ = std::make_shared<FramePictures>();
    bool reportedFullAlpha_ = false;
};

}  // namespace Tesseret::Render
