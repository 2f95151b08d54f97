/// A filter with the fault that the environment variable INSPECT_FAULT names; without it a correct
/// one.

#include <csignal>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxParam.h"
#include "ofx/ofxProperty.h"

namespace {

OfxHost* host = nullptr;
const OfxPropertySuiteV1* properties = nullptr;
const OfxImageEffectSuiteV1* effects = nullptr;
const OfxParameterSuiteV1* parameters = nullptr;
int loads = 0;

bool hasFault(const char* name)
{
    const char* const fault = std::getenv("INSPECT_FAULT");
    return fault != nullptr && std::strcmp(fault, name) == 0;
}

void crash()
{
    ::raise(SIGSEGV);
}

void hang()
{
    for (;;) ::pause();
}

struct OnOpening {
    OnOpening()
    {
        if (hasFault("crash when opened")) crash();
        if (hasFault("hang when opened")) hang();
        if (hasFault("exit when opened")) std::exit(0);
    }
} onOpening;

OfxStatus load()
{
    const auto fetch = [](const char* name) { return host->fetchSuite(host->host, name, 1); };
    properties = static_cast<const OfxPropertySuiteV1*>(fetch(kOfxPropertySuite));
    effects = static_cast<const OfxImageEffectSuiteV1*>(fetch(kOfxImageEffectSuite));
    parameters = static_cast<const OfxParameterSuiteV1*>(fetch(kOfxParameterSuite));
    ++loads;
    if (hasFault("refuse to load")) return kOfxStatErrMissingHostFeature;
    if (hasFault("crash when loaded again") && loads > 1) crash();
    return kOfxStatOK;
}

OfxStatus describe(OfxImageEffectHandle effect)
{
    if (hasFault("hang when described")) {
        // Out of reach of whoever waits for its output only.
        for (int file = 0; file < 64; ++file) ::close(file);
        hang();
    }
    OfxPropertySetHandle own = nullptr;
    effects->getPropertySet(effect, &own);
    properties->propSetString(own, kOfxPropLabel, 0, "Faulty");
    const char* const context =
        hasFault("unknown context") ? "OfxImageEffectContextOther" : kOfxImageEffectContextFilter;
    if (!hasFault("no context"))
        properties->propSetString(own, kOfxImageEffectPropSupportedContexts, 0, context);
    if (!hasFault("no depth"))
        properties->propSetString(own, kOfxImageEffectPropSupportedPixelDepths, 0,
                                  kOfxBitDepthByte);
    return kOfxStatOK;
}

void defineClip(OfxImageEffectHandle effect, const char* name)
{
    OfxPropertySetHandle own = nullptr;
    effects->clipDefine(effect, name, &own);
    if (!hasFault("no components"))
        properties->propSetString(own, kOfxImageEffectPropSupportedComponents, 0,
                                  kOfxImageComponentRGBA);
}

OfxStatus describeInContext(OfxImageEffectHandle effect)
{
    defineClip(effect, kOfxImageEffectOutputClipName);
    if (!hasFault("no source")) defineClip(effect, kOfxImageEffectSimpleSourceClipName);
    OfxParamSetHandle set = nullptr;
    OfxPropertySetHandle own = nullptr;
    effects->getParamSet(effect, &set);
    const bool isChanged = hasFault("other parameters when loaded again") && loads > 1;
    parameters->paramDefine(set, kOfxParamTypeInteger, "count", &own);
    properties->propSetInt(own, kOfxParamPropMin, 0, 1);
    properties->propSetInt(own, kOfxParamPropMax, 0, 9);
    properties->propSetInt(own, kOfxParamPropDefault, 0, hasFault("default outside") ? 10 : 5);
    if (isChanged) parameters->paramDefine(set, kOfxParamTypeBoolean, "again", &own);
    if (hasFault("choice without options"))
        parameters->paramDefine(set, kOfxParamTypeChoice, "which", &own);
    if (hasFault("unknown page child")) {
        parameters->paramDefine(set, kOfxParamTypePage, "page", &own);
        properties->propSetString(own, kOfxParamPropPageChild, 0, "nothing");
    }
    if (hasFault("wrong call")) properties->propSetInt(nullptr, kOfxParamPropMin, 0, 1);
    return kOfxStatOK;
}

OfxStatus mainEntry(const char* action, const void* handle, OfxPropertySetHandle /*inArgs*/,
                    OfxPropertySetHandle /*outArgs*/)
{
    const auto effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
    const auto is = [action](const char* name) { return std::strcmp(action, name) == 0; };
    if (is(kOfxActionLoad)) return load();
    if (is(kOfxActionDescribe)) return describe(effect);
    if (is(kOfxImageEffectActionDescribeInContext)) return describeInContext(effect);
    if (is(kOfxActionUnload) && hasFault("fail to unload")) return kOfxStatFailed;
    if (is(kOfxActionCreateInstance) && hasFault("crash in an instance")) crash();
    return kOfxStatReplyDefault;
}

void setHost(OfxHost* given)
{
    host = given;
}

OfxPlugin plugin{kOfxImageEffectPluginApi, 1, "org.example.faulty", 1, 0, &setHost, &mainEntry};

}  // namespace

extern "C" {

OfxExport int OfxGetNumberOfPlugins()
{
    return 1;
}

OfxExport OfxPlugin* OfxGetPlugin(int nth)
{
    if (hasFault("incomplete record")) plugin.mainEntry = nullptr;
    if (hasFault("no identifier")) plugin.pluginIdentifier = "my plug-in";
    return nth == 0 ? &plugin : nullptr;
}

}  // extern "C"
