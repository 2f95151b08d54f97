#pragma once

/// A clip of a descriptor or of an instance. An instance's input clip takes its pictures from a
/// ClipSource; the output clip has the picture being rendered.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/ClipSource.h"
#include "host/HandleRegistry.h"
#include "host/PropertySet.h"

namespace Tesseret::Host {

class EffectObject;
class Image;

class Clip {
public:
    Clip(EffectObject& owner, std::string name);
    /// An instance's clip, with the properties described.
    Clip(EffectObject& owner, const Clip& described);
    ~Clip();
    Clip(const Clip&) = delete;
    Clip& operator=(const Clip&) = delete;

    OfxImageClipHandle handle() const { return handle_.as<OfxImageClipHandle>(); }
    EffectObject& owner() const { return owner_; }
    const std::string& name() const { return name_; }
    bool isOutput() const;
    bool isOptional() const;
    PropertySet& properties() { return properties_; }
    const PropertySet& properties() const { return properties_; }

    bool isConnected() const { return source_ != nullptr || output_ != nullptr; }
    const std::shared_ptr<ClipSource>& source() const { return source_; }
    void connect(std::shared_ptr<ClipSource> source) { source_ = std::move(source); }
    /// The picture being rendered, not owned; null when none is.
    void setOutput(Picture* picture) { output_ = picture; }
    /// The depth and components of the images that the plug-in gets.
    void setFormat(const ClipFormat& format) { format_ = format; }
    const ClipFormat& format() const { return format_; }
    /// Writes the properties of an instance's clip, from its source and format. A clip without a
    /// source, the output one for instance, has the frames given.
    void updateProperties(OfxRangeD frames);
    /// The region of interest of this render, in canonical units.
    void setRegionOfInterest(std::optional<OfxRectD> region) { regionOfInterest_ = region; }
    const std::optional<OfxRectD>& regionOfInterest() const { return regionOfInterest_; }

    // Called by the suite; each returns the standard's status.
    OfxStatus fetch(OfxTime time, OfxPropertySetHandle& image);
    OfxStatus regionOfDefinition(OfxTime time, OfxRectD& region);
    /// Releases an image of this clip. False when the clip has no such image.
    bool release(const Image& image);
    /// Releases all images still fetched; returns their number.
    std::size_t releaseAll();

private:
    /// A fetched image and how often it is fetched.
    struct Fetched {
        std::unique_ptr<Image> image;
        std::size_t fetches = 0;
    };

    OfxStatus makeImage(OfxTime time, OfxPropertySetHandle& image);
    Fetched& nextImage();
    OfxPointD renderScale() const;
    void defineDescriptor();

    EffectObject& owner_;
    std::string name_;
    Handle handle_;
    PropertySet properties_;
    ClipFormat format_;
    std::shared_ptr<ClipSource> source_;
    Picture* output_ = nullptr;
    std::optional<OfxRectD> regionOfInterest_;
    std::vector<Fetched> images_;
};

}  // namespace Tesseret::Host
