#pragma once

#include <vector>

#include "viewer/model/MatteOutline.h"
#include "viewer/model/View.h"

namespace Tesseret::Viewer {

/// A matte over the picture, on the graphics card: as a tint, and as the outline of what is masked.
/// Every call, the destructor too, needs the same OpenGL context to be current.
class MatteLayer {
public:
    MatteLayer() = default;
    ~MatteLayer();
    MatteLayer(const MatteLayer&) = delete;
    MatteLayer& operator=(const MatteLayer&) = delete;

    /// Uploads what has changed since the last call.
    void update(MattePaint& paint);

    /// Both draw in pixels of the matte.
    void drawTint() const;
    void drawOutline() const;

private:
    struct Tile {
        unsigned int texture;
        OfxRectI place;
    };

    void addTiles(const OfxRectI& all);
    static void upload(const Tile& tile, const Picture& matte, const OfxRectI& box);
    void recordOutline();

    std::vector<Tile> tiles_;
    MatteOutline outline_;
    unsigned int list_ = 0;  ///< of OpenGL, with the outline
};

}  // namespace Tesseret::Viewer
