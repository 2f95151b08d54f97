#pragma once

#include <memory>
#include <vector>

#include "picture/Picture.h"

namespace Tesseret::Viewer {

/// A picture on the graphics card, in tiles where it exceeds the texture size. Every call, the
/// destructor too, needs the same OpenGL context to be current.
class PictureTexture {
public:
    PictureTexture() = default;
    ~PictureTexture();
    PictureTexture(const PictureTexture&) = delete;
    PictureTexture& operator=(const PictureTexture&) = delete;

    /// Uploads the picture unless it is the same as before. Null shows nothing. One pixel covers 1
    /// / scale canonical units, across times the pixel aspect ratio.
    void show(std::shared_ptr<const Picture> picture, OfxPointD scale);
    bool isEmpty() const { return tiles_.empty(); }
    /// Of OpenGL, for a picture of one tile; 0 without a picture.
    unsigned int name() const { return tiles_.empty() ? 0 : tiles_.front().texture; }

    /// Draws in canonical units: sharp pixels when enlarged, averaged when made smaller.
    void draw() const;

private:
    struct Tile {
        unsigned int texture;
        OfxRectD place;  ///< canonical
    };

    void clear();
    void addTile(const OfxRectI& part, OfxPointD scale);

    std::shared_ptr<const Picture> picture_;
    std::vector<Tile> tiles_;
};

}  // namespace Tesseret::Viewer
