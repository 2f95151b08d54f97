#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "render/FillPictures.h"
#include "render/JobListener.h"
#include "viewer/model/RenderWorker.h"

namespace Tesseret::Viewer {

/// Follows a render: its state for the window meanwhile, its messages and maps for the result.
class RenderWatch final : public Render::JobListener {
public:
    /// Called before each render.
    void begin();
    /// Enables maps, over a picture of these bounds.
    void wantMaps(OfxRectI bounds);
    /// Moves messages, notes and maps since `begin` to the result.
    void end(RenderResult& result);

    /// From any thread.
    WorkerState state() const;

    void areaBegan(std::size_t area, std::size_t count) override;
    void warning(const std::string& text) override;
    void message(const std::string& text) override;
    void stageBegan(Host::Instance& instance, std::string_view stage) override;
    void stageEnded(Host::Instance& instance, std::string_view stage) override;
    void progress(Host::Instance& instance, double fraction) override;
    void note(Host::Instance& instance, std::string_view text) override;
    bool wantsMaps(Host::Instance& instance) override;
    void mapMade(Host::Instance& instance, const TesseretMapV1& map) override;
    void pathFound(Host::Instance& instance, const TesseretPathV1& path) override;

private:
    void keep(const Render::FillPicture& made);
    void addNote(const std::string& text);

    mutable std::mutex mutex_;  ///< guards the messages and the state
    std::vector<std::string> messages_, notes_;
    std::vector<std::string> stages_;  ///< the running stages, the innermost last
    double fraction_ = 0.0;
    std::size_t area_ = 0, areaCount_ = 1;

    bool wantsMaps_ = false;
    OfxRectI bounds_{0, 0, 0, 0};
    Render::FillPictures pictures_;
    std::map<std::string, Picture> maps_;
};

}  // namespace Tesseret::Viewer
