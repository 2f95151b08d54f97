#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "render/MatteValue.h"

namespace Tesseret::Render {

/// The separate areas of a matte, separated as in the plug-in: pixels that no path of unmasked
/// pixels (to the side, up or down) from outside the matte reaches, so that holes belong to the
/// area around them. They count from 0 in the order of their first pixels, from the lowest row and
/// its left end. The time is proportional to the matte's pixels.
class MatteAreas {
public:
    /// The matte has alpha alone. Outside its bounds nothing is masked, whatever the polarity.
    MatteAreas(std::shared_ptr<const Picture> matte, Polarity polarity);

    std::size_t count() const { return boxes_.size(); }
    /// The smallest box round an area.
    const OfxRectI& box(std::size_t area) const { return boxes_[area]; }
    /// The area of a pixel, holes included; nullopt where there is none.
    std::optional<std::size_t> at(int x, int y) const;
    const Picture& matte() const { return *matte_; }
    Polarity polarity() const { return polarity_; }

    /// A matte of the same polarity with only this area, its holes filled, over bounds that lie
    /// inside the matte's.
    Picture alone(std::size_t area, const OfxRectI& bounds) const { return only({area}, bounds); }
    /// Likewise with several areas; numbers of areas that do not exist are left out.
    Picture only(const std::vector<std::size_t>& areas, const OfxRectI& bounds) const;
    /// Whether one of the first `count` areas has a pixel in the box.
    bool reachInto(const OfxRectI& box, std::size_t count) const;

private:
    using Label = std::int32_t;

    std::size_t cellAt(int x, int y) const;
    void markMasked();
    OfxRectI flood(std::size_t start, Label from, Label to);
    void labelAreas();

    std::shared_ptr<const Picture> matte_;
    Polarity polarity_;
    std::size_t stride_;  ///< cells from one row to the next
    std::vector<Label>
        labels_;  ///< one more than the area's number; the matte and two cells round it
    std::vector<OfxRectI> boxes_;
};

}  // namespace Tesseret::Render
