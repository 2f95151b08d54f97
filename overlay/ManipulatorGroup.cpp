#include "overlay/ManipulatorGroup.h"

#include <cmath>
#include <utility>

#include "platform/OpenGL.h"

namespace Orvane {

Picked pickAmong(const std::vector<Manipulator*>& children, OvPoint pen, OvPoint tolerance)
{
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (Manipulator* picked = (*child)->pickIfNear(pen, tolerance)) return {picked, *child};
    }
    return {};
}

ManipulatorGroup::ManipulatorGroup(std::string name, int handleMask)
    : Manipulator(std::move(name)), handleMask_(handleMask)
{
    setBoxTest(false);  // a group is as large as its children
}

Manipulator* ManipulatorGroup::pick(OvPoint pen, OvPoint tolerance)
{
    const OvPoint grown{tolerance.x / transform_.scale, tolerance.y / transform_.scale};
    const Picked picked = pickAmong(children_, inside(pen), grown);
    setGrabbedChild(picked.child);
    return picked.manipulator;
}

void ManipulatorGroup::draw()
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    gl->glPushMatrix();
    multiplyModelview(matrix());
    for (Manipulator* child : children_) {
        if (child->isShown()) child->draw();
    }
    gl->glPopMatrix();
}

bool ManipulatorGroup::drag(OvPoint pen)
{
    return grabbedChild() != nullptr && grabbedChild()->drag(inside(pen));
}

bool ManipulatorGroup::press(OvPoint pen)
{
    return grabbedChild() != nullptr && grabbedChild()->press(inside(pen));
}

bool ManipulatorGroup::release()
{
    return grabbedChild() != nullptr && grabbedChild()->release();
}

void ManipulatorGroup::pushTransform()
{
    pushMatrixStack();
    multMatrixStack(matrix());
}

void ManipulatorGroup::popTransform()
{
    popMatrixStack();
}

Matrix3 ManipulatorGroup::matrix() const
{
    const float c = std::cos(transform_.rotation), s = std::sin(transform_.rotation);
    const float x = transform_.scale * transform_.aspect, y = transform_.scale;
    return {{{x * c, x * s, 0.0f},
             {-y * s, y * c, 0.0f},
             {transform_.translation.x, transform_.translation.y, 1.0f}}};
}

OvPoint ManipulatorGroup::inside(OvPoint point)
{
    const std::optional<Matrix3> inverse = inverseOf(matrix());
    return inverse ? transformed(point, *inverse) : point;
}

}  // namespace Orvane
