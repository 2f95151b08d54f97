// Renders what an input asks for, three times with other contents in fresh image memory. No pixel
// outside of what may be written changes, nor any input; nothing is leaked; an abort is heeded; and
// the pictures are the same. Also the fuzzer's entry function.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <sstream>

#include "host/Effect.h"
#include "tests/fuzz/RenderCase.h"
#include "tests/fuzz/RenderHost.h"

namespace Tesseret::Fuzz {
namespace {

using namespace Tesseret::Host;

/// Pixels round every image that nobody may touch.
constexpr int kMargin = 4;
constexpr std::byte kCanary{0x5C};
constexpr unsigned int kMostThreads = 4;
/// An abort is polled for so many times at most after the first yes, by each thread.
constexpr unsigned int kPollsAfterAbort = 40;
/// Zeros, noise, and not-a-numbers.
constexpr std::uint32_t kFreshWords[] = {0x00000000u, 0xA5A5A5A5u, 0x7FC00000u};

std::string described(const RenderCase& asked);
const RenderCase* theCase = nullptr;  ///< the one that runs

[[noreturn]] void fail(const std::string& text)
{
    std::printf("FOUND: %s\n%s", text.c_str(), described(*theCase).c_str());
    std::fflush(stdout);
    std::abort();
}

void require(bool holds, const char* text)
{
    if (!holds) fail(text);
}

using Bytes = std::vector<std::byte>;

/// A picture with a margin, and what the plug-in sees of it.
struct Shown {
    Shown(const ImageShape& shape, Depth depth, Components components)
        : picture({-kMargin, -kMargin, shape.width + kMargin, shape.height + kMargin}, depth,
                  components, shape.layout),
          width(shape.width),
          height(shape.height),
          corner(shape.corner)
    {
        for (int y = picture.bounds().y1; y < picture.bounds().y2; ++y) {
            std::fill_n(picture.row(y), rowSize(), kCanary);
        }
        picture.setRegionOfDefinition({0, 0, width, height});
    }
    std::size_t rowSize() const { return static_cast<std::size_t>(std::abs(picture.rowBytes())); }
    RenderHost::View view()
    {
        return {{corner.x, corner.y, corner.x + width, corner.y + height},
                picture.pixel<std::byte>(0, 0)};
    }
    /// Everything, the margin and the padding too.
    Bytes bytes() const
    {
        Bytes all;
        for (int y = picture.bounds().y1; y < picture.bounds().y2; ++y) {
            all.insert(all.end(), picture.row(y), picture.row(y) + rowSize());
        }
        return all;
    }

    Picture picture;
    int width, height;
    OfxPointI corner;
};

/// Blotches in noise; alpha and mattes are blotches only.
void paint(Shown& shown, std::uint32_t noise, bool isWild)
{
    Picture& picture = shown.picture;
    const Depth depth = picture.depth();
    const double full = depth == Depth::Byte ? 255.0 : depth == Depth::Short ? 65535.0 : 1.0;
    for (int y = 0; y < shown.height; ++y) {
        for (int x = 0; x < shown.width; ++x) {
            for (int c = 0; c < picture.channels(); ++c) {
                noise = noise * 1664525u + 1013904223u;
                const bool isAlpha = c == 3 || picture.channels() == 1;
                const bool isInside = (x * 5 / shown.width) % 4 == 1 || (y * 3 / shown.height) == 2;
                const double part = isAlpha ? (isInside ? 1.0 : 0.0) : (noise >> 16) / 65535.0;
                double value = depth == Depth::Float ? part : static_cast<int>(part * full);
                if (isWild && depth == Depth::Float && noise % 97u == 0) {
                    constexpr double kWild[] = {std::numeric_limits<double>::quiet_NaN(), 1e30,
                                                -1e30, std::numeric_limits<double>::infinity()};
                    value = kWild[noise / 97u % 4u];
                }
                picture.setChannel(x, y, c, value);
            }
        }
    }
}

/// The same picture at every time and scale.
class Still final : public ClipSource {
public:
    Still(std::shared_ptr<Shown> shown, double aspect) : shown_(std::move(shown)), aspect_(aspect)
    {
        shown_->picture.setPixelAspectRatio(aspect);
    }
    ClipFormat format() const override
    {
        return {.depth = shown_->picture.depth(),
                .components = shown_->picture.components(),
                .pixelAspectRatio = aspect_};
    }
    OfxRangeD frameRange() const override { return {-1e6, 1e6}; }
    OfxRectD regionOfDefinition(OfxTime /*time*/) const override
    {
        const OfxRectI bounds = shown_->view().bounds;
        return {double(bounds.x1), double(bounds.y1), double(bounds.x2), double(bounds.y2)};
    }
    std::shared_ptr<const Picture> picture(OfxTime /*time*/, OfxPointD /*scale*/) override
    {
        return {shown_, &shown_->picture};
    }

private:
    std::shared_ptr<Shown> shown_;
    double aspect_;
};

/// One host and one plug-in for all cases.
struct Setup {
    RenderHost behaviour;
    EmbeddedHost host{{.threads = kMostThreads, .behaviour = &behaviour}};
    std::unique_ptr<Effect> effect;

    Setup()
    {
        const char* named = std::getenv("TESSERET_TEST_PLUGIN");
        auto library = PluginLibrary::load(named != nullptr ? named : TESSERET_PLUGIN_FILE);
        OfxPlugin& plugin = library->plugin();
        effect = std::make_unique<Effect>(host, std::move(library), plugin);
        effect->start();
    }
};

Setup& setup()
{
    static auto* const theSetup = new Setup;  // outlives the fuzzer's other statics
    return *theSetup;
}

/// The case in a few lines, for whoever looks into a find.
std::string described(const RenderCase& asked)
{
    std::ostringstream text;
    const auto rect = [](const OfxRectI& r) {
        return std::to_string(r.x1) + " " + std::to_string(r.y1) + " " + std::to_string(r.x2) +
               " " + std::to_string(r.y2);
    };
    const auto image = [&](const char* name, const ImageShape& shape) {
        if (!shape.isConnected) return;
        text << name << ": " << shape.width << " x " << shape.height << " at " << shape.corner.x
             << ", " << shape.corner.y << "\n";
    };
    text << depthName(asked.depth) << ", " << asked.threads << " threads, scale " << asked.scale
         << ", aspect " << asked.aspect << "\n";
    image("Output", asked.output);
    for (std::size_t i = 0; i < kInputs.size(); ++i) image(kInputs[i], asked.inputs[i]);
    for (const auto& [name, value] : asked.parameters) {
        text << name << " =";
        if (const int* integer = std::get_if<int>(&value)) text << " " << *integer;
        if (const double* real = std::get_if<double>(&value)) text << " " << *real;
        if (const auto* reals = std::get_if<std::vector<double>>(&value)) {
            for (const double real : *reals) text << " " << real;
        }
        text << "\n";
    }
    for (const RenderStep& step : asked.steps) {
        text << "time " << step.time << ", window " << rect(step.window) << ", abort from "
             << step.abortFromPoll << ", refused " << step.refusedAllocation << "\n";
    }
    return text.str();
}

/// The ends of a range, each clamped to the image as an inclusive end: a window beside the image is
/// the image's nearest column or row.
std::pair<int, int> clampedEnds(int begin, int end, int low, int high)
{
    const auto last = std::clamp<std::int64_t>(std::int64_t{end} - 1, low, high - 1);
    return {std::clamp(begin, low, high - 1), static_cast<int>(last) + 1};
}

/// The part of the image that a render may write.
OfxRectI mayWrite(const RenderCase& asked, const RenderStep& step, bool isReplay,
                  const OfxRectI& image)
{
    // Fills of a region and repeated blocks write their own rectangle.
    if (asked.fillRegion != 0 || isReplay) return image;
    const auto [x1, x2] = clampedEnds(step.window.x1, step.window.x2, image.x1, image.x2);
    const auto [y1, y2] = clampedEnds(step.window.y1, step.window.y2, image.y1, image.y2);
    return {x1, y1, x2, y2};
}

void checkWritten(const Shown& before, Shown& after, const OfxRectI& allowed)
{
    const Picture& picture = after.picture;
    const std::size_t pixel = picture.pixelBytes();
    const OfxRectI bounds = picture.bounds();
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        const std::byte* was = before.picture.row(y);
        const std::byte* is = picture.row(y);
        const auto used = pixel * static_cast<std::size_t>(picture.width());
        require(std::memcmp(was + used, is + used, after.rowSize() - used) == 0,
                "the padding of a row was written");
        for (int x = bounds.x1; x < bounds.x2; ++x, was += pixel, is += pixel) {
            if (std::memcmp(was, is, pixel) == 0) continue;
            const bool isInside = x >= 0 && x < after.width && y >= 0 && y < after.height;
            require(isInside, "a pixel outside the image was written");
            const std::int64_t ax = std::int64_t{after.corner.x} + x;
            const std::int64_t ay = std::int64_t{after.corner.y} + y;
            if (ax >= allowed.x1 && ax < allowed.x2 && ay >= allowed.y1 && ay < allowed.y2) {
                continue;
            }
            fail("the pixel " + std::to_string(x) + ", " + std::to_string(y) +
                 " outside the window was written");
        }
    }
}

/// What a render left.
struct Outcome {
    OfxStatus status = kOfxStatOK;
    Bytes picture;
    bool mayDiffer = false;  ///< an abort or a lack of memory that threads come to in any order
};

/// The renders of a case on a new instance.
class CaseRun {
public:
    CaseRun(const RenderCase& asked, std::uint32_t freshWord) : asked_(asked)
    {
        behaviour_.threads = asked.threads;
        behaviour_.freshWord = freshWord;
        behaviour_.views.clear();
        behaviour_.badCalls = 0;
        instance_ = setup().effect->createInstance(asked.isGeneral ? kOfxImageEffectContextGeneral
                                                                   : kOfxImageEffectContextFilter);
        for (std::size_t i = 0; i < kInputs.size(); ++i) connect(i);
        for (const auto& [name, value] : asked.parameters) instance_->set(name, value);
    }

    std::vector<Outcome> run()
    {
        std::vector<Outcome> outcomes;
        for (const RenderStep& step : asked_.steps) {
            outcomes.push_back(render(step));
            wasShort_ = wasShort_ || outcomes.back().mayDiffer;
            outcomes.back().mayDiffer = wasShort_;
        }
        instance_.reset();
        require(behaviour_.blocksLive == 0, "image memory was not freed");
        require(behaviour_.imagesLive == 0, "an image was not released");
        require(behaviour_.badCalls == 0, "the plug-in made a wrong call");
        for (std::size_t i = 0; i < inputs_.size(); ++i) {
            require(inputs_[i]->bytes() == inputBytes_[i], "an input was written");
        }
        return outcomes;
    }

private:
    void connect(std::size_t index)
    {
        const ImageShape& shape = asked_.inputs[index];
        if (!shape.isConnected) return;
        const bool isMatte = index + 1 == kInputs.size();
        auto shown = std::make_shared<Shown>(shape, asked_.depth,
                                             isMatte ? Components::Alpha : Components::RGBA);
        paint(*shown, asked_.noise + static_cast<unsigned int>(index), asked_.hasWildFloats);
        behaviour_.views[kInputs[index]] = shown->view();
        inputs_.push_back(shown);
        inputBytes_.push_back(shown->bytes());
        instance_->connect(kInputs[index], std::make_shared<Still>(shown, asked_.aspect));
    }

    Outcome render(const RenderStep& step)
    {
        Shown output(asked_.output, asked_.depth, Components::RGBA);
        const Shown before(asked_.output, asked_.depth, Components::RGBA);
        behaviour_.views[kOfxImageEffectOutputClipName] = output.view();
        behaviour_.reset();
        behaviour_.abortFromPoll = step.abortFromPoll;
        behaviour_.refusedAllocation = step.refusedAllocation;
        Outcome outcome;
        outcome.status = instance_->render(
            {.time = step.time, .window = step.window, .scale = {asked_.scale, asked_.scale}},
            output.picture);
        const unsigned int polls = behaviour_.polls;
        const bool isAborted = step.abortFromPoll != 0 && polls >= step.abortFromPoll;
        require(!isAborted || polls - step.abortFromPoll <= kPollsAfterAbort * asked_.threads,
                "an abort was not heeded");
        const bool isReplay = std::get<int>(instance_->value("temporalConsistancy")) != 0 &&
                              &step != asked_.steps.data();
        checkWritten(before, output, mayWrite(asked_, step, isReplay, output.view().bounds));
        outcome.picture = output.bytes();
        outcome.mayDiffer = asked_.threads > 1 &&
                            (behaviour_.wasRefused || isAborted || behaviour_.hasLongRendered);
        return outcome;
    }

    const RenderCase& asked_;
    RenderHost& behaviour_ = setup().behaviour;
    std::unique_ptr<Instance> instance_;
    std::vector<std::shared_ptr<Shown>> inputs_;
    std::vector<Bytes> inputBytes_;
    bool wasShort_ = false;
};

void tryCase(std::span<const std::uint8_t> input)
{
    Choices choices(input);
    const RenderCase asked = makeRenderCase(choices);
    theCase = &asked;
    std::vector<Outcome> first;
    for (const std::uint32_t word : kFreshWords) {
        std::vector<Outcome> outcomes = CaseRun(asked, word).run();
        if (first.empty()) first = outcomes;
        for (std::size_t i = 0; i < outcomes.size(); ++i) {
            if (outcomes[i].mayDiffer || first[i].mayDiffer) continue;
            require(outcomes[i].status == first[i].status, "fresh memory changes the status");
            const auto [was, is] = std::ranges::mismatch(first[i].picture, outcomes[i].picture);
            if (is == outcomes[i].picture.end()) continue;
            fail("fresh memory changes the picture of render " + std::to_string(i) + " at byte " +
                 std::to_string(is - outcomes[i].picture.begin()));
        }
    }
}

}  // namespace
}  // namespace Tesseret::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Tesseret::Fuzz::tryCase({data, size});
    return 0;
}
