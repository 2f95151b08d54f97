#include "host/imitation/KnownHosts.h"

#include <algorithm>
#include <array>

#include "ofx/ofxInteract.h"
#include "ofx/ofxParam.h"

namespace Tesseret::Host {

namespace {

constexpr OfxPointI kNoPages{0, 0};

/// The writes that several hosts refuse: they know neither property.
const std::map<std::string, OfxStatus, std::less<>>& refusedLists()
{
    static const std::map<std::string, OfxStatus, std::less<>> kRefused = {
        {kOfxPluginPropParamPageOrder, kOfxStatErrUnknown},
        {kOfxImageEffectPropClipPreferencesSlaveParam, kOfxStatErrUnknown}};
    return kRefused;
}

KnownHost example()
{
    HostQuirks quirks;
    quirks.identity.pageRowsAndColumns = kNoPages;
    quirks.describeTwice = true;
    quirks.refusedWrites = {{kOfxPluginPropParamPageOrder, kOfxStatErrUnknown}};
    quirks.threading = Threading::DirectCall;
    quirks.nullMessageStatus = kOfxStatErrBadHandle;
    quirks.derivativeStatus = kOfxStatErrMissingHostFeature;
    return {"example-1.5",
            "an application on the standard's example host library 1.5: no pages, "
            "describes twice, one thread",
            quirks};
}

KnownHost mlt()
{
    HostQuirks quirks;
    quirks.identity.name = "MLT";
    quirks.identity.isBackground = true;
    quirks.identity.pageRowsAndColumns = kNoPages;
    quirks.identity.contexts = {kOfxImageEffectContextFilter};
    quirks.identity.depths = {Depth::Byte, Depth::Short};
    quirks.load = LoadAnswer::OkOnly;
    quirks.describeTwice = true;
    quirks.reloadPerInstance = true;
    quirks.instancePerFrame = true;
    quirks.rendersPerFrame = 2;
    quirks.instancesAtOnce = 2;
    quirks.showsSecretParameters = false;
    quirks.choicesNeedDefaults = true;
    quirks.projectProperties = ProjectProperties::Never;
    quirks.frameRange = FrameRangeQuirk::Missing;
    quirks.unknownClip = UnknownClip::NullHandleOK;
    quirks.oneImageSetPerClip = true;
    quirks.rowLayout = RowLayout{.topDown = true};
    quirks.memoryRefusesNullEffect = true;
    quirks.nullAbort = 0;
    quirks.nullMessageStatus = kOfxStatOK;
    quirks.derivativeStatus = kOfxStatErrUnsupported;
    quirks.interactHasNoProperties = true;
    return {"mlt",
            "MLT 7.41 and editors built on it: context Filter, 8 and 16 bits, a new "
            "instance for every frame",
            quirks};
}

KnownHost natron()
{
    HostQuirks quirks;
    quirks.identity.name = "fr.inria.Natron";
    quirks.identity.pageRowsAndColumns = kNoPages;
    quirks.identity.depths = {Depth::Float};
    quirks.refusedWrites = refusedLists();
    quirks.outputUnconnected = true;
    quirks.threading = Threading::Mixed;
    quirks.cpuCountChanges = true;
    quirks.nullMessageStatus = kOfxStatReplyDefault;
    return {"natron", "Natron 2.5: float, frame ranges of files, a number of threads that changes",
            quirks};
}

KnownHost pyofx()
{
    HostQuirks quirks;
    quirks.identity.name = "pyofx";
    quirks.identity.pageRowsAndColumns = OfxPointI{10, 20};
    quirks.identity.contexts = {kOfxImageEffectContextGeneral, kOfxImageEffectContextFilter};
    quirks.identity.depths = {Depth::Byte};
    quirks.load = LoadAnswer::Any;
    quirks.missingSuites = {kOfxInteractSuite};
    quirks.refusedWrites = refusedLists();
    quirks.frameRange = FrameRangeQuirk::Wrong;
    quirks.regionOfDefinition = RegionQuirk::Refused;
    quirks.unknownClip = UnknownClip::Untouched;
    quirks.matte = MatteDelivery::Rgba;
    quirks.threading = Threading::DirectCall;
    quirks.nullAbort = 0;
    quirks.derivativeStatus = kOfxStatFailed;
    return {"pyofx",
            "pyofx, for Python: 8 bits, frames 1 to 10 whatever the time, mattes as RGBA, "
            "one thread",
            quirks};
}

KnownHost runner()
{
    HostQuirks quirks;
    quirks.identity.name = "openfx-driver";
    quirks.identity.depths = {Depth::Float};
    quirks.missingSuites = {kOfxInteractSuite};
    quirks.projectProperties = ProjectProperties::AfterFirstRender;
    quirks.frameRange = FrameRangeQuirk::Wrong;
    quirks.wrongFrameRange = {0.0, 0.0};
    quirks.regionOfDefinition = RegionQuirk::RefusedWithoutImage;
    quirks.unknownClip = UnknownClip::Unknown;
    quirks.allClipsConnected = true;
    quirks.rowLayout = RowLayout{.padding = 64};
    quirks.nullDerivativeMembers = true;
    return {"runner",
            "openfx-runner: float, every clip connected, no project before the first "
            "render, padded rows",
            quirks};
}

KnownHost tactview()
{
    HostQuirks quirks;
    quirks.identity.name = "com.helospark.tactview";
    quirks.identity.pageRowsAndColumns = OfxPointI{10, 1};
    quirks.identity.maxParameters = 100;
    quirks.identity.contexts = {kOfxImageEffectContextFilter};
    quirks.identity.depths = {Depth::Byte};
    quirks.load = LoadAnswer::Any;
    quirks.neverUnloads = true;
    quirks.missingSuites = {kOfxInteractSuite};
    quirks.frameRange = FrameRangeQuirk::Missing;
    quirks.regionOfDefinition = RegionQuirk::RefusedOutsideRender;
    quirks.threading = Threading::DirectCall;
    quirks.nullAbort = 0;
    quirks.derivativeStatus = kOfxStatOK;
    return {"tactview",
            "Tactview: context Filter, 8 bits, regions only while it renders, one "
            "thread, never unloads",
            quirks};
}

KnownHost tuttle()
{
    HostQuirks quirks;
    quirks.identity.pageRowsAndColumns = kNoPages;
    quirks.describeTwice = true;
    quirks.refusedWrites = refusedLists();
    quirks.projectProperties = ProjectProperties::StandardAtFirst;
    quirks.rowLayout = RowLayout{.topDown = true};
    quirks.memoryRefusesNullEffect = true;
    quirks.threadIndexStatus = kOfxStatFailed;
    return {"tuttle", "TuttleOFX: describes twice, top-down rows, threads without an index",
            quirks};
}

}  // namespace

std::span<const KnownHost> knownHosts()
{
    static const std::array kHosts = {example(), mlt(),      natron(), pyofx(),
                                      runner(),  tactview(), tuttle()};
    return kHosts;
}

const KnownHost* findKnownHost(std::string_view name)
{
    const auto found = std::ranges::find(knownHosts(), name, &KnownHost::name);
    return found != knownHosts().end() ? &*found : nullptr;
}

}  // namespace Tesseret::Host
