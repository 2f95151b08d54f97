#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/ElfFile.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Tesseret::Inspect {

namespace {

using testing::Contains;
using testing::UnorderedElementsAre;

std::string bytesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(ElfFile, OfALibraryWithoutSourceIsRead)
{
    const ElfFile elf = readElf(FAULTY_PLUGIN);
    EXPECT_TRUE(elf.isSharedLibrary);
    EXPECT_EQ(elf.bits, 8 * static_cast<int>(sizeof(void*)));
    EXPECT_FALSE(elf.hasExecutableStack);
    EXPECT_THAT(elf.needed, Contains("libc.so.6"));
    EXPECT_THAT(elf.exports, UnorderedElementsAre("OfxGetNumberOfPlugins", "OfxGetPlugin"));
    const auto import = std::ranges::find(elf.imports, "getenv", &ElfImport::name);
    ASSERT_NE(import, elf.imports.end());
    EXPECT_THAT(import->version, testing::StartsWith("GLIBC_2."));
}

// Whatever stands in the file, reading ends, with a result or an ElfError.
TEST(ElfFile, DamagedFilesAreReadOrRefused)
{
    const Fixtures::TemporaryFolder folder;
    const std::string whole = bytesOf(INCOMPLETE_PLUGIN);
    std::mt19937 random(5);
    const auto below = [&](std::size_t end) { return random() % end; };
    int refused = 0;
    for (int round = 0; round < 1500; ++round) {
        std::string bytes = whole;
        // Headers and tables are at both ends of the file.
        const std::size_t begin = round % 2 == 0 ? 0 : whole.size() - 2400;
        for (std::size_t i = 0; i < 1 + below(8); ++i)
            bytes[begin + below(2400)] = static_cast<char>(below(3) == 0 ? 0xff : below(256));
        if (round % 10 == 0) bytes.resize(below(bytes.size()));
        std::ofstream(folder / "damaged", std::ios::binary) << bytes;
        try {
            readElf(folder / "damaged");
        } catch (const ElfError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 100);
}

}  // namespace

}  // namespace Tesseret::Inspect
