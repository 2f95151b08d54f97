#include "products/OFX/Support/EffectInterface.h"

#include "products/OFX/Support/HostWrapper.h"

namespace Orvane {

void OvOfxEffectInterface::notify(void*) {}

double OvOfxEffectInterface::doubleAt(const char* name, float time)
{
    return wrapper_.doubleAt(name, time);
}

int OvOfxEffectInterface::intAt(const char* name, float time)
{
    return wrapper_.intAt(name, time);
}

bool OvOfxEffectInterface::boolAt(const char* name, float time)
{
    return wrapper_.boolAt(name, time);
}

std::array<float, 3> OvOfxEffectInterface::rgbAt(const char* name, float time)
{
    return wrapper_.rgbAt(name, time);
}

std::array<float, 4> OvOfxEffectInterface::rgbaAt(const char* name, float time)
{
    return wrapper_.rgbaAt(name, time);
}

OvPoint OvOfxEffectInterface::double2DAt(const char* name, float time)
{
    return wrapper_.double2DAt(name, time);
}

void OvOfxEffectInterface::setCounter(int value)
{
    wrapper_.setCounter(value);
}

int OvOfxEffectInterface::counter()
{
    return wrapper_.counter();
}

void OvOfxEffectInterface::addFrameRange(const char* clipName, double first, double last)
{
    wrapper_.addFrameRange(clipName, first, last);
}

bool OvOfxEffectInterface::getRegionOfDefinition(OvRect&)
{
    return false;
}

bool OvOfxEffectInterface::getRegionOfInterest(const char*, const OvRect&, OvRect&)
{
    return false;
}

bool OvOfxEffectInterface::getFramesNeeded(const char*)
{
    return false;
}

bool OvOfxEffectInterface::isIdentity(std::string&, double&)
{
    return false;
}

bool OvOfxEffectInterface::furtherQuery()
{
    return false;
}

void OvOfxEffectInterface::purgeCaches() {}

}  // namespace Orvane
