#pragma once

/// The overlay's bitmap font, one for the process, and text drawn with it.

#include "platform/OpenGL.h"

namespace Orvane {

/// Builds the font in the context that a device context belongs to. Returns the name of its first
/// display list, or 0 without a device context or free lists.
GLuint createOverlayFont(void* deviceContext);
/// Sets the list base of all later text; 0 for none.
void setOverlayFont(GLuint base);
GLuint overlayFont();
/// Pixels: 11 until a font has been built.
int overlayFontHeight();
/// Builds the font when there is none and a context is current.
void ensureOverlayFont();
void deleteOverlayFont();

/// Draws the first `length` characters at (x, y) in the current colour; nothing without a font.
void drawText(const char* text, int length, float x, float y);
/// Draws a text twice, its shadow first; a null text draws nothing.
void drawShadowedText(const char* text, float x, float y);

}  // namespace Orvane
