#pragma once

/// The part of OpenGL 1.x and GLU that overlays are drawn with. The entry points are looked up when
/// an overlay first needs them, so that the plug-in loads where there is no OpenGL.

#if defined(_WIN32)
#define TESSERET_GL_CALL __stdcall
#else
#define TESSERET_GL_CALL
#endif

namespace Orvane {

using GLenum = unsigned int;
using GLint = int;
using GLuint = unsigned int;
using GLsizei = int;
using GLfloat = float;
using GLdouble = double;
using GLboolean = unsigned char;
using GLushort = unsigned short;
using GLbitfield = unsigned int;
struct GLUquadric;

// The constants of OpenGL and GLU in our spelling.
inline constexpr GLenum kGlLineLoop = 0x0002;
inline constexpr GLenum kGlLineStrip = 0x0003;
inline constexpr GLenum kGlSrcAlpha = 0x0302;
inline constexpr GLenum kGlOneMinusSrcAlpha = 0x0303;
inline constexpr GLenum kGlLineSmooth = 0x0B20;
inline constexpr GLenum kGlLineStipple = 0x0B24;
inline constexpr GLenum kGlLineStipplePattern = 0x0B25;
inline constexpr GLenum kGlLineStippleRepeat = 0x0B26;
inline constexpr GLenum kGlMatrixMode = 0x0BA0;
inline constexpr GLenum kGlBlendDst = 0x0BE0;
inline constexpr GLenum kGlBlendSrc = 0x0BE1;
inline constexpr GLenum kGlBlend = 0x0BE2;
inline constexpr GLenum kGlUnpackSwapBytes = 0x0CF0;
inline constexpr GLenum kGlUnpackLsbFirst = 0x0CF1;
inline constexpr GLenum kGlUnpackRowLength = 0x0CF2;
inline constexpr GLenum kGlUnpackSkipRows = 0x0CF3;
inline constexpr GLenum kGlUnpackSkipPixels = 0x0CF4;
inline constexpr GLenum kGlUnpackAlignment = 0x0CF5;
inline constexpr GLenum kGlCompile = 0x1300;
inline constexpr GLenum kGlUnsignedByte = 0x1401;
inline constexpr GLenum kGlModelview = 0x1700;
inline constexpr GLenum kGlVersion = 0x1F02;
inline constexpr GLbitfield kGlCurrentBit = 0x00000001;
inline constexpr GLbitfield kGlListBit = 0x00020000;
inline constexpr GLbitfield kGlClientPixelStoreBit = 0x00000001;
inline constexpr GLenum kGluLine = 100011;
inline constexpr GLenum kGluFill = 100012;
inline constexpr GLenum kGluNone = 100002;

/// One member for each entry point, named after it.
struct OpenGL {
    void(TESSERET_GL_CALL* glBegin)(GLenum);
    void(TESSERET_GL_CALL* glBitmap)(GLsizei, GLsizei, GLfloat, GLfloat, GLfloat, GLfloat,
                                     const unsigned char*);
    void(TESSERET_GL_CALL* glBlendFunc)(GLenum, GLenum);
    void(TESSERET_GL_CALL* glCallLists)(GLsizei, GLenum, const void*);
    void(TESSERET_GL_CALL* glColor3f)(GLfloat, GLfloat, GLfloat);
    void(TESSERET_GL_CALL* glDeleteLists)(GLuint, GLsizei);
    void(TESSERET_GL_CALL* glDisable)(GLenum);
    void(TESSERET_GL_CALL* glEnable)(GLenum);
    void(TESSERET_GL_CALL* glEnd)();
    void(TESSERET_GL_CALL* glEndList)();
    GLuint(TESSERET_GL_CALL* glGenLists)(GLsizei);
    void(TESSERET_GL_CALL* glGetIntegerv)(GLenum, GLint*);
    const unsigned char*(TESSERET_GL_CALL* glGetString)(GLenum);
    GLboolean(TESSERET_GL_CALL* glIsEnabled)(GLenum);
    void(TESSERET_GL_CALL* glLineStipple)(GLint, GLushort);
    void(TESSERET_GL_CALL* glListBase)(GLuint);
    void(TESSERET_GL_CALL* glMatrixMode)(GLenum);
    void(TESSERET_GL_CALL* glMultMatrixf)(const GLfloat*);
    void(TESSERET_GL_CALL* glNewList)(GLuint, GLenum);
    void(TESSERET_GL_CALL* glPixelStorei)(GLenum, GLint);
    void(TESSERET_GL_CALL* glPopAttrib)();
    void(TESSERET_GL_CALL* glPopClientAttrib)();
    void(TESSERET_GL_CALL* glPopMatrix)();
    void(TESSERET_GL_CALL* glPushAttrib)(GLbitfield);
    void(TESSERET_GL_CALL* glPushClientAttrib)(GLbitfield);
    void(TESSERET_GL_CALL* glPushMatrix)();
    void(TESSERET_GL_CALL* glRasterPos2f)(GLfloat, GLfloat);
    void(TESSERET_GL_CALL* glTranslatef)(GLfloat, GLfloat, GLfloat);
    void(TESSERET_GL_CALL* glVertex2f)(GLfloat, GLfloat);
};

/// Null members where the system has no GLU.
struct Glu {
    void(TESSERET_GL_CALL* gluDisk)(GLUquadric*, GLdouble, GLdouble, GLint, GLint);
    GLUquadric*(TESSERET_GL_CALL* gluNewQuadric)();
    void(TESSERET_GL_CALL* gluQuadricDrawStyle)(GLUquadric*, GLenum);
    void(TESSERET_GL_CALL* gluQuadricNormals)(GLUquadric*, GLenum);
    bool isComplete() const
    {
        return gluDisk != nullptr && gluNewQuadric != nullptr && gluQuadricDrawStyle != nullptr &&
               gluQuadricNormals != nullptr;
    }
};

/// The entry points, or null when neither the process nor the system has them. Looked up until
/// found.
const OpenGL* openGL();
const Glu& glu();

/// Whether calls reach a context on this thread.
bool hasCurrentContext();

}  // namespace Orvane
