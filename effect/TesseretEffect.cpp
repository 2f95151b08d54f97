#include "effect/TesseretEffect.h"

#include <algorithm>
#include <string_view>
#include <variant>

#include "effect/AboutText.h"
#include "effect/EffectRenderContext.h"
#include "effect/ParameterNames.h"
#include "effect/TesseretInterface.h"
#include "engine/RenderDriver.h"
#include "overlay/OverlayEntry.h"
#include "overlay/RectangleControl.h"
#include "products/OFX/Support/Message.h"

namespace Tesseret {

using namespace Orvane;
using Engine::PixelKind;

namespace {

/// Sets what integer and double parameters have in common.
template <typename Row, typename Param>
void copyRange(const Row& row, Param& param)
{
    param.initial = row.initial;
    param.min = row.min;
    param.max = row.max;
    param.displayMin = row.displayMin;
    param.displayMax = row.displayMax;
}

/// Makes the object of one row of the parameter table, with everything but its names.
struct ParamMaker {
    OvOfxEffect& effect;
    Rect2D& sampleRegion;
    const char* name;

    OvOfxParam& operator()(const Integer& row) const
    {
        auto& param = effect.own<OvOfxIntegerParam>(name);
        copyRange(row, param);
        return param;
    }

    OvOfxParam& operator()(const Real& row) const
    {
        auto& param = effect.own<OvOfxDoubleParam>(name);
        copyRange(row, param);
        param.increment = row.increment;
        return param;
    }

    OvOfxParam& operator()(const Boolean& row) const
    {
        auto& param = effect.own<OvOfxBooleanParam>(name);
        param.initial = row.initial;
        return param;
    }

    OvOfxParam& operator()(const InterfaceToggle&) const
    {
        auto& param = effect.own<OvOfxInterfaceToggle>(name);
        param.overlaySlave = true;
        return param;
    }

    OvOfxParam& operator()(const Choice& row) const
    {
        auto& param = effect.own<OvOfxChoiceParam>(name);
        param.initial = row.initial;
        param.options.assign(row.options.begin(), row.options.end());
        return param;
    }

    OvOfxParam& operator()(const Corner& row) const
    {
        auto& param = row.number == 1 ? sampleRegion.corner1 : sampleRegion.corner2;
        param.initial = {row.initialX, row.initialY};
        return param;
    }

    OvOfxParam& operator()(const Button&) const { return effect.own<OvOfxPushButton>(name); }
};

OvOfxParam* paramNamed(const OvOfxContextContainer& container, std::string_view name)
{
    const auto found = std::ranges::find(container.params, name, &OvOfxParam::name);
    return found != container.params.end() ? *found : nullptr;
}

void useColourEdges(OvOfxClip& clip)
{
    clip.edgeMethodX = OvEdgeMethod::Colour;
    clip.edgeMethodY = OvEdgeMethod::Colour;
}

PixelKind kindOf(OvDepth depth)
{
    switch (depth) {
        case OvDepth::Byte:
            return PixelKind::RGBA8;
        case OvDepth::Short:
            return PixelKind::RGBA16;
        case OvDepth::Float:
            return PixelKind::RGBAf;
        default:
            return PixelKind::None;
    }
}

}  // namespace

TesseretEffect::TesseretEffect() : sampleRegion_(own<Rect2D>(Names::kSampleRegion))
{
    sampleRegion_.label = "Region";
    sampleRegion_.hint = "Region to remove.";
    fillDescriptor();
    addClips();
    addParameters();
    addPages();
}

void TesseretEffect::fillDescriptor()
{
    descriptor.label = kLabel;
    descriptor.grouping = kGrouping;
    descriptor.description = kDescription;
    descriptor.contexts.assign(kContexts.begin(), kContexts.end());
    descriptor.pixelDepths.assign(kPixelDepths.begin(), kPixelDepths.end());
    descriptor.supportsTiles = false;
    descriptor.sequentialRender = true;
    descriptor.fieldExtraction = 1;
    descriptor.overlayEntry = &overlayEntry;
}

void TesseretEffect::addClips()
{
    outputClip().supportedComponents = {"RGBA"};
    useColourEdges(outputClip());
    for (const ClipRow& row : clipRows()) {
        auto& clip = own<OvOfxClip>(row.name);
        clip.label = row.label;
        clip.supportedComponents = {row.components};
        clip.optional = row.optional;
        clip.isMask = row.isMask;
        clip.temporalAccess = row.temporalAccess;
        clip.supportsTiles = false;
        useColourEdges(clip);
        general().clips.push_back(&clip);
        // A filter requires its one clip by name.
        if (row.contexts == In::Both) filter().namedClips.front().clip = &clip;
    }
}

void TesseretEffect::addParameters()
{
    for (const ParamRow& row : paramRows()) {
        OvOfxParam& param = makeParameter(row);
        if (row.contexts != In::GeneralOnly) filter().params.push_back(&param);
        if (row.contexts != In::FilterOnly) general().params.push_back(&param);
    }
    auto* temporal =
        paramCast<OvOfxBooleanParam>(paramNamed(general(), Names::kTemporalConsistency));
    temporal->onChange = [this](const OvOfxChangeRecord&) { writeSequentialRender(); };
    temporalConsistency_ = temporal;
    const auto* shown = paramCast<OvOfxBooleanParam>(paramNamed(general(), Names::kShowWidget));
    own<RectangleControl>(Names::kSampleRegion, sampleRegion_, *shown);
    paramNamed(general(), Names::kAbout)->onChange = [this](const OvOfxChangeRecord& change) {
        showAbout(change);
    };
}

OvOfxParam& TesseretEffect::makeParameter(const ParamRow& row)
{
    OvOfxParam& param = std::visit(ParamMaker{*this, sampleRegion_, row.name}, row.value);
    param.name = row.name;
    param.label = row.label;
    param.hint = row.hint;
    param.scriptName = row.scriptName != nullptr ? row.scriptName : row.name;
    if (auto* valued = paramCast<OvOfxValuedParam>(&param)) {
        valued->longHint = row.hint;
        valued->animates = row.animates;
    }
    return param;
}

void TesseretEffect::addPages()
{
    for (OvOfxContextContainer* container : {&filter(), &general()}) {
        for (const PageRow& row : pageRows()) {
            container->pages.push_back(&makePage(row, *container));
        }
    }
}

OvOfxPage& TesseretEffect::makePage(const PageRow& row, const OvOfxContextContainer& container)
{
    auto& page = own<OvOfxPage>(row.name);
    page.scriptName = row.scriptName;
    for (const PageLine& line : row.lines) {
        for (const char* name : line) {
            if (name == nullptr) break;
            const OvOfxParam* entry =
                std::string_view(name) == kEmptyCell ? &emptyCell() : paramNamed(container, name);
            if (entry != nullptr) page.children.push_back(entry);
        }
        page.children.push_back(&rowEnd());
    }
    return page;
}

std::unique_ptr<OvOfxEffectInterface> TesseretEffect::makeInterface(OvOfxHostWrapper& wrapper)
{
    return std::make_unique<TesseretInterface>(wrapper, temporalState_);
}

void TesseretEffect::instanceCreated()
{
    writeSequentialRender();
}

std::string TesseretEffect::aboutText()
{
    return makeAboutText(descriptor);
}

void TesseretEffect::render(OvOfxHostWrapper& wrapper, OvComponents components, OvDepth depth)
{
    const PixelKind kind = kindOf(depth);
    if (components != OvComponents::RGBA || kind == PixelKind::None) return;
    const std::unique_ptr<OvOfxEffectInterface> effectInterface = makeInterface(wrapper);
    EffectRenderContext context(wrapper, *effectInterface, exclusionReported_);
    Engine::renderFrame(context, temporalState_, kind);
}

void TesseretEffect::writeSequentialRender() const
{
    if (instance() != nullptr) instance()->setSequentialRender(temporalConsistency_->value());
}

void TesseretEffect::showAbout(const OvOfxChangeRecord& change)
{
    if (change.reason != OvChangeReason::UserEdited) return;
    message(aboutText().c_str(), kMessageMessage, nullptr);
}

}  // namespace Tesseret
