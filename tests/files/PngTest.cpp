#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>

#include <OpenImageIO/imageio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/FileThreads.h"
#include "files/PictureReader.h"
#include "files/PictureWriter.h"
#include "files/PngChunk.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Tesseret::Files {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::SizeIs;

using Bytes = std::vector<char>;

Bytes contents(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

struct Chunk {
    std::string type;
    Bytes data;
};

std::vector<Chunk> chunksOf(const fs::path& file)
{
    const Bytes bytes = contents(file);
    std::vector<Chunk> chunks;
    for (std::size_t at = 8; at < bytes.size();) {
        const std::size_t size = bigEndian(&bytes[at]);
        const char* const data = &bytes[at] + 8;
        chunks.push_back({std::string(data - 4, 4), Bytes(data, data + size)});
        at += 12 + size;
    }
    return chunks;
}

/// The bytes before the pixels.
Bytes headOf(const fs::path& file)
{
    const Bytes bytes = contents(file);
    const std::string text(bytes.begin(), bytes.end());
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(text.find("IDAT")) - 4};
}

/// Smooth in parts and noisy in others, so that every method of compression has work.
Picture scene(int width, int height, Depth depth)
{
    Picture picture({0, 0, width, height}, depth);
    unsigned int state = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < 4; ++c) {
                state = state * 1664525u + 1013904223u;
                const unsigned int noise = x > width / 2 ? state >> 16 : 0u;
                const unsigned int value = static_cast<unsigned int>(x * 7 + y * 13 + c) + noise;
                picture.setChannel(x, y, c, depth == Depth::Byte ? value % 256 : value % 65536);
            }
        }
    }
    return picture;
}

bool haveEqualColours(const Picture& a, const Picture& b)
{
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            for (int c = 0; c < 3; ++c) {
                if (a.channel(x, y, c) != b.channel(x, y, c)) return false;
            }
        }
    }
    return true;
}

WriteOptions atLevel(const char* level)
{
    WriteOptions options;
    options.compression = level;
    return options;
}

class PngTest : public testing::Test {
protected:
    ~PngTest() override { useThreads(0); }

    /// The picture in a PNG of its own, and that file's record.
    PictureFile saved(const Picture& picture)
    {
        writeNewPicture(folder_ / "source.png", picture, /*isColour=*/true);
        return readPicture(folder_ / "source.png");
    }

    Fixtures::TemporaryFolder folder_;
};

// The bands end inside the picture, and the last is shorter.
TEST_F(PngTest, ManyBandsAreOneStreamForEveryReader)
{
    for (const Depth depth : {Depth::Byte, Depth::Short}) {
        const Picture picture = scene(701, 503, depth);
        const PictureFile source = saved(picture);
        EXPECT_TRUE(haveEqualColours(source.picture, picture));
        for (const char* level : {"", "0", "1", "6", "9"}) {
            SCOPED_TRACE(std::string("level ") + level);
            const fs::path file = folder_ / "a.png";
            writePicture(file, source.picture, *source.record, atLevel(level));
            EXPECT_TRUE(haveEqualColours(readPicture(file).picture, picture));

            // Another program reads the same pixels, and says nothing of a fault.
            const fs::path other = folder_ / "b.png";
            const std::string log = (folder_ / "log").string();
            const std::string command =
                "gm convert " + file.string() + " " + other.string() + " >" + log + " 2>&1";
            ASSERT_EQ(std::system(command.c_str()), 0);
            EXPECT_THAT(contents(log), SizeIs(0));
            EXPECT_TRUE(
                haveEqualColours(readPicture(other, ReadAs::Picture, depth).picture, picture));
        }
        const auto chunks = chunksOf(folder_ / "a.png");
        EXPECT_GT(std::ranges::count(chunks, "IDAT", &Chunk::type), 2);
    }
}

TEST_F(PngTest, TheBytesDoNotDependOnTheThreads)
{
    const PictureFile source = saved(scene(701, 503, Depth::Byte));
    for (const char* level : {"", "6"}) {
        std::vector<Bytes> files;
        for (const unsigned threads : {1u, 2u, 7u}) {
            useThreads(threads);
            writePicture(folder_ / "a.png", source.picture, *source.record, atLevel(level));
            files.push_back(contents(folder_ / "a.png"));
        }
        EXPECT_EQ(files[0], files[1]);
        EXPECT_EQ(files[0], files[2]);
    }
}

// Five equal rows each, so that a band mostly begins with rows that the band before ended with:
// without them it would pay for one more row of noise.
TEST_F(PngTest, BandsLookBackAtTheBandBefore)
{
    constexpr int kWidth = 1000, kPart = 85, kParts = 12;
    Picture picture({0, 0, kWidth, kPart * kParts}, Depth::Byte);
    unsigned int state = 1;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < kWidth; ++x) {
            state = state * 1664525u + 1013904223u;
            const double value =
                y % 5 == 0 ? double(state >> 24) : picture.channel(x, y - y % 5, 0);
            for (int c = 0; c < 3; ++c) picture.setChannel(x, y, c, value);
        }
    }
    const PictureFile source = saved(picture);
    const auto sizeOf = [&](const Picture& part) {
        WriteOptions options = atLevel("9");
        options.displayWindow = part.bounds();
        writePicture(folder_ / "a.png", part, *source.record, options);
        return static_cast<double>(fs::file_size(folder_ / "a.png"));
    };
    const double whole = sizeOf(source.picture);
    const double part = sizeOf(source.picture.copied({0, 0, kWidth, kPart}, {}));  // in one band
    EXPECT_LT(whole, 1.02 * kParts * part);
}

/// Copies a file with OpenImageIO alone.
void copyWithOiio(const fs::path& from, const fs::path& to)
{
    OIIO::ImageSpec asStored;
    asStored.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(from.string(), &asStored);
    ASSERT_TRUE(input) << OIIO::geterror();
    const OIIO::ImageSpec& spec = input->spec();
    std::vector<unsigned char> pixels(spec.image_bytes());
    ASSERT_TRUE(input->read_image(0, 0, 0, spec.nchannels, spec.format, pixels.data()));
    const auto output = OIIO::ImageOutput::create(to.string());
    ASSERT_TRUE(output->open(to.string(), spec)) << output->geterror();
    ASSERT_TRUE(output->write_image(spec.format, pixels.data()) && output->close());
}

// Where the metadata is simple it goes through libpng alone, else through OpenImageIO.
TEST_F(PngTest, KeepsTheMetadataThatOpenImageIoKeeps)
{
    using Edit = std::function<void(OIIO::ImageSpec&)>;
    const std::vector<Edit> edits{
        [](OIIO::ImageSpec&) {},
        [](OIIO::ImageSpec& spec) { spec.attribute("oiio:ColorSpace", "sRGB"); },
        [](OIIO::ImageSpec& spec) { spec.attribute("oiio:ColorSpace", "Linear"); },
        [](OIIO::ImageSpec& spec) { spec.attribute("oiio:ColorSpace", "Gamma1.8"); },
        [](OIIO::ImageSpec& spec) { spec.attribute("DateTime", "2024:02:03 04:05:06"); },
        [](OIIO::ImageSpec& spec) { spec.attribute("DateTime", "2024:02:31 04:05:06"); },
        [](OIIO::ImageSpec& spec) {
            spec.attribute("XResolution", 72.0f);
            spec.attribute("YResolution", 72.0f);
            spec.attribute("ResolutionUnit", "inch");
        },
        [](OIIO::ImageSpec& spec) { spec.attribute("PixelAspectRatio", 1.5f); },
        [](OIIO::ImageSpec& spec) {
            spec.attribute("Copyright", "nobody");
            spec.attribute("ImageDescription", "a plate");
            spec.attribute("Software", "none");
        },
        [](OIIO::ImageSpec& spec) { spec.attribute("Orientation of the sun", "north"); },
        [](OIIO::ImageSpec& spec) { spec.attribute("Make", "none"); },
    };
    for (std::size_t i = 0; i < edits.size(); ++i) {
        for (int channels = 1; channels <= 4; ++channels) {
            SCOPED_TRACE(std::to_string(i) + " with channels " + std::to_string(channels));
            OIIO::ImageSpec spec(5, 3, channels, OIIO::TypeUInt8);
            spec.attribute("oiio:UnassociatedAlpha", 1);
            edits[i](spec);
            const std::vector<unsigned char> pixels(spec.image_bytes(), 77);
            const auto output = OIIO::ImageOutput::create("a.png");
            ASSERT_TRUE(output->open((folder_ / "a.png").string(), spec));
            ASSERT_TRUE(output->write_image(spec.format, pixels.data()) && output->close());

            copyWithOiio(folder_ / "a.png", folder_ / "expected.png");
            const PictureFile source = readPicture(folder_ / "a.png");
            writePicture(folder_ / "b.png", source.picture, *source.record);
            EXPECT_EQ(headOf(folder_ / "b.png"), headOf(folder_ / "expected.png"));
        }
    }
}

TEST_F(PngTest, ANewPictureHasNoMetadata)
{
    const PictureFile source = saved(scene(3, 2, Depth::Byte));
    std::vector<std::string> types;
    for (const Chunk& chunk : chunksOf(folder_ / "source.png")) types.push_back(chunk.type);
    EXPECT_THAT(types, ElementsAre("IHDR", "oFFs", "IDAT", "IEND"));
}

}  // namespace
}  // namespace Tesseret::Files
