/// A small filter of bytes with a choice of faults: the environment variable SLOPPY_FAULT names
/// one, each against one rule of the standard. Without it the plug-in keeps them all.

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxMessage.h"
#include "ofx/ofxMultiThread.h"
#include "ofx/ofxParam.h"
#include "ofx/ofxProperty.h"

namespace {

OfxHost* host = nullptr;
const OfxPropertySuiteV1* props = nullptr;
const OfxImageEffectSuiteV1* effects = nullptr;
const OfxParameterSuiteV1* params = nullptr;
const OfxMultiThreadSuiteV1* threads = nullptr;
const OfxMessageSuiteV1* messages = nullptr;

bool has(const char* fault)
{
    const char* const chosen = std::getenv("SLOPPY_FAULT");
    return chosen != nullptr && std::strcmp(chosen, fault) == 0;
}

template <typename Suite>
void fetch(const char* name, const Suite*& suite)
{
    suite = static_cast<const Suite*>(host->fetchSuite(host->host, name, 1));
}

void setHost(OfxHost* given)
{
    host = given;
    if (has("suite in setHost")) fetch(kOfxPropertySuite, props);
}

OfxStatus describe(OfxImageEffectHandle effect)
{
    fetch(kOfxPropertySuite, props);
    fetch(kOfxImageEffectSuite, effects);
    fetch(kOfxParameterSuite, params);
    fetch(kOfxMultiThreadSuite, threads);
    fetch(kOfxMessageSuite, messages);
    OfxPropertySetHandle own = nullptr;
    effects->getPropertySet(effect, &own);
    if (!has("no label")) props->propSetString(own, kOfxPropLabel, 0, "Sloppy");
    props->propSetString(own, kOfxImageEffectPluginPropGrouping, 0, "Tests");
    props->propSetString(own, kOfxImageEffectPropSupportedContexts, 0,
                         has("unknown context") ? "Filter" : kOfxImageEffectContextFilter);
    props->propSetString(own, kOfxImageEffectPropSupportedPixelDepths, 0, kOfxBitDepthByte);
    if (has("unknown property")) props->propSetInt(own, "OfxPropOfNobody", 0, 1);
    if (has("wrong type")) props->propSetDouble(own, kOfxImageEffectPropSupportsTiles, 0, 1.0);
    if (has("index out of range")) props->propSetInt(own, kOfxImageEffectPropSupportsTiles, 1, 1);
    if (has("gap in a list")) {
        props->propSetString(own, kOfxImageEffectPropSupportedContexts, 2,
                             kOfxImageEffectContextGeneral);
    }
    if (has("null set")) props->propSetInt(nullptr, kOfxImageEffectPropSupportsTiles, 0, 1);
    if (has("read-only property")) props->propSetString(own, kOfxPropType, 0, "mine");
    if (has("clip too early")) effects->clipDefine(effect, "Source", nullptr);
    return has("wrong status") ? kOfxStatReplyDefault : kOfxStatOK;
}

OfxStatus describeInContext(OfxImageEffectHandle effect)
{
    OfxPropertySetHandle own = nullptr;
    for (const char* name : {kOfxImageEffectOutputClipName, kOfxImageEffectSimpleSourceClipName}) {
        effects->clipDefine(effect, name, &own);
        props->propSetString(own, kOfxImageEffectPropSupportedComponents, 0,
                             kOfxImageComponentRGBA);
    }
    if (has("clip twice")) effects->clipDefine(effect, "Source", &own);
    OfxImageClipHandle clip = nullptr;
    if (has("clip handle while describing")) effects->clipGetHandle(effect, "Source", &clip, &own);
    OfxParamSetHandle set = nullptr;
    effects->getParamSet(effect, &set);
    params->paramDefine(set, has("unknown type") ? "Amount" : kOfxParamTypeDouble, "amount", &own);
    if (has("unknown type")) return kOfxStatOK;
    props->propSetDouble(own, kOfxParamPropMin, 0, 0.0);
    props->propSetDouble(own, kOfxParamPropMax, 0, 1.0);
    props->propSetDouble(own, kOfxParamPropDisplayMax, 0, 1.0);
    props->propSetDouble(own, kOfxParamPropDefault, 0, has("default out of range") ? 2.0 : 0.5);
    params->paramDefine(set, kOfxParamTypeChoice, "choice", &own);
    if (!has("no options")) props->propSetString(own, kOfxParamPropChoiceOption, 0, "first");
    params->paramDefine(set, kOfxParamTypePage, "page", &own);
    props->propSetString(own, kOfxParamPropPageChild, 0, has("unknown child") ? "no" : "amount");
    return kOfxStatOK;
}

/// A fetched image of bytes.
struct View {
    OfxPropertySetHandle image = nullptr;
    unsigned char* data = nullptr;
    int rowBytes = 0;
    OfxRectI bounds{};

    unsigned char* at(int x, int y) const
    {
        return data + static_cast<std::ptrdiff_t>(y - bounds.y1) * rowBytes + (x - bounds.x1) * 4;
    }
};

View view(OfxImageEffectHandle effect, const char* name, OfxTime time)
{
    View result;
    OfxImageClipHandle clip = nullptr;
    effects->clipGetHandle(effect, name, &clip, nullptr);
    effects->clipGetImage(clip, time, nullptr, &result.image);
    if (result.image == nullptr) return result;
    void* data = nullptr;
    props->propGetPointer(result.image, kOfxImagePropData, 0, &data);
    props->propGetInt(result.image, kOfxImagePropRowBytes, 0, &result.rowBytes);
    props->propGetIntN(result.image, kOfxImagePropBounds, 4, &result.bounds.x1);
    result.data = static_cast<unsigned char*>(data);
    return result;
}

void useMemory(OfxImageEffectHandle effect)
{
    OfxImageMemoryHandle memory = nullptr;
    void* data = nullptr;
    effects->imageMemoryAlloc(effect, 100, &memory);
    effects->imageMemoryLock(memory, &data);
    effects->imageMemoryUnlock(memory);
    if (has("unlocked twice")) effects->imageMemoryUnlock(memory);
    if (!has("memory kept")) effects->imageMemoryFree(memory);
    if (has("memory freed twice")) effects->imageMemoryFree(memory);
}

void nothing(unsigned int, unsigned int, void*) {}

void nest(unsigned int, unsigned int, void*)
{
    if (has("nested threads")) threads->multiThread(&nothing, 2, nullptr);
}

void spoilServices(OfxImageEffectHandle effect)
{
    useMemory(effect);
    threads->multiThread(&nest, 2, nullptr);
    if (has("open format")) messages->message(effect, kOfxMessageLog, nullptr, "100%d sure");
    if (has("null abort")) effects->abort(nullptr);
    OfxParamSetHandle set = nullptr;
    OfxParamHandle param = nullptr;
    effects->getParamSet(effect, &set);
    params->paramGetHandle(set, has("unknown parameter") ? "none" : "amount", &param, nullptr);
    double amount = 0.0;
    if (param != nullptr) params->paramGetValue(param, &amount);
    if (has("value set in a render")) params->paramSetValue(param, 1.0);
}

OfxStatus render(OfxImageEffectHandle effect, OfxPropertySetHandle inArgs)
{
    OfxRectI window{};
    props->propGetIntN(inArgs, kOfxImageEffectPropRenderWindow, 4, &window.x1);
    spoilServices(effect);
    const View out = view(effect, kOfxImageEffectOutputClipName, 0.0);
    const View in =
        view(effect, has("unknown clip") ? "Image" : "Source", has("another frame") ? 1.0 : 0.0);
    if (has("window exceeded")) ++window.x2;
    if (has("window not filled")) --window.y2;
    for (int y = window.y1; y < window.y2 && in.data != nullptr; ++y) {
        for (int x = window.x1; x < window.x2; ++x) {
            for (int c = 0; c < 4; ++c) {
                const auto value = in.at(x, y)[c];
                out.at(x, y)[c] = c < 3 ? static_cast<unsigned char>(255 - value) : value;
            }
        }
    }
    if (has("input written")) in.at(window.x1, window.y1)[0] ^= 1u;
    effects->clipReleaseImage(out.image);
    if (!has("image kept")) effects->clipReleaseImage(in.image);
    if (has("image released twice")) effects->clipReleaseImage(in.image);
    return kOfxStatOK;
}

OfxStatus mainEntry(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                    OfxPropertySetHandle /*outArgs*/)
{
    const auto effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
    const auto is = [action](const char* name) { return std::strcmp(action, name) == 0; };
    if (is(kOfxActionDescribe)) return describe(effect);
    if (is(kOfxImageEffectActionDescribeInContext)) return describeInContext(effect);
    if (is(kOfxImageEffectActionRender)) return render(effect, inArgs);
    return kOfxStatReplyDefault;
}

OfxPlugin record = {.pluginApi = kOfxImageEffectPluginApi,
                    .apiVersion = kOfxImageEffectPluginApiVersion,
                    .pluginIdentifier = "com.orvane.brisant.tests.sloppy",
                    .pluginVersionMajor = 1,
                    .pluginVersionMinor = 0,
                    .setHost = &setHost,
                    .mainEntry = &mainEntry};

}  // namespace

extern "C" {

OfxExport int OfxGetNumberOfPlugins(void)
{
    return 1;
}

OfxExport OfxPlugin* OfxGetPlugin(int nth)
{
    return nth == 0 || has("record for any index") ? &record : nullptr;
}

}  // extern "C"
