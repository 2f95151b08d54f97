/// The property sets of the standard: names, types, dimensions, who may write when.

#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

typedef struct Row {
    const char* name;
    Type type;
    int dimension;
    Access access;
} Row;

#define LENGTH(array) (int)(sizeof(array) / sizeof *(array))

static void declareAll(PropertySet* set, const Row* rows, int count)
{
    for (int i = 0; i < count; ++i) {
        declare(set, rows[i].name, rows[i].type, rows[i].dimension, rows[i].access);
    }
}

PropertySet* newHostSet(void)
{
    const struct {
        const char* name;
        int value;
    } numbers[] = {{kOfxImageEffectHostPropIsBackground, 0},
                   {kOfxImageEffectPropSupportsOverlays, 0},
                   {kOfxImageEffectPropSupportsMultiResolution, 1},
                   {kOfxImageEffectPropSupportsTiles, 1},
                   {kOfxImageEffectPropTemporalClipAccess, 0},
                   {kOfxImageEffectPropSupportsMultipleClipDepths, 0},
                   {kOfxImageEffectPropSupportsMultipleClipPARs, 0},
                   {kOfxImageEffectPropSetableFrameRate, 0},
                   {kOfxImageEffectPropSetableFielding, 0},
                   {kOfxImageEffectInstancePropSequentialRender, 0},
                   {kOfxParamHostPropSupportsCustomInteract, 0},
                   {kOfxParamHostPropSupportsStringAnimation, 0},
                   {kOfxParamHostPropSupportsChoiceAnimation, 0},
                   {kOfxParamHostPropSupportsBooleanAnimation, 0},
                   {kOfxParamHostPropSupportsCustomAnimation, 0},
                   {kOfxParamHostPropMaxParameters, -1},
                   {kOfxParamHostPropMaxPages, 0}};
    PropertySet* const set = newSet("host");
    for (int i = 0; i < LENGTH(numbers); ++i) {
        declare(set, numbers[i].name, INT, 1, READ_ONLY);
        putInt(set, numbers[i].name, 0, numbers[i].value);
    }
    for (int i = 0; i < 2; ++i) {
        const char* const name = i ? kOfxPropVersion : kOfxPropAPIVersion;
        declare(set, name, INT, 0, READ_ONLY);
        putInt(set, name, 0, 1);
    }
    declare(set, kOfxParamHostPropPageRowColumnCount, INT, 2, READ_ONLY);
    putInt(set, kOfxParamHostPropPageRowColumnCount, 0, 8);
    putInt(set, kOfxParamHostPropPageRowColumnCount, 1, 8);
    const char* const texts[] = {kOfxPropType, kOfxPropName, kOfxPropLabel, kOfxPropVersionLabel};
    const char* const values[] = {kOfxTypeImageEffectHost, "strict", "Strict host", "1"};
    for (int i = 0; i < LENGTH(texts); ++i) {
        declare(set, texts[i], STRING, 1, READ_ONLY);
        putString(set, texts[i], 0, values[i]);
    }
    const char* const lists[][5] = {
        {kOfxImageEffectPropSupportedComponents, kOfxImageComponentRGBA, kOfxImageComponentAlpha},
        {kOfxImageEffectPropSupportedContexts, kOfxImageEffectContextFilter,
         kOfxImageEffectContextGeneral},
        {kOfxImageEffectPropSupportedPixelDepths, kOfxBitDepthByte, kOfxBitDepthShort,
         kOfxBitDepthFloat}};
    for (int i = 0; i < LENGTH(lists); ++i) {
        declare(set, lists[i][0], STRING, 0, READ_ONLY);
        for (int j = 1; lists[i][j]; ++j) putString(set, lists[i][0], j - 1, lists[i][j]);
    }
    return set;
}

PropertySet* newEffectSet(void)
{
    const Row rows[] = {{kOfxPropType, STRING, 1, READ_ONLY},
                        {kOfxPropLabel, STRING, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPluginPropGrouping, STRING, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportedContexts, STRING, 0, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportedPixelDepths, STRING, 0, WHILE_DESCRIBING},
                        {kOfxImageEffectPluginPropSingleInstance, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPluginRenderThreadSafety, STRING, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPluginPropHostFrameThreading, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPluginPropOverlayInteractV1, POINTER, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportsMultiResolution, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportsTiles, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropTemporalClipAccess, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPluginPropFieldRenderTwiceAlways, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportsMultipleClipDepths, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportsMultipleClipPARs, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropClipPreferencesSlaveParam, STRING, 0, WHILE_DESCRIBING},
                        {kOfxImageEffectInstancePropSequentialRender, INT, 1, WHILE_DESCRIBING},
                        {kOfxPluginPropParamPageOrder, STRING, 0, WHILE_DESCRIBING},
                        {kOfxImageEffectPropContext, STRING, 1, READ_ONLY},
                        // Of an instance
                        {kOfxPropInstanceData, POINTER, 1, READ_ONLY},
                        {kOfxPropIsInteractive, INT, 1, READ_ONLY},
                        {kOfxImageEffectPropProjectSize, DOUBLE, 2, READ_ONLY},
                        {kOfxImageEffectPropProjectOffset, DOUBLE, 2, READ_ONLY},
                        {kOfxImageEffectPropProjectExtent, DOUBLE, 2, READ_ONLY},
                        {kOfxImageEffectPropProjectPixelAspectRatio, DOUBLE, 1, READ_ONLY},
                        {kOfxImageEffectInstancePropEffectDuration, DOUBLE, 1, READ_ONLY},
                        {kOfxImageEffectPropFrameRate, DOUBLE, 1, READ_ONLY}};
    PropertySet* const set = newSet("effect");
    declareAll(set, rows, LENGTH(rows));
    putString(set, kOfxPropType, 0, kOfxTypeImageEffect);
    putString(set, kOfxImageEffectPluginRenderThreadSafety, 0, kOfxImageEffectRenderInstanceSafe);
    const char* const on[] = {
        kOfxImageEffectPluginPropHostFrameThreading, kOfxImageEffectPropSupportsMultiResolution,
        kOfxImageEffectPropSupportsTiles, kOfxImageEffectPluginPropFieldRenderTwiceAlways};
    for (int i = 0; i < LENGTH(on); ++i) putInt(set, on[i], 0, 1);
    return set;
}

PropertySet* newClipSet(const char* name)
{
    const Row rows[] = {{kOfxPropType, STRING, 1, READ_ONLY},
                        {kOfxPropName, STRING, 1, READ_ONLY},
                        {kOfxPropLabel, STRING, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportedComponents, STRING, 0, WHILE_DESCRIBING},
                        {kOfxImageEffectPropTemporalClipAccess, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageClipPropOptional, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageClipPropIsMask, INT, 1, WHILE_DESCRIBING},
                        {kOfxImageClipPropFieldExtraction, STRING, 1, WHILE_DESCRIBING},
                        {kOfxImageEffectPropSupportsTiles, INT, 1, WHILE_DESCRIBING},
                        // Of an instance
                        {kOfxImageClipPropConnected, INT, 1, READ_ONLY},
                        {kOfxImageEffectPropPixelDepth, STRING, 1, READ_ONLY},
                        {kOfxImageEffectPropComponents, STRING, 1, READ_ONLY},
                        {kOfxImageClipPropUnmappedPixelDepth, STRING, 1, READ_ONLY},
                        {kOfxImageClipPropUnmappedComponents, STRING, 1, READ_ONLY},
                        {kOfxImageEffectPropPreMultiplication, STRING, 1, READ_ONLY},
                        {kOfxImagePropPixelAspectRatio, DOUBLE, 1, READ_ONLY},
                        {kOfxImageEffectPropFrameRate, DOUBLE, 1, READ_ONLY},
                        {kOfxImageEffectPropFrameRange, DOUBLE, 2, READ_ONLY},
                        {kOfxImageEffectPropUnmappedFrameRange, DOUBLE, 2, READ_ONLY},
                        {kOfxImageClipPropFieldOrder, STRING, 1, READ_ONLY},
                        {kOfxImageClipPropContinuousSamples, INT, 1, READ_ONLY}};
    PropertySet* const set = newSet("clip");
    declareAll(set, rows, LENGTH(rows));
    putString(set, kOfxPropType, 0, kOfxTypeClip);
    putString(set, kOfxPropName, 0, name);
    putString(set, kOfxPropLabel, 0, name);
    putString(set, kOfxImageClipPropFieldExtraction, 0, kOfxImageFieldDoubled);
    putInt(set, kOfxImageEffectPropSupportsTiles, 0, 1);
    return set;
}

typedef struct ParameterType {
    const char* name;
    int dimension;
    Type values;
    bool hasRange;
} ParameterType;

static const ParameterType* typeNamed(const char* name)
{
    static ParameterType types[15];
    if (!types[0].name) {
        const ParameterType known[] = {
            {kOfxParamTypeInteger, 1, INT, true},     {kOfxParamTypeDouble, 1, DOUBLE, true},
            {kOfxParamTypeBoolean, 1, INT, false},    {kOfxParamTypeChoice, 1, INT, false},
            {kOfxParamTypeRGBA, 4, DOUBLE, true},     {kOfxParamTypeRGB, 3, DOUBLE, true},
            {kOfxParamTypeDouble2D, 2, DOUBLE, true}, {kOfxParamTypeInteger2D, 2, INT, true},
            {kOfxParamTypeDouble3D, 3, DOUBLE, true}, {kOfxParamTypeInteger3D, 3, INT, true},
            {kOfxParamTypeString, 1, STRING, false},  {kOfxParamTypeCustom, 1, STRING, false},
            {kOfxParamTypeGroup, 0, INT, false},      {kOfxParamTypePage, 0, INT, false},
            {kOfxParamTypePushButton, 0, INT, false}};
        memcpy(types, known, sizeof known);
    }
    for (int i = 0; i < LENGTH(types); ++i) {
        if (strcmp(types[i].name, name) == 0) return &types[i];
    }
    return NULL;
}

int parameterDimension(const char* type, Type* values)
{
    const ParameterType* const known = typeNamed(type);
    if (known && values) *values = known->values;
    return known ? known->dimension : -1;
}

static void declareValued(PropertySet* set, const ParameterType* type)
{
    const Row rows[] = {{kOfxParamPropAnimates, INT, 1, WHILE_DESCRIBING},
                        {kOfxParamPropCanUndo, INT, 1, WHILE_DESCRIBING},
                        {kOfxParamPropPluginMayWrite, INT, 1, WHILE_DESCRIBING},
                        {kOfxParamPropPersistant, INT, 1, WHILE_DESCRIBING},
                        {kOfxParamPropEvaluateOnChange, INT, 1, WHILE_DESCRIBING},
                        {kOfxParamPropCacheInvalidation, STRING, 1, WHILE_DESCRIBING}};
    declareAll(set, rows, LENGTH(rows));
    const char* const on[] = {kOfxParamPropAnimates, kOfxParamPropCanUndo, kOfxParamPropPersistant,
                              kOfxParamPropEvaluateOnChange};
    for (int i = 0; i < LENGTH(on); ++i) putInt(set, on[i], 0, 1);
    putString(set, kOfxParamPropCacheInvalidation, 0, kOfxParamInvalidateValueChange);
    declare(set, kOfxParamPropDefault, type->values, type->dimension, WHILE_DESCRIBING);
    const char* const limits[] = {kOfxParamPropMin, kOfxParamPropMax, kOfxParamPropDisplayMin,
                                  kOfxParamPropDisplayMax};
    for (int i = 0; type->hasRange && i < LENGTH(limits); ++i) {
        declare(set, limits[i], type->values, type->dimension, WHILE_DESCRIBING);
    }
    if (type->values == DOUBLE) {
        declare(set, kOfxParamPropIncrement, DOUBLE, 1, WHILE_DESCRIBING);
        declare(set, kOfxParamPropDigits, INT, 1, WHILE_DESCRIBING);
        putDouble(set, kOfxParamPropIncrement, 0, 1.0);
        putInt(set, kOfxParamPropDigits, 0, 2);
    }
}

PropertySet* newParameterSet(const char* type, const char* name)
{
    const Row rows[] = {{kOfxPropType, STRING, 1, READ_ONLY},
                        {kOfxParamPropType, STRING, 1, READ_ONLY},
                        {kOfxPropName, STRING, 1, READ_ONLY},
                        {kOfxPropLabel, STRING, 1, WHILE_DESCRIBING},
                        {kOfxParamPropScriptName, STRING, 1, WHILE_DESCRIBING},
                        {kOfxParamPropHint, STRING, 1, WHILE_DESCRIBING},
                        {kOfxParamPropParent, STRING, 1, WHILE_DESCRIBING},
                        {kOfxParamPropSecret, INT, 1, WHILE_DESCRIBING},
                        {kOfxParamPropEnabled, INT, 1, WHILE_DESCRIBING}};
    const ParameterType* const known = typeNamed(type);
    PropertySet* const set = newSet("parameter");
    declareAll(set, rows, LENGTH(rows));
    putString(set, kOfxPropType, 0, kOfxTypeParameter);
    putString(set, kOfxParamPropType, 0, type);
    const char* const named[] = {kOfxPropName, kOfxPropLabel, kOfxParamPropScriptName};
    for (int i = 0; i < LENGTH(named); ++i) putString(set, named[i], 0, name);
    putInt(set, kOfxParamPropEnabled, 0, 1);
    if (known->dimension > 0) declareValued(set, known);
    if (strcmp(type, kOfxParamTypeChoice) == 0) {
        declare(set, kOfxParamPropChoiceOption, STRING, 0, WHILE_DESCRIBING);
    }
    if (strcmp(type, kOfxParamTypeString) == 0) {
        declare(set, kOfxParamPropStringMode, STRING, 1, WHILE_DESCRIBING);
        putString(set, kOfxParamPropStringMode, 0, kOfxParamStringIsSingleLine);
    }
    if (strcmp(type, kOfxParamTypePage) == 0) {
        declare(set, kOfxParamPropPageChild, STRING, 0, WHILE_DESCRIBING);
    }
    if (strncmp(type, kOfxParamTypeDouble, strlen(kOfxParamTypeDouble)) == 0) {
        declare(set, kOfxParamPropDoubleType, STRING, 1, WHILE_DESCRIBING);
        putString(set, kOfxParamPropDoubleType, 0, kOfxParamDoubleTypePlain);
    }
    return set;
}

PropertySet* newRenderArguments(const OfxRectI* window)
{
    PropertySet* const set = newSet("arguments of the render");
    declare(set, kOfxPropTime, DOUBLE, 1, READ_ONLY);
    declare(set, kOfxImageEffectPropFieldToRender, STRING, 1, READ_ONLY);
    putString(set, kOfxImageEffectPropFieldToRender, 0, kOfxImageFieldNone);
    declare(set, kOfxImageEffectPropRenderWindow, INT, 4, READ_ONLY);
    const int edges[] = {window->x1, window->y1, window->x2, window->y2};
    for (int i = 0; i < 4; ++i) putInt(set, kOfxImageEffectPropRenderWindow, i, edges[i]);
    declare(set, kOfxImageEffectPropRenderScale, DOUBLE, 2, READ_ONLY);
    for (int i = 0; i < 2; ++i) putDouble(set, kOfxImageEffectPropRenderScale, i, 1.0);
    declare(set, kOfxImageEffectPropSequentialRenderStatus, INT, 1, READ_ONLY);
    declare(set, kOfxImageEffectPropInteractiveRenderStatus, INT, 1, READ_ONLY);
    return set;
}

bool isAllowedValue(const char* property, const char* value)
{
    const char* const allowed[][18] = {
        {kOfxImageEffectPropSupportedContexts, kOfxImageEffectContextGenerator,
         kOfxImageEffectContextFilter, kOfxImageEffectContextTransition,
         kOfxImageEffectContextPaint, kOfxImageEffectContextGeneral, kOfxImageEffectContextRetimer},
        {kOfxImageEffectPropSupportedPixelDepths, kOfxBitDepthByte, kOfxBitDepthShort,
         kOfxBitDepthHalf, kOfxBitDepthFloat},
        {kOfxImageEffectPropSupportedComponents, kOfxImageComponentRGBA, kOfxImageComponentRGB,
         kOfxImageComponentAlpha},
        {kOfxImageEffectPluginRenderThreadSafety, kOfxImageEffectRenderUnsafe,
         kOfxImageEffectRenderInstanceSafe, kOfxImageEffectRenderFullySafe},
        {kOfxImageClipPropFieldExtraction, kOfxImageFieldBoth, kOfxImageFieldSingle,
         kOfxImageFieldDoubled},
        {kOfxParamPropCacheInvalidation, kOfxParamInvalidateValueChange,
         kOfxParamInvalidateValueChangeToEnd, kOfxParamInvalidateAll},
        {kOfxParamPropStringMode, kOfxParamStringIsSingleLine, kOfxParamStringIsMultiLine,
         kOfxParamStringIsFilePath, kOfxParamStringIsDirectoryPath, kOfxParamStringIsLabel},
        {kOfxParamPropDoubleType, kOfxParamDoubleTypePlain, kOfxParamDoubleTypeAngle,
         kOfxParamDoubleTypeScale, kOfxParamDoubleTypeTime, kOfxParamDoubleTypeAbsoluteTime,
         kOfxParamDoubleTypeX, kOfxParamDoubleTypeY, kOfxParamDoubleTypeXAbsolute,
         kOfxParamDoubleTypeYAbsolute, kOfxParamDoubleTypeXY, kOfxParamDoubleTypeXYAbsolute,
         kOfxParamDoubleTypeNormalisedX, kOfxParamDoubleTypeNormalisedY,
         kOfxParamDoubleTypeNormalisedXAbsolute, kOfxParamDoubleTypeNormalisedYAbsolute,
         kOfxParamDoubleTypeNormalisedXY, kOfxParamDoubleTypeNormalisedXYAbsolute}};
    for (int i = 0; i < LENGTH(allowed); ++i) {
        if (strcmp(property, allowed[i][0]) != 0) continue;
        for (int j = 1; j < LENGTH(allowed[i]) && allowed[i][j]; ++j) {
            if (strcmp(value, allowed[i][j]) == 0) return true;
        }
        return false;
    }
    return true;
}
