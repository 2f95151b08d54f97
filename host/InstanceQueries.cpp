/// Instances: actions that query the plug-in, with the host's defaults where it sets no result.

#include "host/EmbeddedHost.h"
#include "host/Instance.h"

namespace Tesseret::Host {

namespace {

std::vector<PropertyValue> edges(const OfxRectD& rect)
{
    return {rect.x1, rect.y1, rect.x2, rect.y2};
}

OfxRectD rectOr(const PropertySet& set, const std::string& name, const OfxRectD& fallback)
{
    return {set.doubleOr(name, fallback.x1, 0), set.doubleOr(name, fallback.y1, 1),
            set.doubleOr(name, fallback.x2, 2), set.doubleOr(name, fallback.y2, 3)};
}

void assignTimeAndScale(PropertySet& inArgs, OfxTime time, OfxPointD scale)
{
    inArgs.assign(kOfxPropTime, {time});
    inArgs.assign(kOfxImageEffectPropRenderScale, {scale.x, scale.y});
}

}  // namespace

OfxStatus Instance::regionOfDefinition(OfxTime time, OfxPointD scale, OfxRectD& region)
{
    region = defaultRegionOfDefinition(time);
    PropertySet inArgs(host(), "inArgs of GetRegionOfDefinition");
    PropertySet outArgs(host(), "outArgs of GetRegionOfDefinition");
    assignTimeAndScale(inArgs, time, scale);
    outArgs.define(kOfxImageEffectPropRegionOfDefinition, edges(region));
    const OfxStatus status = action(kOfxImageEffectActionGetRegionOfDefinition, &inArgs, &outArgs);
    if (status == kOfxStatOK) {
        region = rectOr(outArgs, kOfxImageEffectPropRegionOfDefinition, region);
    }
    return status;
}

OfxStatus Instance::regionsOfInterest(OfxTime time, OfxPointD scale, const OfxRectD& requested,
                                      std::map<std::string, OfxRectD>& regions)
{
    PropertySet inArgs(host(), "inArgs of GetRegionsOfInterest");
    PropertySet outArgs(host(), "outArgs of GetRegionsOfInterest");
    assignTimeAndScale(inArgs, time, scale);
    inArgs.assign(kOfxImageEffectPropRegionOfInterest, edges(requested));
    for (const auto& each : clips()) {
        if (!each->isOutput()) {
            outArgs.define(kOfxImageClipPropRoIPrefix + each->name(), edges(requested));
        }
    }
    const OfxStatus status = action(kOfxImageEffectActionGetRegionsOfInterest, &inArgs, &outArgs);
    regions.clear();
    for (const auto& each : clips()) {
        if (each->isOutput()) continue;
        regions[each->name()] =
            status == kOfxStatOK
                ? rectOr(outArgs, kOfxImageClipPropRoIPrefix + each->name(), requested)
                : requested;
    }
    return status;
}

OfxStatus Instance::timeDomain(OfxRangeD& range)
{
    range = {0.0, project_.duration - 1.0};
    const Clip* const leader = clip(firstConnected_);
    if (leader && leader->source()) range = leader->source()->frameRange();
    PropertySet outArgs(host(), "outArgs of GetTimeDomain");
    outArgs.define(kOfxImageEffectPropFrameRange, {range.min, range.max});
    const OfxStatus status = action(kOfxImageEffectActionGetTimeDomain, nullptr, &outArgs);
    if (status == kOfxStatOK) {
        range = {outArgs.doubleOr(kOfxImageEffectPropFrameRange, range.min, 0),
                 outArgs.doubleOr(kOfxImageEffectPropFrameRange, range.max, 1)};
    }
    return status;
}

OfxStatus Instance::framesNeeded(OfxTime time,
                                 std::map<std::string, std::vector<OfxRangeD>>& frames)
{
    PropertySet inArgs(host(), "inArgs of GetFramesNeeded");
    PropertySet outArgs(host(), "outArgs of GetFramesNeeded");
    inArgs.assign(kOfxPropTime, {time});
    for (const auto& each : clips()) {
        if (!each->isOutput()) {
            outArgs.defineList(kOfxImageClipPropFrameRangePrefix + each->name(),
                               PropertyType::Double);
        }
    }
    const OfxStatus status = action(kOfxImageEffectActionGetFramesNeeded, &inArgs, &outArgs);
    frames.clear();
    for (const auto& each : clips()) {
        if (each->isOutput()) continue;
        const std::vector<double> ends =
            outArgs.doubles(kOfxImageClipPropFrameRangePrefix + each->name());
        std::vector<OfxRangeD>& ranges = frames[each->name()];
        for (std::size_t i = 0; status == kOfxStatOK && i + 1 < ends.size(); i += 2) {
            ranges.push_back({ends[i], ends[i + 1]});
        }
        if (ranges.empty()) ranges.push_back({time, time});
    }
    return status;
}

OfxStatus Instance::clipPreferences(ClipPreferences& preferences)
{
    PropertySet outArgs(host(), "outArgs of GetClipPreferences");
    for (const auto& each : clips()) {
        const ClipFormat& format = each->format();
        outArgs.define(kOfxImageClipPropComponentsPrefix + each->name(),
                       {componentsName(format.components)});
        outArgs.define(kOfxImageClipPropDepthPrefix + each->name(), {depthName(format.depth)});
        outArgs.define(kOfxImageClipPropPARPrefix + each->name(), {format.pixelAspectRatio});
    }
    const ClipFormat output = outputFormat();
    outArgs.define(kOfxImageEffectPropFrameRate, {output.frameRate});
    outArgs.define(kOfxImageClipPropFieldOrder, {output.fieldOrder});
    outArgs.define(kOfxImageEffectPropPreMultiplication, {alphaName(output.alpha)});
    outArgs.define(kOfxImageClipPropContinuousSamples, {0});
    outArgs.define(kOfxImageEffectFrameVarying, {0});
    const OfxStatus status = action(kOfxImageEffectActionGetClipPreferences, nullptr, &outArgs);

    preferences = {};
    preferences.frameRate = outArgs.doubleOr(kOfxImageEffectPropFrameRate, output.frameRate);
    preferences.fieldOrder = outArgs.stringOr(kOfxImageClipPropFieldOrder, "");
    preferences.premultiplication = outArgs.stringOr(kOfxImageEffectPropPreMultiplication, "");
    preferences.continuousSamples = outArgs.intOr(kOfxImageClipPropContinuousSamples, 0) != 0;
    preferences.frameVarying = outArgs.intOr(kOfxImageEffectFrameVarying, 0) != 0;
    for (const auto& each : clips()) {
        const std::string components = kOfxImageClipPropComponentsPrefix + each->name();
        const std::string depth = kOfxImageClipPropDepthPrefix + each->name();
        const std::string ratio = kOfxImageClipPropPARPrefix + each->name();
        if (outArgs.wasWritten(components)) {
            preferences.components[each->name()] = outArgs.stringOr(components, "");
        }
        if (outArgs.wasWritten(depth)) {
            preferences.depths[each->name()] = outArgs.stringOr(depth, "");
        }
        if (outArgs.wasWritten(ratio)) {
            preferences.pixelAspectRatios[each->name()] = outArgs.doubleOr(ratio, 1.0);
        }
    }
    return status;
}

OfxStatus Instance::isIdentity(const RenderRequest& request, Identity& identity)
{
    identity = {"", request.time};
    PropertySet inArgs(host(), "inArgs of IsIdentity");
    PropertySet outArgs(host(), "outArgs of IsIdentity");
    assignTimeAndScale(inArgs, request.time, request.scale);
    inArgs.assign(kOfxImageEffectPropFieldToRender, {request.field});
    const OfxRectI& window = request.window;
    inArgs.assign(kOfxImageEffectPropRenderWindow, {window.x1, window.y1, window.x2, window.y2});
    outArgs.define(kOfxPropName, {""});
    outArgs.define(kOfxPropTime, {request.time});
    const OfxStatus status = action(kOfxImageEffectActionIsIdentity, &inArgs, &outArgs);
    if (status == kOfxStatOK) {
        identity = {outArgs.stringOr(kOfxPropName, ""),
                    outArgs.doubleOr(kOfxPropTime, request.time)};
    }
    return status;
}

OfxStatus Instance::purgeCaches()
{
    return action(kOfxActionPurgeCaches);
}

OfxStatus Instance::syncPrivateData()
{
    return action(kOfxActionSyncPrivateData);
}

OfxStatus Instance::beginEdit()
{
    return action(kOfxActionBeginInstanceEdit);
}

OfxStatus Instance::endEdit()
{
    return action(kOfxActionEndInstanceEdit);
}

}  // namespace Tesseret::Host
