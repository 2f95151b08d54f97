#pragma once

#include <cstddef>
#include <vector>

#include <OpenImageIO/imageio.h>

#include "files/FileFormat.h"
#include "files/FileRecord.h"
#include "picture/Picture.h"

namespace Tesseret::Files {

/// A channel that renders do not change (depth, normals, masks), in its own type.
struct ExtraChannel {
    int index;
    OIIO::TypeDesc type;
    std::vector<std::byte> samples;  ///< the data window in file order
};

/// The record of a file that OpenImageIO has read.
struct SpecRecord final : FileRecord {
    SpecRecord(const FileFormat& fileFormat, OIIO::ImageSpec asRead);

    const FileFormat* format;
    OIIO::ImageSpec spec;  ///< as read
    ChannelPlaces places;
    Depth depth;  ///< that holds every value of the colour channels
    std::vector<ExtraChannel> extra;
};

/// Of a file's channels: those named R, G and B, else the first three, else the first as grey.
ChannelPlaces findChannels(const OIIO::ImageSpec& spec);

/// The depth a channel type is rendered in: integers of 8 and 16 bits as they are, the rest as
/// float.
Depth depthOf(const OIIO::TypeDesc& type);
OIIO::TypeDesc typeOf(Depth depth);

}  // namespace Tesseret::Files
