#pragma once

/// The input pictures of one frame.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "files/PictureReader.h"

namespace Tesseret::Render {

/// A clip's picture of one frame.
struct ClipPicture {
    std::shared_ptr<const Picture> picture;
    std::shared_ptr<const Files::FileRecord> record;
    Files::PictureInfo info;
    std::vector<std::string> warnings;
    std::optional<Files::MatteFrom> matteFrom;  ///< of a matte; nullopt for other clips
    OfxPointD scale{1.0, 1.0};                  ///< of its pixels, for one full size
};

/// By clip name.
using FramePictures = std::map<std::string, ClipPicture>;

}  // namespace Tesseret::Render
