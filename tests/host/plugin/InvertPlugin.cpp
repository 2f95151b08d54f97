/// A small filter: inverts byte RGBA, times a parameter, on the host's threads. It uses the host in
/// another way than Tesseret does: it supports tiles, needs no image memory, is an identity when
/// its parameter is 0, and prefers premultiplied output. Its overlay sets the parameter to the
/// pen's x.

#include <cstring>
#include <initializer_list>

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxInteract.h"
#include "ofx/ofxMultiThread.h"
#include "ofx/ofxParam.h"
#include "ofx/ofxProperty.h"

namespace {

OfxHost* host = nullptr;
const OfxPropertySuiteV1* properties = nullptr;
const OfxImageEffectSuiteV1* effects = nullptr;
const OfxParameterSuiteV1* parameters = nullptr;
const OfxMultiThreadSuiteV1* threads = nullptr;
const OfxInteractSuiteV1* interacts = nullptr;

template <typename Suite>
bool fetch(const char* name, const Suite*& suite)
{
    suite = static_cast<const Suite*>(host->fetchSuite(host->host, name, 1));
    return suite != nullptr;
}

OfxStatus load()
{
    return fetch(kOfxPropertySuite, properties) && fetch(kOfxImageEffectSuite, effects) &&
                   fetch(kOfxParameterSuite, parameters) && fetch(kOfxMultiThreadSuite, threads) &&
                   fetch(kOfxInteractSuite, interacts)
               ? kOfxStatOK
               : kOfxStatErrMissingHostFeature;
}

OfxStatus overlayEntry(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                       OfxPropertySetHandle /*outArgs*/)
{
    const auto interact = static_cast<OfxInteractHandle>(const_cast<void*>(handle));
    OfxPropertySetHandle own = nullptr;
    if (interacts->interactGetPropertySet(interact, &own) != kOfxStatOK) return kOfxStatFailed;
    if (std::strcmp(action, kOfxActionCreateInstance) == 0) {
        return properties->propSetString(own, kOfxInteractPropSlaveToParam, 0, "amount");
    }
    if (std::strcmp(action, kOfxInteractActionPenDown) != 0) return kOfxStatReplyDefault;
    void* effect = nullptr;
    double pen[2] = {0.0, 0.0};
    properties->propGetPointer(inArgs, kOfxPropEffectInstance, 0, &effect);
    properties->propGetDoubleN(inArgs, kOfxInteractPropPenPosition, 2, pen);
    OfxParamSetHandle set = nullptr;
    OfxParamHandle amount = nullptr;
    effects->getParamSet(static_cast<OfxImageEffectHandle>(effect), &set);
    parameters->paramGetHandle(set, "amount", &amount, nullptr);
    parameters->paramSetValue(amount, pen[0]);
    return interacts->interactRedraw(interact);
}

OfxStatus describe(OfxImageEffectHandle effect)
{
    OfxPropertySetHandle own = nullptr;
    effects->getPropertySet(effect, &own);
    properties->propSetString(own, kOfxPropLabel, 0, "Invert");
    properties->propSetString(own, kOfxImageEffectPropSupportedContexts, 0,
                              kOfxImageEffectContextFilter);
    properties->propSetString(own, kOfxImageEffectPropSupportedPixelDepths, 0, kOfxBitDepthByte);
    properties->propSetPointer(own, kOfxImageEffectPluginPropOverlayInteractV1, 0,
                               reinterpret_cast<void*>(&overlayEntry));
    return kOfxStatOK;
}

OfxStatus describeInContext(OfxImageEffectHandle effect)
{
    OfxPropertySetHandle own = nullptr;
    for (const char* name : {kOfxImageEffectOutputClipName, kOfxImageEffectSimpleSourceClipName}) {
        effects->clipDefine(effect, name, &own);
        properties->propSetString(own, kOfxImageEffectPropSupportedComponents, 0,
                                  kOfxImageComponentRGBA);
    }
    OfxParamSetHandle set = nullptr;
    effects->getParamSet(effect, &set);
    const OfxStatus status = parameters->paramDefine(set, kOfxParamTypeDouble, "amount", &own);
    properties->propSetDouble(own, kOfxParamPropDefault, 0, 1.0);
    return status;
}

double amountAt(OfxImageEffectHandle effect, OfxTime time)
{
    OfxParamSetHandle set = nullptr;
    OfxParamHandle amount = nullptr;
    double value = -1.0;
    effects->getParamSet(effect, &set);
    parameters->paramGetHandle(set, "amount", &amount, nullptr);
    parameters->paramGetValueAtTime(amount, time, &value);
    return value;
}

struct View {
    OfxPropertySetHandle image = nullptr;
    unsigned char* data = nullptr;
    int rowBytes = 0;
    OfxRectI bounds{0, 0, 0, 0};

    unsigned char* pixel(int x, int y) const
    {
        return data + std::ptrdiff_t{y - bounds.y1} * rowBytes + std::ptrdiff_t{x - bounds.x1} * 4;
    }
};

bool fetchView(OfxImageEffectHandle effect, const char* name, OfxTime time, View& view)
{
    OfxImageClipHandle clip = nullptr;
    effects->clipGetHandle(effect, name, &clip, nullptr);
    if (effects->clipGetImage(clip, time, nullptr, &view.image) != kOfxStatOK) return false;
    void* data = nullptr;
    properties->propGetPointer(view.image, kOfxImagePropData, 0, &data);
    view.data = static_cast<unsigned char*>(data);
    properties->propGetInt(view.image, kOfxImagePropRowBytes, 0, &view.rowBytes);
    properties->propGetIntN(view.image, kOfxImagePropBounds, 4, &view.bounds.x1);
    return true;
}

struct Job {
    View source, output;
    OfxRectI window{0, 0, 0, 0};
    double amount = 0.0;
};

void invertRows(unsigned int index, unsigned int count, void* argument)
{
    const Job& job = *static_cast<const Job*>(argument);
    for (int y = job.window.y1; y < job.window.y2; ++y) {
        if (static_cast<unsigned int>(y - job.window.y1) % count != index) continue;
        for (int x = job.window.x1; x < job.window.x2; ++x) {
            for (int c = 0; c < 4; ++c) {
                const int value = job.source.pixel(x, y)[c];
                job.output.pixel(x, y)[c] = static_cast<unsigned char>(
                    value + static_cast<int>(job.amount * (255 - 2 * value)));
            }
        }
    }
}

OfxStatus render(OfxImageEffectHandle effect, OfxPropertySetHandle inArgs)
{
    Job job;
    OfxTime time = 0.0;
    properties->propGetDouble(inArgs, kOfxPropTime, 0, &time);
    properties->propGetIntN(inArgs, kOfxImageEffectPropRenderWindow, 4, &job.window.x1);
    job.amount = amountAt(effect, time);
    if (!fetchView(effect, kOfxImageEffectOutputClipName, time, job.output)) return kOfxStatFailed;
    const bool complete = fetchView(effect, kOfxImageEffectSimpleSourceClipName, time, job.source);
    if (complete) {
        threads->multiThread(&invertRows, 3, &job);
        effects->clipReleaseImage(job.source.image);
    }
    effects->clipReleaseImage(job.output.image);
    return complete ? kOfxStatOK : kOfxStatFailed;
}

OfxStatus isIdentity(OfxImageEffectHandle effect, OfxPropertySetHandle inArgs,
                     OfxPropertySetHandle outArgs)
{
    OfxTime time = 0.0;
    properties->propGetDouble(inArgs, kOfxPropTime, 0, &time);
    if (amountAt(effect, time) != 0.0) return kOfxStatReplyDefault;
    properties->propSetString(outArgs, kOfxPropName, 0, kOfxImageEffectSimpleSourceClipName);
    return kOfxStatOK;
}

void setHost(OfxHost* given)
{
    host = given;
}

OfxStatus mainEntry(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                    OfxPropertySetHandle outArgs)
{
    const auto effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
    const auto is = [action](const char* name) { return std::strcmp(action, name) == 0; };
    if (is(kOfxActionLoad)) return load();
    if (is(kOfxActionDescribe)) return describe(effect);
    if (is(kOfxImageEffectActionDescribeInContext)) return describeInContext(effect);
    if (is(kOfxImageEffectActionRender)) return render(effect, inArgs);
    if (is(kOfxImageEffectActionIsIdentity)) return isIdentity(effect, inArgs, outArgs);
    if (is(kOfxImageEffectActionGetClipPreferences)) {
        properties->propSetString(outArgs, kOfxImageEffectPropPreMultiplication, 0,
                                  kOfxImagePreMultiplied);
        return kOfxStatOK;
    }
    return kOfxStatReplyDefault;
}

OfxPlugin plugin{kOfxImageEffectPluginApi, 1, "org.example.invert", 1, 0, &setHost, &mainEntry};

}  // namespace

int OfxGetNumberOfPlugins()
{
    return 1;
}

OfxPlugin* OfxGetPlugin(int nth)
{
    return nth == 0 ? &plugin : nullptr;
}
