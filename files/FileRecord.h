#pragma once

/// Data kept of a file besides its colours and alpha, so that a result becomes the same kind of
/// file. Only the reader and the writer use its contents.

#include <cstddef>
#include <vector>

#include <OpenImageIO/imageio.h>

#include "files/FileFormat.h"
#include "picture/Picture.h"

namespace Tesseret::Files {

/// The indices of the picture's channels in the file; -1 for none. A grey file has one index three
/// times.
struct ChannelPlaces {
    int red = -1, green = -1, blue = -1, alpha = -1;

    bool isColour() const { return red != green; }
};

/// A channel that renders do not change (depth, normals, masks), in its own type.
struct ExtraChannel {
    int index;
    OIIO::TypeDesc type;
    std::vector<std::byte> samples;  ///< the data window in file order
};

struct FileRecord {
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
