#pragma once

/// The plug-in's own overlay in the embedded host, over a project of 400 x 300 units. The sample
/// box lies at (80, 60)-(320, 240).

#include <gmock/gmock.h>

#include "host/Interact.h"
#include "tests/fixtures/OffscreenGl.h"
#include "tests/fixtures/TestHost.h"

namespace Tesseret::Fixtures {

struct OverlayRig : TestHost {
    explicit OverlayRig(const Fixtures::HostQuirks& quirks = {}) : TestHost(quirks)
    {
        create(kOfxImageEffectContextFilter, Depth::Byte, {0, 0, 400, 300});
        overlay = std::make_unique<Host::Interact>(instance());
    }
    ~OverlayRig()
    {
        overlay.reset();
        destroyInstance();
        expectClean();
    }

    void setBox(std::vector<double> corner1, std::vector<double> corner2)
    {
        instance().set("sampleCorner1", corner1);
        instance().set("sampleCorner2", corner2);
    }
    /// Both corners, x and y, in canonical units of a project without offset.
    std::vector<double> box() const { return boxOf(*overlay); }
    static std::vector<double> boxOf(const Host::Interact& interact)
    {
        std::vector<double> all;
        const OfxPointD size = interact.instance().project().size;
        for (const char* name : {"sampleCorner1", "sampleCorner2"}) {
            const auto corner = std::get<std::vector<double>>(interact.instance().value(name));
            all.push_back(corner[0] * size.x);
            all.push_back(corner[1] * size.y);
        }
        return all;
    }
    static Host::Interact::Pen at(double x, double y)
    {
        Host::Interact::Pen pen;
        pen.position = {x, y};
        return pen;
    }
    OfxStatus move(double x, double y) { return overlay->penMotion(at(x, y)); }
    OfxStatus press(double x, double y) { return overlay->penDown(at(x, y)); }
    OfxStatus lift(double x, double y) { return overlay->penUp(at(x, y)); }

    std::unique_ptr<Host::Interact> overlay;
};

/// Both corners of a box, each within a thousandth of a unit.
inline auto boxIs(double x1, double y1, double x2, double y2)
{
    using ::testing::DoubleNear;
    constexpr double kTolerance = 1e-3;
    return ::testing::ElementsAre(DoubleNear(x1, kTolerance), DoubleNear(y1, kTolerance),
                                  DoubleNear(x2, kTolerance), DoubleNear(y2, kTolerance));
}

}  // namespace Tesseret::Fixtures
