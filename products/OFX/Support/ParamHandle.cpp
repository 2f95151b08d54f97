#include "products/OFX/Support/ParamHandle.h"

#include <utility>

#include "products/OFX/Support/InstanceRecord.h"

namespace Orvane {

OvOfxParamHandle::OvOfxParamHandle(const OvOfxInstanceRecord& record, std::string name)
    : name_(std::move(name)), param_(record.paramHandle(name_.c_str()))
{
    if (param_ == nullptr) return;
    OfxPropertySetHandle properties = nullptr;  // decides, whatever status the host answers
    suite().paramGetPropertySet(param_, &properties);
    properties_ = OvOfxPropertySet(properties);
}

void OvOfxParamHandle::setEnabled(bool enabled) const
{
    properties_.setInt(kOfxParamPropEnabled, enabled ? 1 : 0);
}

}  // namespace Orvane
