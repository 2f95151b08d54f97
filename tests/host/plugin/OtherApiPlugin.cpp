/// A plug-in of a kind that the host does not know.

#include "ofx/ofxCore.h"

namespace {

OfxPlugin plugin{"OtherPluginAPI",
                 1,
                 "org.example.other",
                 1,
                 0,
                 [](OfxHost*) {},
                 [](const char*, const void*, OfxPropertySetHandle, OfxPropertySetHandle) {
                     return kOfxStatReplyDefault;
                 }};

}  // namespace

int OfxGetNumberOfPlugins()
{
    return 1;
}

OfxPlugin* OfxGetPlugin(int nth)
{
    return nth == 0 ? &plugin : nullptr;
}
