#include "render/SavedFill.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

#include "effect/ParameterNames.h"
#include "files/Checksum.h"
#include "files/FileError.h"
#include "files/Sequence.h"
#include "files/WholeFile.h"
#include "render/FrameRequest.h"
#include "render/JobError.h"
#include "render/ParameterFile.h"

namespace Tesseret::Render {

namespace fs = std::filesystem;
using Files::FileError;
using Json = nlohmann::ordered_json;

namespace {

constexpr std::string_view kMagic = "TESSFILL";
constexpr std::uint64_t kVersion = 1;
constexpr std::size_t kVersionBytes = 4, kLengthBytes = 8;
constexpr std::size_t kHeadBytes = 8 + kVersionBytes + 2 * kLengthBytes;

// The file

void putNumber(RecordBytes& bytes, std::uint64_t value, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        bytes.push_back(static_cast<std::byte>(value >> (8 * i) & 0xff));
    }
}

void put(RecordBytes& bytes, std::span<const std::byte> more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

/// The bytes of a fill, taken from the front; throws where they end too early.
class Bytes {
public:
    Bytes(const fs::path& file, std::span<const std::byte> bytes) : file_(file), left_(bytes) {}

    std::span<const std::byte> take(std::uint64_t count)
    {
        if (count > left_.size()) fail();
        const auto taken = left_.first(static_cast<std::size_t>(count));
        left_ = left_.subspan(taken.size());
        return taken;
    }
    std::uint64_t number(std::size_t count)
    {
        std::uint64_t value = 0;
        int shift = 0;
        for (const std::byte byte : take(count)) {
            value |= std::to_integer<std::uint64_t>(byte) << shift;
            shift += 8;
        }
        return value;
    }
    std::span<const std::byte> left() const { return left_; }
    [[noreturn]] void fail() const
    {
        throw FileError(file_, "is a truncated or damaged fill; save it again with --save-fill");
    }

private:
    const fs::path& file_;
    std::span<const std::byte> left_;
};

RecordBytes readAll(const fs::path& file)
{
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::error_code ignored;
    if (fs::is_directory(file, ignored)) throw FileError(file, "is a folder");
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream || stream.bad()) {
        throw FileError(file, std::string("cannot be read: ") + std::strerror(errno));
    }
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::uint64_t maskBytes(const OfxRectI& box)
{
    const auto pixels =
        static_cast<std::uint64_t>(box.x2 - box.x1) * static_cast<std::uint64_t>(box.y2 - box.y1);
    return (pixels + 7) / 8;
}

void putMask(RecordBytes& bytes, const RecordedArea& area)
{
    RecordBytes packed(static_cast<std::size_t>(maskBytes(area.box)));
    for (std::size_t i = 0; i < area.masked.size(); ++i) {
        if (area.masked[i]) packed[i / 8] |= std::byte{1} << (i % 8);
    }
    put(bytes, packed);
}

std::vector<bool> takeMask(Bytes& bytes, const OfxRectI& box)
{
    const auto packed = bytes.take(maskBytes(box));
    std::vector<bool> masked(static_cast<std::size_t>(box.x2 - box.x1) *
                             static_cast<std::size_t>(box.y2 - box.y1));
    for (std::size_t i = 0; i < masked.size(); ++i) {
        masked[i] = (packed[i / 8] >> (i % 8) & std::byte{1}) != std::byte{0};
    }
    return masked;
}

Json listOf(const FillRecord& step)
{
    Json areas = Json::array();
    for (const RecordedArea& area : step.areas) {
        areas.push_back({{"box", {area.box.x1, area.box.y1, area.box.x2, area.box.y2}},
                         {"middle", {area.middleX, area.middleY}}});
    }
    Json sizes = Json::array();
    for (const RecordBytes& record : step.instances) sizes.push_back(record.size());
    return {{"areas", std::move(areas)}, {"blockBytes", std::move(sizes)}};
}

RecordedArea takeArea(Bytes& bytes, const Json& listed)
{
    constexpr int kMost = 1 << 24;
    const auto edges = listed.at("box").get<std::array<int, 4>>();
    const auto middle = listed.at("middle").get<std::array<double, 2>>();
    const auto isFar = [](int edge) { return edge < -kMost || edge > kMost; };
    if (std::ranges::any_of(edges, isFar) || edges[0] >= edges[2] || edges[1] >= edges[3]) {
        bytes.fail();
    }
    RecordedArea area;
    area.box = {edges[0], edges[1], edges[2], edges[3]};
    area.masked = takeMask(bytes, area.box);
    area.middleX = middle[0];
    area.middleY = middle[1];
    return area;
}

FillRecord takeStep(Bytes& bytes, const Json& listed)
{
    FillRecord step;
    for (const Json& area : listed.at("areas")) step.areas.push_back(takeArea(bytes, area));
    for (const Json& size : listed.at("blockBytes")) {
        const auto record = bytes.take(size.get<std::uint64_t>());
        step.instances.emplace_back(record.begin(), record.end());
    }
    const bool fits = step.areas.empty() ? step.instances.size() <= 1
                                         : step.instances.size() == step.areas.size();
    if (!fits) bytes.fail();
    return step;
}

// The identity

std::string sizeText(const OfxRectI& window)
{
    return std::to_string(window.x2 - window.x1) + " x " + std::to_string(window.y2 - window.y1);
}

Json boxJson(const std::optional<ViewBox>& box)
{
    if (!box) return nullptr;
    return {box->x1, box->y1, box->x2, box->y2};
}

const char* depthWord(Depth depth)
{
    return depth == Depth::Byte ? "byte" : depth == Depth::Short ? "short" : "float";
}

/// What a step's matte and textures are used for, and its parameters.
void addStep(Json& identity, const std::string& prefix, const RenderSettings& step,
             const InstanceSetup& setup)
{
    Json areas = step.everyArea ? "all" : "first";
    if (!step.areas.empty()) areas = step.areas;
    identity[prefix + "--areas"] = std::move(areas);
    const auto& side = step.matteSide;
    identity[prefix + "--matte-side"] = side ? Json{side->x, side->y, side->angle} : Json{};
    identity[prefix + "--matte-window"] = step.cropsAreas ? "area" : "full";
    identity[prefix + "--matte-grow"] = step.matteGrow;
    identity[prefix + "--follow"] = step.followsMatte;
    for (std::size_t i = 0; i < step.textureCrops.size(); ++i) {
        identity[prefix + "--texture" + std::to_string(i + 1) + "-crop"] =
            boxJson(step.textureCrops.at(i));
    }
    for (const auto& [name, value] : setup.values()) {
        if (name != Names::kShowWidget) identity[prefix + name] = valueJson(value);
    }
}

}  // namespace

FillIdentity identityOf(const RenderSettings& settings, const JobInputs& inputs,
                        const StepList& steps, PluginSession& session, Depth depth, int frame)
{
    const Host::EffectDescription effect = session.effect().description();
    const OfxRectI window = requestFor(settings, true, frame, inputs.source()).window;
    Json identity{
        {"plug-in", effect.identifier},
        {"plug-in version",
         std::to_string(effect.versionMajor) + "." + std::to_string(effect.versionMinor)},
        {"a source of", sizeText(inputs.source().displayWindow)},
        {"a pixel aspect ratio of", inputs.source().pixelAspectRatio},
        {"a window of", {window.x1, window.y1, window.x2, window.y2}},
        {"--render-scale", settings.renderScale},
        {"--depth", depthWord(depth)},
        {"--host-like", settings.hostLike},
        {"--context", steps.setup(0).context()},
        {"a count of steps of", steps.count()},
    };
    for (std::size_t i = 0; i < settings.textures.size(); ++i) {
        const fs::path& name = settings.textures.at(i);
        const std::string option = "--texture" + std::to_string(i + 1);
        identity[option + " of checksum"] =
            name.empty() ? Json{}
                         : Json(Files::checksumOf(Files::SequencePattern(name).file(frame)));
    }
    for (std::size_t i = 0; i < steps.count(); ++i) {
        const std::string prefix = steps.count() > 1 ? "step " + std::to_string(i + 1) + ": " : "";
        addStep(identity, prefix, steps.settings(i), steps.setup(i));
    }
    return identity;
}

void checkIdentity(const fs::path& file, const FillIdentity& saved, const FillIdentity& own)
{
    const auto textOf = [](const Json& value) {
        if (value.is_null()) return std::string("none");
        return value.is_string() ? value.get<std::string>() : value.dump();
    };
    for (const auto& [name, value] : own.items()) {
        const Json theirs = saved.is_object() && saved.contains(name) ? saved.at(name) : Json{};
        if (theirs == value) continue;
        throw UsageError(file.string() + ": was saved with " + name + " " + textOf(theirs) +
                         ", and this render has " + textOf(value) +
                         "; save it again with --save-fill");
    }
}

void writeFill(const fs::path& file, const SavedFill& fill)
{
    Json header{{"frame", fill.frame}, {"identity", fill.identity}, {"steps", Json::array()}};
    for (const FillRecord& step : fill.steps) header["steps"].push_back(listOf(step));
    const std::string text = header.dump(-1, ' ', false, Json::error_handler_t::replace);
    RecordBytes body;
    putNumber(body, text.size(), kLengthBytes);
    put(body, std::as_bytes(std::span(text)));
    for (const FillRecord& step : fill.steps) {
        for (const RecordedArea& area : step.areas) putMask(body, area);
        for (const RecordBytes& record : step.instances) put(body, record);
    }
    RecordBytes bytes;
    bytes.reserve(kHeadBytes + body.size());
    put(bytes, std::as_bytes(std::span(kMagic)));
    putNumber(bytes, kVersion, kVersionBytes);
    putNumber(bytes, body.size(), kLengthBytes);
    putNumber(bytes, Files::checksum(body), kLengthBytes);
    put(bytes, body);
    Files::writeWhole(file, bytes);
}

SavedFill readFill(const fs::path& file)
{
    const RecordBytes all = readAll(file);
    const auto magic = std::as_bytes(std::span(kMagic));
    if (all.size() < magic.size() || !std::equal(magic.begin(), magic.end(), all.begin())) {
        throw FileError(file, "is no fill that --save-fill wrote");
    }
    Bytes bytes(file, std::span(all).subspan(magic.size()));
    const std::uint64_t version = bytes.number(kVersionBytes);
    if (version != kVersion) {
        throw FileError(file, "is a fill of version " + std::to_string(version) +
                                  ", and this program reads version " + std::to_string(kVersion));
    }
    const std::uint64_t length = bytes.number(kLengthBytes);
    const std::uint64_t sum = bytes.number(kLengthBytes);
    if (length != bytes.left().size() || sum != Files::checksum(bytes.left())) bytes.fail();
    const auto text = bytes.take(bytes.number(kLengthBytes));
    try {
        const auto* const begin = reinterpret_cast<const char*>(text.data());
        const Json header = Json::parse(begin, begin + text.size());
        SavedFill fill;
        fill.frame = header.at("frame").get<int>();
        fill.identity = header.at("identity");
        for (const Json& step : header.at("steps")) fill.steps.push_back(takeStep(bytes, step));
        if (!bytes.left().empty()) bytes.fail();
        return fill;
    } catch (const Json::exception&) {
        bytes.fail();
    }
}

}  // namespace Tesseret::Render
