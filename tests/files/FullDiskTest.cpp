#include <fstream>
#include <set>
#include <sstream>

#include <OpenImageIO/imageio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/FileError.h"
#include "files/PictureReader.h"
#include "files/PictureWriter.h"
#include "files/WholeFile.h"
#include "tests/fixtures/FileSizeLimit.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Tesseret::Files {
namespace {

namespace fs = std::filesystem;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

std::string contents(const fs::path& file)
{
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

/// A picture of noise whose file has all the data that a format keeps besides the pixels.
PictureFile noisy(const fs::path& file)
{
    OIIO::ImageSpec spec(40, 30, 4, OIIO::TypeUInt8);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    spec.attribute("Exif:FNumber", 2.8f);
    spec.attribute("Exif:LensModel", "none");
    spec.attribute("Copyright", "nobody");
    std::vector<unsigned char> samples(spec.image_bytes());
    unsigned int state = 1;
    for (unsigned char& sample : samples) {
        state = state * 1664525u + 1013904223u;
        sample = static_cast<unsigned char>(state >> 24);
    }
    const auto output = OIIO::ImageOutput::create(file.string());
    output->open(file.string(), spec);
    output->write_image(spec.format, samples.data());
    output->close();
    return readPicture(file);
}

/// All lengths of a small file; of a larger one those near powers of two and near the end.
std::set<std::size_t> lengthsBelow(std::size_t whole)
{
    std::set<std::size_t> lengths;
    for (std::size_t i = 0; i < std::min(whole, std::size_t{300}); ++i) lengths.insert(i);
    for (std::size_t i = 0; i < std::min(whole, std::size_t{300}); ++i)
        lengths.insert(whole - 1 - i);
    for (std::size_t power = 512; power < whole; power *= 2) {
        lengths.insert({power - 1, power, power + power / 2});
    }
    std::erase_if(lengths, [whole](std::size_t length) { return length >= whole; });
    return lengths;
}

class FullDiskTest : public testing::Test {
protected:
    /// Writes over a good file repeatedly, each time with room for too few bytes.
    template <typename Write>
    void failEverywhere(const std::string& name, const Write& write)
    {
        SCOPED_TRACE(name);
        const fs::path file = folder_ / name;
        write(file);
        const std::size_t whole = fs::file_size(file);
        std::ofstream(file) << "the good result of before";
        const std::string before = contents(file);
        for (const std::size_t length : lengthsBelow(whole)) {
            std::string reason = "none";
            try {
                const Fixtures::FileSizeLimit limit(length);
                write(file);
            } catch (const FileError& error) {
                reason = error.what();
            }
            ASSERT_THAT(reason, StartsWith(file.string() + ": cannot be written: ")) << length;
            ASSERT_THAT(reason, Not(testing::HasSubstr("\n")));
            ASSERT_EQ(contents(file), before) << length;
            ASSERT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1) << length;
        }
        const Fixtures::FileSizeLimit limit(whole + 1);
        write(file);
        EXPECT_EQ(fs::file_size(file), whole);
        fs::remove(file);
    }

    Fixtures::TemporaryFolder folder_;
};

TEST_F(FullDiskTest, TheOldPictureStandsWhereverTheWritingStops)
{
    const Fixtures::TemporaryFolder sources;
    for (const char* extension : {".png", ".jpg", ".tif", ".dpx", ".exr"}) {
        const std::string name = std::string("a") + extension;
        const PictureFile source = noisy(sources / name);
        failEverywhere(name, [&](const fs::path& file) {
            writePicture(file, source.picture, *source.record);
        });
    }
}

TEST_F(FullDiskTest, TheOldTextStandsWhereverTheWritingStops)
{
    const std::string text(700, 'x');
    failEverywhere("a.json",
                   [&](const fs::path& file) { writeWhole(file, std::as_bytes(std::span(text))); });
}

}  // namespace
}  // namespace Tesseret::Files
