#include "command/ShotOptions.h"

namespace Tesseret::Command {

void addResumeOptions(CLI::App& command, RenderOptions& options)
{
    Render::RenderSettings& settings = options.settings;
    command.add_flag("--skip-existing", settings.skipsWhole,
                     "Leaves frames alone whose file is there, whole and of the right size");
    command.add_flag("--keep-going", settings.keepsGoing,
                     "Renders the other frames after one that fails; reports it, lists all of them "
                     "at the end and exits with 1");
}

void addShotOptions(CLI::App& command, RenderOptions& options)
{
    Render::RenderSettings& settings = options.settings;
    command
        .add_option("--first-frame", settings.firstFrame,
                    "With temporalConsistancy=on: the first frame of the shot that --frames is a "
                    "part of. It is rendered first, without being written, so that all parts "
                    "repeat the same blocks")
        ->type_name("FRAME");
    auto* const save =
        command
            .add_option("--save-fill", settings.saveFill,
                        "With temporalConsistancy=on: writes what the first frame recorded, for "
                        "--load-fill")
            ->type_name("FILE");
    command
        .add_option("--load-fill", settings.loadFill,
                    "Repeats the blocks in a file of --save-fill, without rendering the shot's "
                    "first frame again; everything but --frames and --output has to be as it was")
        ->excludes(save)
        ->type_name("FILE");
}

}  // namespace Tesseret::Command
