#pragma once

/// What a plug-in says of itself, against what the standard asks and hosts rely on.

#include "host/Descriptor.h"
#include "inspect/Report.h"
#include "ofx/ofxCore.h"

namespace Tesseret::Inspect {

/// The record that the library exports.
void checkRecord(const OfxPlugin& plugin, Report& report);
/// Label, contexts and depths.
void checkEffect(const Host::EffectDescription& effect, Report& report);
/// Clips, parameters and pages of one context of the plug-in called `identifier`.
void checkContext(const Host::ContextDescription& context, const std::string& identifier,
                  Report& report);

/// The same as facts; names of clips and numbers of parameters only.
nlohmann::ordered_json effectFacts(const Host::EffectDescription& effect);
nlohmann::ordered_json contextFacts(const Host::ContextDescription& context);

}  // namespace Tesseret::Inspect
