/// A library that cannot be loaded: another one that it needs is missing.

#include "ofx/ofxCore.h"

extern "C" {

int absentFunction();

OfxExport int OfxGetNumberOfPlugins()
{
    return absentFunction();
}

OfxExport OfxPlugin* OfxGetPlugin(int /*nth*/)
{
    return nullptr;
}

}  // extern "C"
