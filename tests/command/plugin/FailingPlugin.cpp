/// A filter that posts an error and fails in every render.

#include <cstring>
#include <initializer_list>

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxMessage.h"
#include "ofx/ofxProperty.h"

namespace {

OfxHost* host = nullptr;
const OfxPropertySuiteV1* properties = nullptr;
const OfxImageEffectSuiteV1* effects = nullptr;
const OfxMessageSuiteV1* messages = nullptr;

template <typename Suite>
void fetch(const char* name, const Suite*& suite)
{
    suite = static_cast<const Suite*>(host->fetchSuite(host->host, name, 1));
}

OfxStatus describe(OfxImageEffectHandle effect)
{
    fetch(kOfxPropertySuite, properties);
    fetch(kOfxImageEffectSuite, effects);
    fetch(kOfxMessageSuite, messages);
    OfxPropertySetHandle own = nullptr;
    effects->getPropertySet(effect, &own);
    properties->propSetString(own, kOfxImageEffectPropSupportedContexts, 0,
                              kOfxImageEffectContextFilter);
    properties->propSetString(own, kOfxImageEffectPropSupportedPixelDepths, 0, kOfxBitDepthByte);
    return kOfxStatOK;
}

OfxStatus describeInContext(OfxImageEffectHandle effect)
{
    for (const char* name : {kOfxImageEffectOutputClipName, kOfxImageEffectSimpleSourceClipName}) {
        OfxPropertySetHandle clip = nullptr;
        effects->clipDefine(effect, name, &clip);
        properties->propSetString(clip, kOfxImageEffectPropSupportedComponents, 0,
                                  kOfxImageComponentRGBA);
    }
    return kOfxStatOK;
}

OfxStatus mainEntry(const char* action, const void* handle, OfxPropertySetHandle /*inArgs*/,
                    OfxPropertySetHandle /*outArgs*/)
{
    const auto effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
    if (std::strcmp(action, kOfxActionDescribe) == 0) return describe(effect);
    if (std::strcmp(action, kOfxImageEffectActionDescribeInContext) == 0) {
        return describeInContext(effect);
    }
    if (std::strcmp(action, kOfxImageEffectActionRender) == 0) {
        messages->message(effect, kOfxMessageError, "", "%s", "the lens is cracked");
        return kOfxStatFailed;
    }
    return kOfxStatReplyDefault;
}

void setHost(OfxHost* given)
{
    host = given;
}

OfxPlugin plugin{kOfxImageEffectPluginApi, 1, "test.tesseret.failing", 1, 0, setHost, mainEntry};

}  // namespace

extern "C" {

OfxExport int OfxGetNumberOfPlugins()
{
    return 1;
}

OfxExport OfxPlugin* OfxGetPlugin(int nth)
{
    return nth == 0 ? &plugin : nullptr;
}

}  // extern "C"
