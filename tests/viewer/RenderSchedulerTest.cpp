#include "tests/viewer/SessionFixture.h"
#include "viewer/model/RenderScheduler.h"

namespace Tesseret::Viewer {
namespace {

/// A picture of more than a megapixel.
class RenderSchedulerTest : public SessionFixture {
protected:
    RenderSchedulerTest()
    {
        paint(in("big.png"), 1200, 1000, Fixtures::noise(3));
        Render::RenderSettings wanted = settings();
        wanted.source = in("big.png");
        wanted.parameters = {"blockSize=200"};
        session_ = std::make_unique<ViewSession>(wanted);
        scheduler_ = std::make_unique<RenderScheduler>(*session_);
    }

    /// The request that the worker has rendered after an update.
    ViewRequest rendered(bool isDragging, bool wantsMaps = false)
    {
        scheduler_->update(isDragging, wantsMaps, RenderScheduler::Clock::now());
        session_->worker().wait();
        return session_->worker().latest()->request;
    }
    std::uint64_t serial() { return session_->worker().latest()->serial; }

    std::unique_ptr<ViewSession> session_;
    std::unique_ptr<RenderScheduler> scheduler_;
};

TEST(DraftScaleTest, KeepsPicturesUnderAMegapixel)
{
    EXPECT_EQ(draftScale(999, 1000), 1.0);
    EXPECT_EQ(draftScale(1000, 1000), 0.5);
    EXPECT_EQ(draftScale(1999, 2000), 0.5);
    EXPECT_EQ(draftScale(2000, 2000), 0.25);
    EXPECT_EQ(draftScale(20000, 20000), 0.25);
}

TEST_F(RenderSchedulerTest, DraftsWhileDraggingAndRendersInFullOnceLetGo)
{
    EXPECT_EQ(rendered(/*isDragging=*/true).scale, 0.5);
    EXPECT_FALSE(scheduler_->isSettled());
    session_->set("seed", 5);
    const ViewRequest second = rendered(/*isDragging=*/true);
    EXPECT_EQ(second.scale, 0.5);
    EXPECT_EQ(second.values.at("seed"), Host::ParameterValue(5));
    EXPECT_EQ(rendered(/*isDragging=*/false).scale, 1.0);
    EXPECT_TRUE(scheduler_->isSettled());
    EXPECT_TRUE(session_->hasFullResult());
}

TEST_F(RenderSchedulerTest, RendersNothingTwiceUnlessMoreIsWanted)
{
    rendered(/*isDragging=*/false);
    const std::uint64_t first = serial();
    rendered(/*isDragging=*/false);
    rendered(/*isDragging=*/true);  // held, but not moved
    EXPECT_EQ(serial(), first);
    EXPECT_TRUE(rendered(false, /*wantsMaps=*/true).wantsMaps);
    const std::uint64_t withMaps = serial();
    EXPECT_GT(withMaps, first);
    rendered(false, /*wantsMaps=*/true);
    rendered(false, /*wantsMaps=*/false);
    EXPECT_EQ(serial(), withMaps) << "maps that are there do no harm";
    scheduler_->renew();
    rendered(/*isDragging=*/false);
    EXPECT_GT(serial(), withMaps);
}

}  // namespace
}  // namespace Tesseret::Viewer
