#include "viewer/window/Window.h"

#include <algorithm>

#include <GLFW/glfw3.h>
#include <imgui/backends/imgui_impl_glfw.h>
#include <imgui/backends/imgui_impl_opengl2.h>
#include <imgui/imgui.h>

#include "render/JobError.h"
#include "viewer/window/Theme.h"

namespace Tesseret::Viewer {

namespace {

std::string lastError()
{
    const char* text = nullptr;
    glfwGetError(&text);
    return text != nullptr ? text : "no reason is known";
}

}  // namespace

/// For the callbacks of the system.
struct WindowEvents {
    static Window& of(GLFWwindow* window)
    {
        return *static_cast<Window*>(glfwGetWindowUserPointer(window));
    }
    static InputQueue& input(GLFWwindow* window) { return of(window).input_; }
    static void drop(GLFWwindow* window, int count, const char** paths)
    {
        of(window).drops_.insert(of(window).drops_.end(), paths, paths + count);
    }
};

namespace {

GLFWwindow* open(const std::string& title, WindowSize size)
{
    if (glfwInit() != GLFW_TRUE) {
        throw Render::UsageError(
            "no display: `tesseret view` needs a window system; `tesseret render` does without (" +
            lastError() + ")");
    }
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 2);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 0);
    GLFWwindow* const window =
        glfwCreateWindow(size.width, size.height, title.c_str(), nullptr, nullptr);
    if (window == nullptr) {
        const std::string reason = lastError();
        glfwTerminate();
        throw Render::UsageError("no window: `tesseret view` needs OpenGL 2.0 (" + reason + ")");
    }
    glfwMakeContextCurrent(window);
    glfwSwapInterval(1);
    return window;
}

}  // namespace

Window::Window(const std::string& title, WindowSize size) : window_(open(title, size))
{
    listen();
    ImGui::CreateContext();
    ImGui::GetIO().IniFilename = nullptr;  // writes no settings file
    applyTheme(density());
    ImGui_ImplGlfw_InitForOpenGL(window_, /*install_callbacks=*/false);
    ImGui_ImplOpenGL2_Init();
}

Window::~Window()
{
    ImGui_ImplOpenGL2_Shutdown();
    ImGui_ImplGlfw_Shutdown();
    ImGui::DestroyContext();
    glfwDestroyWindow(window_);
    glfwTerminate();
}

void Window::listen()
{
    glfwSetWindowUserPointer(window_, this);
    glfwSetWindowFocusCallback(window_, ImGui_ImplGlfw_WindowFocusCallback);
    glfwSetCursorEnterCallback(window_, ImGui_ImplGlfw_CursorEnterCallback);
    glfwSetCursorPosCallback(window_, [](GLFWwindow* window, double x, double y) {
        WindowEvents::input(window).push(MotionEvent{x, y});
    });
    glfwSetMouseButtonCallback(window_, [](GLFWwindow* window, int button, int action, int mods) {
        WindowEvents::input(window).push(ButtonEvent{button, action, mods});
    });
    glfwSetScrollCallback(window_, [](GLFWwindow* window, double x, double y) {
        WindowEvents::input(window).push(WheelEvent{x, y});
    });
    glfwSetKeyCallback(window_,
                       [](GLFWwindow* window, int key, int scancode, int action, int mods) {
                           WindowEvents::input(window).push(KeyEvent{key, scancode, action, mods});
                       });
    glfwSetDropCallback(window_, &WindowEvents::drop);
    glfwSetCharCallback(window_, [](GLFWwindow* window, unsigned int codepoint) {
        WindowEvents::input(window).push(TextEvent{codepoint});
    });
}

void Window::wait(double seconds)
{
    if (input_.empty()) {
        glfwWaitEventsTimeout(seconds);
    } else {
        glfwPollEvents();
    }
}

void Window::wake()
{
    glfwPostEmptyEvent();
}

void Window::pass(const InputEvent& event)
{
    if (const auto* const motion = std::get_if<MotionEvent>(&event)) {
        pointerX_ = motion->x;
        pointerY_ = motion->y;
        motions_.push_back({motion->x, motion->y});
    } else if (const auto* const button = std::get_if<ButtonEvent>(&event)) {
        const auto place = static_cast<std::size_t>(button->button);
        if (place < buttons_.size()) buttons_[place] = button->action != GLFW_RELEASE;
        ImGui_ImplGlfw_MouseButtonCallback(window_, button->button, button->action,
                                           button->modifiers);
    } else if (const auto* const wheel = std::get_if<WheelEvent>(&event)) {
        ImGui_ImplGlfw_ScrollCallback(window_, wheel->x, wheel->y);
    } else if (const auto* const key = std::get_if<KeyEvent>(&event)) {
        ImGui_ImplGlfw_KeyCallback(window_, key->key, key->scancode, key->action, key->modifiers);
        if (key->action != GLFW_RELEASE) keys_.push_back(*key);
    } else if (const auto* const text = std::get_if<TextEvent>(&event)) {
        ImGui_ImplGlfw_CharCallback(window_, text->codepoint);
    }
}

void Window::beginFrame()
{
    keys_.clear();
    motions_.clear();
    const std::vector<InputEvent> events = input_.takeFrame();
    hadInput_ = !events.empty() || !drops_.empty();
    for (const InputEvent& event : events) pass(event);
    ImGui_ImplOpenGL2_NewFrame();
    ImGui_ImplGlfw_NewFrame();
    // The backend uses the current position and buttons, which may be ahead of the frame's events.
    ImGui::GetIO().MousePos = ImVec2(float(pointerX_), float(pointerY_));
    std::ranges::copy(buttons_, ImGui::GetIO().MouseDown);
    ImGui::NewFrame();
}

void Window::endFrame()
{
    ImGui::Render();
    ImGui_ImplOpenGL2_RenderDrawData(ImGui::GetDrawData());
    glfwSwapBuffers(window_);
}

bool Window::isClosing() const
{
    return glfwWindowShouldClose(window_) == GLFW_TRUE;
}

void Window::close()
{
    glfwSetWindowShouldClose(window_, GLFW_TRUE);
}

void Window::keepOpen()
{
    glfwSetWindowShouldClose(window_, GLFW_FALSE);
}

void Window::setTitle(const std::string& title)
{
    glfwSetWindowTitle(window_, title.c_str());
}

void Window::copyToClipboard(const std::string& text)
{
    glfwSetClipboardString(window_, text.c_str());
}

WindowSize Window::size() const
{
    WindowSize size;
    glfwGetWindowSize(window_, &size.width, &size.height);
    return size;
}

double Window::density() const
{
    int pixels = 0, height = 0;
    glfwGetFramebufferSize(window_, &pixels, &height);
    const WindowSize units = size();
    return units.width > 0 && pixels > 0 ? double(pixels) / units.width : 1.0;
}

}  // namespace Tesseret::Viewer
