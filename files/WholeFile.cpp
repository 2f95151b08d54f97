#include "files/WholeFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/FileError.h"
#include "files/PartNames.h"

namespace Tesseret::Files {

namespace fs = std::filesystem;

namespace {

/// A temporary file beside its target, removed with the object unless it was kept.
class PartFile {
public:
    explicit PartFile(const fs::path& target)
        : target_(target),
          path_(partNameOf(target)),
          descriptor_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666))
    {
        require(descriptor_ >= 0);
        ::flock(descriptor_, LOCK_EX | LOCK_NB);  // some file systems have no locks
    }
    ~PartFile()
    {
        if (descriptor_ >= 0) ::close(descriptor_);
        std::error_code ignored;
        if (!kept_) fs::remove(path_, ignored);
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    void write(std::span<const std::byte> bytes) const
    {
        while (!bytes.empty()) {
            const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            require(count >= 0);
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
    }

    /// Some file systems report only here that the disk is full.
    void flush(std::size_t size)
    {
        // A file system that cannot flush reports EINVAL.
        require(::fsync(descriptor_) == 0 || errno == EINVAL);
        struct stat found = {};
        require(::fstat(descriptor_, &found) == 0);
        // Checking the size is enough: the system has accepted every byte, and decoding the file
        // again would only read the same bytes from its cache.
        if (static_cast<std::size_t>(found.st_size) != size) fail("it was truncated");
        require(::close(std::exchange(descriptor_, -1)) == 0);
    }

    void keep()
    {
        require(::rename(path_.c_str(), target_.c_str()) == 0);
        kept_ = true;
        // Flushing the folder puts the name on the disk. The file is complete under either name by
        // now, so a folder that cannot be flushed is not a failure.
        const int folder = ::open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0) return;
        ::fsync(folder);
        ::close(folder);
    }

private:
    void require(bool succeeded) const
    {
        if (!succeeded) fail(std::strerror(errno));
    }
    [[noreturn]] void fail(const std::string& reason) const
    {
        throw FileError(target_, "cannot be written: " + reason);
    }

    fs::path target_, path_;
    int descriptor_;
    bool kept_ = false;
};

}  // namespace

void checkPlace(const fs::path& file)
{
    std::error_code ignored;
    const fs::path folder = folderOf(file);
    if (!fs::is_directory(folder, ignored)) {
        throw FileError(file, "the folder " + folder.string() + " does not exist");
    }
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        throw FileError(file, "the folder " + folder.string() + " is not writable");
    }
    if (fs::is_directory(file, ignored)) throw FileError(file, "is a folder");
}

void writeWhole(const fs::path& file, std::span<const std::byte> bytes)
{
    checkPlace(file);
    removeLeftovers(file);
    PartFile part(file);
    part.write(bytes);
    part.flush(bytes.size());
    part.keep();
}

std::optional<FileIdentity> fileIdentity(const fs::path& file)
{
    struct stat found = {};
    if (::stat(file.c_str(), &found) != 0) return std::nullopt;
    return FileIdentity(found.st_dev, found.st_ino);
}

}  // namespace Tesseret::Files
