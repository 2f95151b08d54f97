/// What a description must hold besides what the suites check at once.

#include <string.h>

#include "tests/strictHost/Strict.h"

static void needText(const PropertySet* set, const char* name)
{
    if (!*stringOf(set, name, 0)) problem("%s is empty", name);
}

static void needList(const PropertySet* set, const char* name)
{
    const Property* const list = findProperty(set, name);
    if (list->count == 0) problem("%s: no value", name);
    for (int i = 0; i < list->count; ++i) {
        for (int j = 0; j < i; ++j) {
            if (strcmp(list->values[i].s, list->values[j].s) == 0) {
                problem("%s: %s twice", name, list->values[i].s);
            }
        }
    }
}

void checkDescription(const PropertySet* set)
{
    needText(set, kOfxPropLabel);
    needText(set, kOfxImageEffectPluginPropGrouping);
    needList(set, kOfxImageEffectPropSupportedContexts);
    needList(set, kOfxImageEffectPropSupportedPixelDepths);
}

static double numberOf(const Property* property, int index)
{
    const Value value = property->values[index];
    return property->type == INT ? (double)value.i : value.d;
}

/// The default lies in the range, and the range that is shown in the other one.
static void checkRange(const Parameter* parameter)
{
    const Property* const low = findProperty(parameter->set, kOfxParamPropMin);
    const Property* const high = findProperty(parameter->set, kOfxParamPropMax);
    const char* const inside[] = {kOfxParamPropDefault, kOfxParamPropDisplayMin,
                                  kOfxParamPropDisplayMax};
    if (!low || !low->isWritten || !high->isWritten) return;
    for (int i = 0; i < 3; ++i) {
        const Property* const each = findProperty(parameter->set, inside[i]);
        for (int j = 0; j < each->count; ++j) {
            const double value = numberOf(each, j);
            if (value < numberOf(low, j) || value > numberOf(high, j)) {
                problem("%s: %s of %g is out of its range", parameter->name, inside[i], value);
            }
        }
    }
}

static void checkChoice(const Parameter* parameter)
{
    const Property* const options = findProperty(parameter->set, kOfxParamPropChoiceOption);
    if (!options) return;
    const int initial = findProperty(parameter->set, kOfxParamPropDefault)->values[0].i;
    if (options->count == 0) problem("%s: a choice without options", parameter->name);
    if (initial < 0 || initial >= options->count) {
        problem("%s: there is no option %d for the default", parameter->name, initial);
    }
}

static void checkParent(const Parameters* all, const Parameter* parameter)
{
    const char* const name = stringOf(parameter->set, kOfxParamPropParent, 0);
    const Parameter* const parent = findParameter(all, name);
    if (*name && (!parent || strcmp(parent->type, kOfxParamTypeGroup) != 0)) {
        problem("%s: its parent %s is no group", parameter->name, name);
    }
}

static void checkPage(const Parameters* all, const Parameter* page)
{
    const Property* const children = findProperty(page->set, kOfxParamPropPageChild);
    for (int i = 0; children && i < children->count; ++i) {
        const char* const child = children->values[i].s;
        const bool isMark =
            strcmp(child, kOfxParamPageSkipRow) == 0 || strcmp(child, kOfxParamPageSkipColumn) == 0;
        if (!isMark && !findParameter(all, child)) {
            problem("the page %s has no parameter %s to show", page->name, child);
        }
    }
}

static void checkClips(const Effect* effect, const char* context)
{
    if (!findClip(effect, kOfxImageEffectOutputClipName)) problem("there is no clip Output");
    const bool isFilter = strcmp(context, kOfxImageEffectContextFilter) == 0;
    for (int i = 0; i < effect->clipCount; ++i) {
        const Clip* const clip = effect->clips[i];
        needList(clip->set, kOfxImageEffectPropSupportedComponents);
        const bool isMain = strcmp(clip->name, kOfxImageEffectOutputClipName) == 0 ||
                            strcmp(clip->name, kOfxImageEffectSimpleSourceClipName) == 0;
        const bool isOptional =
            findProperty(clip->set, kOfxImageClipPropOptional)->values[0].i != 0;
        if (isFilter && !isMain && !isOptional) {
            problem("the clip %s must be optional in this context", clip->name);
        }
    }
    if (isFilter && !findClip(effect, kOfxImageEffectSimpleSourceClipName)) {
        problem("there is no clip Source");
    }
}

void checkContext(const Effect* effect, const char* context)
{
    checkClips(effect, context);
    const Parameters* const all = &effect->parameters;
    for (int i = 0; i < all->count; ++i) {
        const Parameter* const parameter = all->all[i];
        needText(parameter->set, kOfxPropLabel);
        checkParent(all, parameter);
        checkPage(all, parameter);
        if (parameterDimension(parameter->type, NULL) > 0) checkChoice(parameter);
        if (findProperty(parameter->set, kOfxParamPropMin)) checkRange(parameter);
    }
    const char* const lists[] = {kOfxPluginPropParamPageOrder,
                                 kOfxImageEffectPropClipPreferencesSlaveParam};
    for (int i = 0; i < 2; ++i) {
        const Property* const list = findProperty(effect->set, lists[i]);
        for (int j = 0; j < list->count; ++j) {
            if (!findParameter(all, list->values[j].s)) {
                problem("%s names %s, which is not defined", lists[i], list->values[j].s);
            }
        }
    }
}
