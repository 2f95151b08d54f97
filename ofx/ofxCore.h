#pragma once

/// The public OFX C interface: scalars, geometry, the host and plug-in records, statuses, and the
/// actions and properties that every plug-in kind shares. Declared by hand, names as published; one
/// set of declarations serves the releases 1.0 to 1.5, since no member ever moved.
///
/// Everything that crosses the interface is plain C: no exception may leave a function declared
/// here.

#include <stddef.h>

// Constants of the interface, and linkage: the headers are C11 as well as C++.
#ifdef __cplusplus
#define OfxName inline constexpr const char*
#define OfxStatusValue inline constexpr OfxStatus
#define OfxIntValue inline constexpr int
#define OFX_BEGIN extern "C" {
#define OFX_END }
#else
#define OfxName static const char* const
#define OfxStatusValue static const OfxStatus
#define OfxIntValue static const int
#define OFX_BEGIN
#define OFX_END
#endif

#if defined(_WIN32)
#define OfxExport extern __declspec(dllexport)
#else
#define OfxExport extern __attribute__((visibility("default")))
#endif

OFX_BEGIN

typedef int OfxStatus;
typedef double OfxTime;

typedef struct OfxPointI {
    int x, y;
} OfxPointI;
typedef struct OfxPointD {
    double x, y;
} OfxPointD;
typedef struct OfxRangeI {
    int min, max;
} OfxRangeI;
typedef struct OfxRangeD {
    double min, max;
} OfxRangeD;

/// Half-open rectangles, y upwards. An infinite edge is kOfxFlagInfiniteMin or kOfxFlagInfiniteMax.
typedef struct OfxRectI {
    int x1, y1, x2, y2;
} OfxRectI;
typedef struct OfxRectD {
    double x1, y1, x2, y2;
} OfxRectD;

typedef struct OfxPropertySetStruct* OfxPropertySetHandle;

typedef struct OfxHost {
    OfxPropertySetHandle host;
    /// Returns null for an unknown name or version. Takes the `host` member above.
    const void* (*fetchSuite)(OfxPropertySetHandle host, const char* suiteName, int suiteVersion);
} OfxHost;

typedef OfxStatus(OfxPluginEntryPoint)(const char* action, const void* handle,
                                       OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs);

typedef struct OfxPlugin {
    const char* pluginApi;
    int apiVersion;
    const char* pluginIdentifier;
    unsigned int pluginVersionMajor;
    unsigned int pluginVersionMinor;
    void (*setHost)(OfxHost* host);  ///< called before any action; no suite may be used inside
    OfxPluginEntryPoint* mainEntry;
} OfxPlugin;

OfxExport int OfxGetNumberOfPlugins(void);
OfxExport OfxPlugin* OfxGetPlugin(int nth);

OFX_END

OfxIntValue kOfxFlagInfiniteMin = -2147483647 - 1;
OfxIntValue kOfxFlagInfiniteMax = 2147483647;

OfxStatusValue kOfxStatOK = 0;
OfxStatusValue kOfxStatFailed = 1;
OfxStatusValue kOfxStatErrFatal = 2;
OfxStatusValue kOfxStatErrUnknown = 3;
OfxStatusValue kOfxStatErrMissingHostFeature = 4;
OfxStatusValue kOfxStatErrUnsupported = 5;
OfxStatusValue kOfxStatErrExists = 6;
OfxStatusValue kOfxStatErrFormat = 7;
OfxStatusValue kOfxStatErrMemory = 8;
OfxStatusValue kOfxStatErrBadHandle = 9;
OfxStatusValue kOfxStatErrBadIndex = 10;
OfxStatusValue kOfxStatErrValue = 11;
OfxStatusValue kOfxStatReplyYes = 12;
OfxStatusValue kOfxStatReplyNo = 13;
OfxStatusValue kOfxStatReplyDefault = 14;

OfxName kOfxActionLoad = "OfxActionLoad";
OfxName kOfxActionUnload = "OfxActionUnload";
OfxName kOfxActionDescribe = "OfxActionDescribe";
OfxName kOfxActionCreateInstance = "OfxActionCreateInstance";
OfxName kOfxActionDestroyInstance = "OfxActionDestroyInstance";
OfxName kOfxActionPurgeCaches = "OfxActionPurgeCaches";
OfxName kOfxActionSyncPrivateData = "OfxActionSyncPrivateData";
OfxName kOfxActionBeginInstanceEdit = "OfxActionBeginInstanceEdit";
OfxName kOfxActionEndInstanceEdit = "OfxActionEndInstanceEdit";
OfxName kOfxActionBeginInstanceChanged = "OfxActionBeginInstanceChanged";
OfxName kOfxActionInstanceChanged = "OfxActionInstanceChanged";
OfxName kOfxActionEndInstanceChanged = "OfxActionEndInstanceChanged";

OfxName kOfxPropType = "OfxPropType";
OfxName kOfxPropName = "OfxPropName";
OfxName kOfxPropLabel = "OfxPropLabel";
OfxName kOfxPropVersion = "OfxPropVersion";
OfxName kOfxPropVersionLabel = "OfxPropVersionLabel";
OfxName kOfxPropAPIVersion = "OfxPropAPIVersion";
OfxName kOfxPropTime = "OfxPropTime";
OfxName kOfxPropIsInteractive = "OfxPropIsInteractive";
OfxName kOfxPropInstanceData = "OfxPropInstanceData";
OfxName kOfxPropEffectInstance = "OfxPropEffectInstance";
OfxName kOfxPropChangeReason = "OfxPropChangeReason";

OfxName kOfxChangeUserEdited = "OfxChangeUserEdited";
OfxName kOfxChangePluginEdited = "OfxChangePluginEdited";
OfxName kOfxChangeTime = "OfxChangeTime";

OfxName kOfxBitDepthNone = "OfxBitDepthNone";
OfxName kOfxBitDepthByte = "OfxBitDepthByte";
OfxName kOfxBitDepthShort = "OfxBitDepthShort";
OfxName kOfxBitDepthHalf = "OfxBitDepthHalf";
OfxName kOfxBitDepthFloat = "OfxBitDepthFloat";

#ifdef __cplusplus
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
#endif
