#pragma once

/// "TesseretObserverSuite" version 1: the one optional suite of our own. A host that offers it is
/// notified of what happens inside a render; the embedded host does, so that the command line can
/// show stage times, blocks, notes and the maps that stages make. Without the suite the plug-in
/// makes no calls and no maps.
///
/// Every call comes on the thread that runs the render action, never from a worker. All pointers
/// are valid during the call only. Any member may be null.

#include <cstddef>

#include "ofx/ofxImageEffect.h"

inline constexpr const char* kTesseretObserverSuite = "TesseretObserverSuite";

extern "C" {

/// One placed block: pixels of the image being rendered, y upwards.
struct TesseretBlockV1 {
    int x, y;           ///< lower left corner of the block in the output
    int width, height;  ///< as placed, clipped at the edge of the fill rectangle
    int srcX, srcY;     ///< the same corner in the texture it was taken from
    int textureIndex;   ///< 0 to 2, counting the textures in use
};

/// A map made by a stage, one number for each pixel; y upwards. By name, in this order:
/// "fillMask"       the region to fill as it was prepared, 0 or `full`
/// "pathBand"       positive where the boundary may run, up to `full`
/// "blocks"         the number of the block that a pixel came from, counted from 1 in the order of
///                  `blockLaid`; 0 for none. Blocks that are placed again keep their numbers
/// "compositeMask"  the texture's share of the result, 0 to `full`
/// "luminanceGain"  the factor for the texture's brightness; `full` means 1
struct TesseretMapV1 {
    const char* name;
    const float* pixels;      ///< the one at (bounds.x1, bounds.y1)
    std::ptrdiff_t rowBytes;  ///< to the row above; may be negative
    OfxRectI bounds;          ///< of the map; there are no pixels outside
    OfxRectI fillRect;        ///< the area covered with texture; the same for all maps of a render
    float full;
};

/// The closed path along which texture meets source, pixel by pixel and back to the first one.
struct TesseretPathV1 {
    const OfxPointI* points;
    int count;
    OfxRectI fillRect;  ///< as in the maps
};

struct TesseretObserverSuiteV1 {
    /// Stages nest; each `stageBegan` has its `stageEnded`, also when the render fails or is
    /// aborted.
    void (*stageBegan)(OfxImageEffectHandle effect, const char* stage);
    void (*stageEnded)(OfxImageEffectHandle effect, const char* stage);
    /// How much of the current stage is done, 0 to 1, never decreasing within one stage.
    void (*progress)(OfxImageEffectHandle effect, double fraction);
    void (*blockLaid)(OfxImageEffectHandle effect, const TesseretBlockV1* block);
    /// A remark for the user: one line, no line end.
    void (*note)(OfxImageEffectHandle effect, const char* text);
    /// Returns non-zero when `mapMade` and `pathFound` are to be called in this render; a null
    /// member means no. Both cost memory and time.
    int (*wantsMaps)(OfxImageEffectHandle effect);
    void (*mapMade)(OfxImageEffectHandle effect, const TesseretMapV1* map);
    void (*pathFound)(OfxImageEffectHandle effect, const TesseretPathV1* path);
};

}  // extern "C"

static_assert(sizeof(TesseretBlockV1) == 28);
static_assert(offsetof(TesseretMapV1, bounds) == 3 * sizeof(void*));
static_assert(offsetof(TesseretMapV1, full) == 3 * sizeof(void*) + 32);
static_assert(offsetof(TesseretPathV1, fillRect) == sizeof(void*) + 4);
static_assert(sizeof(TesseretObserverSuiteV1) == 8 * sizeof(void*));
