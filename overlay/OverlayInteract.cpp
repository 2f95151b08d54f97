#include "overlay/OverlayInteract.h"

#include <array>
#include <cmath>
#include <utility>

#include "overlay/Draw.h"
#include "overlay/OverlayText.h"
#include "platform/OpenGL.h"
#include "products/OFX/Support/Host.h"

namespace Orvane {
namespace {

constexpr float kMinMotion = 0.001f;        ///< smaller motions of a lifted pen are ignored
constexpr OvPoint kHelpOffset{8.0f, 8.0f};  ///< of a help text from the pen

void readInto(const OvOfxPropertySet& inArgs, DrawArguments& arguments)
{
    std::array<int, 2> viewport{};
    if (inArgs.getInts(kOfxInteractPropViewportSize, viewport) == kOfxStatOK) {
        arguments.viewport = {static_cast<float>(viewport[0]), static_cast<float>(viewport[1])};
    }
    arguments.pixelScale = pointOf(inArgs, kOfxInteractPropPixelScale);
    std::array<double, 3> background{};
    if (inArgs.getDoubles(kOfxInteractPropBackgroundColour, background) == kOfxStatOK) {
        for (std::size_t i = 0; i < 3; ++i) {
            arguments.background[i] = static_cast<float>(background[i]);
        }
    }
    arguments.time = inArgs.doubleOr(kOfxPropTime, 0.0);
}

/// The effect behind an interact, or null.
OvOfxEffect* effectOf(const OvOfxPropertySet& interact)
{
    void* handle = nullptr;
    static_cast<void>(interact.getPointer(kOfxPropEffectInstance, handle));
    OvOfxPropertySet properties;
    return findInstance(static_cast<OfxImageEffectHandle>(handle), properties);
}

}  // namespace

OvOfxPropertySet interactProperties(OfxInteractHandle interact)
{
    const OfxInteractSuiteV1* suite = hostDescription().suites.interact;
    OfxPropertySetHandle properties = nullptr;
    if (suite != nullptr) suite->interactGetPropertySet(interact, &properties);
    return OvOfxPropertySet(properties);
}

DrawArguments readDrawArguments(const OvOfxPropertySet& inArgs)
{
    DrawArguments arguments;
    readInto(inArgs, arguments);
    return arguments;
}

PenArguments readPenArguments(const OvOfxPropertySet& inArgs)
{
    PenArguments arguments;
    readInto(inArgs, arguments);
    arguments.position = pointOf(inArgs, kOfxInteractPropPenPosition);
    arguments.pressure = inArgs.doubleOr(kOfxInteractPropPenPressure, 0.0);
    return arguments;
}

/// An action in progress, for as long as this object lives.
class OverlayInteract::Frame {
public:
    Frame(OverlayInteract& overlay, OvActionKind kind, const OvOfxPropertySet& inArgs)
        : frames_(overlay.frames_)
    {
        frames_.push_back({.kind = kind, .inArgs = inArgs, .outArgs = OvOfxPropertySet()});
    }
    ~Frame() { frames_.pop_back(); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

private:
    std::deque<OvOfxActionFrame>& frames_;
};

OverlayInteract::OverlayInteract(OfxInteractHandle interact) : interact_(interact)
{
    ensureOverlayFont();
    properties_ = interactProperties(interact);
    // C boundary: the entry's destroy action deletes what the host keeps.
    kept_ = properties_.setPointer(kOfxPropInstanceData, this) == kOfxStatOK;
    effect_ = effectOf(properties_);
    if (effect_ != nullptr) instance_ = effect_->watchedInstance();
    if (instance() != nullptr) instance()->addInteract(interact_);
}

OverlayInteract::~OverlayInteract()
{
    if (instance() != nullptr) instance()->removeInteract(interact_);
}

void OverlayInteract::slaveTo(const std::string& parameter)
{
    const OfxStatus status =
        properties_.setString(kOfxInteractPropSlaveToParam, parameter.c_str(), slaveCount_);
    if (status == kOfxStatOK) ++slaveCount_;
}

void OverlayInteract::addBinding(std::unique_ptr<ParamBinding> binding)
{
    bindings_.push_back(std::move(binding));
}

void OverlayInteract::handleEvent(const OverlayEvent& event)
{
    if (routing_) return;
    routing_ = true;
    penDelta_ = {event.position.x - penPosition_.x, event.position.y - penPosition_.y};
    penPosition_ = event.position;
    switch (event.type) {
        case OverlayEventType::PenDown:
            routeDown(event.position);
            break;
        case OverlayEventType::PenMotion:
            routeMotion(event.position);
            break;
        case OverlayEventType::PenUp:
            routeUp(event.position);
            break;
        default:
            break;
    }
    routing_ = false;
}

void OverlayInteract::routeDown(OvPoint pen)
{
    penDown_ = true;
    if (picked_.manipulator != nullptr) {
        leaveHover();
        changed_ = true;
    }
    pickUnder(pen);
    if (picked_.child != nullptr && picked_.child->press(pen)) changed_ = true;
}

void OverlayInteract::routeMotion(OvPoint pen)
{
    if (penDown_) {
        changed_ = picked_.child != nullptr && picked_.child->drag(pen);
    } else if (std::abs(penDelta_.x) >= kMinMotion || std::abs(penDelta_.y) >= kMinMotion) {
        const Manipulator* before = hovered_;
        leaveHover();
        pickUnder(pen);
        enterHover();
        if (hovered_ != before) changed_ = true;
    }
    if (tooltips_ && hovered_ != nullptr) changed_ = true;
}

void OverlayInteract::routeUp(OvPoint pen)
{
    penDown_ = false;
    if (picked_.child != nullptr && picked_.child->release()) changed_ = true;
    pickUnder(pen);
    if (enterHover()) changed_ = true;
}

void OverlayInteract::pickUnder(OvPoint pen)
{
    picked_ = pickAmong(children_, pen, pickTolerance_);
}

void OverlayInteract::leaveHover()
{
    if (picked_.manipulator != nullptr) picked_.manipulator->leaveHover();
    hovered_ = nullptr;
}

/// Returns whether a manipulator is under the pen.
bool OverlayInteract::enterHover()
{
    hovered_ = picked_.manipulator;
    if (hovered_ != nullptr) hovered_->enterHover();
    return hovered_ != nullptr;
}

void OverlayInteract::drawContents()
{
    changed_ = false;
    // A host may send a draw action without a current context.
    if (!hasCurrentContext()) return;
    const DrawingState state;
    for (Manipulator* child : children_) {
        if (child->isShown()) child->draw();
    }
    if (tooltips_ && hovered_ != nullptr) {
        hovered_->drawHelp({penPosition_.x + kHelpOffset.x, penPosition_.y + kHelpOffset.y});
    }
}

OfxStatus OverlayInteract::handlePen(OverlayEventType type, OvActionKind kind,
                                     const OvOfxPropertySet& inArgs)
{
    const Frame frame(*this, kind, inArgs);
    const PenArguments arguments = readPenArguments(inArgs);
    handleEvent({.type = type, .kind = kPenEvent, .position = arguments.position});
    if (!changed_) return kOfxStatReplyDefault;
    requestRedraw();
    return kOfxStatOK;
}

OfxStatus OverlayInteract::penMotion(const OvOfxPropertySet& inArgs)
{
    return handlePen(OverlayEventType::PenMotion, OvActionKind::PenMotion, inArgs);
}

OfxStatus OverlayInteract::penDown(const OvOfxPropertySet& inArgs)
{
    return handlePen(OverlayEventType::PenDown, OvActionKind::PenDown, inArgs);
}

OfxStatus OverlayInteract::penUp(const OvOfxPropertySet& inArgs)
{
    return handlePen(OverlayEventType::PenUp, OvActionKind::PenUpOrDraw, inArgs);
}

OfxStatus OverlayInteract::gainFocus(const OvOfxPropertySet& inArgs)
{
    return readFocus(inArgs);
}

OfxStatus OverlayInteract::loseFocus(const OvOfxPropertySet& inArgs)
{
    return readFocus(inArgs);
}

OfxStatus OverlayInteract::readFocus(const OvOfxPropertySet& inArgs)
{
    static_cast<void>(readDrawArguments(inArgs));
    return kOfxStatReplyDefault;
}

OfxStatus OverlayInteract::draw(const OvOfxPropertySet& inArgs)
{
    const Frame frame(*this, OvActionKind::PenUpOrDraw, inArgs);
    const DrawArguments arguments = readDrawArguments(inArgs);
    ensureOverlayFont();
    for (const auto& binding : bindings_) binding->readParams(arguments.time);
    drawContents();
    return kOfxStatOK;
}

void OverlayInteract::requestRedraw() const
{
    const OfxInteractSuiteV1* suite = hostDescription().suites.interact;
    if (suite != nullptr) suite->interactRedraw(interact_);
}

}  // namespace Orvane
