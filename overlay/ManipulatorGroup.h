#pragma once

#include <vector>

#include "overlay/Manipulator.h"
#include "overlay/MatrixStack.h"

namespace Orvane {

/// Manipulators that move, turn and grow together.
class ManipulatorGroup final : public Manipulator {
public:
    /// The placement of the group in the coordinates around it.
    struct Transform {
        OvPoint translation{0.0f, 0.0f};
        float rotation = 0.0f;  ///< radians about z, counter-clockwise
        float scale = 1.0f;
        float aspect = 1.0f;  ///< factor on x beside the scale
    };
    /// Handles of its own: translation in x, y and both, rotation, scale and aspect.
    static constexpr int kAllHandles = 63;

    explicit ManipulatorGroup(std::string name, int handleMask = kAllHandles);

    Manipulator* pick(OvPoint pen, OvPoint tolerance) override;
    void draw() override;
    bool drag(OvPoint pen) override;
    void pushTransform() override;
    void popTransform() override;
    bool press(OvPoint pen) override;
    bool release() override;

    /// Children are borrowed; they are drawn in the order they were added.
    void add(Manipulator& child) { children_.push_back(&child); }
    void setTransform(const Transform& transform) { transform_ = transform; }
    void setHandlesShown(bool shown) { handlesShown_ = shown; }
    int handleMask() const { return handleMask_; }
    bool areHandlesShown() const { return handlesShown_; }

private:
    Matrix3 matrix() const;
    /// Converts a point from the coordinates around the group to the group's own.
    OvPoint inside(OvPoint point);

    std::vector<Manipulator*> children_;
    Transform transform_;
    int handleMask_;
    bool handlesShown_ = false;
};

/// The result of a pick among children: the picked manipulator, and the child that it belongs to.
/// Children are tested from the last to the first.
struct Picked {
    Manipulator* manipulator = nullptr;
    Manipulator* child = nullptr;
};
Picked pickAmong(const std::vector<Manipulator*>& children, OvPoint pen, OvPoint tolerance);

}  // namespace Orvane
