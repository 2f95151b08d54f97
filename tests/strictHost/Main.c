/// Drives a plug-in through its life in a strict host: strict_host LIBRARY DEPTH CONTEXT, with
/// DEPTH byte, short or float and CONTEXT Filter or General. Prints a line for everything that was
/// wrong and exits with 1; prints nothing and exits with 0 when all was right; 2 for wrong
/// arguments.

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

static const OfxRectI kBounds = {-3, 2, 45, 38};
static const OfxRectI kTile = {1, 5, 40, 33};    // so that writes beside it show
static const OfxRectI kHole = {16, 14, 28, 25};  // of the matte

static PropertySet* hostSet;
static bool isSettingHost;  // no suite may be used then

static const void* fetchSuite(OfxPropertySetHandle host, const char* name, int version)
{
    const struct {
        const char* name;
        const void* suite;
    } suites[] = {
        {kOfxPropertySuite, &propertySuite},       {kOfxImageEffectSuite, &imageEffectSuite},
        {kOfxParameterSuite, &parameterSuite},     {kOfxMemorySuite, &memorySuite},
        {kOfxMultiThreadSuite, &multiThreadSuite}, {kOfxMessageSuite, &messageSuite},
        {kOfxInteractSuite, &interactSuite}};
    if (host != handleOf(hostSet)) problem("fetchSuite: not the host's handle");
    if (!name) problem("fetchSuite: a null name");
    if (isSettingHost) problem("fetchSuite: %s, inside setHost", name ? name : "null");
    for (size_t i = 0; name && i < sizeof suites / sizeof *suites; ++i) {
        if (strcmp(name, suites[i].name) == 0 && version == 1) return suites[i].suite;
    }
    return NULL;
}

static OfxPlugin* plugin;
static OfxRectI window;  // of the render

/// Sends an action and checks its status: one of `allowed`, which ends with -1.
static bool send(const char* name, const void* handle, PropertySet* inArgs, PropertySet* outArgs,
                 const int* allowed)
{
    setAction(name);
    const OfxStatus status = plugin->mainEntry(name, handle, inArgs ? handleOf(inArgs) : NULL,
                                               outArgs ? handleOf(outArgs) : NULL);
    bool isAllowed = false;
    for (const int* each = allowed; *each >= 0; ++each) isAllowed = isAllowed || *each == status;
    if (!isAllowed) problem("the status %d", status);
    setAction("");
    return status == kOfxStatOK || status == kOfxStatReplyDefault;
}

static const int kOkOrDefault[] = {0, 14, -1};
static const int kOnlyOk[] = {0, -1};

static bool findPlugin(void* library)
{
    int (*count)(void) = NULL;
    OfxPlugin* (*get)(int) = NULL;
    void* const symbols[] = {dlsym(library, "OfxGetNumberOfPlugins"),
                             dlsym(library, "OfxGetPlugin")};
    memcpy(&count, &symbols[0], sizeof symbols[0]);
    memcpy(&get, &symbols[1], sizeof symbols[1]);
    if (!count || !get) {
        problem("the library does not export the two functions");
        return false;
    }
    if (count() < 1) problem("the library has no plug-in");
    plugin = get(0);
    if (get(0) != plugin) problem("OfxGetPlugin returns another record the second time");
    if (get(-1) || get(count())) problem("OfxGetPlugin returns a record for an index out of range");
    if (!plugin) return false;
    if (strcmp(plugin->pluginApi, kOfxImageEffectPluginApi) != 0 || plugin->apiVersion != 1) {
        problem("the plug-in is written for %s %d", plugin->pluginApi, plugin->apiVersion);
    }
    if (!plugin->pluginIdentifier || !*plugin->pluginIdentifier) problem("no identifier");
    for (const char* c = plugin->pluginIdentifier; c && *c; ++c) {
        if (*c >= 'A' && *c <= 'Z') problem("an upper-case letter in the identifier");
    }
    return plugin->setHost && plugin->mainEntry;
}

// Description

static Effect* describe(const char* depth, const char* context)
{
    Effect* const effect = newEffect(newEffectSet(), false);
    if (!send(kOfxActionLoad, NULL, NULL, NULL, kOkOrDefault)) return NULL;
    if (!send(kOfxActionDescribe, effect, NULL, NULL, kOnlyOk)) return NULL;
    setAction("the description");
    checkDescription(effect->set);
    if (!listHolds(effect->set, kOfxImageEffectPropSupportedContexts, context)) {
        problem("no context %s", context);
        return NULL;
    }
    if (!listHolds(effect->set, kOfxImageEffectPropSupportedPixelDepths, depth)) {
        problem("no depth %s", depth);
        return NULL;
    }
    PropertySet* const inArgs = newSet("arguments of the description");
    declare(inArgs, kOfxImageEffectPropContext, STRING, 1, READ_ONLY);
    putString(inArgs, kOfxImageEffectPropContext, 0, context);
    if (!send(kOfxImageEffectActionDescribeInContext, effect, inArgs, NULL, kOnlyOk)) return NULL;
    setAction("the description in the context");
    checkContext(effect, context);
    setAction("");
    return effect;
}

// The instance

static Picture* paintedSource(const char* depth)
{
    Picture* const picture = newPicture(kBounds, depth, kOfxImageComponentRGBA);
    unsigned int noise = 1;
    for (int y = kBounds.y1; y < kBounds.y2; ++y) {
        for (int x = kBounds.x1; x < kBounds.x2; ++x) {
            for (int channel = 0; channel < 3; ++channel) {
                noise = noise * 1664525u + 1013904223u;
                setChannel(picture, x, y, channel, 0.2 + 0.6 * (noise >> 16) / 65535.0);
            }
            setChannel(picture, x, y, 3, 1.0);
        }
    }
    return picture;
}

static Picture* paintedMatte(const char* depth)
{
    Picture* const picture = newPicture(kBounds, depth, kOfxImageComponentAlpha);
    for (int y = kBounds.y1; y < kBounds.y2; ++y) {
        for (int x = kBounds.x1; x < kBounds.x2; ++x) {
            const bool isInside = x >= kHole.x1 && x < kHole.x2 && y >= kHole.y1 && y < kHole.y2;
            setChannel(picture, x, y, 0, isInside ? 1.0 : 0.0);
        }
    }
    return picture;
}

static void connect(const Clip* clip, const char* depth)
{
    const bool isConnected = clip->picture != NULL;
    const char* const components = isConnected ? clip->picture->components : kOfxImageComponentNone;
    if (isConnected && !listHolds(clip->set, kOfxImageEffectPropSupportedComponents, components)) {
        problem("the clip %s does not support %s", clip->name, components);
    }
    putInt(clip->set, kOfxImageClipPropConnected, 0, isConnected);
    const char* const depths[] = {kOfxImageEffectPropPixelDepth,
                                  kOfxImageClipPropUnmappedPixelDepth};
    const char* const kinds[] = {kOfxImageEffectPropComponents,
                                 kOfxImageClipPropUnmappedComponents};
    for (int i = 0; i < 2; ++i) {
        putString(clip->set, depths[i], 0, isConnected ? depth : kOfxBitDepthNone);
        putString(clip->set, kinds[i], 0, components);
    }
    putString(clip->set, kOfxImageEffectPropPreMultiplication, 0, kOfxImageOpaque);
    putString(clip->set, kOfxImageClipPropFieldOrder, 0, kOfxImageFieldNone);
    putDouble(clip->set, kOfxImagePropPixelAspectRatio, 0, 1.0);
    putDouble(clip->set, kOfxImageEffectPropFrameRate, 0, 25.0);
}

static void setNumber(Effect* effect, const char* name, double value)
{
    Parameter* const parameter = findParameter(&effect->parameters, name);
    Type type = INT;
    if (!parameter) return;
    parameterDimension(parameter->type, &type);
    if (type == INT) parameter->values[0].i = (int)value;
    if (type == DOUBLE) parameter->values[0].d = value;
}

static Effect* instanceOf(const Effect* described, const char* depth, const char* context)
{
    const char* const ofEffect[] = {kOfxPropInstanceData,
                                    kOfxImageEffectInstancePropSequentialRender, NULL};
    const char* const ofParameter[] = {kOfxParamPropSecret, kOfxParamPropEnabled, NULL};
    const char* const none[] = {NULL};
    Effect* const effect = newEffect(copySet(described->set, "effect instance", ofEffect), true);
    putString(effect->set, kOfxPropType, 0, kOfxTypeImageEffectInstance);
    putString(effect->set, kOfxImageEffectPropContext, 0, context);
    const double size[] = {kBounds.x2 - kBounds.x1, kBounds.y2 - kBounds.y1};
    const double offset[] = {kBounds.x1, kBounds.y1};
    for (int i = 0; i < 2; ++i) {
        putDouble(effect->set, kOfxImageEffectPropProjectSize, i, size[i]);
        putDouble(effect->set, kOfxImageEffectPropProjectExtent, i, size[i]);
        putDouble(effect->set, kOfxImageEffectPropProjectOffset, i, offset[i]);
    }
    putDouble(effect->set, kOfxImageEffectPropProjectPixelAspectRatio, 0, 1.0);
    for (int i = 0; i < described->clipCount; ++i) {
        addClip(effect, copySet(described->clips[i]->set, "clip", none));
    }
    for (int i = 0; i < described->parameters.count; ++i) {
        const PropertySet* const set = described->parameters.all[i]->set;
        addParameter(&effect->parameters, copySet(set, "parameter", ofParameter));
    }
    findClip(effect, kOfxImageEffectOutputClipName)->picture =
        newPicture(kBounds, depth, kOfxImageComponentRGBA);
    findClip(effect, kOfxImageEffectSimpleSourceClipName)->picture = paintedSource(depth);
    Clip* const matte = findClip(effect, "Matte");
    if (matte) matte->picture = paintedMatte(depth);
    for (int i = 0; i < effect->clipCount; ++i) connect(effect->clips[i], depth);
    // Lengths that suit so small a picture; no harm where there are no such parameters.
    setNumber(effect, "blockSize", 30);
    setNumber(effect, "overlap", 6);
    setNumber(effect, "pathWidth", 2.0);
    setNumber(effect, "edgeBlend", 1.0);
    return effect;
}

// The render

/// Reports bytes outside the window that changed, and pixels inside that were not written.
static void checkOutput(const Picture* output, const unsigned char* before)
{
    unsigned char* const after = output->memory;
    int unwritten = 0;
    int changed = 0;
    for (int y = window.y1; y < window.y2; ++y) {
        for (int x = window.x1; x < window.x2; ++x) {
            unwritten += channelAt(output, x, y, 3) != 1.0;  // the noise is never opaque
            const size_t place = (size_t)(pixelAt(output, x, y) - after);
            memcpy(after + place, before + place, output->pixelBytes);
        }
    }
    for (size_t i = 0; i < output->size; ++i) changed += after[i] != before[i];
    if (unwritten > 0) problem("%d pixels of the window are not written", unwritten);
    if (changed > 0) problem("%d bytes outside the window are written", changed);
}

/// Reports a result without texture, or with some where the matte excludes it.
static void checkPixels(const Effect* effect)
{
    const Picture* const output = findClip(effect, kOfxImageEffectOutputClipName)->picture;
    const Picture* const source = findClip(effect, kOfxImageEffectSimpleSourceClipName)->picture;
    const bool isMasked = findClip(effect, "Matte") != NULL;
    int differ = 0;
    int differAtEdge = 0;
    for (int y = window.y1; y < window.y2; ++y) {
        for (int x = window.x1; x < window.x2; ++x) {
            const bool isOther =
                memcmp(pixelAt(output, x, y), pixelAt(source, x, y), output->pixelBytes) != 0;
            const bool isEdge = x == window.x1 || y == window.y1;
            differ += isOther;
            differAtEdge += isOther && isEdge;
        }
    }
    if (differ == 0) problem("the result is the source");
    if (isMasked && differAtEdge > 0) problem("%d pixels far from the matte differ", differAtEdge);
}

static unsigned char* copyOf(const Picture* picture)
{
    unsigned char* const copy = malloc(picture->size);
    if (!copy) abort();
    return memcpy(copy, picture->memory, picture->size);
}

static void renderOneFrame(Effect* effect)
{
    PropertySet* const sequence = newRenderArguments(&window);
    declare(sequence, kOfxImageEffectPropFrameRange, DOUBLE, 2, READ_ONLY);
    declare(sequence, kOfxImageEffectPropFrameStep, DOUBLE, 1, READ_ONLY);
    declare(sequence, kOfxPropIsInteractive, INT, 1, READ_ONLY);
    send(kOfxImageEffectActionBeginSequenceRender, effect, sequence, NULL, kOkOrDefault);
    unsigned char* before[16];
    for (int i = 0; i < effect->clipCount; ++i) {
        const Picture* const picture = effect->clips[i]->picture;
        before[i] = picture ? copyOf(picture) : NULL;
    }
    send(kOfxImageEffectActionRender, effect, newRenderArguments(&window), NULL, kOnlyOk);
    setAction("the render");
    checkHeld(effect);
    checkPixels(effect);
    for (int i = 0; i < effect->clipCount; ++i) {
        const Clip* const clip = effect->clips[i];
        const Picture* const picture = clip->picture;
        if (!picture) continue;
        if (strcmp(clip->name, kOfxImageEffectOutputClipName) == 0) {
            checkOutput(picture, before[i]);
        } else if (memcmp(picture->memory, before[i], picture->size) != 0) {
            problem("the images of %s were written to", clip->name);
        }
        free(before[i]);
    }
    send(kOfxImageEffectActionEndSequenceRender, effect, sequence, NULL, kOkOrDefault);
}

static void live(const char* depth, const char* context)
{
    Effect* const described = describe(depth, context);
    if (!described) return;
    Effect* const instance = instanceOf(described, depth, context);
    if (!send(kOfxActionCreateInstance, instance, NULL, NULL, kOkOrDefault)) return;
    // Without support for tiles a host may only ask for whole images.
    const bool hasTiles =
        findProperty(instance->set, kOfxImageEffectPropSupportsTiles)->values[0].i != 0;
    window = hasTiles ? kTile : kBounds;
    renderOneFrame(instance);
    send(kOfxActionDestroyInstance, instance, NULL, NULL, kOkOrDefault);
    setAction("the instance's end");
    checkFreed();
    instance->object.isLive = false;
    setAction("");
    send(kOfxActionUnload, NULL, NULL, NULL, kOkOrDefault);
}

int main(int argc, char** argv)
{
    const char* const depths[] = {"byte",  kOfxBitDepthByte, "short", kOfxBitDepthShort,
                                  "float", kOfxBitDepthFloat};
    const char* const contexts[] = {"Filter", kOfxImageEffectContextFilter, "General",
                                    kOfxImageEffectContextGeneral};
    const char* depth = NULL;
    const char* context = NULL;
    for (int i = 0; argc == 4 && i < 6; i += 2) {
        if (strcmp(argv[2], depths[i]) == 0) depth = depths[i + 1];
    }
    for (int i = 0; argc == 4 && i < 4; i += 2) {
        if (strcmp(argv[3], contexts[i]) == 0) context = contexts[i + 1];
    }
    if (!depth || !context) {
        fprintf(stderr, "usage: strict_host LIBRARY byte|short|float Filter|General\n");
        return 2;
    }
    void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        fprintf(stderr, "%s\n", dlerror());
        return 2;
    }
    hostSet = newHostSet();
    OfxHost host = {handleOf(hostSet), fetchSuite};
    if (findPlugin(library)) {
        isSettingHost = true;
        plugin->setHost(&host);
        isSettingHost = false;
        live(depth, context);
    }
    dlclose(library);
    return problemCount() > 0;
}
