#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Effect.h"
#include "host/HostError.h"
#include "host/Plugin.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret::Host {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using ::testing::HasSubstr;

// The loader's words.
#if defined(_WIN32)
constexpr const char* kNoLibrary = "error 193";
#else
constexpr const char* kNoLibrary = "invalid ELF header";
#endif

class PluginTest : public ::testing::Test {
protected:
    PluginTest() { fs::create_directories(folder); }
    ~PluginTest() override { fs::remove_all(folder); }

    /// The error line of a failed load.
    static std::string failure(const fs::path& file)
    {
        try {
            PluginLibrary::load(file);
        } catch (const HostError& error) {
            EXPECT_THAT(error.what(),
                        AnyOf(HasSubstr(file.string()), HasSubstr(fs::absolute(file).string())));
            EXPECT_THAT(error.what(), Not(HasSubstr("\n")));
            return error.what();
        }
        return "it loads";
    }

    fs::path folder = fs::path(::testing::TempDir()) /
                      ::testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(PluginTest, SaysWhyAFileIsNoPlugin)
{
    std::ofstream(folder / "text.ofx") << std::string(4096, 'x');
    fs::create_directories(folder / "plain");
    fs::create_directories(folder / "Empty.ofx.bundle" / "Contents");
    EXPECT_THAT(failure(folder / "absent.ofx"), HasSubstr("no such file"));
    EXPECT_THAT(failure(folder / "text.ofx"), HasSubstr(kNoLibrary));
    EXPECT_THAT(failure(folder / "plain"), HasSubstr("not a bundle"));
    EXPECT_THAT(failure(folder / "Empty.ofx.bundle"), HasSubstr("/Empty.ofx"));
    EXPECT_THAT(failure(LIBRARY_WITHOUT_SYMBOLS),
                HasSubstr("does not export OfxGetNumberOfPlugins"));
    EXPECT_THAT(failure(LIBRARY_OF_ANOTHER_API), HasSubstr("written for"));
}

TEST_F(PluginTest, FindsTheLibraryInABundle)
{
    const fs::path bundle = folder / "Invert.ofx.bundle";
    const fs::path inside = bundle / "Contents" / std::string(bundleArchitecture());
    fs::create_directories(inside);
    fs::copy_file(INVERT_PLUGIN, inside / "Invert.ofx");
    for (const fs::path& given : {bundle, bundle / ""}) {
        const auto library = PluginLibrary::load(given);
        EXPECT_EQ(library->file(), fs::absolute(inside / "Invert.ofx"));
        EXPECT_EQ(&library->plugin("org.example.invert"), &library->plugin(0));
        EXPECT_THROW(library->plugin(1), HostError);
        EXPECT_THROW(library->plugin("org.example.other"), HostError);
    }
}

TEST_F(PluginTest, LoadsPrivateCopiesApart)
{
    const auto one = PluginLibrary::load(INVERT_PLUGIN);
    const auto same = PluginLibrary::load(INVERT_PLUGIN);
    const auto copy = PluginLibrary::load(INVERT_PLUGIN, PluginLibrary::Copy::Private);
    EXPECT_EQ(&one->plugin(), &same->plugin());
    EXPECT_NE(&one->plugin(), &copy->plugin());
}

TEST_F(PluginTest, RefusesWhatThePluginRefuses)
{
    Fixtures::QuirkyHost quirky;
    EmbeddedHost host(quirky.options());
    quirky.quirks.missingSuites = {kOfxParameterSuite};
    const auto library = PluginLibrary::load(INVERT_PLUGIN);
    Effect effect(host, library, library->plugin());
    try {
        effect.start();
        FAIL() << "a load that failed was accepted";
    } catch (const HostError& error) {
        EXPECT_EQ(error.status(), kOfxStatErrMissingHostFeature);
        EXPECT_THAT(error.what(), HasSubstr("OfxActionLoad"));
        EXPECT_THAT(error.what(), HasSubstr("kOfxStatErrMissingHostFeature (4)"));
    }
    quirky.quirks.missingSuites.clear();
    effect.start();
    EXPECT_EQ(effect.description().label, "Invert");
    EXPECT_THROW(effect.createInstance(kOfxImageEffectContextGeneral), HostError);
}

}  // namespace
}  // namespace Tesseret::Host
