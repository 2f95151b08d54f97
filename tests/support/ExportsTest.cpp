#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tesseret {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

/// The lines that a shell command prints about the built plug-in.
std::vector<std::string> linesOf(const std::string& command)
{
    const std::string whole = command + " '" + TESSERET_PLUGIN_FILE + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(whole.c_str(), "r"), pclose);
    std::vector<std::string> lines;
    std::array<char, 4096> line{};
    while (pipe != nullptr && std::fgets(line.data(), line.size(), pipe.get()) != nullptr) {
        lines.emplace_back(line.data());
        while (!lines.back().empty() && lines.back().back() == '\n') lines.back().pop_back();
    }
    return lines;
}

/// The last word of each line that holds `marker`.
std::vector<std::string> lastWords(const std::vector<std::string>& lines, const char* marker)
{
    std::vector<std::string> words;
    for (const std::string& line : lines) {
        if (line.find(marker) == std::string::npos) continue;
        words.push_back(line.substr(line.find_last_of(' ') + 1));
    }
    return words;
}

TEST(Plugin, ExportsItsTwoFunctionsAndNothingElse)
{
    EXPECT_THAT(lastWords(linesOf("nm -D --defined-only"), " "),
                UnorderedElementsAre("OfxGetNumberOfPlugins", "OfxGetPlugin"));
}

TEST(Plugin, NeedsNoLibraryButTheSystems)
{
    const auto needed = lastWords(linesOf("readelf --dynamic --wide"), "(NEEDED)");
    ASSERT_THAT(needed, Not(IsEmpty()));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_THAT(needed, Each(MatchesRegex("\\[(libc|libm|ld-linux.*)\\.so\\.[0-9]+\\]")));
#endif
    EXPECT_THAT(linesOf("ldd -r 2>&1"),
                Each(Not(::testing::AnyOf(::testing::HasSubstr("not found"),
                                          ::testing::HasSubstr("undefined symbol")))));
}

}  // namespace
}  // namespace Tesseret
