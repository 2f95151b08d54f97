#pragma once

#include <map>
#include <optional>

#include "viewer/model/ViewSession.h"
#include "viewer/window/PictureTexture.h"

namespace Tesseret::Viewer {

/// The best fills that a search has found so far, over the picture, until the fill is rendered with
/// the settings found. Every call needs the same OpenGL context to be current.
class TrialLayer {
public:
    /// The session outlives the object.
    explicit TrialLayer(ViewSession& session) : session_(session) {}

    /// Before each frame. A stroke, or another frame, takes the fills away: they are of the matte
    /// as it was.
    void update();
    bool isEmpty() const { return best_.empty(); }
    /// In canonical units.
    void draw() const;

private:
    ViewSession& session_;
    std::map<std::size_t, PictureTexture> best_;  ///< by area
    std::optional<std::uint64_t> matte_;          ///< its revision when the search began
    int frame_ = 0;
};

}  // namespace Tesseret::Viewer
