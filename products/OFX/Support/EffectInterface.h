#pragma once

#include <array>
#include <string>

#include "products/OFX/Support/Rect.h"

namespace Orvane {

class OvOfxHostWrapper;

/// The queries that a host asks of an effect, one object per action. The answers here are those of
/// an effect that leaves everything to the host.
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
    /// Rectangles are in pixels of the action. A query that answers false leaves its results alone.
    virtual bool getRegionOfDefinition(OvRect& rect);
    virtual bool getRegionOfInterest(const char* clipName, const OvRect& outputRegion,
                                     OvRect& rect);
    virtual bool getFramesNeeded(const char* clipName);
    /// Whether the output equals the clip `clipName` at `time`; both come in with the action's own.
    virtual bool isIdentity(std::string& clipName, double& time);
    virtual bool furtherQuery();
    /// Drops whatever can be made again.
    virtual void purgeCaches();

protected:
    [[nodiscard]] OvOfxHostWrapper& wrapper() const { return wrapper_; }

private:
    OvOfxHostWrapper& wrapper_;
};

}  // namespace Orvane
