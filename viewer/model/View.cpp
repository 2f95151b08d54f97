#include "viewer/model/View.h"

#include <algorithm>

namespace Tesseret::Viewer {

namespace {

/// The margin around a fitted picture, in screen units.
constexpr double kMargin = 16.0;
/// How much of the surroundings a shown part has: its size times this.
constexpr double kSurroundings = 2.5;

}  // namespace

void View::setArea(const ScreenArea& area)
{
    area_ = {area.x, area.y, std::max(1.0, area.width), std::max(1.0, area.height)};
    if (isFitted_) fit();
}

void View::setPicture(const OfxRectD& picture)
{
    picture_ = picture;
    picture_.x2 = std::max(picture.x2, picture.x1 + 1.0);
    picture_.y2 = std::max(picture.y2, picture.y1 + 1.0);
    if (isFitted_) fit();
}

double View::fittedScale() const
{
    const double width = std::max(1.0, area_.width - 2.0 * kMargin);
    const double height = std::max(1.0, area_.height - 2.0 * kMargin);
    return std::min(width / (picture_.x2 - picture_.x1), height / (picture_.y2 - picture_.y1));
}

void View::fit()
{
    scale_ = std::clamp(fittedScale(), kMinScale, kMaxScale);
    centre_ = {(picture_.x1 + picture_.x2) / 2.0, (picture_.y1 + picture_.y2) / 2.0};
    isFitted_ = true;
}

void View::show(const OfxRectD& part)
{
    const double width = std::max(1.0, part.x2 - part.x1) * kSurroundings;
    const double height = std::max(1.0, part.y2 - part.y1) * kSurroundings;
    const double scale = std::min(area_.width / width, area_.height / height);
    scale_ = std::clamp(std::max(std::min(scale, 1.0), fittedScale()), kMinScale, kMaxScale);
    centre_ = {(part.x1 + part.x2) / 2.0, (part.y1 + part.y2) / 2.0};
    isFitted_ = false;
}

void View::showActualSize()
{
    scale_ = 1.0;
    isFitted_ = false;
}

void View::zoomAbout(OfxPointD screen, double factor)
{
    const OfxPointD kept = toCanonical(screen);
    scale_ = std::clamp(scale_ * factor, kMinScale, kMaxScale);
    const OfxPointD moved = toCanonical(screen);
    centre_.x += kept.x - moved.x;
    centre_.y += kept.y - moved.y;
    isFitted_ = false;
}

void View::pan(double x, double y)
{
    centre_.x -= x / scale_;
    centre_.y += y / scale_;
    isFitted_ = false;
}

OfxPointD View::areaCentre() const
{
    return {area_.x + area_.width / 2.0, area_.y + area_.height / 2.0};
}

OfxPointD View::toCanonical(OfxPointD screen) const
{
    const OfxPointD middle = areaCentre();
    return {centre_.x + (screen.x - middle.x) / scale_, centre_.y - (screen.y - middle.y) / scale_};
}

OfxPointD View::toScreen(OfxPointD canonical) const
{
    const OfxPointD middle = areaCentre();
    return {middle.x + (canonical.x - centre_.x) * scale_,
            middle.y - (canonical.y - centre_.y) * scale_};
}

OfxRectD View::visible() const
{
    const OfxPointD lowerLeft = toCanonical({area_.x, area_.y + area_.height});
    const OfxPointD upperRight = toCanonical({area_.x + area_.width, area_.y});
    return {lowerLeft.x, lowerLeft.y, upperRight.x, upperRight.y};
}

}  // namespace Tesseret::Viewer
