/// "OfxImageEffectSuite": effects, clips, images, abort and image memory.

#include <string>

#include "host/EffectObject.h"
#include "host/EmbeddedHost.h"
#include "host/Image.h"
#include "host/ImageMemory.h"
#include "host/Instance.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

EffectObject* findEffect(OfxImageEffectHandle handle)
{
    return static_cast<EffectObject*>(findObject(HandleKind::Effect, handle));
}

Clip* findClip(OfxImageClipHandle handle)
{
    return static_cast<Clip*>(findObject(HandleKind::Clip, handle));
}

OfxStatus noEffect(const char* function)
{
    return badCall(std::string(function) + ": no such effect", kOfxStatErrBadHandle);
}

OfxStatus noClip(const char* function)
{
    return badCall(std::string(function) + ": no such clip", kOfxStatErrBadHandle);
}

OfxStatus nullResult(const char* function)
{
    return badCall(std::string(function) + ": a null pointer for the result", kOfxStatErrValue);
}

OfxStatus getPropertySet(OfxImageEffectHandle handle, OfxPropertySetHandle* properties)
{
    EffectObject* const effect = findEffect(handle);
    if (!effect) return noEffect("getPropertySet");
    if (!properties) return nullResult("getPropertySet");
    *properties = effect->properties().handle();
    return kOfxStatOK;
}

OfxStatus getParamSet(OfxImageEffectHandle handle, OfxParamSetHandle* parameters)
{
    EffectObject* const effect = findEffect(handle);
    if (!effect) return noEffect("getParamSet");
    if (!parameters) return nullResult("getParamSet");
    *parameters = effect->parameters().handle();
    return kOfxStatOK;
}

OfxStatus clipDefine(OfxImageEffectHandle handle, const char* name,
                     OfxPropertySetHandle* properties)
{
    EffectObject* const effect = findEffect(handle);
    if (!effect) return noEffect("clipDefine");
    EmbeddedHost& host = effect->host();
    if (!name || !*name) return host.badCall("clipDefine: no name", kOfxStatErrValue);
    if (!effect->describing()) {
        return host.badCall(std::string("clipDefine: not while describing, ") + name,
                            kOfxStatFailed);
    }
    if (effect->clip(name)) {
        return host.badCall(std::string("clipDefine: defined already, ") + name, kOfxStatErrExists);
    }
    Clip& clip = effect->addClip(std::make_unique<Clip>(*effect, name));
    if (properties) *properties = clip.properties().handle();
    return kOfxStatOK;
}

OfxStatus unknownClip(EmbeddedHost& host, const char* name)
{
    const OfxStatus status = host.behaviour().unknownClipStatus();
    return status == kOfxStatOK
               ? status
               : host.badCall(std::string("clipGetHandle: no such clip, ") + name, status);
}

OfxStatus clipGetHandle(OfxImageEffectHandle handle, const char* name, OfxImageClipHandle* clip,
                        OfxPropertySetHandle* properties)
{
    EffectObject* const effect = findEffect(handle);
    if (!effect) return noEffect("clipGetHandle");
    if (!clip) return nullResult("clipGetHandle");
    EmbeddedHost& host = effect->host();
    Clip* const found = effect->instance() && name ? effect->clip(name) : nullptr;
    if (found || host.behaviour().clearsUnknownClip()) {
        *clip = nullptr;
        if (properties) *properties = nullptr;
    }
    if (!name) return host.badCall("clipGetHandle: no name", kOfxStatErrValue);
    if (!effect->instance()) {
        return host.badCall("clipGetHandle: not allowed while describing", kOfxStatErrBadHandle);
    }
    if (!found) return unknownClip(host, name);
    *clip = found->handle();
    if (properties) *properties = found->properties().handle();
    return kOfxStatOK;
}

OfxStatus clipGetPropertySet(OfxImageClipHandle handle, OfxPropertySetHandle* properties)
{
    Clip* const clip = findClip(handle);
    if (!clip) return noClip("clipGetPropertySet");
    if (!properties) return nullResult("clipGetPropertySet");
    *properties = clip->properties().handle();
    return kOfxStatOK;
}

/// The image always covers the requested region: it is the whole picture, or the region of
/// interest.
OfxStatus clipGetImage(OfxImageClipHandle handle, OfxTime time, const OfxRectD* /*region*/,
                       OfxPropertySetHandle* image)
{
    if (image) *image = nullptr;
    Clip* const clip = findClip(handle);
    if (!clip) return noClip("clipGetImage");
    if (!image) return nullResult("clipGetImage");
    return clip->fetch(time, *image);
}

OfxStatus clipReleaseImage(OfxPropertySetHandle handle)
{
    auto* const image = dynamic_cast<Image*>(
        static_cast<PropertySet*>(findObject(HandleKind::PropertySet, handle)));
    if (!image || !image->clip().release(*image)) {
        return badCall("clipReleaseImage: no such image", kOfxStatErrBadHandle);
    }
    return kOfxStatOK;
}

OfxStatus clipGetRegionOfDefinition(OfxImageClipHandle handle, OfxTime time, OfxRectD* bounds)
{
    Clip* const clip = findClip(handle);
    if (!clip) return noClip("clipGetRegionOfDefinition");
    if (!bounds) return nullResult("clipGetRegionOfDefinition");
    return clip->regionOfDefinition(time, *bounds);
}

int abortRender(OfxImageEffectHandle handle)
{
    EmbeddedHost* const current = handle ? nullptr : EmbeddedHost::current();
    if (const auto answer = current ? current->behaviour().nullAbort() : std::nullopt) {
        return *answer;
    }
    EffectObject* const effect = findEffect(handle);
    if (!effect) return noEffect("abort");
    const bool isAborted = effect->instance() && effect->instance()->isAborted();
    return effect->host().behaviour().abortPolled(isAborted) ? 1 : 0;
}

OfxStatus imageMemoryAlloc(OfxImageEffectHandle handle, std::size_t bytes,
                           OfxImageMemoryHandle* memory)
{
    if (!memory) return nullResult("imageMemoryAlloc");
    *memory = nullptr;
    EffectObject* const effect = findEffect(handle);
    if (handle && !effect) return noEffect("imageMemoryAlloc");
    EmbeddedHost* const host = effect ? &effect->host() : EmbeddedHost::current();
    if (!host) return kOfxStatErrMemory;
    if (const OfxStatus status = host->behaviour().checkAllocation(effect, bytes)) {
        host->report(Report::Kind::Note,
                     "imageMemoryAlloc: refused " + std::to_string(bytes) + " bytes");
        return status;
    }
    return ImageMemory::allocate(*host, bytes, *memory);
}

OfxStatus imageMemoryFree(OfxImageMemoryHandle memory)
{
    return ImageMemory::free(memory);
}

OfxStatus imageMemoryLock(OfxImageMemoryHandle memory, void** data)
{
    if (!data) return nullResult("imageMemoryLock");
    *data = nullptr;
    return ImageMemory::lock(memory, *data);
}

OfxStatus imageMemoryUnlock(OfxImageMemoryHandle memory)
{
    return ImageMemory::unlock(memory);
}

}  // namespace

const OfxImageEffectSuiteV1& imageEffectSuite()
{
    static constexpr OfxImageEffectSuiteV1 kSuite{
        .getPropertySet = kGuarded<&getPropertySet>,
        .getParamSet = kGuarded<&getParamSet>,
        .clipDefine = kGuarded<&clipDefine>,
        .clipGetHandle = kGuarded<&clipGetHandle>,
        .clipGetPropertySet = kGuarded<&clipGetPropertySet>,
        .clipGetImage = kGuarded<&clipGetImage>,
        .clipReleaseImage = kGuarded<&clipReleaseImage>,
        .clipGetRegionOfDefinition = kGuarded<&clipGetRegionOfDefinition>,
        .abort = kGuarded<&abortRender>,
        .imageMemoryAlloc = kGuarded<&imageMemoryAlloc>,
        .imageMemoryFree = kGuarded<&imageMemoryFree>,
        .imageMemoryLock = kGuarded<&imageMemoryLock>,
        .imageMemoryUnlock = kGuarded<&imageMemoryUnlock>,
    };
    return kSuite;
}

}  // namespace Tesseret::Host
