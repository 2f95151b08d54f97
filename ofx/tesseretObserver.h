#pragma once

/// "TesseretObserverSuite" version 1: the one optional suite of our own. A host that offers it is
/// told what happens inside a render; the embedded host does, so that the command line can show
/// stage times, blocks and notes. A plug-in that finds no such suite tells nobody and spends
/// nothing.
///
/// Every call comes on the thread that runs the render action, never from a worker. All pointers
/// are valid during the call only. Any member may be null.

#include "ofx/ofxImageEffect.h"

inline constexpr const char* kTesseretObserverSuite = "TesseretObserverSuite";

extern "C" {

/// One block as it was laid: pixels of the image being rendered, y upwards.
struct TesseretBlockV1 {
    int x, y;           ///< corner with the smallest x and y, where the block lies in the output
    int width, height;  ///< as laid, cut at the edge of the fill rectangle
    int srcX, srcY;     ///< the same corner in the texture it was taken from
    int textureIndex;   ///< 0 to 2, counting the textures in use
};

struct TesseretObserverSuiteV1 {
    /// Stages nest; each `stageBegan` has its `stageEnded`, also when the render fails or is
    /// aborted.
    void (*stageBegan)(OfxImageEffectHandle effect, const char* stage);
    void (*stageEnded)(OfxImageEffectHandle effect, const char* stage);
    /// How much of the current stage is done, 0 to 1, never decreasing within one stage.
    void (*progress)(OfxImageEffectHandle effect, double fraction);
    void (*blockLaid)(OfxImageEffectHandle effect, const TesseretBlockV1* block);
    /// A remark for the person in front of the screen: one line, no line end.
    void (*note)(OfxImageEffectHandle effect, const char* text);
};

}  // extern "C"

static_assert(sizeof(TesseretBlockV1) == 28);
static_assert(sizeof(TesseretObserverSuiteV1) == 5 * sizeof(void*));
