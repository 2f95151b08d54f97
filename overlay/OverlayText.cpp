#include "overlay/OverlayText.h"

#include <atomic>
#include <cstring>

#include "overlay/Draw.h"
#include "platform/OverlayFont.h"

namespace Orvane {
namespace {

constexpr int kBuiltHeight = 18;

// Atomic: hosts unload from several threads at once.
std::atomic<GLuint> fontBase = 0;
std::atomic<int> fontHeight = 11;

}  // namespace

GLuint createOverlayFont(void* deviceContext)
{
    const FontLists lists = buildFontLists(deviceContext);
    if (lists.isBuilt) fontHeight = kBuiltHeight;
    return lists.base;
}

void setOverlayFont(GLuint base)
{
    fontBase = base;
}

GLuint overlayFont()
{
    return fontBase;
}

int overlayFontHeight()
{
    return fontHeight;
}

void ensureOverlayFont()
{
    if (fontBase == 0) setOverlayFont(createOverlayFont(currentDeviceContext()));
}

void deleteOverlayFont()
{
    const GLuint base = fontBase.exchange(0);
    // Where a font exists, the entry points were found when it was built.
    if (base != 0) openGL()->glDeleteLists(base, kFontListCount);
}

void drawText(const char* text, int length, float x, float y)
{
    if (fontBase == 0 || text == nullptr || length <= 0) return;
    const OpenGL& gl = *openGL();
    gl.glRasterPos2f(x, y);
    gl.glPushAttrib(kGlListBit);
    gl.glListBase(fontBase - static_cast<GLuint>(kFontFirstCode));
    gl.glCallLists(length, kGlUnsignedByte, text);
    gl.glPopAttrib();
}

void drawShadowedText(const char* text, float x, float y)
{
    if (text == nullptr) return;
    const auto length = static_cast<int>(std::strlen(text));
    setColour(kTextShadowColour);
    drawText(text, length, x, y);
    setColour(kTextColour);
    drawText(text, length, x + 1.0f, y + 1.0f);
}

}  // namespace Orvane
