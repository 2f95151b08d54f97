#include "command/BoxText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "render/JobError.h"

namespace Tesseret::Command {

namespace {

struct Length {
    double number = 0.0;
    bool isShare = false;  ///< in per cent
};

std::optional<Length> lengthFrom(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    const std::size_t last = text.find_last_not_of(' ');
    if (first == std::string_view::npos) return std::nullopt;
    text = text.substr(first, last + 1 - first);
    Length length;
    if (text.ends_with('%')) {
        length.isShare = true;
        text.remove_suffix(1);
    }
    if (text.starts_with('+')) text.remove_prefix(1);
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), length.number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && std::isfinite(length.number) ? std::optional(length) : std::nullopt;
}

/// Separated by commas; nullopt for any other text.
template <std::size_t Count>
std::optional<std::array<Length, Count>> lengthsFrom(std::string_view text)
{
    std::array<Length, Count> lengths{};
    for (std::size_t i = 0; i < Count; ++i) {
        const std::size_t comma = i + 1 < Count ? text.find(',') : text.size();
        if (comma == std::string_view::npos) return std::nullopt;
        const std::optional<Length> length = lengthFrom(text.substr(0, comma));
        if (!length) return std::nullopt;
        lengths.at(i) = *length;
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    return lengths;
}

}  // namespace

std::optional<Render::ViewBox> boxFrom(const std::string& text, const std::string& option,
                                       const std::function<OfxRectI()>& size)
{
    if (text.empty()) return std::nullopt;
    const auto edges = lengthsFrom<4>(text);
    if (!edges) {
        throw Render::UsageError(
            option + " " + text +
            ": expected x1,y1,x2,y2, in pixels or with % as in 10%,10%,50%,90%");
    }
    const auto pixels = [&](std::size_t edge) {
        const Length& length = edges->at(edge);
        if (!length.isShare) return length.number;
        const OfxRectI whole = size();
        const int all = edge % 2 == 0 ? whole.x2 : whole.y2;
        return std::round(length.number / 100.0 * all);
    };
    const Render::ViewBox box{pixels(0), pixels(1), pixels(2), pixels(3)};
    if (box.x1 < box.x2 && box.y1 < box.y2) return box;
    throw Render::UsageError(option + " " + text + ": x1 must be left of x2, and y1 above y2");
}

std::optional<Render::LineSide> sideFrom(const std::string& text)
{
    if (text.empty()) return std::nullopt;
    const auto numbers = lengthsFrom<3>(text);
    const bool isPlain =
        numbers && !(*numbers)[0].isShare && !(*numbers)[1].isShare && !(*numbers)[2].isShare;
    if (!isPlain) throw Render::UsageError("--matte-side " + text + ": expected x,y,angle");
    return Render::LineSide{(*numbers)[0].number, (*numbers)[1].number, (*numbers)[2].number};
}

}  // namespace Tesseret::Command
