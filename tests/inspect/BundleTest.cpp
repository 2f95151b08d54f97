#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/LibraryCheck.h"
#include "tests/inspect/BundleFixture.h"

namespace Tesseret::Inspect {

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

TEST(Bundle, CompleteIsWell)
{
    const BundleFixture sample(FAULTY_PLUGIN);
    const Report report = sample.inspect();
    EXPECT_THAT(sample.findings(), IsEmpty());
    EXPECT_EQ(report.facts.at("systems"), nlohmann::ordered_json({"Linux-x86-64"}));
    EXPECT_THAT(report.facts.at("exports"),
                UnorderedElementsAre("OfxGetNumberOfPlugins", "OfxGetPlugin"));
    EXPECT_EQ(report.facts.at("icons").at(0).at("size"), "128 x 128");
    const auto& plugin = report.facts.at("plugins").at(0);
    EXPECT_EQ(plugin.at("identifier"), "org.example.faulty");
    EXPECT_EQ(plugin.at("version"), "1.0");
    EXPECT_EQ(plugin.at("depths"), nlohmann::ordered_json({"OfxBitDepthByte"}));
    EXPECT_EQ(plugin.at("contexts").at(0).at("clips").size(), 2u);
    EXPECT_EQ(plugin.at("contexts").at(0).at("parameters"), 1);
}

TEST(Bundle, ATrailingSlashIsPartOfNoName)
{
    const BundleFixture sample(FAULTY_PLUGIN);
    const Options options{sample.bundle().string() + "/", "2.36", std::chrono::seconds(20)};
    EXPECT_THAT(inspect(options).findings, IsEmpty());
}

TEST(Bundle, WhatIsMissingIsNamed)
{
    const std::vector<std::pair<const char*, const char*>> parts{
        {"Contents/Info.plist", "error: Contents/Info.plist: it is missing"},
        {"Contents/Resources/org.example.faulty.png",
         "warning: Contents/Resources/org.example.faulty.png: the icon is missing"},
        {"Contents/Linux-x86-64/Sample.ofx",
         "error: Contents/Linux-x86-64/Sample.ofx: the library is missing"},
        {"Contents", "error: Contents: the folder is missing"},
    };
    for (const auto& [part, message] : parts) {
        const BundleFixture sample(FAULTY_PLUGIN);
        fs::remove_all(sample.bundle() / part);
        EXPECT_THAT(sample.findings(), ElementsAre(StartsWith(message)));
    }
}

TEST(Bundle, WrongNamesAreFound)
{
    const BundleFixture sample(FAULTY_PLUGIN);
    fs::create_directory(sample.contents() / "linux");
    EXPECT_THAT(sample.findings(), ElementsAre(HasSubstr("Contents/linux: no host looks into")));
    fs::remove(sample.contents() / "linux");

    fs::rename(sample.file(), sample.file().parent_path() / "Other.ofx");
    EXPECT_THAT(sample.findings(), ElementsAre(HasSubstr("its folder holds Other.ofx")));

    const Options folder{sample.contents(), "2.36", std::chrono::seconds(20)};
    EXPECT_EQ(inspect(folder).findings.at(0).text,
              "it is a folder, but not called NAME.ofx.bundle");
}

TEST(Bundle, PropertyListsAreRead)
{
    const BundleFixture sample(FAULTY_PLUGIN);
    const std::vector<std::pair<std::string, const char*>> texts{
        {BundleFixture::infoText("Other.ofx"), "CFBundleExecutable is \"Other.ofx\""},
        {"", "it is no XML"},
        {"bplist00\xd1\x01", "it is no XML"},
        {"<plist><dict><key>CFBundleExecutable</key>", "it is no XML"},
        {"<plist><array/></plist>", "no <plist> with a <dict>"},
    };
    for (const auto& [text, message] : texts) {
        BundleFixture::write(sample.info(), text);
        EXPECT_THAT(sample.findings(), ElementsAre(HasSubstr(message))) << text;
    }
    BundleFixture::write(sample.info(),
                         "<plist><dict><key>CFBundleExecutable</key>"
                         "<string>Sample.ofx</string></dict></plist>");
    EXPECT_THAT(sample.findings(), ElementsAre(HasSubstr("CFBundleIdentifier is missing"),
                                               HasSubstr("CFBundlePackageType is \"\"")));
}

TEST(Bundle, IconsAreSquarePngs)
{
    const BundleFixture sample(FAULTY_PLUGIN);
    BundleFixture::write(sample.icon(), BundleFixture::pngStart(64));
    EXPECT_THAT(sample.findings(), ElementsAre(HasSubstr("it has 64 x 64 pixels")));
    BundleFixture::write(sample.icon(), "GIF89a");
    EXPECT_THAT(sample.findings(), ElementsAre(HasSubstr("it is not a PNG")));
    fs::remove(sample.icon());
    BundleFixture::write(fs::path(sample.icon()).replace_extension(".svg"), "<svg/>");
    EXPECT_THAT(sample.findings(), ElementsAre(HasSubstr("as SVG only")));
}

TEST(Library, WithoutTheTwoFunctionsIsNotLoaded)
{
    const BundleFixture sample(LIBRARY_WITHOUT_SYMBOLS);
    EXPECT_THAT(sample.findings(),
                ElementsAre(HasSubstr("it does not export OfxGetNumberOfPlugins"),
                            HasSubstr("it does not export OfxGetPlugin"),
                            AllOf(StartsWith("warning"), HasSubstr("also exports somethingElse"))));
}

TEST(Library, TextAndTruncatedFilesAreNamed)
{
    const BundleFixture sample(FAULTY_PLUGIN);
    fs::resize_file(sample.file(), fs::file_size(sample.file()) / 2);
    EXPECT_THAT(sample.findings(), ElementsAre(StartsWith("error: Sample.ofx: ")));
    BundleFixture::write(sample.file(), "no library");
    EXPECT_THAT(sample.findings(), ElementsAre("error: Sample.ofx: it is not an ELF file"));
    BundleFixture::write(sample.file(), "");
    EXPECT_THAT(sample.findings(), ElementsAre("error: Sample.ofx: it is not an ELF file"));
}

TEST(Library, AProgramIsNoPlugin)
{
    const BundleFixture sample("/proc/self/exe");
    EXPECT_THAT(sample.findings(), testing::Contains(HasSubstr("does not export OfxGetPlugin")));
}

TEST(Library, NewFunctionsOfTheCLibraryAreNamed)
{
    const BundleFixture sample(FAULTY_PLUGIN);
    Report report;
    checkLibrary(sample.file(), "2.2", report);
    ASSERT_EQ(report.findings.size(), 1u);
    EXPECT_THAT(report.findings[0].text,
                AllOf(HasSubstr("it needs glibc 2."), HasSubstr("newer than 2.2")));
    EXPECT_TRUE(isNewer("2.28", "2.9"));
    EXPECT_TRUE(isNewer("2.2.5", "2.2"));
    EXPECT_FALSE(isNewer("2.28", "2.28"));
}

}  // namespace

}  // namespace Tesseret::Inspect
