/// Files that are whole, and what is left of those that are not.

#include <csignal>
#include <fstream>
#include <iterator>
#include <vector>

#include <OpenImageIO/imageio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "files/PartNames.h"
#include "files/WholeFile.h"
#include "files/WholePicture.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Tesseret::Files {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

std::string bytesOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class WholePictureTest : public testing::Test {
protected:
    static constexpr int kWidth = 61, kHeight = 43;

    fs::path written(const std::string& name, const OIIO::TypeDesc& type,
                     const std::string& compression = "") const
    {
        fs::path file = folder_ / name;
        OIIO::ImageSpec spec(kWidth, kHeight, 3, type);
        if (!compression.empty()) spec.attribute("compression", compression);
        std::vector<float> samples(spec.image_pixels() * 3);
        unsigned int state = 1;
        for (float& sample : samples) {
            state = state * 1664525u + 1013904223u;
            sample = static_cast<float>(state >> 24) / 255.0f;
        }
        const auto output = OIIO::ImageOutput::create(file.string());
        EXPECT_TRUE(output->open(file.string(), spec)) << output->geterror();
        EXPECT_TRUE(output->write_image(OIIO::TypeFloat, samples.data()));
        EXPECT_TRUE(output->close());
        return file;
    }
    std::vector<std::string> names() const
    {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder_.path())) {
            all.push_back(entry.path().filename().string());
        }
        return all;
    }

    Fixtures::TemporaryFolder folder_;
};

TEST_F(WholePictureTest, EveryFormatIsWholeToItsLastByte)
{
    const std::vector<fs::path> files{
        written("a.png", OIIO::TypeUInt8),         written("b.png", OIIO::TypeUInt16),
        written("a.jpg", OIIO::TypeUInt8),         written("a.tif", OIIO::TypeUInt8, "lzw"),
        written("b.tif", OIIO::TypeFloat, "none"), written("a.dpx", OIIO::TypeUInt16),
        written("b.dpx", OIIO::TypeUInt8),         written("a.exr", OIIO::TypeHalf, "zip"),
        written("b.exr", OIIO::TypeFloat, "none"), written("c.exr", OIIO::TypeHalf, "piz"),
        written("d.exr", OIIO::TypeHalf, "dwab"),  written("e.exr", OIIO::TypeHalf, "zips"),
    };
    for (const fs::path& file : files) {
        SCOPED_TRACE(file);
        EXPECT_TRUE(isWholePicture(file, kWidth, kHeight));
        EXPECT_FALSE(isWholePicture(file, kWidth + 1, kHeight));
        EXPECT_FALSE(isWholePicture(file, kHeight, kWidth));
        const std::string whole = bytesOf(file);
        const fs::path cut = folder_ / ("cut" + file.extension().string());
        // TIFF's directory comes before its strips or after them.
        for (std::size_t left = 0; left < whole.size(); left += 1 + whole.size() / 97) {
            std::ofstream(cut, std::ios::binary) << whole.substr(0, left);
            EXPECT_FALSE(isWholePicture(cut, kWidth, kHeight)) << left;
        }
        std::ofstream(cut, std::ios::binary) << whole.substr(0, whole.size() - 1);
        EXPECT_FALSE(isWholePicture(cut, kWidth, kHeight));
    }
    EXPECT_FALSE(isWholePicture(folder_ / "absent.png", kWidth, kHeight));
    fs::copy_file(folder_ / "a.png", folder_ / "png.jpg");
    EXPECT_FALSE(isWholePicture(folder_ / "png.jpg", kWidth, kHeight));
    fs::create_directory(folder_ / "folder.png");
    EXPECT_FALSE(isWholePicture(folder_ / "folder.png", kWidth, kHeight));
}

// As a process leaves an EXR that it had not finished: no places of chunks yet.
TEST_F(WholePictureTest, AnExrWithoutItsTableIsNotWhole)
{
    const fs::path file = written("a.exr", OIIO::TypeHalf, "zips");
    std::string bytes = bytesOf(file);
    const std::size_t last = bytes.size() / 3;
    for (std::size_t i = bytes.find("screenWindowWidth"); i < last; ++i) {
        std::string changed = bytes;
        changed.replace(i, 8, 8, '\0');
        std::ofstream(file, std::ios::binary) << changed;
        if (!isWholePicture(file, kWidth, kHeight)) return;
    }
    FAIL() << "no place of a chunk was missed";
}

/// Makes a file that a process was writing.
void leave(const fs::path& name)
{
    std::ofstream(name) << "part";
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    return text.replace(text.find(from), from.size(), to);
}

TEST_F(WholePictureTest, WhatDeadProcessesLeftIsRemoved)
{
    const fs::path target = folder_ / "frame.0001.exr";
    const std::string mine = partNameOf(target).filename().string();
    const std::string me = "-" + std::to_string(::getpid()) + "-";
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    ::waitpid(child, nullptr, 0);
    const std::string dead = "-" + std::to_string(child) + "-";
    const std::string parent = "-" + std::to_string(::getppid()) + "-";
    const std::string left = replaced(mine, me, dead);
    const std::string alive = replaced(mine, me, parent);
    const std::string elsewhere = replaced(left, ".part-", ".part-other");
    const std::string ofAnother = replaced(left, "0001", "0002");
    for (const std::string& name : {left, alive, elsewhere, ofAnother}) leave(folder_ / name);
    const std::vector<std::byte> bytes(10, std::byte{7});
    writeWhole(target, bytes);
    EXPECT_THAT(names(), UnorderedElementsAre("frame.0001.exr", alive, elsewhere, ofAnother));
    writeWhole(folder_ / "frame.0002.exr", bytes);
    EXPECT_THAT(names(),
                UnorderedElementsAre("frame.0001.exr", "frame.0002.exr", alive, elsewhere));
}

// Processes that write one file: each time it is one of theirs, whole.
TEST_F(WholePictureTest, TwoWritersOfAFileDoNotDamageIt)
{
    constexpr std::size_t kBytes = 300000;
    const fs::path target = folder_ / "one.dpx";
    std::vector<pid_t> children;
    for (const int value : {1, 2}) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        const std::vector<std::byte> bytes(kBytes, static_cast<std::byte>(value));
        for (int i = 0; i < 40; ++i) writeWhole(target, bytes);
        ::_exit(0);
    }
    for (bool run = true; run;) {
        run = ::waitpid(children[0], nullptr, WNOHANG) == 0;
        if (!fs::exists(target)) continue;
        const std::string seen = bytesOf(target);
        ASSERT_EQ(seen.size(), kBytes);
        ASSERT_EQ(seen.find_first_not_of(seen.front()), std::string::npos);
    }
    int status = -1;
    ::waitpid(children[1], &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_THAT(names(), ElementsAre("one.dpx"));
}

// A name as long as names can be.
TEST_F(WholePictureTest, LongNamesAreWritten)
{
    const fs::path target = folder_ / (std::string(250, 'x') + ".png");
    writeWhole(target, std::vector<std::byte>(3));
    EXPECT_THAT(names(), ElementsAre(target.filename().string()));
}

}  // namespace
}  // namespace Tesseret::Files
