#pragma once

/// A bundle made for a test from any library, complete until the test takes something away.

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "inspect/Inspection.h"
#include "tests/fixtures/TemporaryFolder.h"

namespace Tesseret::Inspect {

class BundleFixture {
public:
    explicit BundleFixture(const std::filesystem::path& library)
    {
        std::filesystem::create_directories(file().parent_path());
        std::filesystem::create_directories(icon().parent_path());
        std::filesystem::copy_file(library, file());
        write(info(), infoText("Sample.ofx"));
        write(icon(), pngStart(128));
    }

    std::filesystem::path bundle() const { return folder_ / "Sample.ofx.bundle"; }
    std::filesystem::path contents() const { return bundle() / "Contents"; }
    std::filesystem::path file() const { return contents() / "Linux-x86-64" / "Sample.ofx"; }
    std::filesystem::path info() const { return contents() / "Info.plist"; }
    std::filesystem::path icon() const { return contents() / "Resources/org.example.faulty.png"; }

    static void write(const std::filesystem::path& file, const std::string& text)
    {
        std::ofstream(file, std::ios::binary) << text;
    }
    static std::string infoText(const std::string& executable)
    {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CFBundleExecutable</key>"
               "<string>" +
               executable +
               "</string><key>CFBundleIdentifier</key><string>org.example</string>"
               "<key>Other</key><true/><key>CFBundlePackageType</key><string>BNDL</string>"
               "</dict></plist>";
    }
    /// As far as a PNG is read: up to its size, the same in both directions.
    static std::string pngStart(unsigned char size)
    {
        const std::string side = {'\0', '\0', '\0', static_cast<char>(size)};
        return std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) + side + side;
    }

    Report inspect(std::chrono::milliseconds limit = std::chrono::seconds(20)) const
    {
        return Inspect::inspect({.bundle = bundle(), .newestGlibc = "2.36", .limit = limit});
    }
    /// Each finding as "severity: about: text".
    std::vector<std::string> findings(
        std::chrono::milliseconds limit = std::chrono::seconds(20)) const
    {
        std::vector<std::string> lines;
        for (const Finding& finding : inspect(limit).findings) {
            lines.push_back((finding.severity == Severity::Error ? "error: " : "warning: ") +
                            finding.about + ": " + finding.text);
        }
        return lines;
    }

private:
    Fixtures::TemporaryFolder folder_;
};

}  // namespace Tesseret::Inspect
