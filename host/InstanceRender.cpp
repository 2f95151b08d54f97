/// Instances: sequences and rendering.

#include "host/EmbeddedHost.h"
#include "host/HostError.h"
#include "host/Instance.h"
#include "host/SuiteGuard.h"

namespace Tesseret::Host {

namespace {

void assignSequence(PropertySet& inArgs, OfxRangeD frames, double step,
                    const RenderRequest& request)
{
    inArgs.assign(kOfxImageEffectPropFrameRange, {frames.min, frames.max});
    inArgs.assign(kOfxImageEffectPropFrameStep, {step});
    inArgs.assign(kOfxPropIsInteractive, {request.interactive ? 1 : 0});
    inArgs.assign(kOfxImageEffectPropRenderScale, {request.scale.x, request.scale.y});
    inArgs.assign(kOfxImageEffectPropSequentialRenderStatus, {request.sequential ? 1 : 0});
    inArgs.assign(kOfxImageEffectPropInteractiveRenderStatus, {request.interactive ? 1 : 0});
}

std::string formatText(Depth depth, Components components)
{
    return std::string(depthName(depth)) + " " + componentsName(components);
}

/// Sets a clip's output for its lifetime.
class Output {
public:
    Output(Clip* clip, Picture* picture) : clip_(clip)
    {
        if (clip_) clip_->setOutput(picture);
    }
    ~Output()
    {
        if (clip_) clip_->setOutput(nullptr);
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

private:
    Clip* clip_;
};

}  // namespace

OfxStatus Instance::beginSequence(OfxRangeD frames, double step, const RenderRequest& request)
{
    sequence_ = request;
    sequenceFrames_ = frames;
    sequenceStep_ = step;
    PropertySet inArgs(host(), "inArgs of BeginSequenceRender");
    assignSequence(inArgs, frames, step, request);
    return action(kOfxImageEffectActionBeginSequenceRender, &inArgs);
}

OfxStatus Instance::endSequence()
{
    const RenderRequest request = sequence_.value_or(RenderRequest{});
    sequence_.reset();
    PropertySet inArgs(host(), "inArgs of EndSequenceRender");
    assignSequence(inArgs, sequenceFrames_, sequenceStep_, request);
    return action(kOfxImageEffectActionEndSequenceRender, &inArgs);
}

void Instance::requireReady(const Picture& output) const
{
    const ClipFormat wanted = outputFormat();
    if (output.depth() != wanted.depth || output.components() != wanted.components) {
        throw HostError("the output picture is " + formatText(output.depth(), output.components()) +
                        ", the effect renders " + formatText(wanted.depth, wanted.components));
    }
    for (const auto& each : clips()) {
        if (!each->isOutput() && !each->isOptional() && !each->isConnected()) {
            throw HostError("the clip " + each->name() + " has no source");
        }
    }
}

void Instance::askRegionsOfInterest(const RenderRequest& request)
{
    std::map<std::string, OfxRectD> regions;
    const OfxRectD window =
        toCanonical(request.window, request.scale, outputFormat().pixelAspectRatio);
    regionsOfInterest(request.time, request.scale, window, regions);
    for (const auto& each : clips()) {
        const auto region = regions.find(each->name());
        each->setRegionOfInterest(region == regions.end() ? std::nullopt
                                                          : std::optional(region->second));
    }
}

OfxStatus Instance::render(const RenderRequest& request, Picture& output)
{
    renderScale_ = request.scale;
    if (preferencesStale_) {
        adoptFormats();
        ClipPreferences preferences;
        if (clipPreferences(preferences) == kOfxStatOK) adoptPreferences(preferences);
        preferencesStale_ = false;
    }
    requireReady(output);
    if (sequence_) return renderFrame(request, output);
    OfxStatus status = kOfxStatFailed;
    try {
        beginSequence({request.time, request.time}, 1.0, request);
        status = renderFrame(request, output);
    } catch (...) {
        quietly([this] { endSequence(); });
        throw;
    }
    endSequence();
    return status;
}

OfxStatus Instance::renderFrame(const RenderRequest& request, Picture& output)
{
    Identity identity;
    if (isIdentity(request, identity) == kOfxStatOK && clip(identity.clip)) {
        return renderIdentity(request, identity, output);
    }
    askRegionsOfInterest(request);
    return renderOnly(request, &output);
}

OfxStatus Instance::renderIdentity(const RenderRequest& request, const Identity& identity,
                                   Picture& output)
{
    const std::shared_ptr<ClipSource>& source = clip(identity.clip)->source();
    const auto picture = source ? source->picture(identity.time, request.scale) : nullptr;
    if (!picture) return kOfxStatFailed;
    output.paste(picture->converted(output.depth(), output.components())
                     .copied(request.window, RowLayout{}));
    return kOfxStatOK;
}

OfxStatus Instance::renderOnly(const RenderRequest& request, Picture* output)
{
    const RowLayout layout =
        host().behaviour().outputLayout(output ? output->layout() : RowLayout{});
    Picture reshaped;
    const bool other = output && layout != output->layout();
    if (other) reshaped = output->copied(output->bounds(), layout);

    PropertySet inArgs(host(), "inArgs of Render");
    inArgs.assign(kOfxPropTime, {request.time});
    inArgs.assign(kOfxImageEffectPropFieldToRender, {request.field});
    const OfxRectI& window = request.window;
    inArgs.assign(kOfxImageEffectPropRenderWindow, {window.x1, window.y1, window.x2, window.y2});
    inArgs.assign(kOfxImageEffectPropRenderScale, {request.scale.x, request.scale.y});
    inArgs.assign(kOfxImageEffectPropSequentialRenderStatus, {request.sequential ? 1 : 0});
    inArgs.assign(kOfxImageEffectPropInteractiveRenderStatus, {request.interactive ? 1 : 0});
    renderScale_ = request.scale;
    const Output shown(clip(kOfxImageEffectOutputClipName), other ? &reshaped : output);
    const OfxStatus status = action(kOfxImageEffectActionRender, &inArgs);
    if (other) output->paste(reshaped);
    return status;
}

}  // namespace Tesseret::Host
