#include "viewer/window/VariationStrip.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>

#include <imgui/imgui.h>

#include "fill/ChoiceText.h"

namespace Tesseret::Viewer {

namespace {

// Screen units.
constexpr float kHeading = 24.0f;
constexpr float kShare = 0.15f, kLeast = 62.0f, kMost = 132.0f;
constexpr float kSmallWindow = 520.0f;
constexpr float kFrame = 2.0f;
const ImVec4 kCurrentColour{0.96f, 0.71f, 0.33f, 1.0f};

}  // namespace

float VariationStrip::height(float windowHeight)
{
    if (session_.variations().size() < 2) return 0.0f;
    if (!isOpen_) isOpen_ = windowHeight >= kSmallWindow;
    return *isOpen_ ? kHeading + std::clamp(kShare * windowHeight, kLeast, kMost) : kHeading;
}

void VariationStrip::update()
{
    std::vector<std::shared_ptr<const Picture>> wanted;
    for (const Fill::Variation& variation : session_.variations()) {
        wanted.push_back(variation.preview);
    }
    if (wanted == shown_) return;
    shown_ = std::move(wanted);
    textures_.clear();
    for (const auto& picture : shown_) textures_.emplace_back().show(picture, {1.0, 1.0});
}

void VariationStrip::draw()
{
    update();
    const std::string heading = std::string(*isOpen_ ? "Hide" : "Show") + " the " +
                                std::to_string(shown_.size()) + " fills to pick from";
    if (ImGui::ArrowButton("##fold", *isOpen_ ? ImGuiDir_Down : ImGuiDir_Right)) {
        isOpen_ = !*isOpen_;
        return;
    }
    if (ImGui::IsItemHovered()) ImGui::SetTooltip("%s", heading.c_str());
    ImGui::SameLine();
    const std::string advice = *isOpen_ ? "A click takes a fill; the best one stands first."
                                        : std::to_string(shown_.size()) + " fills to pick from";
    ImGui::TextDisabled("%s", advice.c_str());
    if (!*isOpen_) return;
    ImGui::BeginChild("thumbnails", {0.0f, 0.0f}, false, ImGuiWindowFlags_HorizontalScrollbar);
    const float height = ImGui::GetContentRegionAvail().y;
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        if (i > 0) ImGui::SameLine(0.0f, 6.0f);
        drawThumbnail(i, height);
    }
    ImGui::EndChild();
}

/// The picture with its score over the lower edge, in a frame where it is the one in force.
void VariationStrip::drawThumbnail(std::size_t variation, float height)
{
    const Fill::Variation& shown = session_.variations()[variation];
    const Picture& picture = *shown.preview;
    const double aspect = picture.pixelAspectRatio() * picture.width() / picture.height();
    const ImVec2 size{float(aspect) * height, height};
    const ImVec2 place = ImGui::GetCursorScreenPos();
    ImGui::PushID(static_cast<int>(variation));
    if (ImGui::InvisibleButton("##take", size)) {
        log_.attempt([&] { session_.pickVariation(variation); });
    }
    ImGui::PopID();
    const bool isHovered = ImGui::IsItemHovered();
    ImDrawList& list = *ImGui::GetWindowDrawList();
    const ImVec2 end{place.x + size.x, place.y + size.y};
    const auto texture = std::bit_cast<ImTextureID>(std::uintptr_t{textures_[variation].name()});
    list.AddImage(texture, place, end, {0.0f, 1.0f}, {1.0f, 0.0f});
    const std::string score = Fill::scoreText(shown.visibility.total);
    const ImVec2 text = ImGui::CalcTextSize(score.c_str());
    const ImVec2 corner{end.x - text.x - 8.0f, end.y - text.y - 4.0f};
    list.AddRectFilled(corner, end, IM_COL32(16, 17, 19, 200));
    list.AddText({corner.x + 4.0f, corner.y + 2.0f}, ImGui::GetColorU32(ImGuiCol_Text),
                 score.c_str());
    if (session_.currentVariation() == variation) {
        list.AddRect(place, end, ImGui::GetColorU32(kCurrentColour), 0.0f, 0, 2.0f * kFrame);
    } else if (isHovered) {
        list.AddRect(place, end, ImGui::GetColorU32(ImGuiCol_Text), 0.0f, 0, kFrame);
    }
    if (!isHovered) return;
    ImGui::BeginTooltip();
    ImGui::PushTextWrapPos(ImGui::GetFontSize() * 22.0f);
    ImGui::Text("Score %s", score.c_str());
    ImGui::TextUnformatted(shown.caption.c_str());
    ImGui::PopTextWrapPos();
    ImGui::EndTooltip();
}

}  // namespace Tesseret::Viewer
