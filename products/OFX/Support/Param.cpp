#include "products/OFX/Support/Param.h"

#include <utility>

namespace Orvane {

OvOfxParam::OvOfxParam(std::string objectName)
    : name(std::move(objectName)), label(name), scriptName(name)
{}

void OvOfxParam::reset()
{
    changeTime = 0.0;
    excluded = false;
}

const OvOfxParamHandle* OvOfxParam::knownHandle() const
{
    return handle != nullptr && handle->isKnown() ? handle.get() : nullptr;
}

}  // namespace Orvane
