#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "engine/map/ClipImage.h"
#include "ofx/ofxImageEffect.h"
#include "products/OFX/Support/Names.h"
#include "products/OFX/Support/PropertySet.h"
#include "products/OFX/Support/Rect.h"

namespace Orvane {

class OvOfxClip;
class OvOfxClipHandle;

/// One image fetched from the host, released by the destructor. Queries return zeros where the host
/// reports nothing.
class OvOfxImage {
public:
    /// The clip's image at that time, or null. `region` is canonical and may be null.
    [[nodiscard]] static std::unique_ptr<OvOfxImage> fetch(const OvOfxClipHandle& clip, double time,
                                                           const OvRect* region);
    ~OvOfxImage();
    OvOfxImage(const OvOfxImage&) = delete;
    OvOfxImage& operator=(const OvOfxImage&) = delete;

    /// The lower left pixel of the bounds.
    [[nodiscard]] void* data() const;
    /// Bytes from one row to the one above; negative for images stored top down.
    [[nodiscard]] int rowBytes() const;
    /// The stored region, in pixels of the image.
    [[nodiscard]] OfxRectI bounds() const;
    /// In pixels of the image; may be infinite.
    [[nodiscard]] OfxRectI regionOfDefinition() const;
    /// Width over height of a pixel, or none.
    [[nodiscard]] std::optional<double> pixelAspectRatio() const;
    [[nodiscard]] OvField field() const;
    /// The pixel kind, from the depth and components of the image, or of the clip where the image
    /// reports none. None for a kind that maps do not support.
    [[nodiscard]] Engine::PixelKind kind(const OvOfxClip& clip) const;

private:
    explicit OvOfxImage(OfxPropertySetHandle image) : properties_(image) {}

    OvOfxPropertySet properties_;
};

/// One axis of an image as a map: index 0 is the pixel at `origin`; of its `size` pixels, those
/// from `storeFirst` to `storeLast` are stored, and the host's memory starts `skipped` pixels
/// earlier.
struct OvImageAxis {
    int origin = 0;
    int size = 0;
    int storeFirst = 0;
    int storeLast = -1;
    int skipped = 0;

    [[nodiscard]] bool isEmpty() const { return storeLast < storeFirst; }
};

/// The axis of an image that is defined from `definedMin` to `definedMax` and stored from
/// `storedMin` to `storedMax`, the maxima excluded. An infinite or empty region of definition, or
/// one whose size overflows an int, is replaced by the stored region.
[[nodiscard]] OvImageAxis imageAxis(int definedMin, int definedMax, int storedMin, int storedMax);

/// The image as a map that borrows its memory, with the clip's edge methods. Null for a pixel kind
/// that maps do not support; an image without readable pixels becomes a map without storage.
[[nodiscard]] std::unique_ptr<Engine::ClipImage> makeImageView(std::unique_ptr<OvOfxImage> image,
                                                               const OvOfxClip& clip);

}  // namespace Orvane
