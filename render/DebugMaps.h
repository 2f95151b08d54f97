#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "render/FillPictures.h"
#include "render/RenderJob.h"

namespace Tesseret::Render {

/// Writes the maps of a fill and its boundary path into a folder, one PNG each: "fill-mask.png" and
/// so on, after "0005_" for frame 5 of a sequence and "area2_" for the second of several areas.
/// Pictures of an earlier render with these names are replaced, or removed where this render makes
/// none.
class DebugMaps final : public JobListener {
public:
    /// `listener` receives a message with the range of the gain; it outlives this.
    DebugMaps(std::filesystem::path folder, JobListener& listener);

    /// Before the first render: creates the folder when it is missing. Throws `FileError` when it
    /// is not writable, and `UsageError` when a map would replace a file that the job reads or
    /// writes.
    void begin(const JobInputs& inputs, double renderScale);
    /// After the last frame. Throws `RenderFailure` when a picture could not be written.
    void finish();

    void frameBegan(int frame) override;
    void areaBegan(std::size_t area, std::size_t count) override;
    bool wantsMaps(Host::Instance& instance) override;
    void mapMade(Host::Instance& instance, const TesseretMapV1& map) override;
    void pathFound(Host::Instance& instance, const TesseretPathV1& path) override;

private:
    void guarded(const std::function<void()>& work);
    void startPictures(std::string prefix);
    void reportGain(const TesseretMapV1& map);
    void removeUnmade() const;
    void write(const FillPicture& made);
    std::filesystem::path file(std::string_view map) const;

    std::filesystem::path folder_;
    JobListener& listener_;
    bool isSequence_ = false;
    OfxRectI page_{0, 0, 0, 0};  ///< the source, in pixels of the render
    std::string framePrefix_, prefix_;
    bool hasBegun_ = false;
    std::set<std::string_view> made_;  ///< by the running fill
    FillPictures pictures_;
    std::string failure_;  ///< the first one; empty when there is none
};

}  // namespace Tesseret::Render
