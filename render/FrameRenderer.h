#pragma once

#include <deque>
#include <mutex>
#include <vector>

#include "render/AreaRecord.h"
#include "render/FillRecord.h"
#include "render/InstanceSetup.h"
#include "render/JobListener.h"
#include "render/PreparedMatte.h"

namespace Tesseret::Render {

/// The areas of a frame that other renderers fill.
struct AreaCount {
    std::size_t before = 0, after = 0;
};

/// Renders frames on instances of the plug-in. The separate areas of a matte are filled one after
/// another, each over the result of the one before.
class FrameRenderer {
public:
    /// Makes the first instance. Throws `UsageError`. Listener and warnings outlive the object.
    FrameRenderer(const RenderSettings& settings, InstanceSetup setup, JobListener& listener,
                  WarningFilter& warnings);

    const InstanceSetup& setup() const { return setup_; }
    Host::Instance& instance() { return *slots_.front().instance; }

    void beginSequence(OfxRangeD frames, const Host::RenderRequest& first);
    void endSequence();

    /// The picture of the request's window, which starts as the source's. `matte` is null when the
    /// plug-in does not fill from a matte; `others` are for
    /// progress. Throws `HostError` when the plug-in fails, and
    /// `Interrupted`.
    Picture render(const Host::RenderRequest& request, const FramePictures& pictures,
                   const PreparedMatte* matte, const AreaCount& others = {});
    /// Likewise for a matte, in place: fills the areas in the frame's source, a picture of the
    /// request's scale, as far as they lie in the window.
    void fill(const Host::RenderRequest& request, FramePictures pictures,
              const PreparedMatte& matte, const AreaCount& others,
              const std::shared_ptr<Picture>& source);
    /// How many areas of a matte are filled.
    std::size_t areasOf(const PreparedMatte& matte) const;

    /// Whether frames repeat the blocks of earlier ones.
    bool repeatsBlocks() const;
    /// Whether the frame would choose new blocks, for later ones to repeat. `matte` as in `render`.
    bool recordsAt(int frame, const PreparedMatte* matte) const;
    /// Follows the areas of a frame that is not rendered and would not record.
    void passBy(const PreparedMatte* matte);
    /// Before the first render: keeps what is recorded, for `record`.
    void keepRecords();
    /// What the last frame that recorded did. Throws `RenderFailure` when the plug-in does not give
    /// it away.
    FillRecord record() const;
    /// Before the first render: later frames repeat what this frame recorded.
    void adopt(int frame, FillRecord record);
    /// After a frame that failed: the next one records.
    void forgetRecord();

    /// Makes the running render and every later one end with `Interrupted`. From any thread.
    void abort();

private:
    class Running;
    struct Slot : ReadyInstance {
        std::unique_ptr<InstanceRecord> record;
    };
    struct Sequence {
        OfxRangeD frames;
        Host::RenderRequest first;
    };

    void beginFrame();
    void show(Slot& slot, const Host::RenderRequest& request, const FramePictures& pictures) const;
    OfxRectI areaWindow(const Host::RenderRequest& request, const PreparedMatte& matte,
                        std::size_t area) const;
    void showMatte(Slot& slot, const Host::RenderRequest& request, const PreparedMatte& matte,
                   std::size_t area, PixelMotion back = {}) const;
    void renderOn(Slot& slot, const Host::RenderRequest& request, Picture& output);
    void remark(const Host::RenderRequest& request, const PreparedMatte& matte, std::size_t count);
    void followAreas(const Host::RenderRequest& request, const PreparedMatte& matte,
                     std::size_t count);
    void checkCovered(const Host::RenderRequest& request, const PreparedMatte& matte,
                      std::size_t area);
    PixelMotion motionOf(const PreparedMatte& matte, std::size_t area) const;
    void fillArea(Slot& slot, const Host::RenderRequest& request, const FramePictures& pictures,
                  const PreparedMatte& matte, std::size_t area, Picture& source);
    void fillMoved(Slot& slot, const Host::RenderRequest& request, FramePictures pictures,
                   const PreparedMatte& matte, std::size_t area, Picture& source);
    Slot& slotFor(std::size_t area);
    Slot makeSlot() const;

    InstanceSetup setup_;
    JobListener& listener_;
    WarningFilter& warnings_;
    bool everyArea_, cropsAreas_;
    std::deque<Slot> slots_;  ///< at least one
    std::optional<Sequence> sequence_;
    bool followsMatte_;
    AreaRecord recorded_;            ///< the areas with recorded blocks
    std::vector<OfxRectI> reached_;  ///< unions of their boxes and those of all frames since
    int recordedFrame_ = 0;
    bool hasRendered_ = false;
    bool keepsRecords_ = false;
    bool hasRecord_ = false;                ///< of a fill without a matte
    std::vector<std::size_t> chosenAreas_;  ///< of the matte, from 0; empty: any
    bool reportedUncovered_ = false;
    bool reportedEmptyMatte_ = false, reportedAreasChange_ = false;
    std::mutex mutex_;  ///< guards the members below
    bool isAborted_ = false;
    Host::Instance* running_ = nullptr;
};

}  // namespace Tesseret::Render
