#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ofx/ofxImageEffect.h"
#include "picture/Picture.h"

namespace Tesseret::Host {

/// The properties of the host record; an empty optional leaves the property out.
struct HostIdentity {
    std::string name = "com.orvane.brisant.tesseret.host";
    std::string label = "Tesseret Embedded Host";
    bool isBackground = false;
    bool supportsOverlays = true;
    bool temporalClipAccess = true;
    bool choiceAnimation = true;
    bool booleanAnimation = true;
    bool stringAnimation = true;
    std::optional<int> maxParameters = -1;
    std::optional<int> maxPages = 100;
    std::optional<OfxPointI> pageRowsAndColumns = OfxPointI{20, 20};  ///< x rows, y columns
    std::vector<std::string> contexts = {kOfxImageEffectContextFilter,
                                         kOfxImageEffectContextGeneral,
                                         kOfxImageEffectContextGenerator};
    std::vector<Depth> depths = {Depth::Byte, Depth::Short, Depth::Float};
    std::set<std::string> missingProperties;  ///< further properties to leave out
};

}  // namespace Tesseret::Host
