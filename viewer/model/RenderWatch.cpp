#include "viewer/model/RenderWatch.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <utility>

#include "viewer/model/WindowWording.h"

namespace Tesseret::Viewer {

using Render::FillPicture;

namespace {

/// Copies a picture over another; each channel keeps the brighter value.
void lighten(Picture& canvas, const Picture& picture)
{
    const OfxRectI both = intersection(canvas.bounds(), picture.bounds());
    const std::ptrdiff_t samples = std::ptrdiff_t{both.x2 - both.x1} * canvas.channels();
    for (int y = both.y1; y < both.y2; ++y) {
        auto* const to = canvas.pixel<std::uint8_t>(both.x1, y);
        std::transform(to, to + samples, picture.pixel<std::uint8_t>(both.x1, y), to,
                       [](std::uint8_t a, std::uint8_t b) { return std::max(a, b); });
    }
}

}  // namespace

void RenderWatch::begin()
{
    const std::lock_guard lock(mutex_);
    messages_.clear();
    notes_.clear();
    stages_.clear();
    fraction_ = 0.0;
    area_ = 0;
    areaCount_ = 1;
    wantsMaps_ = false;
    pictures_.restart();
    maps_.clear();
}

void RenderWatch::wantMaps(OfxRectI bounds)
{
    wantsMaps_ = true;
    bounds_ = bounds;
}

void RenderWatch::end(RenderResult& result)
{
    const std::lock_guard lock(mutex_);
    result.messages = std::exchange(messages_, {});
    result.notes = std::exchange(notes_, {});
    result.maps = std::exchange(maps_, {});
    pictures_.restart();
}

WorkerState RenderWatch::state() const
{
    const std::lock_guard lock(mutex_);
    WorkerState state;
    if (!stages_.empty()) state.stage = stages_.back();
    state.fraction = fraction_;
    state.area = area_;
    state.areaCount = areaCount_;
    return state;
}

void RenderWatch::areaBegan(std::size_t area, std::size_t count)
{
    const std::lock_guard lock(mutex_);
    area_ = area;
    areaCount_ = count;
    pictures_.restart();
}

void RenderWatch::warning(const std::string& text)
{
    addNote(text);
}

void RenderWatch::message(const std::string& text)
{
    const std::lock_guard lock(mutex_);
    messages_.push_back(text);
}

void RenderWatch::stageBegan(Host::Instance& /*instance*/, std::string_view stage)
{
    const std::lock_guard lock(mutex_);
    stages_.emplace_back(stage);
    fraction_ = 0.0;
}

void RenderWatch::stageEnded(Host::Instance& /*instance*/, std::string_view /*stage*/)
{
    const std::lock_guard lock(mutex_);
    if (!stages_.empty()) stages_.pop_back();
    fraction_ = 0.0;
}

void RenderWatch::progress(Host::Instance& /*instance*/, double fraction)
{
    const std::lock_guard lock(mutex_);
    fraction_ = fraction;
}

void RenderWatch::note(Host::Instance& /*instance*/, std::string_view text)
{
    addNote(std::string(text));
}

/// Areas may repeat a note.
void RenderWatch::addNote(const std::string& text)
{
    const std::string worded = inWindowWords(text);
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(notes_, worded) == notes_.end()) notes_.push_back(worded);
}

bool RenderWatch::wantsMaps(Host::Instance& /*instance*/)
{
    return wantsMaps_;
}

void RenderWatch::mapMade(Host::Instance& /*instance*/, const TesseretMapV1& map)
{
    try {
        if (const std::optional<FillPicture> made = pictures_.make(map)) keep(*made);
    } catch (const std::exception& error) {  // a map that cannot be shown must not fail the render
        addNote(error.what());
    }
}

void RenderWatch::pathFound(Host::Instance& /*instance*/, const TesseretPathV1& path)
{
    try {
        keep(pictures_.make(path));
    } catch (const std::exception& error) {
        addNote(error.what());
    }
}

void RenderWatch::keep(const FillPicture& made)
{
    Picture& canvas = maps_[std::string(made.name)];
    if (isEmpty(canvas.bounds())) canvas = Picture(bounds_, Depth::Byte);
    lighten(canvas, *made.picture);
}

}  // namespace Tesseret::Viewer
