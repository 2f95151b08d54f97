#pragma once

/// The model of a viewer, without any window: the files, the plug-in's instance with its overlay,
/// the edit history, and the render worker. All functions are called from one thread.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/Interact.h"
#include "render/InstanceSetup.h"
#include "viewer/model/EditHistory.h"
#include "viewer/model/FillList.h"
#include "viewer/model/MatteDocument.h"
#include "viewer/model/Messages.h"
#include "viewer/model/PanelPages.h"
#include "viewer/model/PictureCache.h"
#include "viewer/model/RenderWorker.h"
#include "viewer/model/SettingsSearch.h"

namespace Tesseret::Viewer {

/// Destroyed while the OpenGL context in which the overlay was drawn is current.
class ViewSession final : private Host::InstanceListener {
public:
    /// Opens the inputs of `tesseret render`; the output may be empty. Throws `UsageError` or
    /// `FileError`.
    explicit ViewSession(Render::RenderSettings settings);
    /// Stops a search and waits for it.
    ~ViewSession() override;
    ViewSession(const ViewSession&) = delete;
    ViewSession& operator=(const ViewSession&) = delete;

    // Files, plug-in and instance.

    Host::EffectDescription effect() { return session_.effect().description(); }
    const Host::ContextDescription& description() const { return description_; }
    const std::vector<PanelPage>& pages() const { return pages_; }
    const Render::JobInputs& inputs() const { return pictures_.inputs(); }
    Host::Instance& instance() { return *ready_.instance; }
    /// Created at the first call; null when the plug-in has none or refuses.
    Host::Interact* overlay();
    RenderWorker& worker() { return *worker_; }

    // Frames.

    const std::vector<int>& frames() const { return inputs().frames(); }
    int frame() const { return frame_; }
    /// Throws `FileError` or `UsageError` when the frame's files cannot be read.
    void setFrame(int frame);
    /// The pictures of the current frame at full size, by clip: "Source", "Matte" and so on.
    const Render::FramePictures& pictures() const { return *shown_; }

    // The pen over the overlay. All values that the plug-in sets from press to release are one
    // edit.

    void movePen(const Host::Interact::Pen& pen);
    /// Returns whether the overlay takes the drag.
    bool pressPen(const Host::Interact::Pen& pen);
    void releasePen(const Host::Interact::Pen& pen);
    /// Whether a drag that the overlay took is going on.
    bool isDragging() const { return drag_.has_value(); }

    // The matte. What is painted is filled: the first step lets the fill come from the matte.

    /// Null where the plug-in has no matte.
    MatteDocument* matte() { return matte_ ? &*matte_ : nullptr; }
    const MatteDocument* matte() const { return matte_ ? &*matte_ : nullptr; }
    /// Why nothing can be painted, as a line for the user; empty when something can.
    const std::string& paintObstacle() const { return paintObstacle_; }
    /// Everything painted from begin to end is one edit. Throws `UsageError` where nothing can be
    /// painted.
    void beginPaint();
    void endPaint();
    /// Ends without a trace.
    void cancelPaint();
    bool isPainting() const { return matte_ && matte_->paint().isOpen(); }
    /// Whether something is masked, or being painted.
    bool hasPaint() const;
    /// One edit.
    void paint(const std::function<void(MattePaint&)>& work);
    /// Replaces the matte by a file's, as one edit. Throws `FileError` or `UsageError`.
    void loadMatte(const std::filesystem::path& file);
    /// Throws `FileError`, and `UsageError` for an input file or a name of another format.
    void saveMatte(const std::filesystem::path& file);
    /// Whether paint would be lost with the session.
    bool hasUnsavedMatte() const { return matte_ && matte_->hasUnsavedPaint(); }
    /// Where the matte is saved, or else would be.
    std::filesystem::path matteFile() const;
    /// Whether the printed command line needs the matte to be saved first.
    bool needsMatteFile();
    /// The mask that the current values fill from.
    Render::FillRegion fillRegion() const;

    // The sample box.

    /// In pixels of the source (or of the first texture), y upwards; nullopt where the plug-in has
    /// none.
    std::optional<OfxRectI> sampleBox() const;
    /// As one edit; blocks come from the box then, also where they kept clear of the region to
    /// fill. Clipped at the picture; a box that misses it is left out.
    void setSampleBox(const OfxRectD& pixels);
    /// Whether blocks come from the box.
    bool usesSampleBox() const;
    /// Whether the box is not the plug-in's default.
    bool hasOwnBox() const;

    // Settings chosen by trials, as `tesseret fill` does.

    /// Why they cannot be chosen now, as a line for the user; empty when they can.
    std::string chooseObstacle() const;
    /// Begins a search for the matte as it is painted. What was given on the command line by name
    /// stays, and a sample box in use. Throws `UsageError` where none can be made.
    void startChoosing(Fill::Effort effort);
    /// Progress, and `stop`, which ends the search with the best so far.
    SettingsSearch& search() { return search_; }
    const SettingsSearch& search() const { return search_; }
    /// Applies what a search has found as one edit. Matte, frame and values may change while it
    /// runs: an area that was searched for gets its settings as far as it is still there, and a
    /// value that the user has set meanwhile stays. False while there is nothing to apply, or
    /// another edit is going on.
    bool takeChoice();
    /// The fills to pick from, of the last search; their previews are thumbnails.
    const std::vector<Fill::Variation>& variations() const { return variations_; }
    /// The one in force.
    std::optional<std::size_t> currentVariation() const;
    /// As one edit. Throws `UsageError` when the matte has none of their areas left.
    void pickVariation(std::size_t variation);
    /// Whether settings are in force that were chosen, or loaded for single areas.
    bool hasList() const { return listInForce() != nullptr; }
    /// Areas may have settings of their own, which a parameter that is set overrides in all of
    /// them. What they have, as a line for the user; empty when there is one setting for all.
    std::string listText() const;
    /// Back to one setting for all, as one edit.
    void dropList();

    // Parameter values. What the plug-in sets in response belongs to the same edit.

    Host::ParameterValue value(const std::string& name) const
    {
        return ready_.instance->value(name);
    }
    /// Throws `HostError` for a value of another shape.
    void set(const std::string& name, Host::ParameterValue value);
    /// Sets several values as one edit.
    void setAll(const std::vector<Render::NamedValue>& values);
    /// Sets the seed after the current one, where the plug-in has a seed.
    void nextSeed();
    /// Sets the plug-in's default.
    void reset(const std::string& name);
    /// A push button.
    void press(const std::string& name);
    /// All edits until the end of the group are undone as one.
    void beginGroup() { history_.beginGroup(); }
    void endGroup() { history_.endGroup(); }
    bool canUndo() const { return history_.canUndo(); }
    bool canRedo() const { return history_.canRedo(); }
    void undo();
    void redo();
    /// Whether the frame or a value that affects the picture has changed since the last call; true
    /// at the first.
    bool takeChanged();
    /// The plug-in's messages since the last call, except those of renders.
    std::vector<std::string> takeMessages();

    // Renders.

    /// The scale of a full render; 1 unless the settings set another.
    double fullScale() const { return settings_.renderScale; }
    /// Throws what `saveResult` would throw for the name.
    void checkResultFile(const std::filesystem::path& name) const;
    /// Requests a render of the current state from the worker; returns its serial number.
    std::uint64_t request(double scale, bool wantsMaps = false);
    /// Whether the worker's latest result is the current state at full scale.
    bool hasFullResult() const;
    /// Writes the current frame as `tesseret render` would; a frame pattern in the name becomes its
    /// number. Waits for a full render of the current state if needed. Throws `RenderFailure`,
    /// `FileError` or `UsageError`.
    void saveResult(const std::filesystem::path& name);
    /// The equivalent `tesseret render` command line.
    std::string commandText();

    // Files of parameter values; both throw `FileError` or `UsageError`.

    void saveParameters(const std::filesystem::path& file);
    /// As one edit.
    void loadParameters(const std::filesystem::path& file);

private:
    void parameterChanged(Host::Instance& instance, const Host::ParameterChange& change) override;
    void editBegan(Host::Instance& instance, std::string_view label) override;
    void editEnded(Host::Instance& instance) override;

    Render::ParameterValues values() const;
    void apply(const std::vector<Render::NamedValue>& values);
    void replay(const Replay& replay);
    ViewRequest currentRequest(double scale) const;
    void setList(std::shared_ptr<const FillList> list);
    void takeList(const std::shared_ptr<const FillList>& list);
    void overrideSteps(const std::string& name, const Host::ParameterValue& value);
    std::shared_ptr<const FillList> listInForce() const;
    Render::MatteAreas matteAreas(const Render::FillRegion& region) const;
    std::vector<Render::FillStep> currentSteps() const;
    /// The given ones, for the matte as it is.
    Render::RenderSettings matteSettings() const;
    std::shared_ptr<const FillList> loadedList(const std::filesystem::path& file,
                                               bool isGiven) const;
    Render::RenderSettings searchSettings() const;
    std::shared_ptr<const FillList> listOf(std::vector<Render::FillStep> steps,
                                           const Render::MatteAreas* areas) const;
    std::shared_ptr<const FillList> choose(const SearchOutcome& found);
    bool servesMatte(const FillList& list) const;
    void tellChoice(const Fill::FillPlan& plan);
    std::string listCommand(const std::vector<Render::FillStep>& steps);
    void readMatte();
    void fillFromMatte();
    void useSampleBox();
    bool isChoice(const char* parameter, const char* choice) const;
    /// The setup for the current values.
    Render::InstanceSetup currentSetup();

    Render::RenderSettings settings_;
    MessageList messages_;
    Render::PluginSession session_;
    std::string paintObstacle_;
    PictureCache pictures_;
    Render::InstanceSetup setup_;
    const Host::ContextDescription& description_;
    std::vector<PanelPage> pages_;
    // These outlive the instance, which changes them until destroyed.
    EditHistory history_;
    SettingsSearch search_;
    std::set<std::string> changedMeanwhile_;  ///< while a search runs
    std::shared_ptr<const FillList> list_;    ///< null: one setting for all
    bool isTakingList_ = false;               ///< while values come from a list
    bool isReplaying_ = false;                ///< while values come from the history
    bool hasChanged_ = true;
    Render::ReadyInstance ready_;
    std::unique_ptr<Host::Interact> overlay_;
    bool hasTriedOverlay_ = false;
    std::unique_ptr<RenderWorker> worker_;
    std::vector<Fill::Variation> variations_;
    std::vector<std::shared_ptr<const FillList>> variationLists_;  ///< their states
    int frame_;
    std::shared_ptr<const Render::FramePictures> shown_;
    mutable std::optional<MatteDocument> matte_;  ///< its render picture is made when needed
    std::optional<EditHistory::Group> drag_;      ///< while the overlay has the drag
    std::optional<OfxRectI> dragBox_;             ///< the sample box when it began
};

}  // namespace Tesseret::Viewer
