#pragma once

/// The tools that work on the picture with the pointer: one paints, one draws the sample box.

#include <memory>
#include <span>
#include <vector>

#include "viewer/model/MatteBrush.h"

namespace Tesseret::Viewer {

class ViewSession;

enum class ToolKind { Brush, Eraser, Rectangle, Lasso, Polygon, Fill, SampleBox };

struct ToolRow {
    ToolKind kind;
    const char* label;
    char letter;  ///< of its key, in the user's keyboard layout
    const char* help;
};

/// All tools, in the order of the toolbar.
std::span<const ToolRow> toolRows();
const ToolRow& rowOf(ToolKind kind);
/// Whether the brush's size and softness matter.
bool hasBrush(ToolKind kind);

/// The pointer on the picture.
struct ToolPen {
    OfxPointD at{0.0, 0.0};  ///< pixels of the source, y upwards
    double reach = 1.0;      ///< pixels within which a place is meant
    bool erases = false;
};

class PictureTool {
public:
    PictureTool() = default;
    virtual ~PictureTool() = default;
    PictureTool(const PictureTool&) = delete;
    PictureTool& operator=(const PictureTool&) = delete;

    virtual void press(const ToolPen& pen) = 0;
    /// Between press and release, and for a polygon until it is closed.
    virtual void move(const ToolPen& /*pen*/) {}
    virtual void release() {}
    /// Closes what is open after the release.
    virtual void finish() {}
    /// Drops what is being drawn.
    virtual void cancel() {}
    /// Whether something is being drawn.
    virtual bool isActive() const { return false; }
    /// The shape being drawn, in pixels.
    virtual std::vector<OfxPointD> outline() const { return {}; }
};

/// Session and brush outlive the tool; the brush may change between strokes.
std::unique_ptr<PictureTool> makeTool(ToolKind kind, ViewSession& session, const Brush& brush);

}  // namespace Tesseret::Viewer
