#include <windows.h>

#include "platform/OverlayFont.h"
#include "platform/SharedLibrary.h"

namespace Orvane {
namespace {

constexpr const char* kGlLibraries[] = {"opengl32.dll"};

template <typename Function>
Function findGl(const char* name)
{
    return reinterpret_cast<Function>(findFunction(name, kGlLibraries));
}

HFONT createFont()
{
    return CreateFontA(18, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, "helv");
}

}  // namespace

void* currentDeviceContext()
{
    using CurrentDC = HDC(WINAPI*)();
    const auto current = findGl<CurrentDC>("wglGetCurrentDC");
    return current != nullptr ? current() : nullptr;
}

FontLists buildFontLists(void* deviceContext)
{
    using UseFontBitmaps = BOOL(WINAPI*)(HDC, DWORD, DWORD, DWORD);
    const OpenGL* gl = openGL();
    const auto useFontBitmaps = findGl<UseFontBitmaps>("wglUseFontBitmapsA");
    if (deviceContext == nullptr || gl == nullptr || useFontBitmaps == nullptr) return {};
    HDC context = static_cast<HDC>(deviceContext);
    HFONT font = createFont();
    if (font == nullptr) return {};
    HGDIOBJ previous = SelectObject(context, font);
    FontLists lists{.base = gl->glGenLists(kFontListCount)};
    if (lists.base != 0) {
        lists.isBuilt =
            useFontBitmaps(context, kFontFirstCode, kFontListCount, lists.base) != FALSE;
    }
    SelectObject(context, previous);
    DeleteObject(font);
    return lists;
}

}  // namespace Orvane
