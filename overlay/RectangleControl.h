#pragma once

#include "products/OFX/Support/ParamTypes.h"

namespace Orvane {

/// Has overlays show a rectangle as long as a switch is on. It is no parameter of the host's.
class RectangleControl final : public OvOfxCoded<OvOfxParam, 58> {
public:
    RectangleControl(std::string objectName, Rect2D& rectangle, const OvOfxBooleanParam& shown)
        : OvOfxCoded(std::move(objectName)), rectangle_(&rectangle), shown_(&shown)
    {}

    Rect2D& rectangle() const { return *rectangle_; }
    bool isShown() const { return shown_->value(); }

private:
    Rect2D* rectangle_;
    const OvOfxBooleanParam* shown_;
};

}  // namespace Orvane
