#include "viewer/window/PictureTexture.h"

#include <algorithm>
#include <utility>

#include "viewer/model/DisplayPixels.h"
#include "viewer/window/Gl.h"

namespace Tesseret::Viewer {

namespace {

/// Limit even where the graphics card allows more: a tile's pixels are prepared in memory.
constexpr int kLargestTile = 4096;

int tileSize()
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    return std::clamp(int(most), 64, kLargestTile);
}

void setFilters()
{
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

}  // namespace

PictureTexture::~PictureTexture()
{
    clear();
}

void PictureTexture::clear()
{
    for (const Tile& tile : tiles_) glDeleteTextures(1, &tile.texture);
    tiles_.clear();
}

void PictureTexture::show(std::shared_ptr<const Picture> picture, OfxPointD scale)
{
    if (picture == picture_) return;
    clear();
    picture_ = std::move(picture);
    if (!picture_) return;
    const OfxRectI bounds = picture_->bounds();
    const int size = tileSize();
    for (int y = bounds.y1; y < bounds.y2; y += size) {
        for (int x = bounds.x1; x < bounds.x2; x += size) {
            addTile({x, y, std::min(x + size, bounds.x2), std::min(y + size, bounds.y2)}, scale);
        }
    }
}

void PictureTexture::addTile(const OfxRectI& part, OfxPointD scale)
{
    const std::vector<std::uint8_t> pixels = displayPixels(*picture_, part);
    Tile tile{0, toCanonical(part, scale, picture_->pixelAspectRatio())};
    glGenTextures(1, &tile.texture);
    tiles_.push_back(tile);
    glBindTexture(GL_TEXTURE_2D, tile.texture);
    setFilters();
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, part.x2 - part.x1, part.y2 - part.y1, 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
}

void PictureTexture::draw() const
{
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    for (const Tile& tile : tiles_) {
        glBindTexture(GL_TEXTURE_2D, tile.texture);
        glBegin(GL_QUADS);
        glTexCoord2d(0.0, 0.0);
        glVertex2d(tile.place.x1, tile.place.y1);
        glTexCoord2d(1.0, 0.0);
        glVertex2d(tile.place.x2, tile.place.y1);
        glTexCoord2d(1.0, 1.0);
        glVertex2d(tile.place.x2, tile.place.y2);
        glTexCoord2d(0.0, 1.0);
        glVertex2d(tile.place.x1, tile.place.y2);
        glEnd();
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_TEXTURE_2D);
}

}  // namespace Tesseret::Viewer
