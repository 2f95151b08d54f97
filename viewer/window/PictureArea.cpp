#include "viewer/window/PictureArea.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include <imgui/imgui.h>

#include "effect/ParameterNames.h"
#include "viewer/window/Gl.h"

namespace Tesseret::Viewer {

namespace {

constexpr double kZoomStep = 1.15;      ///< for one notch of the wheel
constexpr double kWipeTolerance = 8.0;  ///< screen units from the line
constexpr double kToolReach = 8.0;      ///< screen units
constexpr double kGround = 0.085;       ///< grey around the picture
constexpr std::size_t kMostNumbers = 200;
constexpr ImU32 kDark = IM_COL32(0, 0, 0, 150), kLight = IM_COL32(255, 214, 140, 255);
constexpr ImU32 kTag = IM_COL32(20, 21, 23, 215), kTagText = IM_COL32(255, 190, 110, 255);

bool differ(const OfxPointD& a, const OfxPointD& b)
{
    return a.x != b.x || a.y != b.y;
}

ImVec2 toIm(OfxPointD point)
{
    return {float(point.x), float(point.y)};
}

/// Behind the user interface, over the picture, and nowhere else.
class PictureDrawing {
public:
    explicit PictureDrawing(const ScreenArea& area) : list_(*ImGui::GetBackgroundDrawList())
    {
        list_.PushClipRect(toIm({area.x, area.y}),
                           toIm({area.x + area.width, area.y + area.height}));
    }
    ~PictureDrawing() { list_.PopClipRect(); }
    PictureDrawing(const PictureDrawing&) = delete;
    PictureDrawing& operator=(const PictureDrawing&) = delete;

    /// Dark under light, so that it shows on any ground.
    void line(const std::vector<ImVec2>& points, bool isClosed)
    {
        const int flags = isClosed ? ImDrawFlags_Closed : ImDrawFlags_None;
        const int count = static_cast<int>(points.size());
        list_.AddPolyline(points.data(), count, kDark, flags, 3.5f);
        list_.AddPolyline(points.data(), count, kLight, flags, 1.5f);
    }
    ImDrawList& list() { return list_; }

private:
    ImDrawList& list_;
};

/// The box is the user's when it was given; then it is the first thing to work on.
ToolKind firstTool(const ViewSession& session)
{
    const bool paints = session.paintObstacle().empty() && !session.hasOwnBox();
    return paints ? ToolKind::Brush : ToolKind::SampleBox;
}

/// Before anything is painted the picture is shown, unless a texture is to cover it.
bool startsWithSource(const ViewSession& session)
{
    return session.fillRegion().source == Render::MaskSource::None &&
           session.paintObstacle().empty() && session.inputs().infos().size() <= 2;
}

/// A brush that is handy while the whole picture is seen.
double firstSize(const OfxRectD& picture)
{
    const double length = std::max(picture.x2 - picture.x1, picture.y2 - picture.y1);
    return std::clamp(std::round(length / 20.0), 10.0, 400.0);
}

}  // namespace

PictureArea::PictureArea(ViewSession& session, MessageLog& log)
    : session_(session),
      log_(log),
      trials_(session),
      overlay_(session),
      tools_(session, firstTool(session))
{
    update();
    const OfxRectD& picture = view_.picture();
    layers_.setWipe((picture.x1 + picture.x2) / 2.0);
    if (startsWithSource(session)) layers_.choose(Layer::Source);
    tools_.brush().size = firstSize(picture);
}

void PictureArea::update()
{
    const std::shared_ptr<const Picture> source = session_.pictures().at(Names::kSource).picture;
    view_.setPicture(toCanonical(source->bounds(), {1.0, 1.0}, source->pixelAspectRatio()));
    layers_.showSource(source);
    layers_.showResult(session_.worker().latest());
}

double PictureArea::aspect() const
{
    return session_.inputs().source().pixelAspectRatio;
}

bool PictureArea::showHole()
{
    if (session_.matte() == nullptr) return false;
    const OfxRectI box = session_.matte()->paint().maskedBox();
    if (isEmpty(box)) return false;
    view_.show(toCanonical(box, {1.0, 1.0}, aspect()));
    return true;
}

void PictureArea::openAtHole()
{
    if (std::exchange(isOpened_, true) || !view_.isLarge()) return;
    showHole();
}

OfxPointD PictureArea::onScreen(OfxPointD pixel) const
{
    return view_.toScreen({pixel.x * aspect(), pixel.y});
}

ToolPen PictureArea::penAt(OfxPointD screen, bool erases) const
{
    const OfxPointD place = view_.toCanonical(screen);
    return {{place.x / aspect(), place.y}, kToolReach / view_.scale(), erases};
}

void PictureArea::zoom(OfxPointD pointer)
{
    const double notches = double(ImGui::GetIO().MouseWheel);
    if (notches != 0.0) view_.zoomAbout(pointer, std::pow(kZoomStep, notches));
}

void PictureArea::press(OfxPointD pointer, int button)
{
    const double line = view_.toScreen({layers_.wipe(), 0.0}).x;
    const bool isLeft = button == ImGuiMouseButton_Left;
    isWiping_ = isLeft && layers_.layer() == Layer::Split && !isDrawing() &&
                std::abs(pointer.x - line) <= kWipeTolerance;
    if (isWiping_) return;
    const bool isBox = tools_.kind() == ToolKind::SampleBox;
    if (isBox && (!isLeft || overlay_.press(view_, pointer))) return;
    held_ = button;
    log_.attempt([&] { tools_.tool().press(penAt(pointer, !isLeft)); });
}

void PictureArea::release(OfxPointD pointer)
{
    isWiping_ = false;
    if (session_.isDragging()) overlay_.release(view_, pointer);
    if (held_ < 0) return;
    held_ = -1;
    log_.attempt([&] { tools_.tool().release(); });
}

/// In canonical units, so that a drag goes on when the picture is moved under the pen.
void PictureArea::followOverlay(OfxPointD pointer, bool isOver)
{
    const OfxPointD pen = view_.toCanonical(pointer);
    const bool isBox = tools_.kind() == ToolKind::SampleBox && held_ < 0;
    const bool follows = session_.isDragging() || ((isOver || isOver_) && isBox);
    if (follows && !isWiping_ && differ(pen, pen_)) overlay_.move(view_, pointer);
    pen_ = pen;
}

void PictureArea::followPointer(std::span<const OfxPointD> motions)
{
    openAtHole();
    const ImGuiIO& io = ImGui::GetIO();
    const OfxPointD pointer{double(io.MousePos.x), double(io.MousePos.y)};
    const bool isOver = view_.area().contains(pointer) && !io.WantCaptureMouse;
    if (isOver) zoom(pointer);
    if (isOver && ImGui::IsMouseClicked(ImGuiMouseButton_Middle)) isPanning_ = true;
    if (!ImGui::IsMouseDown(ImGuiMouseButton_Middle)) isPanning_ = false;
    if (isPanning_) view_.pan(double(io.MouseDelta.x), double(io.MouseDelta.y));

    followOverlay(pointer, isOver);
    isOver_ = isOver;
    if (isWiping_) layers_.setWipe(view_.toCanonical(pointer).x);
    if (isDrawing()) {
        for (const OfxPointD& place : motions) tools_.tool().move(penAt(place, false));
    }
    for (const int button : {ImGuiMouseButton_Left, ImGuiMouseButton_Right}) {
        const bool isFree = held_ < 0 && !session_.isDragging() && !isWiping_;
        if (isOver && isFree && ImGui::IsMouseClicked(button)) press(pointer, button);
    }
    const int held = held_ < 0 ? int(ImGuiMouseButton_Left) : held_;
    if (!ImGui::IsMouseDown(held)) release(pointer);
}

void PictureArea::finishDrawing()
{
    log_.attempt([&] { tools_.tool().finish(); });
}

void PictureArea::cancelDrawing()
{
    tools_.tool().cancel();
    held_ = -1;
}

void PictureArea::draw(double windowHeight, double density)
{
    const ScreenArea& area = view_.area();
    const auto pixels = [density](double units) {
        return static_cast<GLint>(std::lround(units * density));
    };
    glViewport(pixels(area.x), pixels(windowHeight - area.y - area.height), pixels(area.width),
               pixels(area.height));
    glClearColor(float(kGround), float(kGround), float(kGround), 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    const OfxRectD seen = view_.visible();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(seen.x1, seen.x2, seen.y1, seen.y2, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    layers_.draw(view_, density);
    trials_.update();
    if (layers_.layer() == Layer::Result) trials_.draw();
    drawMatte();
    if (showsOverlay()) overlay_.draw(view_);
    drawShape();
    drawBrush();
}

/// Where the box is not in effect it is shown only to be changed.
bool PictureArea::showsOverlay() const
{
    if (tools_.kind() == ToolKind::SampleBox || !session_.sampleBox()) return true;
    return session_.fillRegion().source != Render::MaskSource::None && session_.usesSampleBox();
}

/// On a result the outline has to do, once the result is that of the matte.
bool PictureArea::showsTint() const
{
    if (session_.fillRegion().polarity == Render::Polarity::Black) return false;
    if (layers_.layer() == Layer::Source || session_.isPainting()) return true;
    if (layers_.layer() == Layer::Result && !trials_.isEmpty()) return false;
    const auto latest = session_.worker().latest();
    return !latest || latest->request.matte != session_.matte()->painted();
}

void PictureArea::drawMatte()
{
    if (session_.matte() == nullptr) return;
    matte_.update(session_.matte()->paint());
    const bool isPicture = mapName(layers_.layer()).empty();
    if (!tools_.showsMatte() && !session_.isPainting()) return;
    if (!isPicture) return;
    glPushMatrix();
    glScaled(aspect(), 1.0, 1.0);
    if (showsTint()) matte_.drawTint();
    matte_.drawOutline();
    glPopMatrix();
    drawAreaNumbers();
}

/// Where the highest row of an area begins, at the upper left of its box if it has been widened.
OfxPointD PictureArea::topOf(const OfxRectI& box, double scale) const
{
    const Picture& matte = session_.matte()->paint().picture();
    for (int x = box.x1; scale == 1.0 && x < box.x2 && matte.contains(x, box.y2 - 1); ++x) {
        if (*matte.pixel<std::uint8_t>(x, box.y2 - 1) != 0) return {double(x), double(box.y2)};
    }
    return {box.x1 / scale, box.y2 / scale};
}

/// At the top of each area of the last result, in the order of filling.
void PictureArea::drawAreaNumbers() const
{
    const auto latest = session_.worker().latest();
    if (!latest || latest->areas.size() > kMostNumbers) return;
    PictureDrawing drawing(view_.area());
    const double scale = latest->request.scale;
    for (std::size_t i = 0; i < latest->areas.size(); ++i) {
        const OfxPointD corner = onScreen(topOf(latest->areas[i], scale));
        const std::string text = std::to_string(i + 1);
        const ImVec2 size = ImGui::CalcTextSize(text.c_str());
        const ImVec2 place{float(corner.x) - size.x / 2.0f, float(corner.y) - size.y - 4.0f};
        drawing.list().AddRectFilled({place.x - 5.0f, place.y - 1.0f},
                                     {place.x + size.x + 5.0f, place.y + size.y + 1.0f}, kTag,
                                     4.0f);
        drawing.list().AddText(place, kTagText, text.c_str());
    }
}

void PictureArea::drawShape() const
{
    std::vector<ImVec2> points;
    for (const OfxPointD& corner : tools_.tool().outline())
        points.push_back(toIm(onScreen(corner)));
    if (points.size() < 2) return;
    PictureDrawing drawing(view_.area());
    drawing.line(points, tools_.kind() != ToolKind::Polygon);
}

void PictureArea::drawBrush() const
{
    if (!isOver_ || !hasBrush(tools_.kind())) return;
    constexpr int kCorners = 64;
    constexpr double kTurn = 6.283185307179586;
    const Brush& brush = tools_.brush();
    const ImVec2 pointer = ImGui::GetIO().MousePos;
    PictureDrawing drawing(view_.area());
    for (const double share : {1.0, 1.0 - brush.softness}) {
        const double radius = brush.size / 2.0 * view_.scale() * share;
        if (radius < 1.5 || (share < 1.0 && radius < 4.0)) continue;
        std::vector<ImVec2> points;
        for (int i = 0; i < kCorners; ++i) {
            const double angle = kTurn * i / kCorners;
            points.emplace_back(pointer.x + float(radius * aspect() * std::cos(angle)),
                                pointer.y + float(radius * std::sin(angle)));
        }
        drawing.line(points, /*isClosed=*/true);
        if (brush.softness <= 0.0) break;
    }
}

}  // namespace Tesseret::Viewer
