#pragma once

#include "products/OFX/Support/ParamTypes.h"

namespace Orvane {

/// Makes overlays show a rectangle while a switch is on. Hosts do not see it.
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
