#pragma once

/// Shared by the tests of whole renders: hosts whose instance is ready to render, with and without
/// a matte, and the check that an instance recovers from faults.

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fixtures/TestHost.h"

namespace Tesseret::EndToEnd {

inline constexpr OfxRectI kBounds{0, 0, 96, 70};

/// A host whose instance is ready to render a picture of 96 x 70 pixels.
struct Rig : Fixtures::TestHost {
    explicit Rig(Depth depth = Depth::Byte, const Fixtures::HostQuirks& quirks = {},
                 unsigned int threads = 2, const char* context = kOfxImageEffectContextFilter)
        : TestHost(quirks, threads)
    {
        create(context, depth, kBounds);
        instance().set("blockSize", 30);
        instance().set("overlap", 10);
        instance().set("numSamples", 4);
        instance().set("seed", 9);
    }
    ~Rig()
    {
        destroyInstance();
        expectClean();
    }
};

inline Picture plainRender(Depth depth = Depth::Byte)
{
    return Rig(depth).render();
}

/// How much of a pixel is masked, 0 to 1.
using Shape = std::function<double(int x, int y)>;

inline double disc(int x, int y)
{
    return (x - 48) * (x - 48) + (y - 35) * (y - 35) < 14 * 14 ? 1.0 : 0.0;
}

std::shared_ptr<Picture> mattePicture(const Shape& shape, Depth depth, OfxRectI bounds = kBounds);

/// The same with a matte over a disc in the middle, and lengths that suit so small a picture.
struct MaskedRig : Rig {
    explicit MaskedRig(Depth depth = Depth::Byte, const Fixtures::HostQuirks& quirks = {},
                       unsigned int threads = 2)
        : Rig(depth, quirks, threads, kOfxImageEffectContextGeneral)
    {
        connect("Matte", mattePicture(disc, depth));
        instance().set("pathWidth", 4.0);
        instance().set("edgeBlend", 1.0);
        instance().set("luminanceBlur", 10.0);
    }
};

/// Keeps the reports to an observer.
class NoteListener final : public Host::RenderListener {
public:
    void stageBegan(Host::Instance&, std::string_view stage) override
    {
        ++open;
        stages.emplace_back(stage);
    }
    void stageEnded(Host::Instance&, std::string_view) override { --open; }
    void blockLaid(Host::Instance&, const TesseretBlockV1& block) override
    {
        blocks.push_back(block);
    }
    void note(Host::Instance&, std::string_view text) override { notes.emplace_back(text); }

    int open = 0;
    std::vector<TesseretBlockV1> blocks;
    std::vector<std::string> notes, stages;
};

/// Whether nothing was written into an output that was all zeros.
bool isBlack(const Picture& picture);

/// A call that can be made to fail, and how often it was called.
struct Fault {
    unsigned int Fixtures::HostQuirks::*order;
    unsigned int Fixtures::Counters::*calls;
};
inline constexpr Fault kAbort{&Fixtures::HostQuirks::abortFromPoll,
                              &Fixtures::Counters::abortPolls};
inline constexpr Fault kFetch{&Fixtures::HostQuirks::failFetch, &Fixtures::Counters::fetchCalls};
inline constexpr Fault kAllocation{&Fixtures::HostQuirks::failAllocation,
                                   &Fixtures::Counters::allocations};
inline constexpr Fault kLock{&Fixtures::HostQuirks::failLock, &Fixtures::Counters::locks};

/// Makes each call fail in turn, until a render makes no more of them. After every fault nothing is
/// leaked and the next render on the same instance is right; `check` receives the number of the
/// failed call, the status and the output.
void expectRecovery(Rig& rig, const Fault& fault,
                    const std::function<void(unsigned int call, OfxStatus, const Picture&)>& check);

}  // namespace Tesseret::EndToEnd
