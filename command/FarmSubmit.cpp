#include "command/FarmSubmit.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <numeric>
#include <span>
#include <string_view>
#include <utility>

#include "command/FarmStatusText.h"
#include "command/FileWords.h"
#include "command/RenderOptions.h"
#include "command/RenderReporter.h"
#include "command/RenderWords.h"
#include "command/ShotOptions.h"
#include "farm/Script.h"
#include "farm/Submissions.h"
#include "files/FileThreads.h"
#include "files/Sequence.h"
#include "files/WholeFile.h"
#include "render/Interrupt.h"
#include "render/JobError.h"
#include "render/RenderJob.h"

namespace Tesseret::Command {

namespace fs = std::filesystem;
using Render::UsageError;

namespace {

constexpr const char* kFooter =
    R"(The options of "tesseret render" say what each frame is; a chunk renders its
frames with them. With temporalConsistancy=on the shot's first frame is rendered
before anything is submitted, and all chunks repeat its blocks.

Examples:
  tesseret farm submit --source plate.####.exr --matte wire.####.exr \
      --output clean.####.exr --frames 1001-2000 --chunk 20 --cpus 4 \
      --time 30:00 temporalConsistancy=on
  tesseret farm submit ... --queue print >command-lines.txt)";

struct SubmitOptions {
    RenderOptions render;
    std::vector<const CLI::Option*> renderOptions;  ///< that every chunk is given
    Farm::Resources resources;
    fs::path folder;  ///< empty: beside the output
    std::string queue = "slurm";
    int chunk = 0;
    bool isDryRun = false;
};

/// Removes a job's folder again unless the job was submitted.
class NewFolder {
public:
    explicit NewFolder(const Farm::Job& job) : folder_(job.folder)
    {
        std::error_code error;
        if (fs::exists(folder_, error) && !fs::is_empty(folder_, error)) {
            throw UsageError(folder_.string() +
                             ": holds a job already, or something else; --job-folder names another "
                             "folder");
        }
        for (const fs::path& folder : {folder_, job.logFolder(), job.statusFolder()}) {
            fs::create_directories(folder, error);
            if (error) throw UsageError(folder.string() + ": cannot be made: " + error.message());
        }
    }
    ~NewFolder()
    {
        std::error_code ignored;
        if (!kept_) fs::remove_all(folder_, ignored);
    }
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;

    void keep() { kept_ = true; }

private:
    fs::path folder_;
    bool kept_ = false;
};

fs::path absoluteName(const fs::path& file)
{
    return file.empty() ? file : fs::absolute(file).lexically_normal();
}

/// "clean.farm" for "clean.####.exr".
fs::path folderBeside(const fs::path& output)
{
    std::string name = output.stem().string();
    name.resize(std::min({name.size(), name.find('#'), name.find('%')}));
    while (!name.empty() && (name.back() == '.' || name.back() == '_' || name.back() == '-'))
        name.pop_back();
    return output.parent_path() / ((name.empty() ? "shot" : name) + ".farm");
}

Farm::Job jobFrom(const SubmitOptions& options, const Render::RenderSettings& settings)
{
    Farm::Job job;
    job.version = TESSERET_VERSION;
    job.program = fs::read_symlink("/proc/self/exe");
    job.arguments = wordsOf(options.renderOptions);
    for (const auto& [option, file] :
         {std::pair("--source=", settings.source), std::pair("--matte=", settings.matte),
          std::pair("--output=", settings.output)}) {
        if (!file.empty()) job.arguments.push_back(option + absoluteName(file).string());
    }
    job.arguments.insert(job.arguments.end(), settings.parameters.begin(),
                         settings.parameters.end());
    job.output = absoluteName(settings.output);
    job.folder = options.folder.empty() ? folderBeside(job.output) : absoluteName(options.folder);
    // "shot.farm/" is the same folder, and the job has its name.
    if (!job.folder.has_filename()) job.folder = job.folder.parent_path();
    if (!settings.matte.empty()) job.fixedInputs.push_back(absoluteName(settings.matte));
    for (const fs::path& texture : settings.textures) {
        if (!texture.empty()) job.fixedInputs.push_back(absoluteName(texture));
    }
    job.frames = settings.frames;
    job.chunkSize = options.chunk;
    job.fill = absoluteName(settings.loadFill);
    job.queue = options.queue;
    job.resources = options.resources;
    job.sums = Farm::sumsOf(job.fixedFiles(job.frames));
    return job;
}

/// Renders the shot's first frame, as `render` does, and keeps what it recorded. It has as many
/// threads as the chunks, whatever machine this is.
void saveFill(Render::RenderSettings settings, const fs::path& file, unsigned threads)
{
    settings.frames.resize(1);
    if (settings.threads == 0) settings.threads = threads;
    settings.saveFill = file;
    RenderReporter reporter(Verbosity::Quiet);
    Render::RenderJob job(std::move(settings), reporter);
    job.run();
}

/// 0: as many as may be used.
unsigned threadsOf(const Farm::Job& job)
{
    return job.queue == "slurm" ? static_cast<unsigned>(job.resources.cpus) : 0;
}

void writeScript(const Farm::Job& job)
{
    const std::string text = Farm::scriptOf(job);
    Files::writeWhole(job.script(), std::as_bytes(std::span(text)));
    fs::permissions(job.script(),
                    fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec,
                    fs::perm_options::add);
}

/// The parameters' file may change before the last chunk has run.
void keepParameters(Farm::Job& job, const fs::path& file)
{
    if (file.empty() || file.string().starts_with("{")) return;
    const fs::path kept = job.folder / "parameters.json";
    fs::copy_file(file, kept, fs::copy_options::overwrite_existing);
    for (std::string& word : job.arguments) {
        if (word.starts_with("--parameters=")) word = "--parameters=" + kept.string();
    }
}

void printPreview(const Farm::Job& job, const Farm::Queue& queue, const std::vector<int>& chunks)
{
    std::printf("Job folder: %s\n%s: %s\n\n%s", job.folder.c_str(),
                job.queue == "print" ? "Command lines" : "Command",
                queue.preview(job, chunks).c_str(), Farm::scriptOf(job).c_str());
}

void printJob(const Farm::Job& job, const std::string& id, std::size_t existing)
{
    std::FILE* const stream = job.queue == "print" ? stderr : stdout;
    if (!id.empty()) std::fprintf(stream, "Slurm job %s: ", id.c_str());
    std::fprintf(stream, "%s\n", sizeText(job.frames.size(), job.chunks().size()).c_str());
    if (existing > 0) {
        std::fprintf(stream,
                     "%zu frames have their files already, which stay as they are; remove them to "
                     "render them again\n",
                     existing);
    }
    std::fprintf(stream, "Job folder: %s\n", job.folder.c_str());
}

Render::RenderSettings shotSettings(const SubmitOptions& options)
{
    RenderOptions render = options.render;
    const std::vector<fs::path> sources = takeFileWords(render);
    if (sources.size() > 1) throw UsageError("several sources: a job renders one sequence");
    Render::RenderSettings settings = settingsFrom(optionsFor(render, sources.front()));
    if (settings.frames.empty())
        throw UsageError(settings.source.string() + ": is no sequence; name it plate.####.png");
    std::ranges::sort(settings.frames);
    settings.skipsWhole = true;
    return settings;
}

int submit(const SubmitOptions& options)
{
    const Render::RenderSettings settings = shotSettings(options);
    const std::unique_ptr<Farm::Queue> queue = Farm::queueByName(options.queue);
    if (!options.isDryRun) queue->require();
    Files::useThreads(settings.threads);
    Render::catchInterrupts();
    RenderReporter reporter(Verbosity::Quiet);
    std::size_t existing = 0;
    bool needsFill = false;
    fs::path plugin;
    {
        Render::RenderJob whole(settings, reporter);  // checks all that a render would
        plugin = absoluteName(whole.session().file());
        existing = settings.frames.size() - whole.frameCount();
        needsFill = whole.repeatsBlocks() && settings.loadFill.empty();
    }
    Farm::Job job = jobFrom(options, settings);
    // Where it is found otherwise depends on variables that a queue may not pass on.
    if (settings.plugin.empty())
        job.arguments.insert(job.arguments.begin(), "--plugin=" + plugin.string());
    if (needsFill) job.fill = job.folder / "shot.fill";
    std::vector<int> chunks(job.chunks().size());
    std::iota(chunks.begin(), chunks.end(), 0);
    if (options.isDryRun) {
        printPreview(job, *queue, chunks);
        return 0;
    }
    NewFolder folder(job);
    keepParameters(job, settings.parameterFile);
    if (needsFill) saveFill(settings, job.fill, threadsOf(job));
    Farm::writeJob(job);
    writeScript(job);
    const std::string id = Farm::submitChunks(job, *queue, chunks);
    folder.keep();
    printJob(job, id, existing);
    return 0;
}

bool isJobId(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789_") == std::string::npos;
}

void addResources(CLI::App& command, SubmitOptions& options)
{
    Farm::Resources& wanted = options.resources;
    command.add_option("--partition", wanted.partition, "Slurm: the partition to run in")
        ->type_name("NAME");
    command
        .add_option("--time", wanted.time,
                    "Slurm: the most time for one chunk: minutes, or H:MM:SS")
        ->type_name("TIME");
    command.add_option("--cpus", wanted.cpus, "Slurm: processors of each chunk (default: 1)")
        ->check(CLI::Range(1, 1024))
        ->type_name("COUNT");
    command.add_option("--memory", wanted.memory, "Slurm: memory of each chunk, as in 4G")
        ->type_name("SIZE");
    command
        .add_option("--at-most", wanted.atMost, "Slurm: how many chunks may run at the same time")
        ->check(CLI::Range(1, 100000))
        ->type_name("COUNT");
    command.add_option("--after", wanted.after, "Slurm: starts when this job has succeeded")
        ->check([](const std::string& id) {
            return isJobId(id) ? std::string() : id + ": expected the number of a job";
        })
        ->type_name("JOB");
}

void addJobOptions(CLI::App& command, SubmitOptions& options)
{
    command.add_option("--chunk", options.chunk, "Frames of each chunk: enough for some minutes")
        ->required()
        ->check(CLI::Range(1, 1000000))
        ->type_name("COUNT");
    command
        .add_option("--queue", options.queue,
                    "slurm, or print: prints the command line of each chunk, one a line, for any "
                    "other queue (default: slurm)")
        ->check(CLI::IsMember({"slurm", "print"}))
        ->type_name("QUEUE");
    command
        .add_option("--job-folder", options.folder,
                    "Folder for the job's description, script, reports and logs, seen by all "
                    "machines (default: beside the output, as in clean.farm for clean.####.exr)")
        ->type_name("DIR");
    command.add_flag("--dry-run", options.isDryRun,
                     "Checks everything and prints what would be submitted");
}

}  // namespace

void addFarmSubmit(CLI::App& farm, Action& action)
{
    const auto options = std::make_shared<SubmitOptions>();
    CLI::App* const command =
        farm.add_subcommand("submit", "Divides a shot into chunks and hands them to a queue");
    command->footer(kFooter);
    addFileOptions(*command, options->render, /*isRender=*/true);
    addMatteOptions(*command, options->render);
    addShotOptions(*command, options->render);
    addPictureOptions(*command, options->render);
    addPluginOptions(*command, options->render);
    command->remove_option(command->get_option("--save-fill"));
    // The job has these itself, the files whichever way they are given.
    constexpr std::array<std::string_view, 6> kOwn{"--help",   "--frames", "--load-fill",
                                                   "--source", "--matte",  "--output"};
    for (const CLI::Option* const option : command->get_options()) {
        const std::string name = option->get_name();
        const bool isOwn = std::ranges::find(kOwn, name) != std::end(kOwn);
        if (!isOwn) options->renderOptions.push_back(option);
    }
    addJobOptions(*command, *options);
    addResources(*command, *options);
    command->callback([options, &action] { action = [options] { return submit(*options); }; });
}

}  // namespace Tesseret::Command
