#include "overlay/RectBinding.h"

#include <cmath>

namespace Orvane {
namespace {

/// The reference of normalised positions, in canonical units.
struct Project {
    OvPoint size, offset;

    OvPoint canonical(OvPoint part) const
    {
        return {part.x * size.x + offset.x, part.y * size.y + offset.y};
    }
    OvPoint normalised(OvPoint point) const
    {
        return {(point.x - offset.x) / size.x, (point.y - offset.y) / size.y};
    }
};

/// Read on every use: hosts change it while viewers are open.
Project projectOf(const OvOfxInstanceRecord& instance)
{
    return {instance.projectSize(), instance.projectOffset()};
}

bool isFinite(OvPoint point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

}  // namespace

RectBinding::RectBinding(const RectangleControl& control, OverlayInteract& overlay)
    : control_(&control), overlay_(&overlay), manipulator_(control.name)
{
    manipulator_.addListener(*this);
    overlay.slaveTo(control.rectangle().corner1.name);
    overlay.slaveTo(control.rectangle().corner2.name);
}

void RectBinding::attach(ManipulatorGroup& group)
{
    group.add(manipulator_);
}

void RectBinding::writeParams()
{
    const OvOfxInstanceRecord* instance = overlay_->instance();
    if (instance == nullptr) return;
    const Project project = projectOf(*instance);
    const OvRect rect = manipulator_.rect();
    const OvPoint lower = project.normalised({rect.xMin, rect.yMin});
    const OvPoint upper = project.normalised({rect.xMax, rect.yMax});
    if (!isFinite(lower) || !isFinite(upper)) return;
    // One edit for the two corners, not one from press to release: a host may not send the release,
    // and an edit must not stay open.
    const OvOfxParamEdit edit(*instance, control_->rectangle().label.c_str());
    control_->rectangle().corner1.setValue(lower);
    control_->rectangle().corner2.setValue(upper);
}

void RectBinding::readParams(double /*time*/)
{
    const OvOfxInstanceRecord* instance = overlay_->instance();
    if (instance == nullptr) return;
    manipulator_.setShown(control_->isShown());
    manipulator_.setActive(true);
    const Project project = projectOf(*instance);
    const OvPoint a = project.canonical(control_->rectangle().corner1.value());
    const OvPoint b = project.canonical(control_->rectangle().corner2.value());
    manipulator_.setRect(a.x, a.y, b.x, b.y);
}

}  // namespace Orvane
