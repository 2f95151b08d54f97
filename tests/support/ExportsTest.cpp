#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Effect.h"
#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "host/Plugin.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret {
namespace {

using ::testing::AnyOf;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

TEST(Plugin, SurvivesInstancesCreatedAndDestroyedOnTwoThreads)
{
    const auto library = Host::PluginLibrary::load(TESSERET_PLUGIN_FILE);
    EXPECT_STREQ(library->plugin().pluginIdentifier, "com.orvane.brisant.tesseret");
    EXPECT_EQ(library->plugin().pluginVersionMajor, 2u);
    EXPECT_EQ(library->plugin().pluginVersionMinor, 1030000u);
    Fixtures::QuirkyHost quirky;
    Host::EmbeddedHost host(quirky.options());
    Host::Effect effect(host, library, library->plugin());
    effect.start();
    effect.describeInContext(kOfxImageEffectContextGeneral);
    const auto live = [&] {
        for (int i = 0; i < 10; ++i) effect.createInstance(kOfxImageEffectContextGeneral);
    };
    std::thread other(live);
    live();
    other.join();
    EXPECT_THAT(quirky.calls.badCalls(), IsEmpty());
}

// The library for Windows is checked by scripts/check-windows.sh, from outside.
#if !defined(_WIN32)
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

// A sanitizer brings libraries of its own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(Plugin, NeedsNoLibraryButTheSystems)
{
    const auto needed = lastWords(linesOf("readelf --dynamic --wide"), "(NEEDED)");
    ASSERT_THAT(needed, Not(IsEmpty()));
    EXPECT_THAT(needed,
                Each(MatchesRegex("\\[(libc|libm|libpthread|libdl|ld-linux.*)\\.so\\.[0-9]+\\]")));
    const auto resolved = linesOf("ldd -r 2>&1");
    ASSERT_THAT(resolved, Not(IsEmpty()));
    EXPECT_THAT(resolved, Each(Not(AnyOf(HasSubstr("not found"), HasSubstr("undefined")))));
}
#endif
#endif

}  // namespace
}  // namespace Tesseret
