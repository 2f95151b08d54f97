#include "command/ViewCommand.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "command/RenderOptions.h"
#include "files/FileThreads.h"
#include "render/JobError.h"
#include "viewer/window/UserCommand.h"
#include "viewer/window/Viewer.h"

namespace Tesseret::Command {

namespace {

constexpr const char* kFooter =
    R"(Files and parameters are the same as for "tesseret render". Without --source the
window is empty, and a picture is opened there. Paint over what should go; the fill
follows after each stroke. "Choose settings" looks for those whose fill shows least.

Examples:
  tesseret view --source plate.png
  tesseret view --source plate.png --matte hole.png --output out.png blockSize=64

Mouse and keys:)";

struct ViewOptions {
    RenderOptions render;
    std::string size = "1280x800";
    bool choosesNothing = false;
};

Viewer::WindowSize sizeFrom(const std::string& text)
{
    Viewer::WindowSize size{};
    char end = 0;
    const int count = std::sscanf(text.c_str(), "%dx%d%c", &size.width, &size.height, &end);
    const bool isFit = count == 2 && size.width >= 640 && size.height >= 400 &&
                       size.width <= 16384 && size.height <= 16384;
    if (!isFit) {
        throw Render::UsageError("--size " + text + ": expected WxH, 640x400 to 16384x16384");
    }
    return size;
}

/// Other files than the source mean nothing without it.
void checkFiles(const Render::RenderSettings& settings)
{
    if (!settings.source.empty()) return;
    const auto require = [](const std::filesystem::path& file, const char* option) {
        if (!file.empty()) throw Render::UsageError(std::string(option) + " requires --source");
    };
    require(settings.matte, "--matte");
    require(settings.textures[0], "--texture1");
    require(settings.textures[1], "--texture2");
    require(settings.textures[2], "--texture3");
    require(settings.output, "--output");
    if (!settings.frames.empty()) throw Render::UsageError("--frames requires --source");
}

/// As `fill` does, unless the user has said how to fill.
bool choosesSettings(const ViewOptions& options, const Render::RenderSettings& settings)
{
    const bool isFree =
        settings.parameters.empty() && settings.parameterFile.empty() && !settings.sampleBox;
    return isFree && !settings.matte.empty() && !options.choosesNothing;
}

int view(const ViewOptions& options)
{
    const Viewer::WindowSize size = sizeFrom(options.size);
    const Render::RenderSettings settings = settingsFrom(options.render);
    checkFiles(settings);
    Files::useThreads(settings.threads);
    std::unique_ptr<Viewer::ViewSession> session;
    if (!settings.source.empty()) session = std::make_unique<Viewer::ViewSession>(settings);
    Viewer::Viewer viewer(std::move(session), settings, size, choosesSettings(options, settings));
    viewer.run();
    return 0;
}

}  // namespace

void addViewCommand(CLI::App& app, Action& action)
{
    const auto options = std::make_shared<ViewOptions>();
    CLI::App* const command =
        app.add_subcommand("view", "Shows a picture, its fill and the parameters in a window");
    command->footer(kFooter + Viewer::keysText());
    addFileOptions(*command, options->render, /*isRender=*/false);
    addMatteOptions(*command, options->render);
    addPluginOptions(*command, options->render);
    command->add_flag("--no-choose", options->choosesNothing,
                      "Starts with the plug-in's defaults. Without it settings are chosen for "
                      "the matte as \"tesseret fill\" does, unless name=value, --parameters or "
                      "--sample-box is given");
    command->add_option("--size", options->size, "Size of the window (default: 1280x800)")
        ->type_name("WxH");
    command->callback([options, &action] { action = [options] { return view(*options); }; });
}

}  // namespace Tesseret::Command
