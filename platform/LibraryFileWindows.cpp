#include <array>

#include <windows.h>

#include "platform/LibraryFile.h"

namespace Orvane {
namespace {

/// The system's text for an error, as one line.
std::string messageOf(DWORD error)
{
    std::array<char, 512> text{};
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        nullptr, error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string message(text.data(), length);
    while (!message.empty() && (message.back() == ' ' || message.back() == '.')) message.pop_back();
    return message + " (Windows error " + std::to_string(error) + ")";
}

}  // namespace

LibraryFile openLibrary(const std::filesystem::path& file)
{
    // The loader takes no forward slashes, and would show some errors in a window.
    std::filesystem::path native = file;
    native.make_preferred();
    DWORD previous = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous);
    HMODULE library = LoadLibraryExW(native.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    const DWORD error = GetLastError();
    SetThreadErrorMode(previous, nullptr);
    if (library == nullptr) return {nullptr, messageOf(error)};
    return {library, {}};
}

void closeLibrary(void* handle)
{
    FreeLibrary(static_cast<HMODULE>(handle));
}

void* findExport(void* handle, const char* name)
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}

const char* bundleFolder()
{
    return sizeof(void*) == 8 ? "Win64" : "Win32";
}

}  // namespace Orvane
