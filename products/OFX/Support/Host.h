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

/// What is known of the host. Read once, never changed afterwards. The initial values are those of
/// a host that does not say.
struct OvOfxHost {
    OvOfxSuites suites;
    std::string name;
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
    bool isBackground = false;
    friend bool operator==(const OvOfxHost&, const OvOfxHost&) = default;
};

/// The host record, as the host last handed it over; null before that.
void setHostRecord(OfxHost* host);
[[nodiscard]] OfxHost* hostRecord();

/// A suite of the host by name, or null when there is no host, no way to ask, or no such suite.
[[nodiscard]] const void* fetchSuite(const OfxHost* host, const char* name, int version);

/// Reads suites and capabilities of the host and puts its threads and image memory in force.
/// Answers kOfxStatErrMissingHostFeature when the host or a required suite is missing; the next
/// call then tries again. Once it has succeeded it does nothing until `forgetHost`.
[[nodiscard]] OfxStatus describeHost(const OfxHost* host);

/// Has the host described anew next time. What was known stays valid and in force until then: other
/// threads may be in the middle of an action.
void forgetHost();

/// The host as last described; without suites before the first description. The reference is good
/// as long as the library is loaded.
[[nodiscard]] const OvOfxHost& hostDescription();

/// The answer to the load action, by what this host accepts. The host is not described yet then.
[[nodiscard]] OfxStatus loadStatus(const OfxHost* host);

}  // namespace Orvane
