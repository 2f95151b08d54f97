#pragma once

#include <filesystem>
#include <string>

namespace Orvane {

/// A shared library that a program loads from a file.
struct LibraryFile {
    void* handle = nullptr;
    std::string reason;  ///< why it could not be loaded, without the file's name; one line
};

/// Loads a library with all symbols resolved at once and none shared with others. The path is
/// absolute. Every success is to be closed once.
LibraryFile openLibrary(const std::filesystem::path& file);
void closeLibrary(void* handle);

/// An exported function or variable; null when there is none.
void* findExport(void* handle, const char* name);

/// The name of this system's folder inside an OFX bundle, for example "Linux-x86-64".
const char* bundleFolder();

}  // namespace Orvane
