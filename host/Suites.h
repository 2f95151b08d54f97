#pragma once

/// The records that fetchSuite returns. Each lives as long as the process and serves every host.

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxInteract.h"
#include "ofx/ofxMemory.h"
#include "ofx/ofxMessage.h"
#include "ofx/ofxMultiThread.h"
#include "ofx/ofxParam.h"
#include "ofx/ofxProperty.h"
#include "ofx/tesseretObserver.h"
#include "ofx/tesseretRecord.h"

namespace Tesseret::Host {

const OfxPropertySuiteV1& propertySuite();
const OfxImageEffectSuiteV1& imageEffectSuite();
const OfxParameterSuiteV1& parameterSuite();
const OfxMemorySuiteV1& memorySuite();
const OfxMultiThreadSuiteV1& multiThreadSuite();
const OfxMessageSuiteV1& messageSuite();
const OfxInteractSuiteV1& interactSuite();
const TesseretObserverSuiteV1& observerSuite();
const TesseretRecordSuiteV1& recordSuite();

}  // namespace Tesseret::Host
