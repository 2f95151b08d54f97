#pragma once

#include <string>

#include "ofx/ofxCore.h"
#include "ofx/ofxImageEffect.h"
#include "ofx/ofxInteract.h"
#include "ofx/ofxMemory.h"
#include "ofx/ofxMessage.h"
#include "ofx/ofxMultiThread.h"
#include "ofx/ofxParam.h"
#include "ofx/ofxProperty.h"
#include "products/OFX/Support/Quirks.h"

namespace Orvane {

/// The host's suites. Once a host has been described only `interact` may be null.
struct OvOfxSuites {
    const OfxImageEffectSuiteV1* imageEffect = nullptr;
    const OfxPropertySuiteV1* property = nullptr;
    const OfxParameterSuiteV1* parameter = nullptr;
    const OfxMemorySuiteV1* memory = nullptr;
    const OfxMultiThreadSuiteV1* multiThread = nullptr;
    const OfxMessageSuiteV1* message = nullptr;
    const OfxInteractSuiteV1* interact = nullptr;
    friend bool operator==(const OvOfxSuites&, const OvOfxSuites&) = default;
};

/// The capabilities of the host. Read once, never changed afterwards. The initial values apply
/// where the host reports nothing.
struct OvOfxHost {
    OvOfxSuites suites;
    std::string name;
    OvHostQuirks quirks;  ///< known of a host of that name
    bool supportsOverlays = false;
    bool supportsMultiResolution = false;
    bool supportsTiles = false;
    bool temporalClipAccess = false;
    bool multipleClipDepths = false;
    bool multipleClipPARs = false;
    bool setableFrameRate = false;
    bool setableFielding = false;
    bool stringAnimation = false;
    bool customInteract = false;
    bool choiceAnimation = false;
    bool booleanAnimation = false;
    bool customAnimation = false;
    int maxParameters = -1;  ///< below 1: no limit
    int maxPages = -1;
    int pageRows = -1;
    int pageColumns = -1;
    bool isBackground = false;  ///< unless the quirks deny it
    friend bool operator==(const OvOfxHost&, const OvOfxHost&) = default;
};

/// The host record that the host passed most recently; null before that.
void setHostRecord(OfxHost* host);
[[nodiscard]] OfxHost* hostRecord();

/// A suite of the host by name, or null when there is no host, no way to ask, or no such suite.
[[nodiscard]] const void* fetchSuite(const OfxHost* host, const char* name, int version);

/// Reads suites and capabilities of the host and installs its threads and image memory. Returns
/// kOfxStatErrMissingHostFeature when the host or a required suite is missing; the next call then
/// tries again. After a success, further calls do nothing until `forgetHost`.
[[nodiscard]] OfxStatus describeHost(const OfxHost* host);

/// Makes the next `describeHost` read the host again. The current description stays valid until
/// then: other threads may be in the middle of an action.
void forgetHost();

/// The current description; without suites before the first one. The reference is valid as long as
/// the library is loaded.
[[nodiscard]] const OvOfxHost& hostDescription();

/// The status of the load action, chosen for this host. The host is not described yet at that
/// point.
[[nodiscard]] OfxStatus loadStatus(const OfxHost* host);

}  // namespace Orvane
