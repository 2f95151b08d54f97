#pragma once

#include <array>
#include <optional>
#include <string>

#include "viewer/model/Messages.h"
#include "viewer/model/ViewSession.h"

namespace Tesseret::Viewer {

/// All parameters of the plug-in, page by page, built from the plug-in's description. All changes
/// of one parameter from press to release are one undo step.
class ParameterPanel {
public:
    /// Both outlive the object.
    ParameterPanel(ViewSession& session, MessageLog& log) : session_(session), log_(log) {}

    /// Draws into the user interface's current window.
    void draw();
    /// Whether a slider or number is held.
    bool isDragging() const;

private:
    void drawList();
    void drawPage(const PanelPage& page);
    void drawColumn(const std::vector<std::string>& column);
    void drawRow(const Host::ParameterDescription& parameter);
    void drawValue(const Host::ParameterDescription& parameter, float width);
    bool drawSeed(const Host::ParameterDescription& parameter, Host::ParameterValue& value,
                  float width);
    static float drawLabel(const std::string& label);
    bool isUseless(const Host::ParameterDescription& parameter) const;
    void drawSampleBox();
    void setSampleBox(int top);
    void drawReset(const Host::ParameterDescription& parameter);
    /// A typed value is set only when typing is finished.
    void keepOrSet(const std::string& name, const Host::ParameterValue& value);
    void takeHold(const std::string& name);
    void letGo();

    void set(const std::string& name, const Host::ParameterValue& value);

    ViewSession& session_;
    MessageLog& log_;
    std::string held_;  ///< the parameter being edited; empty for none
    bool isHeldNow_ = false;
    std::optional<Host::ParameterValue> typed_;  ///< for held_, not set yet
    std::array<int, 4> boxFields_{};             ///< x, y, width and height while being typed
};

}  // namespace Tesseret::Viewer
