#pragma once

#include <array>
#include <string>

#include "products/OFX/Support/Rect.h"

namespace Orvane {

class OvOfxHostWrapper;

/// Handles the host's queries to an effect, one object per action. The base class leaves every
/// query to the host.
class OvOfxEffectInterface {
public:
    explicit OvOfxEffectInterface(OvOfxHostWrapper& wrapper) : wrapper_(wrapper) {}
    OvOfxEffectInterface(const OvOfxEffectInterface&) = delete;
    OvOfxEffectInterface& operator=(const OvOfxEffectInterface&) = delete;

    // Virtual operations, in slot order.
    virtual void notify(void* unused);
    virtual double doubleAt(const char* name, float time);
    virtual int intAt(const char* name, float time);
    virtual bool boolAt(const char* name, float time);
    virtual std::array<float, 3> rgbAt(const char* name, float time);
    virtual std::array<float, 4> rgbaAt(const char* name, float time);
    virtual OvPoint double2DAt(const char* name, float time);
    virtual void setCounter(int value);
    virtual int counter();
    /// Adds a range of frames that the action needs of a clip, both ends included.
    virtual void addFrameRange(const char* clipName, double first, double last);
    virtual ~OvOfxEffectInterface() = default;
    /// Rectangles are in pixels of the action. A query that returns false leaves its results
    /// unchanged.
    virtual bool getRegionOfDefinition(OvRect& rect);
    virtual bool getRegionOfInterest(const char* clipName, const OvRect& outputRegion,
                                     OvRect& rect);
    virtual bool getFramesNeeded(const char* clipName);
    /// Whether the output equals the clip `clipName` at `time`; both come in with the action's own.
    virtual bool isIdentity(std::string& clipName, double& time);
    virtual bool furtherQuery();
    /// Frees everything that can be recomputed.
    virtual void purgeCaches();

protected:
    [[nodiscard]] OvOfxHostWrapper& wrapper() const { return wrapper_; }

private:
    OvOfxHostWrapper& wrapper_;
};

}  // namespace Orvane
