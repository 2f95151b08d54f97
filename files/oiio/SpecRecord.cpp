#include "files/oiio/SpecRecord.h"

#include <algorithm>
#include <utility>

namespace Tesseret::Files {

namespace {

int indexOf(const OIIO::ImageSpec& spec, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        const auto found = std::ranges::find_if(
            spec.channelnames,
            [name](const std::string& other) { return OIIO::Strutil::iequals(other, name); });
        if (found != spec.channelnames.end()) {
            return static_cast<int>(found - spec.channelnames.begin());
        }
    }
    return -1;
}

}  // namespace

SpecRecord::SpecRecord(const FileFormat& fileFormat, OIIO::ImageSpec asRead)
    : format(&fileFormat),
      spec(std::move(asRead)),
      places(findChannels(spec)),
      depth(depthOf(spec.channelformat(places.red >= 0 ? places.red : places.alpha)))
{}

ChannelPlaces findChannels(const OIIO::ImageSpec& spec)
{
    const int alpha = spec.alpha_channel >= 0 ? spec.alpha_channel : indexOf(spec, {"A", "alpha"});
    const ChannelPlaces named{indexOf(spec, {"R", "red"}), indexOf(spec, {"G", "green"}),
                              indexOf(spec, {"B", "blue"}), alpha};
    if (named.red >= 0 && named.green >= 0 && named.blue >= 0) return named;

    std::vector<int> others;
    for (int c = 0; c < spec.nchannels; ++c) {
        if (c != alpha) others.push_back(c);
    }
    if (others.size() >= 3) return {others[0], others[1], others[2], alpha};
    if (others.empty()) return {-1, -1, -1, alpha};
    return {others[0], others[0], others[0], alpha};
}

Depth depthOf(const OIIO::TypeDesc& type)
{
    if (type == OIIO::TypeUInt8) return Depth::Byte;
    if (type == OIIO::TypeUInt16) return Depth::Short;
    return Depth::Float;
}

OIIO::TypeDesc typeOf(Depth depth)
{
    switch (depth) {
        case Depth::Byte:
            return OIIO::TypeUInt8;
        case Depth::Short:
            return OIIO::TypeUInt16;
        case Depth::Float:
            break;
    }
    return OIIO::TypeFloat;
}

}  // namespace Tesseret::Files
