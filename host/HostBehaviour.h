#pragma once

/// Where hosts may differ: each function decides what the host does at one point, or is notified of
/// a call, or both. The functions of this class keep the published standard and record nothing.
/// They run on the thread on which the plug-in calls.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/HostSinks.h"
#include "host/PropertySet.h"
#include "ofx/ofxMultiThread.h"
#include "picture/Picture.h"

namespace Tesseret::Host {

class Clip;
class Effect;
class EffectObject;
class EmbeddedHost;
class Image;
class ImageBytes;
class Instance;
class Parameter;
struct ParameterDescription;

class HostBehaviour {
public:
    virtual ~HostBehaviour() = default;

    // Start and stop

    /// Whether a plug-in that returns this status from Load is used.
    virtual bool acceptsLoad(OfxStatus status);
    /// Brings a plug-in to the point where contexts can be described. Throws HostError.
    virtual void start(Effect& effect);
    /// Before each instance. Throws HostError.
    virtual void prepareInstance(Effect& /*effect*/) {}
    /// Whether a plug-in is unloaded when it is no longer used.
    virtual bool sendsUnload() { return true; }
    /// Called after an action of the plug-in or of an overlay.
    virtual void actionSent(std::string_view /*action*/, const void* /*handle*/,
                            OfxStatus /*status*/)
    {}

    // How effects are used; whoever renders asks these

    virtual bool makesInstancePerFrame() { return false; }
    /// How often each frame is rendered, with the last result shown.
    virtual unsigned int rendersPerFrame() { return 1; }
    /// Whether users see a parameter or page; may change its description.
    virtual bool showsParameter(const Parameter& /*parameter*/,
                                ParameterDescription& /*description*/)
    {
        return true;
    }

    // Suites, messages, reports

    /// A plug-in fetches a suite, which is null where the host has none; returns the suite to use.
    virtual const void* suiteFetched(const std::string& /*name*/, int /*version*/,
                                     const void* suite)
    {
        return suite;
    }
    /// A message has been shown; returns the status for the plug-in.
    virtual OfxStatus messagePosted(const Message& /*message*/, OfxStatus status) { return status; }
    virtual void reported(const Report& /*report*/) {}

    // Calls that a host may refuse: 0 continues the call, any other status is returned at once.

    virtual OfxStatus checkWrite(std::string_view /*property*/) { return kOfxStatOK; }
    virtual OfxStatus checkRead(std::string_view /*property*/) { return kOfxStatOK; }
    virtual OfxStatus checkFetch(const Clip& /*clip*/) { return kOfxStatOK; }
    virtual OfxStatus checkRegion(const Clip& /*clip*/, OfxTime /*time*/) { return kOfxStatOK; }
    /// The effect is null where the plug-in named none.
    virtual OfxStatus checkAllocation(const EffectObject* /*effect*/, std::size_t /*bytes*/)
    {
        return kOfxStatOK;
    }
    /// May replace the bytes of a block that is not locked.
    virtual OfxStatus checkLock(ImageBytes& /*bytes*/, bool /*isLocked*/) { return kOfxStatOK; }
    virtual OfxStatus checkThreadIndex() { return kOfxStatOK; }
    virtual OfxStatus checkInteractProperties() { return kOfxStatOK; }
    /// Returned for a derivative or an integral, which are then not computed.
    virtual std::optional<OfxStatus> derivativeStatus() { return std::nullopt; }

    // Properties

    /// Whether a write of an unknown name defines the property.
    virtual bool acceptsUnknownProperty(std::string_view /*property*/) { return false; }
    /// The status of a read or write of another type, unless `convert` can turn the value into the
    /// wanted type.
    virtual OfxStatus wrongTypeStatus() { return kOfxStatErrValue; }
    virtual bool convert(PropertyValue& /*value*/, PropertyType /*wanted*/) { return false; }
    /// A write through the property suite as the plug-in sent it, refused ones too.
    virtual void propertyWritten(const PropertySet& /*set*/, const std::string& /*property*/,
                                 int /*index*/, const PropertyValue& /*value*/,
                                 OfxStatus /*status*/)
    {}

    // Clips and images

    /// Called with the properties of project and clips up to date; may change them.
    virtual void propertiesUpdated(Instance& /*instance*/) {}
    /// Of clipGetHandle for an unknown clip; 0 returns a null handle.
    virtual OfxStatus unknownClipStatus() { return kOfxStatErrBadHandle; }
    /// Whether that sets the handle to null.
    virtual bool clearsUnknownClip() { return true; }
    /// The picture that a fetch returns for a source's picture; by default converted to the clip's
    /// depth and components.
    virtual std::shared_ptr<const Picture> inputPicture(const Clip& clip,
                                                        std::shared_ptr<const Picture> picture,
                                                        OfxPointD scale);
    /// The memory layout in which the plug-in renders, given that of the caller's picture.
    virtual RowLayout outputLayout(RowLayout given) { return given; }
    /// Whether every fetch from a clip returns the same property set.
    virtual bool sharesImageSet() { return false; }
    /// May change the image's properties.
    virtual void imageFetched(Image& /*image*/) {}
    virtual void imageReleased(const Clip& /*clip*/) {}

    // Memory

    /// Of the image-effect suite; the contents of a new block may be anything.
    virtual void memoryAllocated(ImageBytes& /*bytes*/) {}
    virtual void memoryFreed(std::size_t /*bytes*/) {}
    /// Of the memory suite.
    virtual void generalMemoryAllocated() {}
    virtual void generalMemoryFreed() {}

    // Threads and abort

    /// Makes the calls of one multiThread, at most `calls`; by default on the host's threads.
    virtual OfxStatus makeCalls(EmbeddedHost& host, OfxThreadFunctionV1* function,
                                unsigned int calls, void* argument);
    virtual unsigned int processorCount(unsigned int threads) { return threads; }
    /// A plug-in polls for an abort; returns whether it should stop.
    virtual bool abortPolled(bool isAborted) { return isAborted; }
    /// The answer to a poll without an effect, which by default is a wrong call.
    virtual std::optional<int> nullAbort() { return std::nullopt; }
};

}  // namespace Tesseret::Host
