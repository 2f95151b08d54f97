#include "products/OFX/Support/ovOfxObserver.h"

#include "ofx/tesseretObserver.h"
#include "products/OFX/Support/ovOfxHost.h"

namespace Orvane {
namespace {

class HostObserver final : public Engine::RenderObserver {
public:
    HostObserver(const TesseretObserverSuiteV1& suite, OfxImageEffectHandle effect)
        : suite_(&suite), effect_(effect)
    {}

    void stageBegan(const char* stage) override { tell(suite_->stageBegan, stage); }
    void stageEnded(const char* stage) override { tell(suite_->stageEnded, stage); }
    void progress(double fraction) override { tell(suite_->progress, fraction); }
    void blockLaid(const Engine::LaidBlock& block) override
    {
        const TesseretBlockV1 told{.x = block.x,
                                   .y = block.y,
                                   .width = block.width,
                                   .height = block.height,
                                   .srcX = block.srcX,
                                   .srcY = block.srcY,
                                   .textureIndex = block.textureIndex};
        tell(suite_->blockLaid, &told);
    }
    void note(const char* text) override { tell(suite_->note, text); }

private:
    /// Any member of the suite may be null.
    template <typename Value>
    void tell(void (*function)(OfxImageEffectHandle, Value), Value value)
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
