#pragma once

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxParam.h"
#include "products/OFX/Support/Param.h"

namespace Orvane {

class OvOfxEffect;

/// Defines the parameters and pages of the context that the effect is bound to. Each defined
/// parameter is appended to the effect's parameter list. Answers the host's status, kOfxStatFailed
/// for an unknown context.
[[nodiscard]] OfxStatus defineParameters(OvOfxEffect& effect, OfxImageEffectHandle handle);

/// Defines one parameter, or a group and its children. `parent` is the name of the group it is in,
/// empty at the top level; groups themselves stay at the top. Excluded objects and clips are
/// skipped with 0; kOfxStatFailed for an object that no host can define.
[[nodiscard]] OfxStatus defineParameter(OvOfxEffect& effect, OvOfxParam& param,
                                        OfxParamSetHandle paramSet, const char* parent);

/// The bare define call of one name: answers its status, and the descriptor's property set.
[[nodiscard]] OfxStatus defineToHost(OfxParamSetHandle paramSet, const char* typeName,
                                     const char* name, OvOfxPropertySet& properties);

/// Writes what parameters, buttons, groups and pages have in common.
void writeCommonProperties(const OvOfxParam& param, const OvOfxPropertySet& properties);

}  // namespace Orvane
