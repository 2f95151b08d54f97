/// Named jobs on real pictures, through the render action of one or two built plug-ins,
/// alternating, so that both run under the same load: prints the time of each and their ratio, and
/// fails when their outputs differ.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <malloc.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "files/PictureReader.h"
#include "host/Effect.h"
#include "host/EmbeddedHost.h"
#include "host/HostBehaviour.h"
#include "host/ImageMemory.h"
#include "host/Instance.h"
#include "host/Plugin.h"

namespace Tesseret::Bench {
namespace {

using Clock = std::chrono::steady_clock;
using Host::Instance;
using Shared = std::shared_ptr<const Picture>;

/// The inputs of a job. Mattes are in alpha alone.
struct Job {
    const char* name;
    const char* what;
    const char* source;   ///< a file of the folder; null: black, of `size`
    OfxPointI size;       ///< of a black source
    const char* texture;  ///< null: the source's own
    const char* matte;    ///< null: the whole window is filled
    bool cropsMatte;      ///< to the box of what is white
    bool repeats;         ///< times the second frame with temporal consistency
    std::vector<std::pair<const char*, double>> values;
    int enlarged = 1;  ///< each pixel of source and matte becomes a square of this side
};

std::vector<Job> allJobs()
{
    const OfxPointI kHd{1920, 1080}, kUhd{3840, 2160}, kNone{0, 0};
    const char* const leaves = "tex_leaves.png";
    const char* const hole = "photo_spacecraft_hole800.png";
    const char* const craft = "photo_spacecraft.png";
    return {
        {"J1", "quilt 1920x1080 from tex_leaves", nullptr, kHd, leaves, nullptr, false, false, {}},
        {"J2",
         "fill photo_coast, full matte",
         "photo_coast.png",
         kNone,
         nullptr,
         "photo_coast_matte.png",
         false,
         false,
         {}},
        {"J3",
         "fill photo_spacecraft, the 800-pixel hole",
         craft,
         kNone,
         nullptr,
         hole,
         false,
         false,
         {}},
        {"J3l",
         "J3 with luminanceMatch",
         craft,
         kNone,
         nullptr,
         hole,
         false,
         false,
         {{"luminanceMatch", 1}}},
        {"J3r",
         "J3 replayed",
         craft,
         kNone,
         nullptr,
         hole,
         false,
         true,
         {{"temporalConsistancy", 1}}},
        {"J3x4",
         "J3 with luminanceMatch, each pixel four",
         craft,
         kNone,
         nullptr,
         hole,
         false,
         false,
         {{"luminanceMatch", 1}},
         2},
        {"J4", "quilt 3840x2160 from tex_leaves", nullptr, kUhd, leaves, nullptr, false, false, {}},
        {"J5",
         "J1 with 50 samples",
         nullptr,
         kHd,
         leaves,
         nullptr,
         false,
         false,
         {{"numSamples", 50}}},
        {"J6",
         "fill photo_coast as the guide recommends",
         "photo_coast.png",
         kNone,
         nullptr,
         "photo_coast_matte.png",
         true,
         false,
         {{"blockSize", 40},
          {"overlap", 10},
          {"numSamples", 100},
          {"avoidFillRegion", 1},
          {"luminanceMatch", 1}}},
        {"hole12",
         "a 12x12 hole in a picture of 1920x1080",
         craft,
         kNone,
         nullptr,
         "12",
         true,
         false,
         {}},
    };
}

Shared load(const std::filesystem::path& file, Files::ReadAs as, Depth depth)
{
    return std::make_shared<Picture>(Files::readPicture(file, as, depth).picture);
}

/// The part of a matte that is not 0.
Shared cropped(const Picture& matte)
{
    OfxRectI box{matte.bounds().x2, matte.bounds().y2, matte.bounds().x1, matte.bounds().y1};
    for (int y = matte.bounds().y1; y < matte.bounds().y2; ++y) {
        for (int x = matte.bounds().x1; x < matte.bounds().x2; ++x) {
            if (matte.channel(x, y, 0) == 0.0) continue;
            box = {std::min(box.x1, x), std::min(box.y1, y), std::max(box.x2, x + 1),
                   std::max(box.y2, y + 1)};
        }
    }
    return std::make_shared<Picture>(matte.copied(box, matte.layout()));
}

Shared squareMatte(const Picture& source, int side, Depth depth)
{
    const int x = source.width() / 2, y = source.height() / 2;
    Picture matte({x, y, x + side, y + side}, Depth::Byte, Components::Alpha);
    for (int row = y; row < y + side; ++row) std::memset(matte.row(row), 255, std::size_t(side));
    return std::make_shared<Picture>(matte.converted(depth, Components::Alpha));
}

Shared enlarged(const Picture& picture, int side)
{
    const OfxRectI& from = picture.bounds();
    const OfxRectI to{from.x1 * side, from.y1 * side, from.x2 * side, from.y2 * side};
    Picture large(to, picture.depth(), picture.components());
    const std::size_t pixel = picture.pixelBytes();
    for (int y = to.y1; y < to.y2; ++y) {
        const auto* source =
            static_cast<const std::byte*>(picture.row(from.y1 + (y - to.y1) / side));
        auto* row = static_cast<std::byte*>(large.row(y));
        for (int x = 0; x < to.x2 - to.x1; ++x) {
            std::memcpy(row + static_cast<std::size_t>(x) * pixel,
                        source + static_cast<std::size_t>(x / side) * pixel, pixel);
        }
    }
    return std::make_shared<Picture>(std::move(large));
}

/// The pictures of a job at a depth.
struct JobPictures {
    Shared source, texture, matte;
};

JobPictures picturesOf(const Job& job, const std::filesystem::path& folder, Depth depth)
{
    JobPictures pictures;
    pictures.source =
        job.source != nullptr
            ? load(folder / job.source, Files::ReadAs::Picture, depth)
            : std::make_shared<Picture>(OfxRectI{0, 0, job.size.x, job.size.y}, depth);
    if (job.texture != nullptr) {
        pictures.texture = load(folder / job.texture, Files::ReadAs::Picture, depth);
    }
    if (job.matte == nullptr) return pictures;
    if (std::strcmp(job.matte, "12") == 0) {
        pictures.matte = squareMatte(*pictures.source, 12, depth);
        return pictures;
    }
    pictures.matte = load(folder / job.matte, Files::ReadAs::Matte, depth);
    if (job.cropsMatte) pictures.matte = cropped(*pictures.matte);
    if (job.enlarged > 1) {
        pictures.source = enlarged(*pictures.source, job.enlarged);
        pictures.matte = enlarged(*pictures.matte, job.enlarged);
    }
    return pictures;
}

/// Aborts a render at a moment, and measures what follows.
class AbortWatch final : public Host::HostBehaviour {
public:
    /// Starts the clock; from `seconds` on the answer is yes.
    void start(double seconds)
    {
        begin_ = last_ = Clock::now();
        moment_ = seconds;
        longestGap_ = 0.0;
        polls_ = passes_ = 0;
    }
    bool abortPolled(bool isAborted) override
    {
        const auto now = Clock::now();
        const double gap = std::chrono::duration<double>(now - last_).count();
        longestGap_ = std::max(longestGap_, gap);
        last_ = now;
        ++polls_;
        return isAborted || std::chrono::duration<double>(now - begin_).count() >= moment_;
    }
    OfxStatus makeCalls(Host::EmbeddedHost& host, OfxThreadFunctionV1* function, unsigned int calls,
                        void* argument) override
    {
        ++passes_;
        return HostBehaviour::makeCalls(host, function, calls, argument);
    }
    /// Calls into the host's threads.
    int passes() const { return passes_; }
    void memoryAllocated(Host::ImageBytes& bytes) override
    {
        allocated_ += bytes.size();
        peak_ = std::max(peak_, allocated_);
    }
    void memoryFreed(std::size_t bytes) override { allocated_ -= bytes; }
    /// Of image memory, bytes.
    std::size_t peak() const { return peak_; }
    /// Seconds since the moment of the abort.
    double late() const
    {
        return std::chrono::duration<double>(Clock::now() - begin_).count() - moment_;
    }
    double longestGap() const { return longestGap_; }
    int polls() const { return polls_; }

private:
    Clock::time_point begin_, last_;
    std::size_t allocated_ = 0, peak_ = 0;
    double moment_ = 0.0, longestGap_ = 0.0;
    int polls_ = 0, passes_ = 0;
};

/// One plug-in in a host of its own, ready to render a job.
class Rig {
public:
    Rig(const std::string& plugin, const Job& job, const JobPictures& pictures, unsigned threads,
        Host::HostBehaviour* behaviour = nullptr)
        : job_(job),
          host_(optionsFor(threads, behaviour)),
          output_(pictures.source->bounds(), pictures.source->depth())
    {
        const auto library = Host::PluginLibrary::load(plugin);
        effect_ = std::make_unique<Host::Effect>(host_, library, library->plugin());
        effect_->start();
        instance_ = effect_->createInstance(kOfxImageEffectContextGeneral);
        connect("Source", pictures.source);
        if (pictures.texture) {
            connect("Texture1", pictures.texture);
            instance_->set("useTexture1", 1);
            sampleWhole(*pictures.texture);
        }
        if (pictures.matte) connect("Matte", pictures.matte);
        instance_->set("fillRegion", pictures.matte ? 3 : 0);
        for (const auto& [name, value] : job.values) set(name, value);
        start_ = pictures.source;
    }

    /// Seconds of one render action.
    double render()
    {
        Host::RenderRequest request;
        request.window = output_.bounds();
        if (job_.repeats) {
            request.time = 0;
            renderOnce(request);
            request.time = 1;
        }
        return renderOnce(request);
    }
    /// A render that may be aborted.
    void tryRender()
    {
        Host::RenderRequest request;
        request.window = output_.bounds();
        instance_->renderOnly(request, &output_);
    }
    const Picture& output() const { return output_; }

private:
    static Host::HostOptions optionsFor(unsigned threads, Host::HostBehaviour* behaviour)
    {
        Host::HostOptions options;
        options.threads = threads;
        options.behaviour = behaviour;
        return options;
    }
    void connect(const char* clip, const Shared& picture)
    {
        instance_->connect(clip, std::make_shared<Host::StillSource>(picture, OfxRangeD{0.0, 1.0}));
    }
    /// The whole texture is the sample box; corners are in parts of the project.
    void sampleWhole(const Picture& texture)
    {
        const double x = (texture.width() + 0.25) / output_.width();
        const double y = (texture.height() + 0.25) / output_.height();
        instance_->set("sampleCorner1", std::vector<double>{0.0, 0.0});
        instance_->set("sampleCorner2", std::vector<double>{x, y});
    }
    void set(const char* name, double value) { instance_->set(name, static_cast<int>(value)); }
    double renderOnce(const Host::RenderRequest& request)
    {
        output_.paste(*start_);
        const auto begin = Clock::now();
        if (instance_->renderOnly(request, &output_) != kOfxStatOK) {
            throw std::runtime_error(std::string(job_.name) + ": the render failed");
        }
        return std::chrono::duration<double>(Clock::now() - begin).count();
    }

    const Job& job_;
    Host::EmbeddedHost host_;
    Picture output_;
    std::unique_ptr<Host::Effect> effect_;
    std::unique_ptr<Instance> instance_;
    Shared start_;
};

bool samePixels(const Picture& a, const Picture& b)
{
    const std::size_t rowBytes = a.pixelBytes() * static_cast<std::size_t>(a.width());
    for (int y = a.bounds().y1; y < a.bounds().y2; ++y) {
        if (std::memcmp(a.row(y), b.row(y), rowBytes) != 0) return false;
    }
    return true;
}

/// Processes that keep a core busy each, for as long as the object lives.
class Load {
public:
    explicit Load(int count)
    {
        for (int i = 0; i < count; ++i) {
            const pid_t child = ::fork();
            if (child == 0) {
                for (volatile bool forever = true; forever;) continue;
            }
            children_.push_back(child);
        }
    }
    ~Load()
    {
        for (const pid_t child : children_) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
        }
    }
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;

private:
    std::vector<pid_t> children_;
};

/// Keeps freed memory for the next render, as hosts with a pool of image memory do: else the times
/// are those of page faults, which depend on the order in which a plug-in frees its maps.
void keepFreedMemory()
{
    ::mallopt(M_MMAP_MAX, 0);
    ::mallopt(M_TRIM_THRESHOLD, -1);
}

struct Options {
    std::filesystem::path pictures;
    std::vector<std::string> plugins;
    std::vector<std::string> jobs;
    std::vector<unsigned> threads{2};
    std::string depth = "byte";
    int rounds = 7, busy = 0, aborts = 0;
};

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

Depth depthOf(const std::string& name)
{
    return name == "float" ? Depth::Float : name == "short" ? Depth::Short : Depth::Byte;
}

/// Prints a line for a job; false when the pictures differ.
bool runJob(const Job& job, const Options& options, unsigned threads)
{
    const JobPictures pictures = picturesOf(job, options.pictures, depthOf(options.depth));
    std::vector<std::unique_ptr<Rig>> rigs;
    for (const std::string& plugin : options.plugins) {
        rigs.push_back(std::make_unique<Rig>(plugin, job, pictures, threads));
    }
    std::vector<std::vector<double>> times(rigs.size());
    for (auto& rig : rigs) rig->render();  // threads and memory are there from here on
    for (int round = 0; round < options.rounds; ++round) {
        for (std::size_t i = 0; i < rigs.size(); ++i) times[i].push_back(rigs[i]->render());
    }
    std::printf("%-7s %-5s %u threads", job.name, options.depth.c_str(), threads);
    for (const auto& of : times) {
        std::printf("  %9.2f ms (min %.2f)", median(of) * 1e3, *std::ranges::min_element(of) * 1e3);
    }
    bool same = true;
    if (rigs.size() > 1) {
        std::printf("  ratio %.2f", median(times[0]) / median(times[1]));
        same = samePixels(rigs[0]->output(), rigs[1]->output());
        if (!same) std::printf("  THE PICTURES DIFFER");
    }
    std::printf("  %s\n", job.what);
    std::fflush(stdout);
    return same;
}

/// Aborts the newest plug-in at moments spread over its render; prints the longest times from an
/// abort to the return and between two polls.
void runAborts(const Job& job, const Options& options, unsigned threads)
{
    const JobPictures pictures = picturesOf(job, options.pictures, depthOf(options.depth));
    AbortWatch watch;
    Rig rig(options.plugins.back(), job, pictures, threads, &watch);
    constexpr double kNever = 1e9;
    watch.start(kNever);
    rig.tryRender();
    watch.start(kNever);
    rig.tryRender();
    const double whole = watch.late() + kNever, longestGap = watch.longestGap();
    const int polls = watch.polls(), passes = watch.passes();
    double latest = 0.0;
    for (int i = 0; i < options.aborts; ++i) {
        watch.start(whole * i / options.aborts);
        rig.tryRender();
        latest = std::max(latest, watch.late());
    }
    std::printf(
        "%-7s %-5s %u threads  %9.2f ms, %d calls into the threads, %d polls, %.2f ms apart; "
        "aborted: %.2f ms late; image memory %.1f MiB\n",
        job.name, options.depth.c_str(), threads, whole * 1e3, passes, polls, longestGap * 1e3,
        latest * 1e3, static_cast<double>(watch.peak()) / (1 << 20));
    std::fflush(stdout);
}

int run(int argc, char** argv)
{
    Options options;
    CLI::App app("Times named jobs on real pictures, with one plug-in or two in turn");
    app.add_option("pictures", options.pictures, "Folder of the jobs' pictures")->required();
    app.add_option("plugins", options.plugins,
                   "Bundles or libraries: one, or the older and the newer")
        ->required()
        ->expected(1, 2);
    app.add_option("--job", options.jobs, "Only these (J1 ...)")->delimiter(',');
    app.add_option("--threads", options.threads, "Of the host's pool")->delimiter(',');
    app.add_option("--depth", options.depth)->check(CLI::IsMember({"byte", "short", "float"}));
    app.add_option("--rounds", options.rounds)->check(CLI::Range(1, 1000));
    app.add_option("--busy", options.busy, "Processes that keep a core busy each meanwhile")
        ->check(CLI::Range(0, 64));
    app.add_option("--aborts", options.aborts,
                   "Instead, abort at this many moments and print the longest delay")
        ->check(CLI::Range(0, 1000));
    CLI11_PARSE(app, argc, argv);
    keepFreedMemory();
    const Load load(options.busy);
    bool same = true;
    for (const Job& job : allJobs()) {
        const bool wanted =
            options.jobs.empty() || std::ranges::find(options.jobs, job.name) != options.jobs.end();
        for (const unsigned threads : wanted ? options.threads : std::vector<unsigned>{}) {
            if (options.aborts > 0) {
                runAborts(job, options, threads);
            } else {
                same = runJob(job, options, threads) && same;
            }
        }
    }
    return same ? 0 : 1;
}

}  // namespace
}  // namespace Tesseret::Bench

int main(int argc, char** argv)
{
    try {
        return Tesseret::Bench::run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_jobs: %s\n", error.what());
        return 2;
    }
}
