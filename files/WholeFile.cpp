#include "files/WholeFile.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <sstream>

#include <fcntl.h>
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

/// Unlike any other writer's: several processes may write into one folder.
fs::path partName(const fs::path& target)
{
    static std::atomic<unsigned> count{0};
    std::ostringstream name;
    name << '.' << target.stem().string() << ".part" << ::getpid() << '-' << count++
         << target.extension().string();
    return folderOf(target) / name.str();
}

/// The file beside its target. Unless it was kept it goes with the object.
class PartFile {
public:
    explicit PartFile(const fs::path& target)
        : target_(target),
          path_(partName(target)),
          descriptor_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666))
    {
        require(descriptor_ >= 0);
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

    /// Some disks say only here that they are full.
    void flush(std::size_t size)
    {
        // A file system that cannot flush says so by EINVAL.
        require(::fsync(descriptor_) == 0 || errno == EINVAL);
        struct stat found = {};
        require(::fstat(descriptor_, &found) == 0);
        // The size is all there is to check: every byte came out of memory, and the system accepted
        // each of them. To decode the file again would read the same memory back from its cache.
        if (static_cast<std::size_t>(found.st_size) != size) fail("it was cut short");
        require(::close(std::exchange(descriptor_, -1)) == 0);
    }

    void keep()
    {
        require(::rename(path_.c_str(), target_.c_str()) == 0);
        kept_ = true;
        // The name is on the disk once the folder is. By now the file is whole under either name,
        // so that a folder which cannot be flushed is no failure.
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
