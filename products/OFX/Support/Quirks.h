#pragma once

#include <string_view>

#include "ofx/ofxCore.h"

namespace Orvane {

/// How a host deviates from the standard. The initial values are a host that keeps it.
struct OvHostQuirks {
    OfxStatus loadStatus = kOfxStatReplyDefault;  ///< of the load action
    bool isNeverBackground = false;               ///< whatever the host reports
    bool needsChoiceDefaults = false;  ///< a choice without a default gets its first option as one
    bool frameRangesDecide = true;     ///< a clip has no image outside the range that it reports
    bool answersMessages = true;       ///< the statuses of messages mean something
    friend bool operator==(const OvHostQuirks&, const OvHostQuirks&) = default;
};

/// The quirks of the host of that name.
[[nodiscard]] OvHostQuirks quirksOf(std::string_view hostName);

}  // namespace Orvane
