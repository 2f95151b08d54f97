#pragma once

#include <cstddef>
#include <memory>

#include "engine/FillParameters.h"
#include "engine/RecordExchange.h"
#include "engine/RenderObserver.h"
#include "engine/map/ClipImage.h"
#include "libraries/Processor/RenderStatus.h"

namespace Orvane::Engine {

/// When and where a render happens.
struct RenderPlace {
    double time = 0.0;
    Region window;  ///< pixels
};

/// The images, settings, status and observer of one render. Images are those of the render's time,
/// or null. No function fails. All but the last three are called at most once (`textureImage` once
/// for each texture), in the order declared here, which hosts can observe.
class RenderContext {
public:
    virtual ~RenderContext() = default;

    virtual std::unique_ptr<ClipImage> outputImage() = 0;
    virtual RenderPlace place() = 0;
    virtual std::unique_ptr<ClipImage> sourceImage() = 0;
    /// Sets the temporal consistency and where the mask comes from.
    virtual void readRegion(FillParameters& fill) = 0;
    virtual std::unique_ptr<ClipImage> matteImage() = 0;
    /// Sets everything else.
    virtual void readFill(FillParameters& fill) = 0;
    /// Of texture 0, 1 or 2, in that order; null when it is not in use.
    virtual std::unique_ptr<ClipImage> textureImage(std::size_t index) = 0;

    virtual RenderStatus& renderStatus() = 0;
    /// May be null.
    virtual RenderObserver* observer() = 0;
    /// May be null.
    virtual RecordExchange* records() { return nullptr; }
};

}  // namespace Orvane::Engine
