#include "files/oiio/OutputSpec.h"

#include <algorithm>
#include <array>

#include "files/oiio/FormatHooks.h"

namespace Tesseret::Files {

using OIIO::TypeDesc;

namespace {

bool isSame(const OfxRectI& a, const OfxRectI& b)
{
    return a.x1 == b.x1 && a.y1 == b.y1 && a.x2 == b.x2 && a.y2 == b.y2;
}

bool isInside(const OfxRectI& inner, const OfxRectI& outer)
{
    return inner.x1 >= outer.x1 && inner.y1 >= outer.y1 && inner.x2 <= outer.x2 &&
           inner.y2 <= outer.y2;
}

void chooseChannels(OutputSpec& out, const FileFormat& format, const SpecRecord& record,
                    bool asColour)
{
    const ChannelPlaces& places = record.places;
    const bool colour = places.isColour() || asColour;
    const bool alphaAlone = places.red < 0;
    const bool alpha = places.alpha >= 0 && format.alpha;
    if (places.alpha >= 0 && !format.alpha) out.losses.emplace_back("alpha");
    if (colour || (alpha && !format.greyAlpha)) {
        out.channels = {0, 1, 2};
    } else if (!alphaAlone) {
        out.channels = {0};
    }
    if (alpha) out.channels.push_back(3);
    if (out.channels.empty()) out.channels = {3};
}

void nameChannels(OIIO::ImageSpec& spec, const std::vector<int>& channels, const SpecRecord& record)
{
    const auto& old = record.spec.channelnames;
    const ChannelPlaces& places = record.places;
    const std::array<int, 4> from{places.red, places.green, places.blue, places.alpha};
    const bool grey = channels.front() == 0 && (channels.size() == 1 || channels[1] == 3);
    spec.nchannels = static_cast<int>(channels.size());
    spec.default_channel_names();
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const int place = from[static_cast<std::size_t>(channels[i])];
        const bool sameKind = places.isColour() || grey || channels[i] == 3;
        if (place >= 0 && sameKind) spec.channelnames[i] = old[static_cast<std::size_t>(place)];
    }
    const auto alpha = std::ranges::find(channels, 3);
    spec.alpha_channel = alpha == channels.end() ? -1 : static_cast<int>(alpha - channels.begin());
    spec.z_channel = -1;
}

/// Extra channels are kept when the new file has the same pixels and can hold their types.
void keepExtraChannels(OutputSpec& out, const FileFormat& format, const SpecRecord& record)
{
    if (record.extra.empty()) return;
    const TypeDesc type = out.spec.format;
    const bool typesFit =
        format.mixedTypes ||
        std::ranges::all_of(record.extra, [type](const auto& extra) { return extra.type == type; });
    const std::size_t kept = out.channels.size() + record.extra.size();
    const bool sameChannels = kept == static_cast<std::size_t>(record.spec.nchannels);
    const bool samePixels =
        out.spec.width == record.spec.width && out.spec.height == record.spec.height;
    if (!format.extraChannels || !typesFit || !sameChannels || !samePixels) {
        out.losses.emplace_back("channels besides colour and alpha");
        return;
    }
    out.keepsExtra = true;
    out.spec.nchannels = record.spec.nchannels;
    out.spec.channelnames = record.spec.channelnames;
    out.spec.alpha_channel = record.spec.alpha_channel;
    out.spec.z_channel = record.spec.z_channel;
    out.spec.channelformats.assign(static_cast<std::size_t>(out.spec.nchannels), type);
    for (const ExtraChannel& extra : record.extra) {
        out.spec.channelformats[static_cast<std::size_t>(extra.index)] = extra.type;
    }
}

/// The display window keeps its place in the file when the record's is used.
void placeWindows(OutputSpec& out, const FileFormat& format, const SpecRecord& record,
                  OfxRectI bounds, std::optional<OfxRectI> displayWindow)
{
    OIIO::ImageSpec& spec = out.spec;
    const OfxRectI own{0, 0, record.spec.full_width, record.spec.full_height};
    const OfxRectI display = displayWindow.value_or(own);
    const bool fits = format.windows == Windows::Any ||
                      (format.windows == Windows::FromZero && isInside(bounds, display));
    out.window = fits ? bounds : display;
    spec.full_x = displayWindow || format.windows != Windows::Any ? 0 : record.spec.full_x;
    spec.full_y = displayWindow || format.windows != Windows::Any ? 0 : record.spec.full_y;
    spec.full_width = display.x2 - display.x1;
    spec.full_height = display.y2 - display.y1;
    spec.x = spec.full_x + out.window.x1 - display.x1;
    spec.y = spec.full_y + display.y2 - out.window.y2;
    spec.width = out.window.x2 - out.window.x1;
    spec.height = out.window.y2 - out.window.y1;
    spec.tile_width = spec.tile_height = spec.tile_depth = 0;
    if (!fits && !isSame(bounds, display)) out.losses.emplace_back("data window");
}

/// Keeps metadata written by users, drops metadata about the old file's bytes.
void cleanMetadata(OutputSpec& out, const FileFormat& format, const SpecRecord& record)
{
    OIIO::ImageSpec& spec = out.spec;
    for (const char* stale :
         {"oiio:SHA-1", "SHA-1", "oiio:AverageColor", "oiio:ConstantColor", "oiio:subimages",
          "planarconfig", "openexr:chunkCount", "openexr:lineOrder", "oiio:Movie"}) {
        spec.erase_attribute(stale);
    }
    const bool sameFormat = record.format == &format;
    for (const FileFormat& other : fileFormats()) {
        if (sameFormat && other.keepsAttributes) continue;
        spec.erase_attribute(std::string("^").append(other.attributes).append(".*"));
    }
    if (!sameFormat) spec.erase_attribute("compression");

    const int bits = spec.get_int_attribute("oiio:BitsPerSample");
    const int typeBits = static_cast<int>(spec.format.size()) * 8;
    if (!sameFormat || bits > typeBits || bits <= typeBits / 2) {
        spec.erase_attribute("oiio:BitsPerSample");
    }
    if (spec.get_int_attribute("Orientation", 1) > 1 && !sameFormat && !format.orientation) {
        spec.erase_attribute("Orientation");
        out.losses.emplace_back("orientation");
    }
}

void setCompression(OIIO::ImageSpec& spec, const FileFormat& format, const std::string& text)
{
    const FormatHooks& hooks = hooksOf(format);
    if (hooks.setCompression == nullptr) return;
    hooks.setCompression(spec, text.empty() ? Compression{} : parseCompression(format, text));
}

}  // namespace

OutputSpec makeOutputSpec(const FileFormat& format, const SpecRecord& record, Depth depth,
                          OfxRectI bounds, std::optional<OfxRectI> displayWindow, bool asColour,
                          const std::string& compression)
{
    OutputSpec out;
    out.spec = record.spec;
    const int first = record.places.red >= 0 ? record.places.red : record.places.alpha;
    const TypeDesc wanted =
        depth == record.depth ? record.spec.channelformat(first) : typeOf(depth);
    out.spec.set_format(hooksOf(format).storedType(wanted));
    out.depth = depthOf(out.spec.format);
    chooseChannels(out, format, record, asColour);
    nameChannels(out.spec, out.channels, record);
    placeWindows(out, format, record, bounds, displayWindow);
    keepExtraChannels(out, format, record);
    cleanMetadata(out, format, record);
    if (const auto adapt = hooksOf(format).adaptToWrite) adapt(out.spec);
    setCompression(out.spec, format, compression);
    return out;
}

}  // namespace Tesseret::Files
