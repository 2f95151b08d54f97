#include "files/PartFile.h"

#include <atomic>
#include <sstream>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "files/FileError.h"

namespace Tesseret::Files {

namespace fs = std::filesystem;

namespace {

fs::path folderOf(const fs::path& file)
{
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// Unlike any other writer's: several processes may render into one folder.
fs::path partName(const fs::path& target)
{
    static std::atomic<unsigned> count{0};
    std::ostringstream name;
    name << '.' << target.stem().string() << ".part" << ::getpid() << '-' << count++
         << target.extension().string();
    return folderOf(target) / name.str();
}

}  // namespace

PartFile::PartFile(fs::path target) : target_(std::move(target)), path_(partName(target_))
{
    std::error_code ignored;
    const fs::path folder = folderOf(target_);
    if (!fs::is_directory(folder, ignored)) {
        throw FileError(target_, "the folder " + folder.string() + " does not exist");
    }
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        throw FileError(target_, "the folder " + folder.string() + " is not writable");
    }
    if (fs::is_directory(target_, ignored)) throw FileError(target_, "is a folder");
}

PartFile::~PartFile()
{
    std::error_code ignored;
    if (!kept_) fs::remove(path_, ignored);
}

void PartFile::keep()
{
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error) throw FileError(target_, "cannot be written: " + error.message());
    kept_ = true;
}

std::optional<FileIdentity> fileIdentity(const fs::path& file)
{
    struct stat found = {};
    if (::stat(file.c_str(), &found) != 0) return std::nullopt;
    return FileIdentity(found.st_dev, found.st_ino);
}

}  // namespace Tesseret::Files
