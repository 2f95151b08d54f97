#pragma once

/// Textures that are a part of a file, or of the source itself.

#include <map>
#include <string>
#include <vector>

#include "render/FramePictures.h"
#include "render/RenderSettings.h"

namespace Tesseret::Render {

class TextureCrops {
public:
    /// Cuts nothing.
    TextureCrops() = default;
    /// Takes the headers of the files, by clip. Throws `UsageError` for a box outside its picture.
    TextureCrops(const RenderSettings& settings,
                 const std::map<std::string, Files::PictureInfo>& infos);

    /// The textures as they are cut, in addition to the others or in their place. They keep their
    /// place in the picture that they are cut from.
    void cut(std::map<std::string, Files::PictureInfo>& infos) const;
    void cut(FramePictures& pictures) const;
    /// Whether a clip is cut from the source.
    bool isFromSource(const std::string& clip) const;
    /// Only those cut from the source, which has changed.
    void cutFromSource(FramePictures& pictures) const;

private:
    struct Crop {
        std::string clip, from;
        OfxRectI box;  ///< in pixels at full size
    };

    std::vector<Crop> crops_;
};

}  // namespace Tesseret::Render
