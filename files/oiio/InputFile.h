#pragma once

#include "files/OpenPicture.h"
#include "files/oiio/SpecRecord.h"

namespace Tesseret::Files {

/// A file that OpenImageIO reads.
class InputFile final : public OpenPicture {
public:
    /// The bytes of `file`, which messages name, are in `stored`. Throws `FileError`.
    InputFile(std::filesystem::path file, const std::filesystem::path& stored,
              const FileFormat& format);

    bool readChannels(int first, int last, Picture& picture, int target) override;
    bool readExtra() override;
    bool finish(bool succeeded, std::vector<std::string>& warnings) override;
    std::shared_ptr<const FileRecord> takeRecord() override;

private:
    void describe();

    std::filesystem::path file_;
    const FileFormat& format_;
    std::unique_ptr<OIIO::ImageInput> input_;
    std::shared_ptr<SpecRecord> record_;
};

}  // namespace Tesseret::Files
