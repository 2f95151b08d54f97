#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "render/ParameterText.h"
#include "render/PluginSession.h"
#include "render/RenderSettings.h"
#include "viewer/model/PictureCache.h"

namespace Tesseret::Viewer {

class OrderRenderer;
class RenderWatch;

struct RenderOrder {
    int frame = 0;
    double scale = 1.0;              ///< of the render, as a host's proxy
    Render::ParameterValues values;  ///< of all parameters
    bool wantsMaps = false;          ///< they cost time and memory
    bool operator==(const RenderOrder&) const = default;
};

struct RenderResult {
    RenderOrder order;
    std::uint64_t serial = 0;  ///< of the order
    Picture picture;           ///< RGBA, in pixels of the order's scale; empty after a failure
    double seconds = 0.0;
    std::string error;                  ///< why there is no picture; empty when there is one
    std::vector<std::string> messages;  ///< of the plug-in, errors included
    std::vector<std::string> notes;     ///< of the plug-in and about files, a line each
    /// What the fill was made with, by name ("fill-mask", "path-band", "blocks", "boundary-path",
    /// "composite-mask", "luminance-gain"): 8-bit RGBA over the whole picture, all areas in one.
    std::map<std::string, Picture> maps;
};

struct WorkerState {
    bool isRendering = false;
    std::string stage;                    ///< the innermost one that runs
    double fraction = 0.0;                ///< of the stage, 0 to 1
    std::size_t area = 0, areaCount = 1;  ///< of the matte; they count from 0
};

/// A thread that renders the newest order, with instances of its own.
class RenderWorker {
public:
    /// Checks the settings, whose scale and parameters the orders replace. Throws as
    /// `InstanceSetup` does. Session and pictures outlive the object; others may work with other
    /// instances of the session meanwhile. How renders go on is known only where the session's host
    /// has a listener, which is not notified of them.
    RenderWorker(Render::PluginSession& session, const Render::RenderSettings& settings,
                 PictureCache& pictures);
    /// Aborts what runs.
    ~RenderWorker();
    RenderWorker(const RenderWorker&) = delete;
    RenderWorker& operator=(const RenderWorker&) = delete;

    /// Renders this instead of whatever runs or waits. Returns the order's serial number, from 1.
    std::uint64_t order(RenderOrder order);
    /// Of the last render that came to its end; null before the first. From any thread.
    std::shared_ptr<const RenderResult> latest() const;
    WorkerState state() const;
    /// Until nothing runs or waits.
    void wait();
    /// Called from the worker's thread after each render that came to its end. Set before the first
    /// order.
    void setOnDone(std::function<void()> onDone) { onDone_ = std::move(onDone); }

private:
    void run();

    std::unique_ptr<RenderWatch> watch_;
    std::unique_ptr<OrderRenderer> renderer_;
    std::function<void()> onDone_;

    mutable std::mutex mutex_;  ///< guards everything below but the thread
    std::condition_variable changed_;
    std::optional<RenderOrder> next_;
    std::uint64_t lastSerial_ = 0;
    bool isRendering_ = false;
    bool isBusy_ = false;  ///< rendering, or telling that a render is done
    bool isEnding_ = false;
    std::shared_ptr<const RenderResult> latest_;
    std::thread thread_;
};

}  // namespace Tesseret::Viewer
