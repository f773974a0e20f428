#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QThreadPool>
#include <functional>
#include <optional>
#include <utility>

#include "presets/cPresetManager.h"

class PhotoCollection;
class QMenu;
class QWidget;
class SettingsStore;
class UserInterface;

// The window's project actions: Save Project…, Open Project…, the recent projects, and the
// unsaved-changes question before the collection or settings are given up. The file format is
// ProjectFile's; this class holds the dialogs and the window's state.
class ProjectActions : public QObject {
    Q_OBJECT
  public:
    // What the actions work on: the window's collection and settings, and its tabs.
    struct Window {
        QWidget* widget = nullptr;  // the parent of dialogs
        PhotoCollection* collection = nullptr;
        SettingsStore* settings = nullptr;
        UserInterface* ui = nullptr;
        std::function<int()> currentTab;
        std::function<void(int)> selectTab;
    };
    ProjectActions(const Window& window, QObject* parent = nullptr);

    // Save Project…, Open Project… and Open Recent Project, appended to the menu.
    void addToMenu(QMenu* menu);

    // The collection or a setting changed since the last save or open (or since the start).
    bool isModified() const;
    // Takes the present collection and settings as saved.
    void markSaved();
    // When there are changes, asks "Save changes to the project?": true when the caller may go on
    // (saved, or the user chose Don't Save), false for Cancel or a save that did not happen.
    bool maySetAsideChanges();

    // Save Project…: the folder and name dialog, then the save. True when the project was written.
    bool saveProject();
    // Open Project…: the question about changes, the folder, then the project file.
    void openProject();
    // Opens a project file handed to the window (desktop, command line, recent list).
    void openGivenProject(const QString& file);
    // An entry of the recent list: opened, or dropped from the list with a message when its
    // folder or file has gone.
    void openRecent(const QString& file);
    // Opens `file`, taking its photos from `folder`/photos/. True when a project was opened.
    bool openProjectFile(const QString& folder, const QString& file);

    // Where the project's site was last published; saved with the project, without secrets.
    QString publishDestination() const { return publishDestination_; }
    void setPublishDestination(const QString& destination) { publishDestination_ = destination; }

    // The last opened project's dictionary ("loadStatus" included); cleared by a cancelled open.
    const cPresetManager::PresetDictionary& projectDictionary() const { return theDict_; }

    // Recent project files, newest first (at most kRecentCount), kept in the user's settings.
    static constexpr int kRecentCount = 5;
    static QStringList recentProjects();
    static void setRecentProjects(const QStringList& files);

    // The question is asked through this interface (the window's by default).
    void setUserInterface(UserInterface* ui) { ui_ = ui; }

    // The dialogs; tests replace them. The save dialog gives [folder, name text] or nothing.
    std::function<std::optional<std::pair<QString, QString>>()> saveDialog;
    std::function<QString()> chooseProjectFolder;
    std::function<QString(const QString& folder)> chooseProjectFile;

  Q_SIGNALS:
    // The opened project's settings are in the store; `kind` is the kind whose tab shows them.
    void settingsLoaded(const QString& kind);
    // A short note for the status bar.
    void message(const QString& text);

  private:
    // What the unsaved-changes check compares.
    struct State {
        QList<QStringList> records;
        QStringList settings;
        bool operator==(const State&) const = default;
    };
    State currentState() const;
    void addRecent(const QString& file);
    void fillRecentMenu(QMenu* menu);

    Window window_;
    UserInterface* ui_ = nullptr;
    State saved_;
    cPresetManager::PresetDictionary theDict_;
    QString publishDestination_;
    // Copying the photos of a save: a thread of its own below the window's priority, so that a
    // busy machine hands the window its turn first.
    QThreadPool copiers_;
};
