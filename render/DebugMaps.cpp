#include "render/DebugMaps.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <system_error>
#include <utility>

#include "files/FileError.h"
#include "files/PictureWriter.h"
#include "render/JobError.h"
#include "render/ParameterText.h"

namespace Tesseret::Render {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kExtension = ".png";

/// Whether a file could be a map: a map's name after characters of its prefixes only.
bool isMapName(const fs::path& file)
{
    const std::string name = file.filename().string();
    return std::ranges::any_of(FillPictures::kAll, [&](std::string_view map) {
        const std::string end = std::string(map).append(kExtension);
        return name.ends_with(end) &&
               name.find_first_not_of("-0123456789_area") >= name.size() - end.size();
    });
}

void makeFolder(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw Files::FileError(folder, "cannot be created: " + error.message());
    Files::checkTarget(folder / std::string(FillPictures::kFillMask).append(kExtension), "");
}

}  // namespace

DebugMaps::DebugMaps(fs::path folder, JobListener& listener)
    : folder_(std::move(folder)), listener_(listener)
{}

void DebugMaps::begin(const JobInputs& inputs, double renderScale)
{
    const OfxRectI& source = inputs.source().displayWindow;
    page_ =
        toPixels({0.0, 0.0, double(source.x2), double(source.y2)}, {renderScale, renderScale}, 1.0);
    isSequence_ = inputs.isSequence();
    makeFolder(folder_);
    for (const auto& entry : fs::directory_iterator(folder_)) {
        if (isMapName(entry.path()) && inputs.reads(entry.path())) {
            throw UsageError(entry.path().string() +
                             ": is one of the input files; a map would overwrite it");
        }
    }
    const fs::path output = inputs.outputFile(inputs.frames().front());
    const fs::path outputFolder = output.has_parent_path() ? output.parent_path() : ".";
    if (isMapName(output) && fs::equivalent(outputFolder, folder_)) {
        throw UsageError(output.string() + ": is the name of a map; choose another folder");
    }
}

void DebugMaps::finish()
{
    removeUnmade();
    if (!failure_.empty()) throw RenderFailure(failure_);
}

void DebugMaps::frameBegan(int frame)
{
    std::array<char, 32> number{};
    std::snprintf(number.data(), number.size(), "%04d_", frame);
    framePrefix_ = isSequence_ ? number.data() : "";
    startPictures(framePrefix_);
}

void DebugMaps::areaBegan(std::size_t area, std::size_t count)
{
    if (count > 1) startPictures(framePrefix_ + "area" + std::to_string(area + 1) + "_");
}

void DebugMaps::startPictures(std::string prefix)
{
    removeUnmade();
    prefix_ = std::move(prefix);
    hasBegun_ = true;
    made_.clear();
    pictures_.restart();
}

/// Removes the maps of an earlier render that this render does not make; after a failure they are
/// kept.
void DebugMaps::removeUnmade() const
{
    if (!hasBegun_ || !failure_.empty()) return;
    for (const std::string_view name : FillPictures::kAll) {
        std::error_code ignored;
        if (!made_.contains(name)) fs::remove(file(name), ignored);
    }
}

bool DebugMaps::wantsMaps(Host::Instance& /*instance*/)
{
    return true;
}

void DebugMaps::mapMade(Host::Instance& /*instance*/, const TesseretMapV1& map)
{
    guarded([&] {
        const std::optional<FillPicture> made = pictures_.make(map);
        if (made) write(*made);
        if (made && made->name == FillPictures::kGain) reportGain(map);
    });
}

void DebugMaps::pathFound(Host::Instance& /*instance*/, const TesseretPathV1& path)
{
    guarded([&] { write(pictures_.make(path)); });
}

void DebugMaps::reportGain(const TesseretMapV1& map)
{
    const auto [least, greatest] = pictures_.usedRange(map);
    if (least > greatest) return;
    constexpr int kDigits = 3;
    listener_.message(file(FillPictures::kGain).string() + ": gain " + roundedText(least, kDigits) +
                      " to " + roundedText(greatest, kDigits) + "; blue is 1/4, grey 1, orange 4");
}

/// No exception may reach the plug-in, which calls from inside its render.
void DebugMaps::guarded(const std::function<void()>& work)
{
    try {
        work();
    } catch (const std::exception& error) {
        if (failure_.empty()) failure_ = error.what();
    }
}

void DebugMaps::write(const FillPicture& made)
{
    Files::writeNewPicture(file(made.name), *made.picture, made.isColour, page_);
    made_.insert(made.name);
}

fs::path DebugMaps::file(std::string_view map) const
{
    return folder_ / std::string(prefix_).append(map).append(kExtension);
}

}  // namespace Tesseret::Render
