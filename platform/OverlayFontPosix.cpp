#include "platform/OverlayFont.h"
#include "platform/OverlayFontData.h"

namespace Orvane {
namespace {

/// Sets OpenGL to read tightly packed bitmaps, whatever pixel storage the host has set.
void readTightRows(const OpenGL& gl)
{
    gl.glPixelStorei(kGlUnpackSwapBytes, 0);
    gl.glPixelStorei(kGlUnpackLsbFirst, 0);
    gl.glPixelStorei(kGlUnpackRowLength, 0);
    gl.glPixelStorei(kGlUnpackSkipRows, 0);
    gl.glPixelStorei(kGlUnpackSkipPixels, 0);
    gl.glPixelStorei(kGlUnpackAlignment, 1);
}

void compileGlyph(const OpenGL& gl, GLuint list, const FontGlyph& glyph)
{
    gl.glNewList(list, kGlCompile);
    gl.glBitmap(glyph.width, glyph.height, static_cast<GLfloat>(-glyph.left),
                static_cast<GLfloat>(-glyph.bottom), static_cast<GLfloat>(glyph.advance), 0.0f,
                kFontBits + glyph.offset);
    gl.glEndList();
}

}  // namespace

void* currentDeviceContext()
{
    // The font is not a system object here: it only matters whether a context exists.
    static char token = 0;
    return hasCurrentContext() ? &token : nullptr;
}

FontLists buildFontLists(void* deviceContext)
{
    const OpenGL* gl = openGL();
    if (deviceContext == nullptr || gl == nullptr) return {};
    const GLuint base = gl->glGenLists(kFontListCount);
    if (base == 0) return {};
    gl->glPushClientAttrib(kGlClientPixelStoreBit);
    readTightRows(*gl);
    GLuint list = base;
    for (const FontGlyph& glyph : kFontGlyphs) compileGlyph(*gl, list++, glyph);
    gl->glPopClientAttrib();
    return {.base = base, .isBuilt = true};
}

}  // namespace Orvane
