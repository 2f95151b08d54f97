#pragma once

#include "engine/map/Map.h"
#include "libraries/Processor/ovMultiProcessor.h"

namespace Orvane::Engine {

/// A rectangle of pixels in absolute coordinates; x1 and y1 are exclusive.
struct Region {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
};

/// Keeps a borrowed pointer for as long as one call lasts, exceptions included.
template <typename T>
class Borrowed {
public:
    Borrowed(T*& slot, T* value) : slot_(slot) { slot_ = value; }
    ~Borrowed() { slot_ = nullptr; }
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;

private:
    T*& slot_;
};

/// Base of the nodes that write a map: adds the region that a call processes. Nodes own no maps and
/// forget every map they are given when the call returns.
class MapProcessor : public MultiProcessor {
public:
    using MultiProcessor::process;
    /// Runs the node over its region of the target: the region that was set, clamped into the
    /// target's stored range, or all of that range.
    virtual void process(const MapDomain& target);

    /// Sets the region, ends inclusive.
    void setRegion(int x0, int y0, int x1, int y1);
    void setRegion(const Region& region);
    void copyRegion(const MapProcessor& other);
    const Region& region() const { return region_; }
    bool hasExplicitRegion() const { return explicitRegion_; }

    /// Factors by which the box blur adjusts its horizontal radius; no other node reads them.
    void setRadiusScale(float x, float y) { radiusScaleX_ = x, radiusScaleY_ = y; }
    float radiusScaleX() const { return radiusScaleX_; }
    float radiusScaleY() const { return radiusScaleY_; }

    /// Writes "Map passed into ENTRY::process is PROBLEM" to standard error.
    static void reportMap(const char* entry, const char* problem);

protected:
    /// The rows of the region that the calling worker writes.
    RowRange threadRows() const;

private:
    void clampRegion(const MapDomain& target);

    Region region_;
    bool explicitRegion_ = false;
    float radiusScaleX_ = 1.0f, radiusScaleY_ = 1.0f;
};

/// A node that reads one map and writes another. `Other` and `Target` are map types, const where
/// the node only reads.
template <typename Other, typename Target>
class TwoMapProcessor : public MapProcessor {
public:
    /// Skipped, with a line on standard error, when the target cannot be worked on.
    void process(Other& other, Target& target)
    {
        if (!target.isUsable()) {
            reportMap("Sampler", "bogus");
            return;
        }
        const Borrowed borrowOther(other_, &other);
        const Borrowed borrowTarget(target_, &target);
        MapProcessor::process(target);
    }

protected:
    Other& other() const { return *other_; }
    Target& target() const { return *target_; }

private:
    using MapProcessor::process;
    Other* other_ = nullptr;
    Target* target_ = nullptr;
};

/// A node that writes one map from its settings alone.
template <typename Target>
class Generator : public MapProcessor {
public:
    /// The checked entry: a null map and one without pixels are reported on standard error and
    /// skipped.
    void process(Target* map)
    {
        if (map == nullptr) {
            reportMap("Generator", "NULL");
        } else if (!map->isUsable()) {
            reportMap("Generator", "bogus");
        } else {
            const Borrowed borrowTarget(target_, map);
            MapProcessor::process(*map);
        }
    }

protected:
    Target& target() const { return *target_; }

private:
    using MapProcessor::process;
    Target* target_ = nullptr;
};

/// A node that writes one map with the help of a second argument, kept for the call.
template <typename Aux, typename Target>
class Sampler : public MapProcessor {
public:
    /// The checked entry: a null map is skipped, one without pixels is also reported.
    void process(Aux* aux, Target* map)
    {
        const Borrowed borrowAux(aux_, aux);
        const Borrowed borrowTarget(target_, map);
        if (map == nullptr) return;
        if (!map->isUsable()) {
            reportMap("Sampler", "bogus");
            return;
        }
        MapProcessor::process(*map);
    }

protected:
    Aux* aux() const { return aux_; }
    Target& target() const { return *target_; }

private:
    using MapProcessor::process;
    Aux* aux_ = nullptr;
    Target* target_ = nullptr;
};

}  // namespace Orvane::Engine
