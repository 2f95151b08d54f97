#pragma once

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxParam.h"
#include "products/OFX/Support/Param.h"

namespace Orvane {

class OvOfxEffect;

/// Defines the parameters and pages of the context that the effect is bound to. Each defined
/// parameter is appended to the effect's parameter list. Returns the host's status, or
/// kOfxStatFailed for an unknown context.
[[nodiscard]] OfxStatus defineParameters(OvOfxEffect& effect, OfxImageEffectHandle handle);

/// Defines one parameter, or a group and its children. `parent` is the name of the group it is in,
/// empty at the top level; groups themselves stay at the top. Excluded objects and clips are
/// skipped with 0. Returns kOfxStatFailed for an object that cannot be defined.
[[nodiscard]] OfxStatus defineParameter(OvOfxEffect& effect, OvOfxParam& param,
                                        OfxParamSetHandle paramSet, const char* parent);

/// Calls the host's define function for one name. Returns its status and sets `properties` to the
/// new descriptor's.
[[nodiscard]] OfxStatus defineToHost(OfxParamSetHandle paramSet, const char* typeName,
                                     const char* name, OvOfxPropertySet& properties);

/// Writes the properties that parameters, buttons, groups and pages have in common.
void writeCommonProperties(const OvOfxParam& param, const OvOfxPropertySet& properties);

}  // namespace Orvane
