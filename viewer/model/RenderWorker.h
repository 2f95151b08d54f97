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

class FillList;
class RequestRenderer;
class RenderWatch;

struct ViewRequest {
    int frame = 0;
    double scale = 1.0;                              ///< render scale, as of a host's proxy
    Render::ParameterValues values;                  ///< of all parameters
    std::shared_ptr<const Picture> matte = nullptr;  ///< a painted one; null: the file's, if any
    bool wantsMaps = false;                          ///< they cost time and memory
    std::shared_ptr<const FillList> list = nullptr;  ///< in place of the values, where it has them
    bool operator==(const ViewRequest&) const = default;
};

struct RenderResult {
    ViewRequest request;
    std::uint64_t serial = 0;  ///< of the request
    Picture picture;           ///< RGBA, in pixels of the request's scale; empty after a failure
    double seconds = 0.0;
    std::string error;                  ///< why there is no picture; empty when there is one
    std::vector<std::string> messages;  ///< of the plug-in, errors included
    std::vector<std::string> notes;     ///< of the plug-in and about files, a line each
    /// What the fill was made with, by name ("fill-mask", "path-band", "blocks", "boundary-path",
    /// "composite-mask", "luminance-gain"): 8-bit RGBA over the whole picture, all areas in one.
    std::map<std::string, Picture> maps;
    /// The boxes of the matte's areas, in their order, in pixels of the request's scale.
    std::vector<OfxRectI> areas;
};

struct WorkerState {
    bool isRendering = false;
    std::string stage;                    ///< the innermost running stage
    double fraction = 0.0;                ///< of the stage, 0 to 1
    std::size_t area = 0, areaCount = 1;  ///< of the matte, counted from 0
};

/// A thread that renders the newest order, with its own instances.
class RenderWorker {
public:
    /// Checks the settings, whose scale and parameters the requests replace. Throws as
    /// `InstanceSetup` does. Session and pictures outlive the object; other threads may use other
    /// instances of the session. The state is reported only where the session's host has a
    /// listener, which is not notified of these renders.
    RenderWorker(Render::PluginSession& session, const Render::RenderSettings& settings,
                 PictureCache& pictures);
    /// Aborts the running render.
    ~RenderWorker();
    RenderWorker(const RenderWorker&) = delete;
    RenderWorker& operator=(const RenderWorker&) = delete;

    /// Renders this in place of any running or waiting request. Returns the request's serial
    /// number, from 1.
    std::uint64_t request(ViewRequest request);
    /// The result of the last completed render; null before the first. From any thread.
    std::shared_ptr<const RenderResult> latest() const;
    WorkerState state() const;
    /// Waits until nothing runs or waits.
    void wait();
    /// Called on the worker's thread after each completed render. Set before the first request.
    void setOnDone(std::function<void()> onDone) { onDone_ = std::move(onDone); }

private:
    void run();

    std::unique_ptr<RenderWatch> watch_;
    std::unique_ptr<RequestRenderer> renderer_;
    std::function<void()> onDone_;

    mutable std::mutex mutex_;  ///< guards everything below except the thread
    std::condition_variable changed_;
    std::optional<ViewRequest> next_;
    std::uint64_t lastSerial_ = 0;
    bool isRendering_ = false;
    bool isBusy_ = false;  ///< rendering, or calling onDone_
    bool isEnding_ = false;
    std::shared_ptr<const RenderResult> latest_;
    std::thread thread_;
};

}  // namespace Tesseret::Viewer
