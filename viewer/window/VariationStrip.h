#pragma once

#include <deque>
#include <memory>

#include "viewer/model/Messages.h"
#include "viewer/model/ViewSession.h"
#include "viewer/window/PictureTexture.h"

namespace Tesseret::Viewer {

/// Below the picture: the fills of the last search, to pick from. It can be folded to its heading.
class VariationStrip {
public:
    /// Both outlive the object. An OpenGL context is current in every call, the destructor
    /// included.
    VariationStrip(ViewSession& session, MessageLog& log) : session_(session), log_(log) {}

    /// In screen units, in a window of this height; 0 while there is nothing to pick from. A small
    /// window begins with a folded strip.
    float height(float windowHeight);
    /// Draws into the user interface's current window.
    void draw();

private:
    void update();
    void drawThumbnail(std::size_t variation, float height);

    ViewSession& session_;
    MessageLog& log_;
    std::deque<PictureTexture> textures_;  ///< of shown_
    std::vector<std::shared_ptr<const Picture>> shown_;
    std::optional<bool> isOpen_;  ///< nullopt until it is known how large the window is
};

}  // namespace Tesseret::Viewer
