#include "platform/OpenGL.h"

#include <array>

#include "platform/SharedLibrary.h"

namespace Orvane {
namespace {

#if defined(_WIN32)
constexpr std::array kGlLibraries = {"opengl32.dll"};
constexpr std::array kGluLibraries = {"glu32.dll"};
#elif defined(__APPLE__)
constexpr std::array kGlLibraries = {"/System/Library/Frameworks/OpenGL.framework/OpenGL"};
constexpr std::array kGluLibraries = kGlLibraries;
#else
constexpr std::array kGlLibraries = {"libGL.so.1", "libOpenGL.so.0"};
constexpr std::array kGluLibraries = {"libGLU.so.1"};
#endif

template <typename Function>
bool look(const char* name, Function& function, std::span<const char* const> libraries)
{
    function = reinterpret_cast<Function>(findFunction(name, libraries));
    return function != nullptr;
}

bool lookUp(OpenGL& gl)
{
    const auto find = [](const char* name, auto& function) {
        return look(name, function, kGlLibraries);
    };
    return find("glBegin", gl.glBegin) && find("glBitmap", gl.glBitmap) &&
           find("glBlendFunc", gl.glBlendFunc) && find("glCallLists", gl.glCallLists) &&
           find("glColor3f", gl.glColor3f) && find("glDeleteLists", gl.glDeleteLists) &&
           find("glDisable", gl.glDisable) && find("glEnable", gl.glEnable) &&
           find("glEnd", gl.glEnd) && find("glEndList", gl.glEndList) &&
           find("glGenLists", gl.glGenLists) && find("glGetIntegerv", gl.glGetIntegerv) &&
           find("glGetString", gl.glGetString) && find("glIsEnabled", gl.glIsEnabled) &&
           find("glLineStipple", gl.glLineStipple) && find("glListBase", gl.glListBase) &&
           find("glMatrixMode", gl.glMatrixMode) && find("glMultMatrixf", gl.glMultMatrixf) &&
           find("glNewList", gl.glNewList) && find("glPixelStorei", gl.glPixelStorei) &&
           find("glPopAttrib", gl.glPopAttrib) && find("glPopClientAttrib", gl.glPopClientAttrib) &&
           find("glPopMatrix", gl.glPopMatrix) && find("glPushAttrib", gl.glPushAttrib) &&
           find("glPushClientAttrib", gl.glPushClientAttrib) &&
           find("glPushMatrix", gl.glPushMatrix) && find("glRasterPos2f", gl.glRasterPos2f) &&
           find("glTranslatef", gl.glTranslatef) && find("glVertex2f", gl.glVertex2f);
}

Glu lookUpGlu()
{
    Glu found{};
    look("gluDisk", found.gluDisk, kGluLibraries);
    look("gluNewQuadric", found.gluNewQuadric, kGluLibraries);
    look("gluQuadricDrawStyle", found.gluQuadricDrawStyle, kGluLibraries);
    look("gluQuadricNormals", found.gluQuadricNormals, kGluLibraries);
    return found;
}

}  // namespace

const OpenGL* openGL()
{
    static OpenGL gl{};
    static bool isFound = false;
    if (!isFound) isFound = lookUp(gl);
    return isFound ? &gl : nullptr;
}

const Glu& glu()
{
    static const Glu found = lookUpGlu();
    return found;
}

bool hasCurrentContext()
{
    const OpenGL* gl = openGL();
    return gl != nullptr && gl->glGetString(kGlVersion) != nullptr;
}

}  // namespace Orvane
