#pragma once

/// What real hosts do differently, and faults to order, as switches. The defaults are a host that
/// keeps the published standard in everything. Identity and capabilities are read when the host is
/// made; all other switches may be changed between two actions.

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "picture/Picture.h"

namespace Tesseret::Host {

/// What the host record says; an absent optional leaves the property out.
struct HostIdentity {
    std::string name = "com.orvane.brisant.tesseret.host";
    std::string label = "Tesseret Embedded Host";
    bool isBackground = false;
    bool supportsOverlays = true;
    bool temporalClipAccess = true;
    bool choiceAnimation = true;
    bool booleanAnimation = true;
    bool stringAnimation = true;
    std::optional<int> maxParameters = -1;
    std::optional<int> maxPages = 100;
    std::optional<OfxPointI> pageRowsAndColumns = OfxPointI{20, 20};  ///< x rows, y columns
    std::set<std::string> missingProperties;  ///< further properties that the host record lacks
};

enum class WrongType {
    Value,
    Unknown,
    Convert
};  ///< status 11, status 3, or int and double convert
enum class ProjectProperties { Readable, AfterFirstRender, Never };
enum class FrameRangeAnswer { Right, Missing, Wrong };  ///< wrong is 1 to 10 whatever the clip has
enum class RegionAnswer { Given, RefusedWithoutImage, Refused };
enum class UnknownClip { BadHandle, Unknown, NullHandleOK };  ///< status 9, status 3, 0 with null
enum class MatteDelivery {
    Alpha,            ///< a clip of alpha alone gets its image so
    Rgba,             ///< it gets RGBA, and the clip says so
    RgbaUnannounced,  ///< it gets RGBA while the clip says alpha
};
enum class Threading {
    Pool,        ///< real threads
    DirectCall,  ///< one call on the calling thread, one processor, not a spawned thread
    InARow,      ///< n calls on the calling thread, not spawned, the index function answers 0
};

struct HostQuirks {
    HostIdentity identity;

    // Start and stop
    bool loadMustAnswerOK = false;   ///< a plug-in that answers 14 to Load is rejected
    bool describeTwice = false;      ///< load, describe, unload, load, describe
    bool reloadPerInstance = false;  ///< load and describe again before every instance
    std::set<std::string> missingSuites;

    // Properties
    WrongType wrongType = WrongType::Value;
    bool acceptUnknownProperties = false;  ///< a write of an unknown name makes the property
    std::map<std::string, OfxStatus, std::less<>> refusedWrites;  ///< status by property name
    std::map<std::string, OfxStatus, std::less<>> refusedReads;
    ProjectProperties projectProperties = ProjectProperties::Readable;

    // Clips and images
    FrameRangeAnswer frameRange = FrameRangeAnswer::Right;
    RegionAnswer regionOfDefinition = RegionAnswer::Given;
    UnknownClip unknownClip = UnknownClip::BadHandle;
    bool allClipsConnected =
        false;  ///< clips without a source say they are connected, and give none
    bool oneImageSetPerClip =
        false;  ///< every fetch answers the same property set, a release does nothing
    bool privateImages = false;            ///< every fetch is a copy that is gone after its release
    bool deliverRegionsOnly = false;       ///< images are cut to the regions of interest asked for
    std::optional<RowLayout> rowLayout;    ///< of every image, the output too
    std::optional<OfxRectI> boundsChange;  ///< added to the bounds of input images, edge by edge
    bool infiniteRegion = false;           ///< images say that they are defined everywhere
    MatteDelivery matte = MatteDelivery::Alpha;

    // Image memory
    bool memoryRefusesNullEffect = false;  ///< status 9
    bool memoryMoves =
        false;  ///< a block that was unlocked is at another address after the next lock
    bool memoryPoisoned = true;              ///< new blocks hold noise, as the standard allows
    std::optional<std::size_t> memoryLimit;  ///< bytes alive at once; more is refused with 8

    // Threads
    Threading threading = Threading::Pool;
    std::optional<unsigned int>
        fewerThreads;  ///< at most so many calls, while the CPU count says more
    bool cpuCountChanges =
        false;  ///< every question is answered with another number, 1 to the count
    std::optional<OfxStatus> threadIndexAnswer;  ///< multiThreadIndex answers this and sets nothing
    std::optional<OfxStatus> multiThreadAnswer;  ///< multiThread answers this and makes no call

    // Messages, derivatives, overlays
    std::optional<OfxStatus> messageAnswer;
    bool nullDerivativeMembers = false;
    bool interactHasNoProperties = false;  ///< interactGetPropertySet answers 5

    // Faults: the k-th call since `EmbeddedHost::resetCounters` fails, counted from 1; 0 is never.
    unsigned int failAllocation = 0;  ///< imageMemoryAlloc answers 8
    unsigned int failLock = 0;        ///< imageMemoryLock answers 8
    unsigned int failFetch = 0;       ///< clipGetImage answers 1
    unsigned int abortFromPoll = 0;   ///< abort answers 1 from the k-th poll on
};

}  // namespace Tesseret::Host
