#include "sheet/Lettering.h"

#include <algorithm>
#include <cmath>

#include <imgui/imgui.h>

namespace Tesseret::Sheet {

namespace {

/// The next sign of UTF-8 text, which is removed from it; a byte that is none by itself.
char32_t takeSign(std::string_view& text)
{
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    const int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : first >= 0xc0 ? 1 : 0;
    char32_t sign = more == 0 ? first : first & (0x3fu >> more);
    for (int i = 0; i < more && !text.empty(); ++i) {
        const auto next = static_cast<unsigned char>(text.front());
        if ((next & 0xc0) != 0x80) break;
        sign = sign << 6 | (next & 0x3fu);
        text.remove_prefix(1);
    }
    return sign;
}

int whole(float value)
{
    return static_cast<int>(std::lround(value));
}

}  // namespace

Lettering::Lettering(int scale) : atlas_(std::make_unique<ImFontAtlas>()), scale_(scale)
{
    atlas_->AddFontDefault();
    unsigned char* pixels = nullptr;
    atlas_->GetTexDataAsAlpha8(&pixels, &stride_, &height_);
    pixels_ = pixels;
}

Lettering::~Lettering() = default;

int Lettering::lineHeight() const
{
    return whole(atlas_->Fonts[0]->FontSize) * scale_;
}

Lettering::Glyph Lettering::glyphOf(char32_t sign) const
{
    // A sign that the font lacks gets its replacement.
    const ImFontGlyph& glyph =
        *atlas_->Fonts[0]->FindGlyph(static_cast<ImWchar>(sign <= 0xff ? sign : U'?'));
    const int x = whole(glyph.U0 * float(stride_)), y = whole(glyph.V0 * float(height_));
    return {whole(glyph.X0),
            whole(glyph.Y0),
            whole(glyph.X1 - glyph.X0),
            whole(glyph.Y1 - glyph.Y0),
            whole(glyph.AdvanceX),
            pixels_ + std::ptrdiff_t(y) * stride_ + x};
}

int Lettering::widthOf(std::string_view text) const
{
    int width = 0;
    while (!text.empty()) width += glyphOf(takeSign(text)).advance;
    return width * scale_;
}

std::vector<std::string> Lettering::wrapped(std::string_view text, int width) const
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        std::string_view rest = text;
        int used = 0;
        std::size_t end = 0, space = 0;
        while (!rest.empty()) {
            if (rest.front() == ' ') space = end;
            used += glyphOf(takeSign(rest)).advance * scale_;
            if (used > width && end > 0) break;
            end = text.size() - rest.size();
        }
        if (end < text.size() && text[end] != ' ' && space > 0) end = space;
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
        if (text.starts_with(' ')) text.remove_prefix(1);
    }
    return lines;
}

void Lettering::draw(Picture& picture, int x, int y2, std::string_view text, Colour colour) const
{
    const std::array<int, 3> wanted{colour.red, colour.green, colour.blue};
    while (!text.empty()) {
        const Glyph glyph = glyphOf(takeSign(text));
        for (int row = 0; row < glyph.height * scale_; ++row) {
            const unsigned char* const covered =
                glyph.pixels + std::ptrdiff_t(row / scale_) * stride_;
            const int y = y2 - 1 - (glyph.top * scale_ + row);
            for (int column = 0; column < glyph.width * scale_; ++column) {
                const int at = x + glyph.left * scale_ + column;
                if (!picture.contains(at, y)) continue;
                auto* const pixel = picture.pixel<std::uint8_t>(at, y);
                const int share = covered[column / scale_];
                for (std::size_t c = 0; c < 3; ++c) {
                    pixel[c] = static_cast<std::uint8_t>(pixel[c] +
                                                         (wanted.at(c) - pixel[c]) * share / 255);
                }
            }
        }
        x += glyph.advance * scale_;
    }
}

}  // namespace Tesseret::Sheet
