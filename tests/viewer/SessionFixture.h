#pragma once

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fixtures/MatteFixture.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

using Fixtures::load;
using Fixtures::paint;

/// A folder with a picture of noise "a.png" and a matte "m.png" with two areas.
class SessionFixture : public Fixtures::MatteFixture {
protected:
    SessionFixture()
    {
        hasOtherHost_ = true;
        paintMatte("m.png", Fixtures::masks({Fixtures::kLow, Fixtures::kMiddle}));
    }

    Render::RenderSettings settings(const char* matte = "") const
    {
        Render::RenderSettings settings;
        settings.source = in("a.png");
        if (*matte != '\0') settings.matte = in(matte);
        settings.plugin = TESSERET_PLUGIN_FILE;
        settings.threads = 2;
        settings.parameters = {"blockSize=30", "overlap=8", "pathWidth=2", "edgeBlend=1"};
        return settings;
    }
    /// Settings with another plug-in and nothing else.
    Render::RenderSettings foreign(const char* plugin) const
    {
        Render::RenderSettings settings;
        settings.source = in("a.png");
        settings.plugin = plugin;
        return settings;
    }

    /// Runs the command in a shell, with the executable beside this program as `tesseret`.
    Fixtures::LoadedPicture pasted(std::string command, const std::string& output) const
    {
        std::filesystem::remove(in(output));
        command.replace(0, std::string("tesseret").size(), TESSERET_COMMAND);
        EXPECT_EQ(std::system(("cd / && " + command + " --quiet 2>&1").c_str()), 0) << command;
        return load(in(output));
    }
};

inline Host::Interact::Pen penAt(double x, double y)
{
    Host::Interact::Pen pen;
    pen.position = {x, y};
    return pen;
}

}  // namespace Tesseret::Viewer
