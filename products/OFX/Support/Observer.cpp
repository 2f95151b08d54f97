#include "products/OFX/Support/Observer.h"

#include <vector>

#include "ofx/tesseretObserver.h"
#include "products/OFX/Support/Host.h"

namespace Orvane {
namespace {

OfxRectI rectOf(const Engine::Region& bounds)
{
    return {bounds.x0, bounds.y0, bounds.x1, bounds.y1};
}

/// The bounds of a map's stored pixels.
OfxRectI storedBounds(const Engine::MapDomain& map)
{
    const Engine::MapAxis& x = map.xAxis();
    const Engine::MapAxis& y = map.yAxis();
    const int x1 = x.origin + x.storeStart;
    const int y1 = y.origin + y.storeStart;
    return {x1, y1, x1 + x.storeLength, y1 + y.storeLength};
}

class HostObserver final : public Engine::RenderObserver {
public:
    HostObserver(const TesseretObserverSuiteV1& suite, OfxImageEffectHandle effect)
        : suite_(&suite), effect_(effect)
    {}

    void stageBegan(const char* stage) override { notify(suite_->stageBegan, stage); }
    void stageEnded(const char* stage) override { notify(suite_->stageEnded, stage); }
    void progress(double fraction) override { notify(suite_->progress, fraction); }
    void blockLaid(const Engine::PlacedBlock& block) override
    {
        const TesseretBlockV1 sent{.x = block.x,
                                   .y = block.y,
                                   .width = block.width,
                                   .height = block.height,
                                   .srcX = block.srcX,
                                   .srcY = block.srcY,
                                   .textureIndex = block.textureIndex};
        notify(suite_->blockLaid, &sent);
    }
    void note(const char* text) override { notify(suite_->note, text); }

    bool wantsMaps() override
    {
        return suite_->wantsMaps != nullptr && suite_->wantsMaps(effect_) != 0;
    }
    void mapMade(const Engine::ObservedMap& map) override
    {
        const TesseretMapV1 sent{.name = map.name,
                                 .pixels = static_cast<const float*>(map.map->firstPixel()),
                                 .rowBytes = map.map->stride(),
                                 .bounds = storedBounds(*map.map),
                                 .fillRect = rectOf(map.fillRect),
                                 .full = map.full};
        notify(suite_->mapMade, &sent);
    }
    void pathFound(std::span<const Engine::PixelPoint> path,
                   const Engine::Region& fillRect) override
    {
        std::vector<OfxPointI> points;
        points.reserve(path.size());
        for (const Engine::PixelPoint p : path) points.push_back({p.x, p.y});
        const TesseretPathV1 sent{.points = points.data(),
                                  .count = static_cast<int>(points.size()),
                                  .fillRect = rectOf(fillRect)};
        notify(suite_->pathFound, &sent);
    }

private:
    /// Any member of the suite may be null.
    template <typename Value>
    void notify(void (*function)(OfxImageEffectHandle, Value), Value value)
    {
        if (function != nullptr) function(effect_, value);
    }

    const TesseretObserverSuiteV1* suite_;
    OfxImageEffectHandle effect_;
};

}  // namespace

std::unique_ptr<Engine::RenderObserver> makeHostObserver(OfxImageEffectHandle effect)
{
    const auto* suite = static_cast<const TesseretObserverSuiteV1*>(
        fetchSuite(hostRecord(), kTesseretObserverSuite, 1));
    if (suite == nullptr) return nullptr;
    return std::make_unique<HostObserver>(*suite, effect);
}

}  // namespace Orvane
