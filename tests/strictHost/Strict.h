#pragma once

/// A host that refuses whatever the standard does not allow, and reports it: every handle, name,
/// type, index and value that the plug-in uses is checked. Plain C11 without anything of the tree
/// but the interface's declarations, so that these are checked too. One plug-in, one instance, one
/// frame; one thread.

#include <stdbool.h>

#include "ofx/ofxImageEffect.h"
#include "ofx/ofxInteract.h"
#include "ofx/ofxMemory.h"
#include "ofx/ofxMessage.h"
#include "ofx/ofxMultiThread.h"
#include "ofx/ofxParam.h"
#include "ofx/ofxProperty.h"

// Reports

/// Prints what was wrong, with the action that is running, and counts it.
__attribute__((format(printf, 1, 2))) void problem(const char* format, ...);
int problemCount(void);
/// The action that is running; "" between two actions.
void setAction(const char* action);
const char* action(void);
bool isDescribing(void);
bool isDescribingContext(void);

// Handles: addresses of objects that begin with this one

typedef enum { SET, EFFECT, PARAMETERS, PARAMETER, CLIP, MEMORY, MUTEX } Kind;

typedef struct Object {
    Kind kind;
    bool isLive;
} Object;

/// Registers an object; it is never freed, so that stale handles stay recognisable.
void addObject(Object* object, Kind kind);
/// The live object behind a handle, or null with a report.
void* objectOf(Kind kind, const void* handle, const char* call);

// Property sets

typedef enum { INT, DOUBLE, STRING, POINTER } Type;
typedef enum { READ_ONLY, WHILE_DESCRIBING, WRITABLE } Access;

typedef union Value {
    int i;
    double d;
    char* s;
    void* p;
} Value;

typedef struct Property {
    const char* name;
    Type type;
    int dimension;  ///< 0: a list that grows index by index
    Access access;
    Value* values;
    int count;
    bool isWritten;  ///< by the plug-in
} Property;

typedef struct PropertySet {
    Object object;
    const char* name;
    Property* properties;
    int count;
} PropertySet;

PropertySet* newSet(const char* name);
OfxPropertySetHandle handleOf(PropertySet* set);
/// Declares a property with zeros or empty texts.
void declare(PropertySet* set, const char* name, Type type, int dimension, Access access);
Property* findProperty(const PropertySet* set, const char* name);
void putInt(PropertySet* set, const char* name, int index, int value);
void putDouble(PropertySet* set, const char* name, int index, double value);
void putString(PropertySet* set, const char* name, int index, const char* value);
void putPointer(PropertySet* set, const char* name, void* value);
/// The value of a property that is known to exist.
const char* stringOf(const PropertySet* set, const char* name, int index);
bool listHolds(const PropertySet* set, const char* name, const char* value);
/// A copy in which only the properties named in the null-terminated list can be written.
PropertySet* copySet(const PropertySet* set, const char* name, const char* const* writable);

// The sets of the standard, with their initial values

PropertySet* newHostSet(void);
PropertySet* newEffectSet(void);
PropertySet* newClipSet(const char* name);
PropertySet* newParameterSet(const char* type, const char* name);
PropertySet* newRenderArguments(const OfxRectI* window);
/// How many values a parameter type has, and their type; -1 for an unknown parameter type.
int parameterDimension(const char* type, Type* values);
/// Whether a value is one of those that the standard names for a property; true for any other
/// property.
bool isAllowedValue(const char* property, const char* value);

// Effects

typedef struct Clip {
    Object object;
    const char* name;
    PropertySet* set;
    struct Picture* picture;  ///< null: not connected
} Clip;

typedef struct Parameter {
    Object object;
    const char* name;
    const char* type;
    PropertySet* set;
    Value values[4];
} Parameter;

typedef struct Parameters {
    Object object;
    struct Effect* effect;
    Parameter* all[64];
    int count;
} Parameters;

typedef struct Effect {
    Object object;
    PropertySet* set;
    Parameters parameters;
    Clip* clips[16];
    int clipCount;
    bool isInstance;
} Effect;

Effect* newEffect(PropertySet* set, bool isInstance);
/// Null when there is none.
Clip* findClip(const Effect* effect, const char* name);
/// Named as its set says.
Clip* addClip(Effect* effect, PropertySet* set);
Parameter* findParameter(const Parameters* parameters, const char* name);
/// With the name, the type and the default of its set.
Parameter* addParameter(Parameters* parameters, PropertySet* set);

// Images

/// Pixels with guards on all sides and rows padded.
typedef struct Picture {
    OfxRectI bounds;
    const char* depth;
    const char* components;
    unsigned char* memory;
    size_t size, pixelBytes, first;
    int rowBytes;
    int fetched;  ///< and not yet released
} Picture;

Picture* newPicture(OfxRectI bounds, const char* depth, const char* components);
unsigned char* pixelAt(const Picture* picture, int x, int y);
/// A channel as a part of full scale.
double channelAt(const Picture* picture, int x, int y, int channel);
void setChannel(Picture* picture, int x, int y, int channel, double part);
/// Reports images that were not released, at the end of an action.
void checkHeld(const Effect* effect);
/// Reports what the plug-in has not freed.
void checkFreed(void);

// Checks of what was described

void checkDescription(const PropertySet* set);
void checkContext(const Effect* effect, const char* context);

// Suites

extern const OfxPropertySuiteV1 propertySuite;
extern const OfxImageEffectSuiteV1 imageEffectSuite;
extern const OfxParameterSuiteV1 parameterSuite;
extern const OfxMemorySuiteV1 memorySuite;
extern const OfxMultiThreadSuiteV1 multiThreadSuite;
extern const OfxMessageSuiteV1 messageSuite;
extern const OfxInteractSuiteV1 interactSuite;
OfxStatus imageMemoryAlloc(OfxImageEffectHandle effect, size_t bytes, OfxImageMemoryHandle* handle);
OfxStatus imageMemoryFree(OfxImageMemoryHandle handle);
OfxStatus imageMemoryLock(OfxImageMemoryHandle handle, void** data);
OfxStatus imageMemoryUnlock(OfxImageMemoryHandle handle);
/// General memory blocks and mutexes that exist.
int servicesHeld(void);
