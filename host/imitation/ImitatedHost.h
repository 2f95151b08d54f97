#pragma once

/// A host that behaves as its switches say.

#include <atomic>
#include <mutex>
#include <set>

#include "host/EmbeddedHost.h"
#include "host/HostBehaviour.h"
#include "host/imitation/HostQuirks.h"

namespace Tesseret::Host {

class ImitatedHost : public HostBehaviour {
public:
    /// Reads the switches at every use; they outlive this.
    explicit ImitatedHost(const HostQuirks& quirks) : quirks_(quirks) {}

    bool acceptsLoad(OfxStatus status) override;
    void start(Effect& effect) override;
    void prepareInstance(Effect& effect) override;
    bool sendsUnload() override { return !quirks_.neverUnloads; }
    void actionSent(std::string_view action, const void* handle, OfxStatus status) override;

    bool makesInstancePerFrame() override { return quirks_.instancePerFrame; }
    unsigned int rendersPerFrame() override { return quirks_.rendersPerFrame; }
    bool showsParameter(const Parameter& parameter, ParameterDescription& description) override;

    const void* suiteFetched(const std::string& name, int version, const void* suite) override;
    OfxStatus messagePosted(const Message& message, OfxStatus status) override;

    OfxStatus checkWrite(std::string_view property) override;
    OfxStatus checkRead(std::string_view property) override;
    OfxStatus checkRegion(const Clip& clip, OfxTime time) override;
    OfxStatus checkAllocation(const EffectObject* effect, std::size_t bytes) override;
    OfxStatus checkLock(ImageBytes& bytes, bool isLocked) override;
    OfxStatus checkThreadIndex() override;
    OfxStatus checkInteractProperties() override;
    std::optional<OfxStatus> derivativeStatus() override { return quirks_.derivativeStatus; }

    bool acceptsUnknownProperty(std::string_view property) override;
    OfxStatus wrongTypeStatus() override;
    bool convert(PropertyValue& value, PropertyType wanted) override;

    void propertiesUpdated(Instance& instance) override;
    OfxStatus unknownClipStatus() override;
    bool clearsUnknownClip() override;
    std::shared_ptr<const Picture> inputPicture(const Clip& clip,
                                                std::shared_ptr<const Picture> picture,
                                                OfxPointD scale) override;
    RowLayout outputLayout(RowLayout given) override { return quirks_.rowLayout.value_or(given); }
    bool sharesImageSet() override { return quirks_.oneImageSetPerClip; }
    void imageFetched(Image& image) override;

    void memoryAllocated(ImageBytes& bytes) override;
    void memoryFreed(std::size_t bytes) override { bytesLive_ -= bytes; }

    OfxStatus makeCalls(EmbeddedHost& host, OfxThreadFunctionV1* function, unsigned int count,
                        void* argument) override;
    unsigned int processorCount(unsigned int threads) override;
    std::optional<int> nullAbort() override { return quirks_.nullAbort; }

private:
    ProjectProperties projectOf(const Instance& instance);
    void updateClip(Clip& clip) const;
    OfxRectI deliveredBounds(const Clip& clip, const Picture& picture, OfxPointD scale) const;

    const HostQuirks& quirks_;
    std::atomic<std::size_t> bytesLive_{0};  ///< of image memory
    std::atomic<unsigned int> cpuQuestions_{0}, threadCalls_{0};
    std::mutex mutex_;
    std::set<const void*> rendered_;  ///< handles of instances; guarded by mutex_
};

}  // namespace Tesseret::Host
