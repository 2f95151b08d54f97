#pragma once

#include <memory>

#include "viewer/model/MatteTools.h"

namespace Tesseret::Viewer {

/// The chosen tool with its settings, and whether the matte is shown.
class ToolBox {
public:
    /// The session outlives the object.
    ToolBox(ViewSession& session, ToolKind kind) : session_(session) { choose(kind); }

    ToolKind kind() const { return kind_; }
    /// Drops what the tool before was drawing.
    void choose(ToolKind kind)
    {
        if (tool_) tool_->cancel();
        kind_ = kind;
        tool_ = makeTool(kind, session_, brush_);
    }
    PictureTool& tool() { return *tool_; }
    const PictureTool& tool() const { return *tool_; }
    Brush& brush() { return brush_; }
    const Brush& brush() const { return brush_; }
    /// By which the matte grows and shrinks, in pixels.
    float& step() { return step_; }

    bool showsMatte() const { return showsMatte_; }
    void toggleMatte() { showsMatte_ = !showsMatte_; }

private:
    ViewSession& session_;
    ToolKind kind_ = ToolKind::Brush;
    Brush brush_;
    std::unique_ptr<PictureTool> tool_;
    float step_ = 5.0f;
    bool showsMatte_ = true;
};

}  // namespace Tesseret::Viewer
