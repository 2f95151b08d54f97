#pragma once

#include <type_traits>

#include "engine/map/Map.h"
#include "engine/map/Region.h"
#include "libraries/Processor/ovMultiProcessor.h"

namespace Orvane::Engine {

/// Stores a borrowed pointer for the duration of a call, exceptions included.
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

/// Base of the nodes that write a map: adds the region to process. Nodes own no maps and drop every
/// borrowed map when the call returns.
class MapProcessor : public MultiProcessor {
public:
    using MultiProcessor::process;
    /// Runs the node over its region of the target: the region that was set, clamped to the
    /// target's stored range, or all of that range.
    virtual void process(const MapDomain& target);

    /// Sets the region, ends inclusive.
    void setRegion(int x0, int y0, int x1, int y1);
    void setRegion(const Region& region);
    void copyRegion(const MapProcessor& other);
    const Region& region() const { return region_; }
    bool hasExplicitRegion() const { return explicitRegion_; }

    /// Factors by which the box blur scales its horizontal radius; no other node reads them.
    void setRadiusScale(float x, float y) { radiusScaleX_ = x, radiusScaleY_ = y; }
    float radiusScaleX() const { return radiusScaleX_; }
    float radiusScaleY() const { return radiusScaleY_; }

    /// Writes "Map passed into ENTRY::process is PROBLEM" to standard error.
    static void reportMap(const char* entry, const char* problem);

protected:
    /// The calling worker's share of the region's rows.
    RowRange threadRows() const;

private:
    void clampRegion(const MapDomain& target);

    Region region_;
    bool explicitRegion_ = false;
    float radiusScaleX_ = 1.0f, radiusScaleY_ = 1.0f;
};

/// The second argument type of a node that has none.
struct NoArgument {};

/// Base of the nodes that process a map of one kind, with or without a second argument, usually a
/// map to read. Both are borrowed for the call. `Target` and `Aux` are const where the node only
/// reads. Nodes derive from it under the name of their checked entry, `Generator` or `Sampler`.
template <typename Target, typename Aux = NoArgument>
class MapNode : public MapProcessor {
    static constexpr bool kHasArgument = !std::is_same_v<Aux, NoArgument>;

public:
    /// The checked entry of a generator: a null map or one without pixels is reported on standard
    /// error and skipped.
    void process(Target* map) requires(!kHasArgument)
    {
        if (map == nullptr) {
            reportMap("Generator", "NULL");
        } else {
            run("Generator", nullptr, map);
        }
    }

    /// The checked entry of a sampler: a null map is skipped, one without pixels is also reported.
    void process(Aux* aux, Target* map) requires(kHasArgument) { run("Sampler", aux, map); }
    /// The same for two maps that exist.
    void process(Aux& other, Target& target) requires(kHasArgument) { process(&other, &target); }

protected:
    /// Runs the node unless the map is null or without pixels; reports the latter under the name of
    /// the entry.
    void run(const char* entry, Aux* aux, Target* map)
    {
        const Borrowed borrowAux(aux_, aux);
        const Borrowed borrowTarget(target_, map);
        if (map == nullptr) return;
        if (!map->isUsable()) {
            reportMap(entry, "bogus");
            return;
        }
        MapProcessor::process(*map);
    }

    Target& target() const { return *target_; }
    /// The second argument; may be null.
    Aux* aux() const { return aux_; }
    /// The second map of a node that always has one.
    Aux& other() const { return *aux_; }

private:
    using MapProcessor::process;
    Target* target_ = nullptr;
    Aux* aux_ = nullptr;
};

/// A node that writes one map from its settings alone.
template <typename Target>
using Generator = MapNode<Target>;

/// A node that writes one map from a second argument.
template <typename Aux, typename Target>
using Sampler = MapNode<Target, Aux>;

}  // namespace Orvane::Engine
