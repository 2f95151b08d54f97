#pragma once

/// What the loader reads of a shared library, without loading it.

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tesseret::Inspect {

/// The file is no ELF file, or a damaged one.
class ElfError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct ElfImport {
    std::string name;
    std::string version;  ///< "GLIBC_2.14"; empty when it has none
    bool isWeak = false;
};

struct ElfFile {
    bool isSharedLibrary = false;
    int bits = 0;         ///< 32 or 64
    std::string machine;  ///< "x86-64", "x86", "AArch64", or a number
    std::vector<std::string> needed;
    std::vector<std::string> searchFolders;  ///< RPATH and RUNPATH, as written
    std::vector<std::string> exports;
    std::vector<ElfImport> imports;
    bool hasExecutableStack = false;
};

/// Reads any file; throws ElfError with the reason when it is not an ELF file or not whole.
ElfFile readElf(const std::filesystem::path& file);

}  // namespace Tesseret::Inspect
