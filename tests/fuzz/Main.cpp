// Runs a fuzzer's entry function without a fuzzer: on kept cases, and on seeds.
// Usage: PROGRAM [FILE|FOLDER ...] [--seeds FIRST COUNT]

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

void runFile(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::printf("%s cannot be read\n", file.c_str());
        std::exit(2);
    }
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

void runFiles(const fs::path& path)
{
    if (!fs::is_directory(path)) return runFile(path);
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(path)) files.push_back(entry.path());
    std::ranges::sort(files);
    for (const fs::path& file : files) runFile(file);
}

/// Each seed is the input of its decimal digits.
void runSeeds(unsigned long first, unsigned long count)
{
    for (unsigned long seed = first; seed < first + count; ++seed) {
        const std::string digits = std::to_string(seed);
        std::printf("\rseed %s ", digits.c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(digits.data()), digits.size());
    }
    std::printf("\n");
}

}  // namespace

int main(int count, char** arguments)
{
    for (int i = 1; i < count; ++i) {
        if (std::strcmp(arguments[i], "--seeds") == 0 && i + 2 < count) {
            runSeeds(std::strtoul(arguments[i + 1], nullptr, 10),
                     std::strtoul(arguments[i + 2], nullptr, 10));
            i += 2;
        } else {
            runFiles(arguments[i]);
        }
    }
    return 0;
}
