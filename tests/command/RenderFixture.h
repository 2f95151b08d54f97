#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/command/CommandRun.h"
#include "tests/command/TestPictures.h"
#include "tests/files/TemporaryFolder.h"

namespace Tesseret::Command {

/// "o.0012.png" of "o.%04d.png" and 12.
inline std::string numbered(const char* pattern, int number)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), pattern, number);
    return text.data();
}

/// Renders in a folder of its own.
class RenderFixture : public testing::Test {
protected:
    std::string in(const std::string& name) const { return (folder_ / name).string(); }

    /// `tesseret render` of a source to an output in the folder.
    Outcome render(const std::string& source, const std::string& output,
                   CommandRun::Arguments more = {}) const
    {
        more.insert(more.begin(), {"render", "--source", in(source), "--output", in(output)});
        return run(more);
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
            all.push_back(entry.path().filename().string());
        }
        return all;
    }

    Files::TemporaryFolder folder_;
};

}  // namespace Tesseret::Command
