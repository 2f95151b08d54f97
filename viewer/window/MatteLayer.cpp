#include "viewer/window/MatteLayer.h"

#include <algorithm>

#include "viewer/window/Gl.h"

namespace Tesseret::Viewer {

namespace {

constexpr int kLargestTile = 2048;

int tileSize()
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    return std::clamp(int(most), 64, kLargestTile);
}

/// Blends what is drawn while the object lives.
class Blended {
public:
    Blended()
    {
        glPushAttrib(GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT | GL_LINE_BIT | GL_ENABLE_BIT);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
    ~Blended() { glPopAttrib(); }
    Blended(const Blended&) = delete;
    Blended& operator=(const Blended&) = delete;
};

}  // namespace

MatteLayer::~MatteLayer()
{
    for (const Tile& tile : tiles_) glDeleteTextures(1, &tile.texture);
    if (list_ != 0) glDeleteLists(list_, 1);
}

void MatteLayer::addTiles(const OfxRectI& all)
{
    const int size = tileSize();
    for (int y = all.y1; y < all.y2; y += size) {
        for (int x = all.x1; x < all.x2; x += size) {
            Tile tile{0, {x, y, std::min(x + size, all.x2), std::min(y + size, all.y2)}};
            glGenTextures(1, &tile.texture);
            glBindTexture(GL_TEXTURE_2D, tile.texture);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA8, tile.place.x2 - tile.place.x1,
                         tile.place.y2 - tile.place.y1, 0, GL_ALPHA, GL_UNSIGNED_BYTE, nullptr);
            tiles_.push_back(tile);
        }
    }
    glBindTexture(GL_TEXTURE_2D, 0);
}

void MatteLayer::upload(const Tile& tile, const Picture& matte, const OfxRectI& box)
{
    const OfxRectI part = intersection(tile.place, box);
    if (isEmpty(part)) return;
    const int width = part.x2 - part.x1;
    std::vector<std::uint8_t> bytes;
    for (int y = part.y1; y < part.y2; ++y) {
        const auto* const row = matte.pixel<std::uint8_t>(part.x1, y);
        bytes.insert(bytes.end(), row, row + width);
    }
    glBindTexture(GL_TEXTURE_2D, tile.texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, part.x1 - tile.place.x1, part.y1 - tile.place.y1, width,
                    part.y2 - part.y1, GL_ALPHA, GL_UNSIGNED_BYTE, bytes.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void MatteLayer::recordOutline()
{
    if (list_ == 0) list_ = glGenLists(1);
    glNewList(list_, GL_COMPILE);
    glBegin(GL_LINES);
    outline_.forEach([](const MatteOutline::Line& line) {
        glVertex2i(line.from.x, line.from.y);
        glVertex2i(line.to.x, line.to.y);
    });
    glEnd();
    glEndList();
}

void MatteLayer::update(MattePaint& paint)
{
    const OfxRectI touched = paint.takeTouched();
    if (isEmpty(touched)) return;
    OfxRectI box = touched;
    if (tiles_.empty()) {
        addTiles(paint.bounds());
        box = paint.bounds();
    }
    for (const Tile& tile : tiles_) upload(tile, paint.picture(), box);
    outline_.update(paint.picture(), box);
    recordOutline();
}

void MatteLayer::drawTint() const
{
    const Blended blended;
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glColor4d(0.95, 0.22, 0.28, 0.5);
    for (const Tile& tile : tiles_) {
        glBindTexture(GL_TEXTURE_2D, tile.texture);
        glBegin(GL_QUADS);
        glTexCoord2d(0.0, 0.0);
        glVertex2i(tile.place.x1, tile.place.y1);
        glTexCoord2d(1.0, 0.0);
        glVertex2i(tile.place.x2, tile.place.y1);
        glTexCoord2d(1.0, 1.0);
        glVertex2i(tile.place.x2, tile.place.y2);
        glTexCoord2d(0.0, 1.0);
        glVertex2i(tile.place.x1, tile.place.y2);
        glEnd();
    }
    glBindTexture(GL_TEXTURE_2D, 0);
}

/// Dark under light, so that it shows on any ground.
void MatteLayer::drawOutline() const
{
    if (list_ == 0) return;
    const Blended blended;
    glLineWidth(3.0f);
    glColor4d(0.0, 0.0, 0.0, 0.55);
    glCallList(list_);
    glLineWidth(1.0f);
    glColor4d(1.0, 0.45, 0.48, 1.0);
    glCallList(list_);
}

}  // namespace Tesseret::Viewer
