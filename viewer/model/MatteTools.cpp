#include "viewer/model/MatteTools.h"

#include <array>
#include <cmath>
#include <utility>

#include "render/JobError.h"
#include "viewer/model/MatteShapes.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

namespace {

constexpr auto kRows = std::to_array<ToolRow>({
    {ToolKind::Brush, "Brush", 'b', "Paints over what should go; the right button erases."},
    {ToolKind::Eraser, "Eraser", 'e', "Takes paint away."},
    {ToolKind::Rectangle, "Rectangle", 'r', "Drag from corner to corner; the right button erases."},
    {ToolKind::Lasso, "Lasso", 'l', "Drag round what should go; the right button erases."},
    {ToolKind::Polygon, "Polygon", 'p',
     "Click corner after corner; a double click, the first corner or Enter closes it."},
    {ToolKind::Fill, "Fill", 'g', "Click inside a closed stroke to fill it."},
    {ToolKind::SampleBox, "Sample box", 'x',
     "Drag a box over clean ground: the fill is taken from it. Its edges and its cross move it."},
});

double distance(OfxPointD a, OfxPointD b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

class BrushTool final : public PictureTool {
public:
    BrushTool(ViewSession& session, const Brush& brush, bool erases)
        : session_(session), brush_(brush), alwaysErases_(erases)
    {}

    void press(const ToolPen& pen) override
    {
        erases_ = alwaysErases_ || pen.erases;
        session_.beginPaint();
        isActive_ = true;
        drawTo(last_ = pen.at);
    }
    void move(const ToolPen& pen) override { drawTo(pen.at); }
    void release() override
    {
        if (std::exchange(isActive_, false)) session_.endPaint();
    }
    void cancel() override
    {
        if (std::exchange(isActive_, false)) session_.cancelPaint();
    }
    bool isActive() const override { return isActive_; }

private:
    void drawTo(OfxPointD at)
    {
        drawStroke(session_.matte()->paint(), brush_, last_, at, erases_);
        last_ = at;
    }

    ViewSession& session_;
    const Brush& brush_;
    bool alwaysErases_, erases_ = false, isActive_ = false;
    OfxPointD last_{0.0, 0.0};
};

/// A shape of corners that is filled once it is complete.
class ShapeTool : public PictureTool {
public:
    explicit ShapeTool(ViewSession& session) : session_(session) {}

    void cancel() override { corners_.clear(); }
    bool isActive() const override { return !corners_.empty(); }
    std::vector<OfxPointD> outline() const override { return corners_; }

protected:
    void start(const ToolPen& pen)
    {
        erases_ = pen.erases;
        corners_ = {pen.at};
    }
    void fill()
    {
        const std::vector<OfxPointD> corners = std::exchange(corners_, {});
        session_.paint([&](MattePaint& paint) { fillPolygon(paint, corners, erases_); });
    }

    ViewSession& session_;
    std::vector<OfxPointD> corners_;
    bool erases_ = false;
};

class RectangleTool : public ShapeTool {
public:
    using ShapeTool::ShapeTool;

    void press(const ToolPen& pen) override { start(pen); }
    void move(const ToolPen& pen) override
    {
        const OfxPointD a = corners_.front(), b = pen.at;
        corners_ = {a, {b.x, a.y}, b, {a.x, b.y}};
    }
    void release() override { fill(); }
};

class LassoTool final : public ShapeTool {
public:
    using ShapeTool::ShapeTool;

    void press(const ToolPen& pen) override { start(pen); }
    void move(const ToolPen& pen) override { corners_.push_back(pen.at); }
    void release() override { fill(); }
};

/// The last corner follows the pointer.
class PolygonTool final : public ShapeTool {
public:
    using ShapeTool::ShapeTool;

    void press(const ToolPen& pen) override
    {
        if (corners_.empty()) {
            start(pen);
        } else {
            corners_.back() = pen.at;
            if (isClosedBy(pen)) return finish();
            if (isAgain(pen)) return;
        }
        corners_.push_back(pen.at);
    }
    void move(const ToolPen& pen) override
    {
        if (!corners_.empty()) corners_.back() = pen.at;
    }
    void finish() override
    {
        if (corners_.empty()) return;
        corners_.pop_back();
        if (corners_.size() < 3) return cancel();
        fill();
    }

private:
    /// The second press of a double click, or one on the first corner.
    bool isClosedBy(const ToolPen& pen) const
    {
        const bool isOnFirst = distance(corners_.front(), pen.at) < pen.reach;
        return corners_.size() > 3 && (isOnFirst || isAgain(pen));
    }
    bool isAgain(const ToolPen& pen) const
    {
        return distance(corners_[corners_.size() - 2], pen.at) < pen.reach;
    }
};

class FillTool final : public PictureTool {
public:
    explicit FillTool(ViewSession& session) : session_(session) {}

    void press(const ToolPen& pen) override
    {
        bool isEnclosed = false;
        session_.paint([&](MattePaint& paint) { isEnclosed = fillEnclosed(paint, pen.at); });
        if (isEnclosed) return;
        throw Render::UsageError("nothing to fill here: click inside a stroke that is closed");
    }

private:
    ViewSession& session_;
};

class SampleBoxTool final : public RectangleTool {
public:
    using RectangleTool::RectangleTool;

    void press(const ToolPen& pen) override
    {
        RectangleTool::press(pen);
        reach_ = pen.reach;
    }
    /// A click alone draws no box.
    void release() override
    {
        const std::vector<OfxPointD> corners = std::exchange(corners_, {});
        if (corners.size() != 4 || distance(corners[0], corners[2]) < reach_) return;
        const OfxPointD a = corners[0], b = corners[2];
        session_.setSampleBox(
            {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)});
    }

private:
    double reach_ = 0.0;
};

}  // namespace

std::span<const ToolRow> toolRows()
{
    return kRows;
}

const ToolRow& rowOf(ToolKind kind)
{
    return kRows.at(static_cast<std::size_t>(kind));
}

bool hasBrush(ToolKind kind)
{
    return kind == ToolKind::Brush || kind == ToolKind::Eraser;
}

std::unique_ptr<PictureTool> makeTool(ToolKind kind, ViewSession& session, const Brush& brush)
{
    switch (kind) {
        case ToolKind::Brush:
            return std::make_unique<BrushTool>(session, brush, /*erases=*/false);
        case ToolKind::Eraser:
            return std::make_unique<BrushTool>(session, brush, /*erases=*/true);
        case ToolKind::Rectangle:
            return std::make_unique<RectangleTool>(session);
        case ToolKind::Lasso:
            return std::make_unique<LassoTool>(session);
        case ToolKind::Polygon:
            return std::make_unique<PolygonTool>(session);
        case ToolKind::Fill:
            return std::make_unique<FillTool>(session);
        case ToolKind::SampleBox:
            break;
    }
    return std::make_unique<SampleBoxTool>(session);
}

}  // namespace Tesseret::Viewer
