#pragma once

/// The public OFX C interface: scalars, geometry, the host and plug-in records, statuses, and the
/// actions and properties that every plug-in kind shares. Declared by hand, names as published; one
/// set of declarations serves the releases 1.0 to 1.5, since no member ever moved.
///
/// Everything that crosses the interface is plain C: no exception may leave a function declared
/// here.

#include <cstddef>

#if defined(_WIN32)
#define OfxExport extern __declspec(dllexport)
#else
#define OfxExport extern __attribute__((visibility("default")))
#endif

extern "C" {

using OfxStatus = int;
using OfxTime = double;

struct OfxPointI {
    int x, y;
};
struct OfxPointD {
    double x, y;
};
struct OfxRangeI {
    int min, max;
};
struct OfxRangeD {
    double min, max;
};

/// Half-open rectangles, y upwards. An infinite edge is kOfxFlagInfiniteMin or kOfxFlagInfiniteMax.
struct OfxRectI {
    int x1, y1, x2, y2;
};
struct OfxRectD {
    double x1, y1, x2, y2;
};

using OfxPropertySetHandle = struct OfxPropertySetStruct*;

struct OfxHost {
    OfxPropertySetHandle host;
    /// Returns null for an unknown name or version. Takes the `host` member above.
    const void* (*fetchSuite)(OfxPropertySetHandle host, const char* suiteName, int suiteVersion);
};

using OfxPluginEntryPoint = OfxStatus(const char* action, const void* handle,
                                      OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs);

struct OfxPlugin {
    const char* pluginApi;
    int apiVersion;
    const char* pluginIdentifier;
    unsigned int pluginVersionMajor;
    unsigned int pluginVersionMinor;
    void (*setHost)(OfxHost* host);  ///< called before any action; no suite may be used inside
    OfxPluginEntryPoint* mainEntry;
};

OfxExport int OfxGetNumberOfPlugins(void);
OfxExport OfxPlugin* OfxGetPlugin(int nth);

}  // extern "C"

inline constexpr int kOfxFlagInfiniteMin = -2147483647 - 1;
inline constexpr int kOfxFlagInfiniteMax = 2147483647;

inline constexpr OfxStatus kOfxStatOK = 0;
inline constexpr OfxStatus kOfxStatFailed = 1;
inline constexpr OfxStatus kOfxStatErrFatal = 2;
inline constexpr OfxStatus kOfxStatErrUnknown = 3;
inline constexpr OfxStatus kOfxStatErrMissingHostFeature = 4;
inline constexpr OfxStatus kOfxStatErrUnsupported = 5;
inline constexpr OfxStatus kOfxStatErrExists = 6;
inline constexpr OfxStatus kOfxStatErrFormat = 7;
inline constexpr OfxStatus kOfxStatErrMemory = 8;
inline constexpr OfxStatus kOfxStatErrBadHandle = 9;
inline constexpr OfxStatus kOfxStatErrBadIndex = 10;
inline constexpr OfxStatus kOfxStatErrValue = 11;
inline constexpr OfxStatus kOfxStatReplyYes = 12;
inline constexpr OfxStatus kOfxStatReplyNo = 13;
inline constexpr OfxStatus kOfxStatReplyDefault = 14;

inline constexpr const char* kOfxActionLoad = "OfxActionLoad";
inline constexpr const char* kOfxActionUnload = "OfxActionUnload";
inline constexpr const char* kOfxActionDescribe = "OfxActionDescribe";
inline constexpr const char* kOfxActionCreateInstance = "OfxActionCreateInstance";
inline constexpr const char* kOfxActionDestroyInstance = "OfxActionDestroyInstance";
inline constexpr const char* kOfxActionPurgeCaches = "OfxActionPurgeCaches";
inline constexpr const char* kOfxActionSyncPrivateData = "OfxActionSyncPrivateData";
inline constexpr const char* kOfxActionBeginInstanceEdit = "OfxActionBeginInstanceEdit";
inline constexpr const char* kOfxActionEndInstanceEdit = "OfxActionEndInstanceEdit";
inline constexpr const char* kOfxActionBeginInstanceChanged = "OfxActionBeginInstanceChanged";
inline constexpr const char* kOfxActionInstanceChanged = "OfxActionInstanceChanged";
inline constexpr const char* kOfxActionEndInstanceChanged = "OfxActionEndInstanceChanged";

inline constexpr const char* kOfxPropType = "OfxPropType";
inline constexpr const char* kOfxPropName = "OfxPropName";
inline constexpr const char* kOfxPropLabel = "OfxPropLabel";
inline constexpr const char* kOfxPropVersion = "OfxPropVersion";
inline constexpr const char* kOfxPropVersionLabel = "OfxPropVersionLabel";
inline constexpr const char* kOfxPropAPIVersion = "OfxPropAPIVersion";
inline constexpr const char* kOfxPropTime = "OfxPropTime";
inline constexpr const char* kOfxPropIsInteractive = "OfxPropIsInteractive";
inline constexpr const char* kOfxPropInstanceData = "OfxPropInstanceData";
inline constexpr const char* kOfxPropEffectInstance = "OfxPropEffectInstance";
inline constexpr const char* kOfxPropChangeReason = "OfxPropChangeReason";

inline constexpr const char* kOfxChangeUserEdited = "OfxChangeUserEdited";
inline constexpr const char* kOfxChangePluginEdited = "OfxChangePluginEdited";
inline constexpr const char* kOfxChangeTime = "OfxChangeTime";

inline constexpr const char* kOfxBitDepthNone = "OfxBitDepthNone";
inline constexpr const char* kOfxBitDepthByte = "OfxBitDepthByte";
inline constexpr const char* kOfxBitDepthShort = "OfxBitDepthShort";
inline constexpr const char* kOfxBitDepthHalf = "OfxBitDepthHalf";
inline constexpr const char* kOfxBitDepthFloat = "OfxBitDepthFloat";

static_assert(sizeof(OfxPointI) == 8 && sizeof(OfxPointD) == 16);
static_assert(sizeof(OfxRangeI) == 8 && sizeof(OfxRangeD) == 16);
static_assert(sizeof(OfxRectI) == 16 && alignof(OfxRectI) == 4 && sizeof(OfxRectD) == 32);
static_assert(offsetof(OfxHost, fetchSuite) == sizeof(void*));
static_assert(sizeof(OfxHost) == 2 * sizeof(void*));
static_assert(offsetof(OfxPlugin, apiVersion) == sizeof(void*));
static_assert(offsetof(OfxPlugin, pluginIdentifier) == (sizeof(void*) == 8 ? 16 : 8));
static_assert(offsetof(OfxPlugin, pluginVersionMajor) == (sizeof(void*) == 8 ? 24 : 12));
static_assert(offsetof(OfxPlugin, pluginVersionMinor) == (sizeof(void*) == 8 ? 28 : 16));
static_assert(offsetof(OfxPlugin, setHost) == (sizeof(void*) == 8 ? 32 : 20));
static_assert(offsetof(OfxPlugin, mainEntry) == (sizeof(void*) == 8 ? 40 : 24));
static_assert(sizeof(OfxPlugin) == (sizeof(void*) == 8 ? 48 : 28));
