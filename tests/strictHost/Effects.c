/// Effects, clips and images: "OfxImageEffectSuite".

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

enum { kGuard = 64, kNoise = 0xA5 };

static void* need(void* memory)
{
    if (!memory) abort();
    return memory;
}

Effect* newEffect(PropertySet* set, bool isInstance)
{
    Effect* const effect = need(calloc(1, sizeof *effect));
    effect->set = set;
    effect->isInstance = isInstance;
    effect->parameters.effect = effect;
    addObject(&effect->object, EFFECT);
    addObject(&effect->parameters.object, PARAMETERS);
    return effect;
}

Clip* findClip(const Effect* effect, const char* name)
{
    for (int i = 0; i < effect->clipCount; ++i) {
        if (strcmp(effect->clips[i]->name, name) == 0) return effect->clips[i];
    }
    return NULL;
}

Clip* addClip(Effect* effect, PropertySet* set)
{
    Clip* const clip = need(calloc(1, sizeof *clip));
    clip->name = stringOf(set, kOfxPropName, 0);
    clip->set = set;
    addObject(&clip->object, CLIP);
    effect->clips[effect->clipCount++] = clip;
    return clip;
}

// Pictures

static int channelsOf(const Picture* picture)
{
    return strcmp(picture->components, kOfxImageComponentRGBA) == 0 ? 4 : 1;
}

static size_t channelBytes(const Picture* picture)
{
    if (strcmp(picture->depth, kOfxBitDepthByte) == 0) return 1;
    return strcmp(picture->depth, kOfxBitDepthShort) == 0 ? 2 : 4;
}

Picture* newPicture(OfxRectI bounds, const char* depth, const char* components)
{
    Picture* const picture = need(calloc(1, sizeof *picture));
    picture->bounds = bounds;
    picture->depth = depth;
    picture->components = components;
    picture->pixelBytes = channelBytes(picture) * (size_t)channelsOf(picture);
    const size_t rows = (size_t)(bounds.y2 - bounds.y1);
    const size_t row = (size_t)(bounds.x2 - bounds.x1) * picture->pixelBytes + kGuard;
    picture->rowBytes = (int)row;
    picture->first = kGuard;
    picture->size = rows * row + 2 * kGuard;
    picture->memory = need(malloc(picture->size));
    memset(picture->memory, kNoise, picture->size);
    return picture;
}

unsigned char* pixelAt(const Picture* picture, int x, int y)
{
    const ptrdiff_t row = (ptrdiff_t)picture->rowBytes * (y - picture->bounds.y1);
    const ptrdiff_t column = (ptrdiff_t)picture->pixelBytes * (x - picture->bounds.x1);
    return picture->memory + picture->first + row + column;
}

double channelAt(const Picture* picture, int x, int y, int channel)
{
    const size_t bytes = channelBytes(picture);
    const unsigned char* const place = pixelAt(picture, x, y) + bytes * (size_t)channel;
    uint16_t whole = 0;
    float real = 0.0f;
    if (bytes == 1) return *place / 255.0;
    memcpy(bytes == 2 ? (void*)&whole : (void*)&real, place, bytes);
    return bytes == 2 ? whole / 65535.0 : (double)real;
}

void setChannel(Picture* picture, int x, int y, int channel, double part)
{
    const size_t bytes = channelBytes(picture);
    unsigned char* const place = pixelAt(picture, x, y) + bytes * (size_t)channel;
    const uint16_t whole = (uint16_t)(part * 65535.0);
    const float real = (float)part;
    if (bytes == 1) *place = (unsigned char)(part * 255.0);
    if (bytes == 2) memcpy(place, &whole, sizeof whole);
    if (bytes == 4) memcpy(place, &real, sizeof real);
}

// Images: each fetch makes a property set of its own

typedef struct Image {
    PropertySet* set;
    Picture* picture;
} Image;

static Image images[256];
static int imageCount;

static PropertySet* describeImage(const Picture* picture, const PropertySet* clip)
{
    PropertySet* const set = newSet("image");
    declare(set, kOfxPropType, STRING, 1, READ_ONLY);
    putString(set, kOfxPropType, 0, kOfxTypeImage);
    declare(set, kOfxImagePropData, POINTER, 1, READ_ONLY);
    putPointer(set, kOfxImagePropData, picture->memory + picture->first);
    declare(set, kOfxImagePropRowBytes, INT, 1, READ_ONLY);
    putInt(set, kOfxImagePropRowBytes, 0, picture->rowBytes);
    const OfxRectI* const bounds = &picture->bounds;
    const int edges[] = {bounds->x1, bounds->y1, bounds->x2, bounds->y2};
    const char* const rects[] = {kOfxImagePropBounds, kOfxImagePropRegionOfDefinition};
    for (int i = 0; i < 2; ++i) {
        declare(set, rects[i], INT, 4, READ_ONLY);
        for (int j = 0; j < 4; ++j) putInt(set, rects[i], j, edges[j]);
    }
    declare(set, kOfxImagePropPixelAspectRatio, DOUBLE, 1, READ_ONLY);
    putDouble(set, kOfxImagePropPixelAspectRatio, 0, 1.0);
    declare(set, kOfxImageEffectPropRenderScale, DOUBLE, 2, READ_ONLY);
    for (int i = 0; i < 2; ++i) putDouble(set, kOfxImageEffectPropRenderScale, i, 1.0);
    const char* const texts[] = {kOfxImageEffectPropPixelDepth, kOfxImageEffectPropComponents,
                                 kOfxImageEffectPropPreMultiplication, kOfxImagePropField,
                                 kOfxImagePropUniqueIdentifier};
    for (int i = 0; i < 5; ++i) declare(set, texts[i], STRING, 1, READ_ONLY);
    for (int i = 0; i < 3; ++i) putString(set, texts[i], 0, stringOf(clip, texts[i], 0));
    putString(set, kOfxImagePropField, 0, kOfxImageFieldNone);
    return set;
}

static OfxStatus clipGetImage(OfxImageClipHandle handle, OfxTime time, const OfxRectD* region,
                              OfxPropertySetHandle* image)
{
    (void)region;
    const Clip* const clip = objectOf(CLIP, handle, "clipGetImage");
    if (image) *image = NULL;
    if (!image) problem("clipGetImage: a null pointer for the image");
    if (!clip || !image) return kOfxStatErrBadHandle;
    if (strcmp(action(), kOfxImageEffectActionRender) != 0) {
        problem("clipGetImage: of %s, outside a render", clip->name);
        return kOfxStatFailed;
    }
    if (time != 0.0) problem("clipGetImage: of %s at %g, outside its frames", clip->name, time);
    if (!clip->picture || time != 0.0) return kOfxStatFailed;
    if (imageCount == (int)(sizeof images / sizeof *images)) return kOfxStatErrMemory;
    PropertySet* const set = describeImage(clip->picture, clip->set);
    images[imageCount++] = (Image){set, clip->picture};
    ++clip->picture->fetched;
    *image = handleOf(set);
    return kOfxStatOK;
}

static OfxStatus clipReleaseImage(OfxPropertySetHandle image)
{
    PropertySet* const set = objectOf(SET, image, "clipReleaseImage");
    for (int i = 0; set && i < imageCount; ++i) {
        if (images[i].set != set) continue;
        --images[i].picture->fetched;
        set->object.isLive = false;
        return kOfxStatOK;
    }
    if (set) problem("clipReleaseImage: not an image");
    return kOfxStatErrBadHandle;
}

void checkHeld(const Effect* effect)
{
    for (int i = 0; i < effect->clipCount; ++i) {
        Picture* const picture = effect->clips[i]->picture;
        if (picture && picture->fetched != 0) {
            problem("%d images of %s are not released", picture->fetched, effect->clips[i]->name);
        }
    }
}

// Effects and clips

static OfxStatus getPropertySet(OfxImageEffectHandle handle, OfxPropertySetHandle* set)
{
    Effect* const effect = objectOf(EFFECT, handle, "getPropertySet");
    if (!set) problem("getPropertySet: a null pointer for the set");
    if (!effect || !set) return kOfxStatErrBadHandle;
    *set = handleOf(effect->set);
    return kOfxStatOK;
}

static OfxStatus getParamSet(OfxImageEffectHandle handle, OfxParamSetHandle* parameters)
{
    Effect* const effect = objectOf(EFFECT, handle, "getParamSet");
    if (!parameters) problem("getParamSet: a null pointer for the set");
    if (!effect || !parameters) return kOfxStatErrBadHandle;
    *parameters = (OfxParamSetHandle)(void*)&effect->parameters;
    return kOfxStatOK;
}

static OfxStatus clipDefine(OfxImageEffectHandle handle, const char* name,
                            OfxPropertySetHandle* set)
{
    Effect* const effect = objectOf(EFFECT, handle, "clipDefine");
    if (!effect) return kOfxStatErrBadHandle;
    if (!isDescribingContext() || !name || !*name) {
        problem("clipDefine: %s", name && *name ? "not while describing in a context" : "no name");
        return kOfxStatFailed;
    }
    if (findClip(effect, name)) {
        problem("clipDefine: %s is defined already", name);
        return kOfxStatErrExists;
    }
    const Clip* const clip = addClip(effect, newClipSet(name));
    if (set) *set = handleOf(clip->set);
    return kOfxStatOK;
}

static OfxStatus clipGetHandle(OfxImageEffectHandle handle, const char* name,
                               OfxImageClipHandle* clip, OfxPropertySetHandle* set)
{
    const Effect* const effect = objectOf(EFFECT, handle, "clipGetHandle");
    if (clip) *clip = NULL;
    if (set) *set = NULL;
    if (!effect) return kOfxStatErrBadHandle;
    if (!clip || !name) {
        problem("clipGetHandle: a null %s", name ? "pointer for the clip" : "name");
        return kOfxStatErrValue;
    }
    if (!effect->isInstance) {
        problem("clipGetHandle: of %s, while describing", name);
        return kOfxStatErrBadHandle;
    }
    Clip* const found = findClip(effect, name);
    if (!found) {
        problem("clipGetHandle: no clip %s in this context", name);
        return kOfxStatErrBadHandle;
    }
    *clip = (OfxImageClipHandle)(void*)found;
    if (set) *set = handleOf(found->set);
    return kOfxStatOK;
}

static OfxStatus clipGetPropertySet(OfxImageClipHandle handle, OfxPropertySetHandle* set)
{
    const Clip* const clip = objectOf(CLIP, handle, "clipGetPropertySet");
    if (!set) problem("clipGetPropertySet: a null pointer for the set");
    if (!clip || !set) return kOfxStatErrBadHandle;
    *set = handleOf(clip->set);
    return kOfxStatOK;
}

static OfxStatus clipGetRegionOfDefinition(OfxImageClipHandle handle, OfxTime time,
                                           OfxRectD* region)
{
    (void)time;
    const Clip* const clip = objectOf(CLIP, handle, "clipGetRegionOfDefinition");
    if (!region) problem("clipGetRegionOfDefinition: a null pointer for the region");
    if (!clip || !region) return kOfxStatErrBadHandle;
    if (!clip->picture) return kOfxStatFailed;
    const OfxRectI* const b = &clip->picture->bounds;
    *region = (OfxRectD){b->x1, b->y1, b->x2, b->y2};
    return kOfxStatOK;
}

static int abortAsked(OfxImageEffectHandle handle)
{
    const Effect* const effect = objectOf(EFFECT, handle, "abort");
    if (effect && !effect->isInstance) problem("abort: not an instance");
    return 0;
}

const OfxImageEffectSuiteV1 imageEffectSuite = {
    getPropertySet,     getParamSet,      clipDefine,       clipGetHandle,
    clipGetPropertySet, clipGetImage,     clipReleaseImage, clipGetRegionOfDefinition,
    abortAsked,         imageMemoryAlloc, imageMemoryFree,  imageMemoryLock,
    imageMemoryUnlock};
