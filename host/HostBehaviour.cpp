#include "host/HostBehaviour.h"

#include "host/Clip.h"
#include "host/Effect.h"
#include "host/EmbeddedHost.h"

namespace Tesseret::Host {

bool HostBehaviour::acceptsLoad(OfxStatus status)
{
    return status == kOfxStatOK || status == kOfxStatReplyDefault;
}

void HostBehaviour::start(Effect& effect)
{
    effect.loadAndDescribe();
}

std::shared_ptr<const Picture> HostBehaviour::inputPicture(const Clip& clip,
                                                           std::shared_ptr<const Picture> picture,
                                                           OfxPointD /*scale*/)
{
    const ClipFormat& format = clip.format();
    if (picture->depth() == format.depth && picture->components() == format.components) {
        return picture;
    }
    return std::make_shared<Picture>(picture->converted(format.depth, format.components));
}

OfxStatus HostBehaviour::makeCalls(EmbeddedHost& host, OfxThreadFunctionV1* function,
                                   unsigned int calls, void* argument)
{
    return host.runOnThreads(function, calls, argument);
}

}  // namespace Tesseret::Host
