#pragma once

/// Text in pictures.

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "picture/Picture.h"

struct ImFontAtlas;

namespace Tesseret::Sheet {

struct Colour {
    std::uint8_t red, green, blue;
};

/// Letters of one size, drawn by Dear ImGui's own font, so that a sheet is the same on every
/// machine. Signs outside ISO 8859-1 become a question mark.
class Lettering {
public:
    /// Every pixel of the font becomes `scale` x `scale` pixels.
    explicit Lettering(int scale = 1);
    ~Lettering();
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;

    /// From one line to the next, in pixels.
    int lineHeight() const;
    int widthOf(std::string_view text) const;
    /// The text in lines of at most this many pixels, broken at spaces where possible.
    std::vector<std::string> wrapped(std::string_view text, int width) const;
    /// Draws a line with its upper left corner at (x, y2); y upwards as in all pictures. The
    /// picture is RGBA, Byte; what lies outside is left out.
    void draw(Picture& picture, int x, int y2, std::string_view text, Colour colour) const;

private:
    struct Glyph {
        int left, top, width, height, advance;
        const unsigned char* pixels;  ///< coverage, 0 to 255
    };

    Glyph glyphOf(char32_t sign) const;

    std::unique_ptr<ImFontAtlas> atlas_;
    const unsigned char* pixels_ = nullptr;
    int stride_ = 0, height_ = 0;
    int scale_;
};

}  // namespace Tesseret::Sheet
