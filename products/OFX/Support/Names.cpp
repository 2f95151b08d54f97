#include "products/OFX/Support/Names.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "ofx/ofxCore.h"
#include "ofx/ofxImageEffect.h"

namespace Orvane {
namespace {

template <typename Value>
struct Row {
    std::string_view name;
    Value value;
};

// Names that are missing here, such as "OfxFieldBoth" or "OfxBitDepthHalf", become None.
constexpr std::array<Row<OvField>, 2> kFields{{
    {kOfxImageFieldLower, OvField::Lower},
    {kOfxImageFieldUpper, OvField::Upper},
}};

constexpr std::array<Row<OvDepth>, 3> kDepths{{
    {kOfxBitDepthByte, OvDepth::Byte},
    {kOfxBitDepthShort, OvDepth::Short},
    {kOfxBitDepthFloat, OvDepth::Float},
}};

constexpr std::array<Row<OvComponents>, 2> kComponents{{
    {kOfxImageComponentRGBA, OvComponents::RGBA},
    {kOfxImageComponentAlpha, OvComponents::Alpha},
}};

constexpr std::array<Row<OvContext>, 6> kContexts{{
    {kOfxImageEffectContextGenerator, OvContext::Generator},
    {kOfxImageEffectContextFilter, OvContext::Filter},
    {kOfxImageEffectContextGeneral, OvContext::General},
    {kOfxImageEffectContextRetimer, OvContext::Retimer},
    {kOfxImageEffectContextTransition, OvContext::Transition},
    {kOfxImageEffectContextPaint, OvContext::Paint},
}};

constexpr std::array<Row<OvChangeReason>, 3> kReasons{{
    {kOfxChangeUserEdited, OvChangeReason::UserEdited},
    {kOfxChangePluginEdited, OvChangeReason::PluginEdited},
    {kOfxChangeTime, OvChangeReason::TimeChanged},
}};

template <typename Value, std::size_t Count>
Value find(const std::array<Row<Value>, Count>& rows, const char* name, Value fallback)
{
    if (name == nullptr) return fallback;
    for (const Row<Value>& row : rows) {
        if (row.name == name) return row.value;
    }
    return fallback;
}

}  // namespace

OvField fieldFromName(const char* name)
{
    return find(kFields, name, OvField::None);
}

OvDepth depthFromName(const char* name)
{
    return find(kDepths, name, OvDepth::None);
}

OvComponents componentsFromName(const char* name)
{
    return find(kComponents, name, OvComponents::None);
}

OvContext contextFromName(const char* name)
{
    return find(kContexts, name, OvContext::None);
}

OvChangeReason changeReasonFromName(const char* name)
{
    return find(kReasons, name, OvChangeReason::UserEdited);
}

}  // namespace Orvane
