#pragma once

#include "platform/OpenGL.h"

namespace Orvane {

/// The characters of the overlay's font: codes 32 to 127, one display list each.
inline constexpr int kFontFirstCode = 32;
inline constexpr int kFontListCount = 96;

/// The device context that OpenGL draws to on this thread, or null without a current context.
void* currentDeviceContext();

struct FontLists {
    GLuint base = 0;       ///< name of the first list; 0 when there is no font
    bool isBuilt = false;  ///< whether the lists hold characters
};

/// Makes a bold bitmap font of 18 pixels' height in the context that the device context belongs to.
FontLists buildFontLists(void* deviceContext);

}  // namespace Orvane
