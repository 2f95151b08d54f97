/// Property sets and "OfxPropertySuite".

#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

static const char* const kTypeNames[] = {"int", "double", "string", "pointer"};

static void* need(void* memory)
{
    if (!memory) abort();
    return memory;
}

static char* copyOf(const char* text)
{
    char* const copy = need(malloc(strlen(text) + 1));
    return strcpy(copy, text);
}

PropertySet* newSet(const char* name)
{
    PropertySet* const set = need(calloc(1, sizeof *set));
    set->name = name;
    addObject(&set->object, SET);
    return set;
}

OfxPropertySetHandle handleOf(PropertySet* set)
{
    return (OfxPropertySetHandle)(void*)set;
}

static void resize(Property* property, int count)
{
    property->values = need(realloc(property->values, (size_t)(count + 1) * sizeof(Value)));
    for (int i = property->count; i < count; ++i) {
        memset(&property->values[i], 0, sizeof(Value));
        if (property->type == STRING) property->values[i].s = copyOf("");
    }
    property->count = count;
}

void declare(PropertySet* set, const char* name, Type type, int dimension, Access access)
{
    set->properties = need(realloc(set->properties, (size_t)(set->count + 1) * sizeof(Property)));
    Property* const property = &set->properties[set->count++];
    memset(property, 0, sizeof *property);
    property->name = copyOf(name);
    property->type = type;
    property->dimension = dimension;
    property->access = access;
    resize(property, dimension);
}

Property* findProperty(const PropertySet* set, const char* name)
{
    for (int i = 0; i < set->count; ++i) {
        if (strcmp(set->properties[i].name, name) == 0) return &set->properties[i];
    }
    return NULL;
}

static Value* place(PropertySet* set, const char* name, int index)
{
    Property* const property = findProperty(set, name);
    if (!property) abort();  // a mistake of this host
    if (index >= property->count) resize(property, index + 1);
    return &property->values[index];
}

void putInt(PropertySet* set, const char* name, int index, int value)
{
    place(set, name, index)->i = value;
}

void putDouble(PropertySet* set, const char* name, int index, double value)
{
    place(set, name, index)->d = value;
}

/// Keeps a copy of a text.
static void keep(Value* value, const char* text)
{
    char* const copy = copyOf(text);
    free(value->s);
    value->s = copy;
}

void putString(PropertySet* set, const char* name, int index, const char* value)
{
    keep(place(set, name, index), value);
}

void putPointer(PropertySet* set, const char* name, void* value)
{
    place(set, name, 0)->p = value;
}

const char* stringOf(const PropertySet* set, const char* name, int index)
{
    const Property* const property = findProperty(set, name);
    return property && index < property->count ? property->values[index].s : "";
}

bool listHolds(const PropertySet* set, const char* name, const char* value)
{
    const Property* const property = findProperty(set, name);
    for (int i = 0; property && i < property->count; ++i) {
        if (strcmp(property->values[i].s, value) == 0) return true;
    }
    return false;
}

PropertySet* copySet(const PropertySet* set, const char* name, const char* const* writable)
{
    PropertySet* const copy = newSet(name);
    for (int i = 0; i < set->count; ++i) {
        const Property* const from = &set->properties[i];
        Access access = READ_ONLY;
        for (const char* const* each = writable; *each; ++each) {
            if (strcmp(*each, from->name) == 0) access = WRITABLE;
        }
        declare(copy, from->name, from->type, from->dimension, access);
        Property* const to = &copy->properties[copy->count - 1];
        resize(to, from->count);
        for (int j = 0; j < from->count; ++j) {
            if (to->type == STRING) {
                keep(&to->values[j], from->values[j].s);
            } else {
                to->values[j] = from->values[j];
            }
        }
        to->isWritten = from->isWritten;
    }
    return copy;
}

/// The property that a call may use, or null with a report and the status.
static Property* usable(OfxPropertySetHandle handle, const char* name, Type type, OfxStatus* status)
{
    PropertySet* const set = objectOf(SET, handle, "a property");
    *status = kOfxStatErrBadHandle;
    if (!set) return NULL;
    *status = kOfxStatErrUnknown;
    if (!name) {
        problem("%s: a null name of a property", set->name);
        return NULL;
    }
    Property* const property = findProperty(set, name);
    if (!property) {
        problem("%s: no property %s", set->name, name);
        return NULL;
    }
    *status = kOfxStatErrValue;
    if (property->type != type) {
        problem("%s: %s is of type %s, not %s", set->name, name, kTypeNames[property->type],
                kTypeNames[type]);
        return NULL;
    }
    *status = kOfxStatOK;
    return property;
}

static const char* setName(OfxPropertySetHandle handle)
{
    return ((const PropertySet*)(const void*)handle)->name;
}

static OfxStatus write(OfxPropertySetHandle handle, const char* name, Type type, int index,
                       Value value)
{
    OfxStatus status;
    Property* const property = usable(handle, name, type, &status);
    if (!property) return status;
    const bool isTime =
        property->access == WRITABLE || (property->access == WHILE_DESCRIBING && isDescribing());
    if (!isTime) {
        problem("%s: %s may not be written now", setName(handle), name);
        return kOfxStatErrUnsupported;
    }
    const int end = property->dimension ? property->dimension : property->count + 1;
    if (index < 0 || index >= end) {
        problem("%s: %s has no index %d", setName(handle), name, index);
        return kOfxStatErrBadIndex;
    }
    if (type == STRING && !value.s) {
        problem("%s: a null text for %s", setName(handle), name);
        return kOfxStatErrValue;
    }
    if (type == STRING && !isAllowedValue(name, value.s)) {
        problem("%s: %s cannot be \"%s\"", setName(handle), name, value.s);
        return kOfxStatErrValue;
    }
    if (index >= property->count) resize(property, index + 1);
    if (type == STRING) {
        keep(&property->values[index], value.s);
    } else {
        property->values[index] = value;
    }
    property->isWritten = true;
    return kOfxStatOK;
}

static OfxStatus read(OfxPropertySetHandle handle, const char* name, Type type, int index,
                      bool hasResult, Value* value)
{
    OfxStatus status;
    const Property* const property = usable(handle, name, type, &status);
    if (!property) return status;
    if (!hasResult) {
        problem("%s: a null pointer for the value of %s", setName(handle), name);
        return kOfxStatErrValue;
    }
    if (index < 0 || index >= property->count) {
        problem("%s: %s has no index %d to read", setName(handle), name, index);
        return kOfxStatErrBadIndex;
    }
    *value = property->values[index];
    return kOfxStatOK;
}

/// The eight functions of a type, by name and member of Value; `C` is the type of a value written,
/// `T` of one read.
#define ACCESSORS(Name, type, member, C, T)                                                     \
    static OfxStatus set##Name(OfxPropertySetHandle set, const char* name, int index, C value)  \
    {                                                                                           \
        Value given;                                                                            \
        memset(&given, 0, sizeof given);                                                        \
        given.member = (T)value;                                                                \
        return write(set, name, type, index, given);                                            \
    }                                                                                           \
    static OfxStatus set##Name##N(OfxPropertySetHandle set, const char* name, int count,        \
                                  C const* values)                                              \
    {                                                                                           \
        if (!values) problem("a null pointer for the values of %s", name ? name : "null");      \
        OfxStatus status = values ? kOfxStatOK : kOfxStatErrValue;                              \
        for (int i = 0; i < count && status == kOfxStatOK; ++i) {                               \
            status = set##Name(set, name, i, values[i]);                                        \
        }                                                                                       \
        return status;                                                                          \
    }                                                                                           \
    static OfxStatus get##Name(OfxPropertySetHandle set, const char* name, int index, T* value) \
    {                                                                                           \
        Value found;                                                                            \
        const OfxStatus status = read(set, name, type, index, value != NULL, &found);           \
        if (status == kOfxStatOK) *value = found.member;                                        \
        return status;                                                                          \
    }                                                                                           \
    static OfxStatus get##Name##N(OfxPropertySetHandle set, const char* name, int count,        \
                                  T* values)                                                    \
    {                                                                                           \
        OfxStatus status = kOfxStatOK;                                                          \
        for (int i = 0; i < count && status == kOfxStatOK; ++i) {                               \
            status = get##Name(set, name, i, values ? values + i : NULL);                       \
        }                                                                                       \
        return status;                                                                          \
    }

ACCESSORS(Pointer, POINTER, p, void*, void*)
ACCESSORS(String, STRING, s, const char*, char*)
ACCESSORS(Double, DOUBLE, d, double, double)
ACCESSORS(Int, INT, i, int, int)

static Property* anyProperty(OfxPropertySetHandle handle, const char* name)
{
    const PropertySet* const set = objectOf(SET, handle, "a property");
    Property* const property = set && name ? findProperty(set, name) : NULL;
    if (set && !property) problem("%s: no property %s", set->name, name ? name : "null");
    return property;
}

static OfxStatus reset(OfxPropertySetHandle handle, const char* name)
{
    Property* const property = anyProperty(handle, name);
    if (!property) return kOfxStatErrUnknown;
    if (property->access == READ_ONLY) {
        problem("%s: %s may not be reset", setName(handle), name);
        return kOfxStatErrUnsupported;
    }
    for (int i = 0; property->type == STRING && i < property->count; ++i) {
        free(property->values[i].s);
    }
    property->count = 0;
    resize(property, property->dimension);
    return kOfxStatOK;
}

static OfxStatus getDimension(OfxPropertySetHandle handle, const char* name, int* count)
{
    const Property* const property = anyProperty(handle, name);
    if (!property) return kOfxStatErrUnknown;
    if (!count) {
        problem("%s: a null pointer for the dimension of %s", setName(handle), name);
        return kOfxStatErrValue;
    }
    *count = property->count;
    return kOfxStatOK;
}

const OfxPropertySuiteV1 propertySuite = {
    setPointer,  setString,  setDouble,  setInt,    setPointerN, setStringN,
    setDoubleN,  setIntN,    getPointer, getString, getDouble,   getInt,
    getPointerN, getStringN, getDoubleN, getIntN,   reset,       getDimension};
