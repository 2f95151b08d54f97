#pragma once

namespace Orvane::Engine {

/// One block as it was laid, in absolute pixel coordinates.
struct LaidBlock {
    int x, y, width, height;  ///< place in the output; cut at the edge of the fill rectangle
    int srcX, srcY;           ///< the same corner in its texture
    int textureIndex;
};

/// Told what happens inside a render, on the render thread only. Most hosts want none: the engine
/// then holds a null pointer and spends nothing.
class RenderObserver {
public:
    virtual ~RenderObserver() = default;
    virtual void stageBegan(const char* stage) = 0;
    virtual void stageEnded(const char* stage) = 0;
    /// How much of the current stage is done, 0 to 1.
    virtual void progress(double fraction) = 0;
    virtual void blockLaid(const LaidBlock& block) = 0;
    /// One line for the person in front of the screen.
    virtual void note(const char* text) = 0;
};

/// Tells an observer, if there is one, that a stage lasts as long as this object.
class ObservedStage {
public:
    ObservedStage(RenderObserver* observer, const char* stage) : observer_(observer), stage_(stage)
    {
        if (observer_ != nullptr) observer_->stageBegan(stage_);
    }
    ~ObservedStage()
    {
        if (observer_ != nullptr) observer_->stageEnded(stage_);
    }
    ObservedStage(const ObservedStage&) = delete;
    ObservedStage& operator=(const ObservedStage&) = delete;

private:
    RenderObserver* observer_;
    const char* stage_;
};

}  // namespace Orvane::Engine
