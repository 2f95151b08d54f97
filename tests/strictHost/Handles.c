/// Reports, and the registry of handles.

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tests/strictHost/Strict.h"

static int problems;
static const char* running = "";

void problem(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    printf("%s%s", running, *running ? ": " : "");
    vprintf(format, arguments);
    printf("\n");
    va_end(arguments);
    ++problems;
}

int problemCount(void)
{
    return problems;
}

void setAction(const char* name)
{
    running = name;
}

const char* action(void)
{
    return running;
}

bool isDescribingContext(void)
{
    return strcmp(running, kOfxImageEffectActionDescribeInContext) == 0;
}

bool isDescribing(void)
{
    return strcmp(running, kOfxActionDescribe) == 0 || isDescribingContext();
}

static Object* objects[4096];
static int objectCount;

void addObject(Object* object, Kind kind)
{
    object->kind = kind;
    object->isLive = true;
    if (objectCount == (int)(sizeof objects / sizeof *objects)) {
        printf("the strict host has no room for another object\n");
        exit(2);
    }
    objects[objectCount++] = object;
}

void* objectOf(Kind kind, const void* handle, const char* call)
{
    static const char* const kNames[] = {"a property set", "an effect", "a parameter set",
                                         "a parameter",    "a clip",    "a block of memory",
                                         "a mutex"};
    for (int i = 0; i < objectCount; ++i) {
        if (objects[i] != handle) continue;
        if (objects[i]->kind != kind) {
            problem("%s: a handle of %s, not of %s", call, kNames[objects[i]->kind], kNames[kind]);
        } else if (!objects[i]->isLive) {
            problem("%s: the handle of %s is dead", call, kNames[kind]);
        } else {
            return objects[i];
        }
        return NULL;
    }
    problem("%s: %s handle of %s", call, handle ? "an unknown" : "a null", kNames[kind]);
    return NULL;
}
