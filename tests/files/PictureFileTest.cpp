#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <OpenImageIO/half.h>
#include <OpenImageIO/imageio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "files/FileError.h"
#include "files/PictureReader.h"
#include "files/PictureWriter.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Tesseret::Files {
namespace {

namespace fs = std::filesystem;
using OIIO::ImageSpec;
using OIIO::TypeDesc;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr int kWidth = 7;
constexpr int kHeight = 5;

/// Noise that takes every value of its type; the seed is fixed.
std::vector<std::byte> noise(std::size_t count, const TypeDesc& type)
{
    std::vector<std::byte> bytes(count * type.size());
    unsigned int state = 12345;
    for (std::size_t i = 0; i < count; ++i) {
        state = state * 1664525u + 1013904223u;
        const auto whole = static_cast<std::uint16_t>(state >> 16);
        const float real = static_cast<float>(whole) / 1024.0f - 16.0f;
        if (type == OIIO::TypeFloat) {
            std::memcpy(&bytes[i * 4], &real, 4);
        } else if (type == OIIO::TypeHalf) {
            const half rounded(real);
            std::memcpy(&bytes[i * 2], &rounded, 2);
        } else {
            std::memcpy(&bytes[i * type.size()], &whole, type.size());
        }
    }
    return bytes;
}

void save(const fs::path& file, const ImageSpec& spec, const std::vector<std::byte>& pixels)
{
    const auto output = OIIO::ImageOutput::create(file.string());
    ASSERT_TRUE(output->open(file.string(), spec)) << output->geterror();
    ASSERT_TRUE(
        output->write_image(spec.channelformats.empty() ? spec.format : TypeDesc(), pixels.data()))
        << output->geterror();
    ASSERT_TRUE(output->close());
}

struct Stored {
    ImageSpec spec;
    std::vector<std::byte> pixels;
};

Stored load(const fs::path& file)
{
    ImageSpec asStored;
    asStored.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(file.string(), &asStored);
    EXPECT_TRUE(input) << OIIO::geterror();
    Stored stored{input->spec(), {}};
    stored.pixels.resize(stored.spec.image_bytes(true));
    EXPECT_TRUE(
        input->read_image(0, 0, 0, stored.spec.nchannels, TypeDesc(), stored.pixels.data()));
    return stored;
}

std::vector<std::string> copyFile(const fs::path& from, const fs::path& to,
                                  const WriteOptions& options = {})
{
    const PictureFile file = readPicture(from);
    return writePicture(to, file.picture, *file.record, options);
}

std::string failure(const fs::path& file)
{
    try {
        readPicture(file);
    } catch (const FileError& error) {
        return error.what();
    }
    return "";
}

class PictureFileTest : public testing::Test {
protected:
    Fixtures::TemporaryFolder folder_;
};

struct Kind {
    const char* extension;
    TypeDesc type;
    int channels;
    int bits = 0;
};

// A file read and written again holds the same samples in the same type.
TEST_F(PictureFileTest, LosslessKindsComeBackBitForBit)
{
    std::vector<Kind> kinds;
    for (int channels = 1; channels <= 4; ++channels) {
        for (const TypeDesc& type : {OIIO::TypeUInt8, OIIO::TypeUInt16}) {
            kinds.push_back({".png", type, channels});
            kinds.push_back({".tif", type, channels});
            if (channels != 2) kinds.push_back({".dpx", type, channels});
        }
        kinds.push_back({".tif", OIIO::TypeFloat, channels});
        kinds.push_back({".exr", OIIO::TypeHalf, channels});
        kinds.push_back({".exr", OIIO::TypeFloat, channels});
    }
    kinds.push_back({".dpx", OIIO::TypeUInt16, 3, 10});
    kinds.push_back({".dpx", OIIO::TypeUInt16, 3, 12});
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(std::string(kind.extension) + " " + kind.type.c_str() + " x " +
                     std::to_string(kind.channels) + " bits " + std::to_string(kind.bits));
        ImageSpec spec(kWidth, kHeight, kind.channels, kind.type);
        spec.attribute("oiio:UnassociatedAlpha", 1);
        if (kind.bits > 0) spec.attribute("oiio:BitsPerSample", kind.bits);
        if (kind.channels == 2) {
            spec.channelnames = {"Y", "A"};
            spec.alpha_channel = 1;
        }
        const fs::path first = folder_ / (std::string("first") + kind.extension);
        const fs::path second = folder_ / (std::string("second") + kind.extension);
        save(first, spec, noise(spec.image_pixels() * std::size_t(kind.channels), kind.type));
        EXPECT_THAT(copyFile(first, second), IsEmpty());
        const Stored a = load(first);
        const Stored b = load(second);
        EXPECT_EQ(a.pixels, b.pixels);
        EXPECT_EQ(a.spec.format, b.spec.format);
        EXPECT_EQ(a.spec.channelnames, b.spec.channelnames);
        EXPECT_EQ(a.spec.alpha_channel, b.spec.alpha_channel);
        EXPECT_EQ(b.spec.get_int_attribute("oiio:BitsPerSample"),
                  a.spec.get_int_attribute("oiio:BitsPerSample"));
    }
}

TEST_F(PictureFileTest, TurnsRowsOverAndCompletesGreyAndRgb)
{
    const std::vector<std::byte> grey{std::byte{10}, std::byte{20}, std::byte{30}, std::byte{40}};
    save(folder_ / "grey.png", ImageSpec(2, 2, 1, OIIO::TypeUInt8), grey);
    const PictureFile file = readPicture(folder_ / "grey.png");
    EXPECT_FALSE(file.info.isColour);
    EXPECT_EQ(file.info.alpha, Alpha::Opaque);
    const auto pixel = [&](int x, int y) {
        const auto* p = file.picture.pixel<std::uint8_t>(x, y);
        return std::vector<int>(p, p + 4);
    };
    EXPECT_THAT(pixel(0, 1),
                ElementsAre(10, 10, 10, 255));  // the file's first row is the upper one
    EXPECT_THAT(pixel(1, 0), ElementsAre(40, 40, 40, 255));

    save(folder_ / "rgb.tif", ImageSpec(1, 1, 3, OIIO::TypeFloat), noise(3, OIIO::TypeFloat));
    EXPECT_EQ(readPicture(folder_ / "rgb.tif").picture.channel(0, 0, 3), 1.0);
}

TEST_F(PictureFileTest, AlphaIsNeverMultiplied)
{
    const std::vector<std::byte> pixel{std::byte{200}, std::byte{100}, std::byte{50}, std::byte{3}};
    for (const char* extension : {".png", ".tif"}) {
        ImageSpec spec(1, 1, 4, OIIO::TypeUInt8);
        spec.attribute("oiio:UnassociatedAlpha", 1);
        const fs::path file = folder_ / (std::string("a") + extension);
        save(file, spec, pixel);
        EXPECT_EQ(readPicture(file).info.alpha, Alpha::Unpremultiplied);
        for (const char* other : {"b.png", "b.tif", "b.dpx"}) {
            copyFile(file, folder_ / other);
            EXPECT_EQ(load(folder_ / other).pixels, pixel) << extension << " to " << other;
        }
        EXPECT_THAT(copyFile(file, folder_ / "b.jpg"), ElementsAre(HasSubstr("alpha")));
    }
}

struct WindowCase {
    const char* extension;
    int x, y, fullX, fullY, fullWidth, fullHeight;
};

TEST_F(PictureFileTest, KeepsWindowsAndPlacesThemYUp)
{
    for (const WindowCase& c :
         {WindowCase{".exr", -3, -2, 0, 0, 20, 10}, WindowCase{".exr", 14, 13, 10, 10, 30, 30},
          WindowCase{".tif", 5, 3, 0, 0, 20, 10}, WindowCase{".dpx", 5, 3, 0, 0, 20, 10}}) {
        SCOPED_TRACE(c.extension);
        ImageSpec spec(kWidth, kHeight, 3,
                       c.extension == std::string(".exr") ? OIIO::TypeHalf : OIIO::TypeUInt8);
        spec.x = c.x, spec.y = c.y, spec.full_x = c.fullX, spec.full_y = c.fullY;
        spec.full_width = c.fullWidth, spec.full_height = c.fullHeight;
        if (c.extension == std::string(".tif")) spec.attribute("XResolution", 72.0f);
        if (c.extension == std::string(".tif")) spec.attribute("YResolution", 72.0f);
        const fs::path first = folder_ / (std::string("first") + c.extension);
        const fs::path second = folder_ / (std::string("second") + c.extension);
        save(first, spec, noise(spec.image_pixels() * 3, spec.format));

        const OfxRectI window = readPicture(first).picture.bounds();
        EXPECT_EQ(window.x1, c.x - c.fullX);
        EXPECT_EQ(window.y2, c.fullHeight - (c.y - c.fullY));
        EXPECT_EQ(window.y2 - window.y1, kHeight);

        EXPECT_THAT(copyFile(first, second), IsEmpty());
        const Stored copy = load(second);
        EXPECT_EQ(copy.pixels, load(first).pixels);
        EXPECT_THAT((std::vector{copy.spec.x, copy.spec.y, copy.spec.full_x, copy.spec.full_y,
                                 copy.spec.full_width, copy.spec.full_height}),
                    ElementsAre(c.x, c.y, c.fullX, c.fullY, c.fullWidth, c.fullHeight));
    }
}

TEST_F(PictureFileTest, FormatsWithoutWindowsGetTheDisplayWindow)
{
    ImageSpec spec(2, 1, 1, OIIO::TypeHalf);
    spec.x = -1, spec.y = 1, spec.full_width = 3, spec.full_height = 2;
    const std::vector<half> samples{half(0.25f), half(1.0f)};
    const auto* bytes = reinterpret_cast<const std::byte*>(samples.data());
    save(folder_ / "a.exr", spec, {bytes, bytes + 4});
    EXPECT_THAT(copyFile(folder_ / "a.exr", folder_ / "a.png"), ElementsAre(HasSubstr("window")));
    const Stored png = load(folder_ / "a.png");
    EXPECT_EQ(png.spec.width, 3);
    std::vector<std::uint16_t> values(6);
    std::memcpy(values.data(), png.pixels.data(), 12);
    EXPECT_THAT(values, ElementsAre(0, 0, 0, 65535, 0, 0));
}

TEST_F(PictureFileTest, KeepsMetadataAspectAndCompression)
{
    for (const char* extension : {".png", ".jpg", ".tif", ".dpx", ".exr"}) {
        SCOPED_TRACE(extension);
        ImageSpec spec(16, 16, 3, OIIO::TypeUInt8);
        spec.attribute("PixelAspectRatio", 2.0f);
        spec.attribute("Copyright", "nobody");
        spec.attribute("ImageDescription", "a plate");
        spec.attribute("compression", extension == std::string(".exr") ? "piz" : "packbits");
        const fs::path first = folder_ / (std::string("first") + extension);
        const fs::path second = folder_ / (std::string("second") + extension);
        save(first, spec, noise(16 * 16 * 3, OIIO::TypeUInt8));
        EXPECT_EQ(readInfo(first).pixelAspectRatio, 2.0);
        copyFile(first, second);
        EXPECT_EQ(readInfo(second).pixelAspectRatio, 2.0);
        const Stored copy = load(second);
        EXPECT_EQ(copy.spec.get_string_attribute("Copyright"), "nobody");
        EXPECT_EQ(copy.spec.get_string_attribute("ImageDescription"), "a plate");
        EXPECT_EQ(copy.spec.get_string_attribute("compression"),
                  load(first).spec.get_string_attribute("compression"));
    }
}

TEST_F(PictureFileTest, ExtraChannelsOfExrStayInTheirOwnTypes)
{
    ImageSpec spec(kWidth, kHeight, 5, OIIO::TypeHalf);
    spec.channelnames = {"R", "G", "B", "Z", "id"};
    spec.channelformats = {OIIO::TypeHalf, OIIO::TypeHalf, OIIO::TypeHalf, OIIO::TypeFloat,
                           OIIO::TypeUInt};
    std::vector<std::byte> pixels = noise(spec.image_pixels() * 7, OIIO::TypeHalf);
    save(folder_ / "a.exr", spec, pixels);
    EXPECT_THAT(copyFile(folder_ / "a.exr", folder_ / "b.exr"), IsEmpty());
    const Stored a = load(folder_ / "a.exr");
    const Stored b = load(folder_ / "b.exr");
    EXPECT_EQ(a.pixels, b.pixels);
    EXPECT_EQ(a.spec.channelnames, b.spec.channelnames);
    EXPECT_THAT(copyFile(folder_ / "a.exr", folder_ / "c.png"),
                ElementsAre(HasSubstr("channels besides")));
}

TEST_F(PictureFileTest, BetweenFormatsValuesAreRoundedAndClamped)
{
    const std::vector<float> samples{-0.5f, 0.5f, 7.0f};
    const auto* bytes = reinterpret_cast<const std::byte*>(samples.data());
    save(folder_ / "a.exr", ImageSpec(1, 1, 3, OIIO::TypeFloat), {bytes, bytes + 12});
    copyFile(folder_ / "a.exr", folder_ / "a.png");
    std::vector<std::uint16_t> values(3);
    std::memcpy(values.data(), load(folder_ / "a.png").pixels.data(), 6);
    EXPECT_THAT(values, ElementsAre(0, 32768, 65535));

    const PictureFile byte = readPicture(folder_ / "a.png", ReadAs::Picture, Depth::Byte);
    EXPECT_EQ(byte.picture.depth(), Depth::Byte);
    EXPECT_EQ(byte.picture.channel(0, 0, 1), 128);
    writePicture(folder_ / "b.png", byte.picture, *byte.record);
    EXPECT_EQ(load(folder_ / "b.png").spec.format, OIIO::TypeUInt8);
    copyFile(folder_ / "b.png", folder_ / "b.exr");
    EXPECT_EQ(load(folder_ / "b.exr").spec.format, OIIO::TypeHalf);
}

TEST_F(PictureFileTest, MatteIsAlphaElseGreyElseLuminance)
{
    const auto pixel = [](std::initializer_list<int> values) {
        std::vector<std::byte> bytes;
        for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
        return bytes;
    };
    save(folder_ / "grey.png", ImageSpec(1, 1, 1, OIIO::TypeUInt8), pixel({90}));
    save(folder_ / "rgb.png", ImageSpec(1, 1, 3, OIIO::TypeUInt8), pixel({255, 100, 0}));
    ImageSpec rgba(1, 1, 4, OIIO::TypeUInt8);
    rgba.attribute("oiio:UnassociatedAlpha", 1);
    save(folder_ / "rgba.png", rgba, pixel({255, 100, 0, 33}));
    const auto matte = [&](const char* name) {
        const Picture picture = readPicture(folder_ / name, ReadAs::Matte).picture;
        EXPECT_EQ(picture.components(), Components::Alpha);
        return picture.channel(0, 0, 0);
    };
    EXPECT_EQ(matte("grey.png"), 90);
    EXPECT_EQ(matte("rgb.png"), 126);  // 0.2126 * 255 + 0.7152 * 100 = 125.7
    EXPECT_EQ(matte("rgba.png"), 33);

    // A full alpha is ignored, unless it ends inside the picture.
    save(folder_ / "opaque.png", rgba, pixel({255, 100, 0, 255}));
    EXPECT_EQ(matte("opaque.png"), 126);
    ImageSpec ya(1, 1, 2, OIIO::TypeUInt8);
    ya.channelnames = {"Y", "A"};
    ya.alpha_channel = 1;
    save(folder_ / "ya.tif", ya, pixel({90, 255}));
    EXPECT_EQ(matte("ya.tif"), 90);
    ImageSpec part(1, 1, 4, OIIO::TypeFloat);
    part.full_width = 2;
    const std::vector<float> samples{0.5f, 0.5f, 0.5f, 1.0f};
    const auto* bytes = reinterpret_cast<const std::byte*>(samples.data());
    save(folder_ / "part.exr", part, {bytes, bytes + 16});
    EXPECT_EQ(matte("part.exr"), 1.0);
    part.full_width = 1;
    save(folder_ / "all.exr", part, {bytes, bytes + 16});
    EXPECT_EQ(matte("all.exr"), 0.5);
}

TEST_F(PictureFileTest, DamagedFilesAreTold)
{
    for (const char* extension : {".png", ".jpg", ".tif", ".dpx", ".exr"}) {
        const fs::path file = folder_ / (std::string("a") + extension);
        for (const double part : {0.99, 0.6, 0.1, 0.0}) {
            ImageSpec spec(64, 64, 3, OIIO::TypeUInt8);
            save(file, spec, noise(spec.image_pixels() * 3, spec.format));
            fs::resize_file(file, static_cast<std::uintmax_t>(double(fs::file_size(file)) * part));
            EXPECT_THAT(failure(file),
                        StartsWith(file.string() +
                                   (part > 0.0 ? ": is damaged or truncated" : ": is empty")))
                << part;
        }
    }
    ImageSpec spec(64, 64, 3, OIIO::TypeUInt8);
    save(folder_ / "bits.png", spec, noise(spec.image_pixels() * 3, spec.format));
    std::fstream(folder_ / "bits.png", std::ios::in | std::ios::out).seekp(300) << "????";
    EXPECT_THAT(failure(folder_ / "bits.png"), HasSubstr("is damaged"));

    std::ofstream(folder_ / "text.png") << "no picture at all";
    EXPECT_THAT(failure(folder_ / "text.png"), HasSubstr("is not a PNG"));
    EXPECT_THAT(failure(folder_ / "none.png"), HasSubstr("no such file"));
    EXPECT_THAT(failure(folder_.path()), HasSubstr("is a folder"));
}

TEST_F(PictureFileTest, WritesWholeFilesOrNone)
{
    save(folder_ / "a.png", ImageSpec(1, 1, 3, OIIO::TypeUInt8), noise(3, OIIO::TypeUInt8));
    const auto target = [&](const char* name, const char* compression = "") -> std::string {
        try {
            checkTarget(folder_ / name, compression);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(target("b.exr", "dwaa:45"), "");
    EXPECT_THAT(target("b.gif"), HasSubstr(".png .jpg .jpeg .tif .tiff .dpx .exr"));
    EXPECT_THAT(target("none/b.png"), HasSubstr("does not exist"));
    EXPECT_THAT(target("b.png", "12"), HasSubstr("0 to 9"));
    EXPECT_THAT(target("b.tif", "dwaa"), HasSubstr("lzw"));
    EXPECT_THAT(target("b.exr", "zip:4"), HasSubstr("zips"));

    fs::create_directory(folder_ / "c.png");  // in the way: the final rename fails
    EXPECT_THROW(copyFile(folder_ / "a.png", folder_ / "c.png"), FileError);
    fs::remove(folder_ / "c.png");
    copyFile(folder_ / "a.png", folder_ / "d.png");
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("a.png", "d.png"));
}

}  // namespace
}  // namespace Tesseret::Files
