#include "overlay/Draw.h"

#include "platform/OpenGL.h"

namespace Orvane {
namespace {

constexpr GLushort kDashes = 0x0F0F;
constexpr GLushort kGaps = 0xF0F0;
constexpr int kSlices = 180;

int integerState(const OpenGL& gl, GLenum name)
{
    GLint value = 0;
    gl.glGetIntegerv(name, &value);
    return value;
}

void enable(const OpenGL& gl, GLenum capability, bool on)
{
    if (on) {
        gl.glEnable(capability);
    } else {
        gl.glDisable(capability);
    }
}

/// Made at the first use and kept until the process ends; null when unavailable.
GLUquadric* sharedQuadric()
{
    static GLUquadric* quadric = nullptr;
    if (quadric == nullptr && glu().isComplete()) {
        quadric = glu().gluNewQuadric();
        if (quadric != nullptr) glu().gluQuadricNormals(quadric, kGluNone);
    }
    return quadric;
}

void drawRing(float x, float y, float innerRadius, float outerRadius, GLenum style)
{
    if (!(outerRadius > 0.0f) || openGL() == nullptr) return;
    GLUquadric* quadric = sharedQuadric();
    if (quadric == nullptr) return;
    glu().gluQuadricDrawStyle(quadric, style);
    const Translated centre(x, y);
    glu().gluDisk(quadric, innerRadius, outerRadius, kSlices, 1);
}

}  // namespace

void setColour(const OverlayColour& colour)
{
    if (const OpenGL* gl = openGL()) gl->glColor3f(colour.r, colour.g, colour.b);
}

void drawLine(float x1, float y1, float x2, float y2)
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    gl->glBegin(kGlLineStrip);
    gl->glVertex2f(x1, y1);
    gl->glVertex2f(x2, y2);
    gl->glEnd();
}

void drawRectOutline(float x1, float y1, float x2, float y2)
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    gl->glBegin(kGlLineLoop);
    gl->glVertex2f(x1, y1);
    gl->glVertex2f(x2, y1);
    gl->glVertex2f(x2, y2);
    gl->glVertex2f(x1, y2);
    gl->glEnd();
}

void drawDashedLine(float x1, float y1, float x2, float y2, const OverlayColour& a,
                    const OverlayColour& b)
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    const int pattern = integerState(*gl, kGlLineStipplePattern);
    const int repeat = integerState(*gl, kGlLineStippleRepeat);
    const bool stipples = gl->glIsEnabled(kGlLineStipple) != 0;
    gl->glEnable(kGlLineStipple);
    gl->glLineStipple(1, kDashes);
    setColour(a);
    drawLine(x1, y1, x2, y2);
    gl->glLineStipple(1, kGaps);
    setColour(b);
    drawLine(x1, y1, x2, y2);
    gl->glLineStipple(repeat, static_cast<GLushort>(pattern));
    if (!stipples) gl->glDisable(kGlLineStipple);
}

void drawCircle(float x, float y, float radius)
{
    drawRing(x, y, radius, radius, kGluLine);
}

void drawDisk(float x, float y, float radius)
{
    drawRing(x, y, 0.0f, radius, kGluFill);
}

void drawDiskOutlined(float x, float y, float radius, const OverlayColour& fill,
                      const OverlayColour& outline)
{
    if (!(radius > 0.0f)) return;
    setColour(fill);
    drawDisk(x, y, radius);
    setColour(outline);
    drawCircle(x, y, radius);
}

BlendedLines::BlendedLines()
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    blends_ = gl->glIsEnabled(kGlBlend) != 0;
    sourceFactor_ = integerState(*gl, kGlBlendSrc);
    destinationFactor_ = integerState(*gl, kGlBlendDst);
    gl->glEnable(kGlBlend);
    gl->glBlendFunc(kGlSrcAlpha, kGlOneMinusSrcAlpha);
    smooths_ = gl->glIsEnabled(kGlLineSmooth) != 0;
    if (!smooths_) gl->glEnable(kGlLineSmooth);
}

BlendedLines::~BlendedLines()
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    gl->glBlendFunc(static_cast<GLenum>(sourceFactor_), static_cast<GLenum>(destinationFactor_));
    enable(*gl, kGlBlend, blends_);
    enable(*gl, kGlLineSmooth, smooths_);
}

DrawingState::DrawingState()
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    matrixMode_ = integerState(*gl, kGlMatrixMode);
    gl->glPushAttrib(kGlCurrentBit);
    gl->glMatrixMode(kGlModelview);
}

DrawingState::~DrawingState()
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    gl->glMatrixMode(static_cast<GLenum>(matrixMode_));
    gl->glPopAttrib();
}

Translated::Translated(float x, float y)
{
    const OpenGL* gl = openGL();
    if (gl == nullptr) return;
    gl->glPushMatrix();
    gl->glTranslatef(x, y, 0.0f);
}

Translated::~Translated()
{
    if (const OpenGL* gl = openGL()) gl->glPopMatrix();
}

}  // namespace Orvane
