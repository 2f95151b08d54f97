#include "products/OFX/Support/Param.h"

#include <utility>

namespace Orvane {

OvOfxParamHandle::OvOfxParamHandle(const OvOfxInstanceRecord& record, std::string name)
    : name_(std::move(name)), param_(record.paramHandle(name_.c_str()))
{
    if (param_ == nullptr) return;
    OfxPropertySetHandle properties = nullptr;  // decides, whatever status the host returns
    suite().paramGetPropertySet(param_, &properties);
    properties_ = OvOfxPropertySet(properties);
}

void OvOfxParamHandle::setEnabled(bool enabled) const
{
    properties_.setInt(kOfxParamPropEnabled, enabled ? 1 : 0);
}

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
