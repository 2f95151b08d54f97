/// Parameters: "OfxParameterSuite". Values do not change in time.

#include <stdarg.h>
#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

Parameter* findParameter(const Parameters* parameters, const char* name)
{
    for (int i = 0; i < parameters->count; ++i) {
        if (strcmp(parameters->all[i]->name, name) == 0) return parameters->all[i];
    }
    return NULL;
}

Parameter* addParameter(Parameters* parameters, PropertySet* set)
{
    Parameter* const parameter = calloc(1, sizeof *parameter);
    if (!parameter) abort();
    parameter->type = stringOf(set, kOfxParamPropType, 0);
    parameter->name = stringOf(set, kOfxPropName, 0);
    parameter->set = set;
    const Property* const initial = findProperty(set, kOfxParamPropDefault);
    for (int i = 0; initial && i < initial->count; ++i) parameter->values[i] = initial->values[i];
    addObject(&parameter->object, PARAMETER);
    parameters->all[parameters->count++] = parameter;
    return parameter;
}

static OfxStatus paramDefine(OfxParamSetHandle handle, const char* type, const char* name,
                             OfxPropertySetHandle* set)
{
    Parameters* const parameters = objectOf(PARAMETERS, handle, "paramDefine");
    if (!parameters) return kOfxStatErrBadHandle;
    if (!type || !name || !*name) {
        problem("paramDefine: no %s", type ? "name" : "type");
        return kOfxStatErrValue;
    }
    if (!isDescribingContext()) {
        problem("paramDefine: of %s, not while describing in a context", name);
        return kOfxStatFailed;
    }
    if (parameterDimension(type, NULL) < 0) {
        problem("paramDefine: of %s, there is no type %s", name, type);
        return kOfxStatErrUnknown;
    }
    if (findParameter(parameters, name)) {
        problem("paramDefine: %s is defined already", name);
        return kOfxStatErrExists;
    }
    if (parameters->count == (int)(sizeof parameters->all / sizeof *parameters->all)) {
        problem("paramDefine: too many for this host");
        return kOfxStatErrMemory;
    }
    const Parameter* const made = addParameter(parameters, newParameterSet(type, name));
    if (set) *set = handleOf(made->set);
    return kOfxStatOK;
}

static OfxStatus paramGetHandle(OfxParamSetHandle handle, const char* name, OfxParamHandle* result,
                                OfxPropertySetHandle* set)
{
    const Parameters* const parameters = objectOf(PARAMETERS, handle, "paramGetHandle");
    if (result) *result = NULL;
    if (!parameters) return kOfxStatErrBadHandle;
    if (!result || !name) {
        problem("paramGetHandle: a null %s", name ? "pointer for the parameter" : "name");
        return kOfxStatErrValue;
    }
    Parameter* const found = findParameter(parameters, name);
    if (!found) {
        problem("paramGetHandle: no parameter %s in this context", name);
        return kOfxStatErrUnknown;
    }
    *result = (OfxParamHandle)(void*)found;
    if (set) *set = handleOf(found->set);
    return kOfxStatOK;
}

static OfxStatus paramSetGetPropertySet(OfxParamSetHandle handle, OfxPropertySetHandle* set)
{
    const Parameters* const parameters = objectOf(PARAMETERS, handle, "paramSetGetPropertySet");
    if (!set) problem("paramSetGetPropertySet: a null pointer for the set");
    if (!parameters || !set) return kOfxStatErrBadHandle;
    *set = handleOf(parameters->effect->set);
    return kOfxStatOK;
}

static OfxStatus paramGetPropertySet(OfxParamHandle handle, OfxPropertySetHandle* set)
{
    const Parameter* const parameter = objectOf(PARAMETER, handle, "paramGetPropertySet");
    if (!set) problem("paramGetPropertySet: a null pointer for the set");
    if (!parameter || !set) return kOfxStatErrBadHandle;
    *set = handleOf(parameter->set);
    return kOfxStatOK;
}

/// A parameter whose values may be used now, or null with a report.
static Parameter* valued(OfxParamHandle handle, const char* call)
{
    Parameter* const parameter = objectOf(PARAMETER, handle, call);
    if (!parameter) return NULL;
    if (isDescribing()) {
        problem("%s: of %s, while describing", call, parameter->name);
        return NULL;
    }
    if (parameterDimension(parameter->type, NULL) > 0) return parameter;
    problem("%s: %s has no value", call, parameter->name);
    return NULL;
}

static OfxStatus give(OfxParamHandle handle, const char* call, va_list results)
{
    const Parameter* const parameter = valued(handle, call);
    if (!parameter) return kOfxStatErrBadHandle;
    Type type = INT;
    const int dimension = parameterDimension(parameter->type, &type);
    for (int i = 0; i < dimension; ++i) {
        void* const result = va_arg(results, void*);
        if (!result) {
            problem("%s: a null pointer for the value of %s", call, parameter->name);
            return kOfxStatErrValue;
        }
        if (type == INT) *(int*)result = parameter->values[i].i;
        if (type == DOUBLE) *(double*)result = parameter->values[i].d;
        if (type == STRING) *(char**)result = parameter->values[i].s;
    }
    return kOfxStatOK;
}

static OfxStatus paramGetValue(OfxParamHandle handle, ...)
{
    va_list results;
    va_start(results, handle);
    const OfxStatus status = give(handle, "paramGetValue", results);
    va_end(results);
    return status;
}

static OfxStatus paramGetValueAtTime(OfxParamHandle handle, OfxTime time, ...)
{
    va_list results;
    va_start(results, time);
    const OfxStatus status = give(handle, "paramGetValueAtTime", results);
    va_end(results);
    return status;
}

static OfxStatus paramGetDerivative(OfxParamHandle handle, OfxTime time, ...)
{
    (void)time;
    return valued(handle, "paramGetDerivative") ? kOfxStatErrUnsupported : kOfxStatErrBadHandle;
}

static OfxStatus paramGetIntegral(OfxParamHandle handle, OfxTime time1, OfxTime time2, ...)
{
    (void)time1;
    (void)time2;
    return valued(handle, "paramGetIntegral") ? kOfxStatErrUnsupported : kOfxStatErrBadHandle;
}

/// Values may be set in few actions, and in none that this host sends.
static OfxStatus refuseSet(OfxParamHandle handle, const char* call)
{
    const Parameter* const parameter = valued(handle, call);
    if (!parameter) return kOfxStatErrBadHandle;
    problem("%s: of %s, not allowed in this action", call, parameter->name);
    return kOfxStatFailed;
}

static OfxStatus paramSetValue(OfxParamHandle handle, ...)
{
    return refuseSet(handle, "paramSetValue");
}

static OfxStatus paramSetValueAtTime(OfxParamHandle handle, OfxTime time, ...)
{
    (void)time;
    return refuseSet(handle, "paramSetValueAtTime");
}

static OfxStatus paramGetNumKeys(OfxParamHandle handle, unsigned int* count)
{
    if (!count) problem("paramGetNumKeys: a null pointer");
    if (!valued(handle, "paramGetNumKeys") || !count) return kOfxStatErrBadHandle;
    *count = 0;
    return kOfxStatOK;
}

static OfxStatus paramGetKeyTime(OfxParamHandle handle, unsigned int key, OfxTime* time)
{
    (void)time;
    if (!valued(handle, "paramGetKeyTime")) return kOfxStatErrBadHandle;
    problem("paramGetKeyTime: there is no key %u", key);
    return kOfxStatErrBadIndex;
}

static OfxStatus paramGetKeyIndex(OfxParamHandle handle, OfxTime time, int direction, int* index)
{
    (void)time;
    (void)direction;
    if (index) *index = -1;
    return valued(handle, "paramGetKeyIndex") ? kOfxStatFailed : kOfxStatErrBadHandle;
}

static OfxStatus paramDeleteKey(OfxParamHandle handle, OfxTime time)
{
    (void)time;
    return refuseSet(handle, "paramDeleteKey");
}

static OfxStatus paramDeleteAllKeys(OfxParamHandle handle)
{
    return refuseSet(handle, "paramDeleteAllKeys");
}

static OfxStatus paramCopy(OfxParamHandle to, OfxParamHandle from, OfxTime offset,
                           const OfxRangeD* frames)
{
    (void)offset;
    (void)frames;
    return valued(from, "paramCopy") ? refuseSet(to, "paramCopy") : kOfxStatErrBadHandle;
}

static OfxStatus paramEditBegin(OfxParamSetHandle handle, const char* name)
{
    if (!objectOf(PARAMETERS, handle, "paramEditBegin")) return kOfxStatErrBadHandle;
    problem("paramEditBegin: %s, not allowed in this action", name ? name : "null");
    return kOfxStatFailed;
}

static OfxStatus paramEditEnd(OfxParamSetHandle handle)
{
    if (objectOf(PARAMETERS, handle, "paramEditEnd")) problem("paramEditEnd: nothing was begun");
    return kOfxStatErrBadHandle;
}

const OfxParameterSuiteV1 parameterSuite = {
    paramDefine,      paramGetHandle,      paramSetGetPropertySet, paramGetPropertySet,
    paramGetValue,    paramGetValueAtTime, paramGetDerivative,     paramGetIntegral,
    paramSetValue,    paramSetValueAtTime, paramGetNumKeys,        paramGetKeyTime,
    paramGetKeyIndex, paramDeleteKey,      paramDeleteAllKeys,     paramCopy,
    paramEditBegin,   paramEditEnd};
