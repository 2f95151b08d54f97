#include "viewer/window/PictureArea.h"

#include <cmath>

#include <imgui/imgui.h>

#include "effect/ParameterNames.h"
#include "viewer/window/Gl.h"

namespace Tesseret::Viewer {

namespace {

constexpr double kZoomStep = 1.15;      ///< for one notch of the wheel
constexpr double kWipeTolerance = 8.0;  ///< screen units from the line
constexpr double kGround = 0.085;       ///< grey around the picture

bool differ(const OfxPointD& a, const OfxPointD& b)
{
    return a.x != b.x || a.y != b.y;
}

}  // namespace

PictureArea::PictureArea(ViewSession& session) : session_(session), overlay_(session)
{
    update();
    const OfxRectD& picture = view_.picture();
    layers_.setWipe((picture.x1 + picture.x2) / 2.0);
}

void PictureArea::update()
{
    const std::shared_ptr<const Picture> source = session_.pictures().at(Names::kSource).picture;
    view_.setPicture(toCanonical(source->bounds(), {1.0, 1.0}, source->pixelAspectRatio()));
    layers_.showSource(source);
    layers_.showResult(session_.worker().latest());
}

void PictureArea::zoom(OfxPointD pointer)
{
    const double notches = double(ImGui::GetIO().MouseWheel);
    if (notches != 0.0) view_.zoomAbout(pointer, std::pow(kZoomStep, notches));
}

void PictureArea::pressLeft(OfxPointD pointer)
{
    if (overlay_.press(view_, pointer)) return;
    const double line = view_.toScreen({layers_.wipe(), 0.0}).x;
    isWiping_ = layers_.layer() == Layer::Split && std::abs(pointer.x - line) <= kWipeTolerance;
}

void PictureArea::followPointer()
{
    const ImGuiIO& io = ImGui::GetIO();
    const OfxPointD pointer{double(io.MousePos.x), double(io.MousePos.y)};
    const bool isOver = view_.area().contains(pointer) && !io.WantCaptureMouse;
    if (isOver) zoom(pointer);
    if (isOver && ImGui::IsMouseClicked(ImGuiMouseButton_Middle)) isPanning_ = true;
    if (!ImGui::IsMouseDown(ImGuiMouseButton_Middle)) isPanning_ = false;
    if (isPanning_) view_.pan(double(io.MouseDelta.x), double(io.MouseDelta.y));

    // In canonical units, so that a drag goes on when the picture is moved under the pen.
    const OfxPointD pen = view_.toCanonical(pointer);
    const bool follows = session_.isDragging() || isOver || isOver_;
    if (follows && !isWiping_ && differ(pen, pen_)) overlay_.move(view_, pointer);
    pen_ = pen;
    isOver_ = isOver;

    if (isWiping_) layers_.setWipe(pen.x);
    if (isOver && ImGui::IsMouseClicked(ImGuiMouseButton_Left)) pressLeft(pointer);
    if (ImGui::IsMouseDown(ImGuiMouseButton_Left)) return;
    isWiping_ = false;
    if (session_.isDragging()) overlay_.release(view_, pointer);
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
    overlay_.draw(view_);
}

}  // namespace Tesseret::Viewer
