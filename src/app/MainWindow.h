#pragma once

#include <QFutureWatcher>
#include <QHash>
#include <QMainWindow>
#include <QThreadPool>
#include <QTimer>
#include <utility>

#include "collection/cCollectionViewItem.h"
#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"

class CellImageCache;
class CollectionDragModel;
class PhotoGridView;
class ProjectActions;
class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTabWidget;
class SettingsForm;
class WindowUserInterface;

// The main window: the photo collection on the left, the output kinds as tabs on the right.
class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit MainWindow(QWidget* parent = nullptr);

    // Adds the photo files among these paths and those directly inside folders, with folders
    // listed and headers read off the window's thread.
    void addPhotos(const QStringList& paths);
    bool isAdding() const { return listing_ || adding_; }
    bool isRunning() const { return run_.isRunning() || isAdding(); }
    // Asks the running generation to stop at the next photo.
    void cancelRun();

    // Files given on the command line or handed over by a later start: photos and folders are
    // added as a drop adds them, projects are opened.
    void openFiles(const QStringList& paths);
    // The number of photo files openFiles takes from these paths.
    static int photoFileCount(const QStringList& paths);
    void showPreferences();
    // Save Project…, Open Project…, recent projects and the unsaved-changes question.
    ProjectActions* projectActions() const { return projects_; }

  Q_SIGNALS:
    // Every photo given to addPhotos has been read and added (or named as not readable).
    void photosAdded();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    // The size saved at the last close, or one that fits a laptop's screen.
    void placeOnScreen();
    QWidget* makeCollectionPanel();
    QWidget* makeKindTab(const OutputKind& kind);
    void choosePhotos();
    void openProject(const QString& file);
    void showAbout();
    static bool isProjectFile(const QString& path);
    void readPhotos(const QStringList& files);
    // The headers read so far, in order, join the grid.
    void takeReadRecords();
    void photosRead();
    void removeSelected();
    QList<int> selectedRows() const;
    void showCurrentRecord();
    void showCount();
    void generate(const OutputKind& kind);
    void runFinished();
    void runStateChanged(bool running);

    SettingsStore settings_;
    CollectionDragModel* collection_ = nullptr;
    PhotoGridView* grid_ = nullptr;
    QLabel* count_ = nullptr;
    QLabel* photoName_ = nullptr;
    QLineEdit* description_ = nullptr;
    QCheckBox* publish_ = nullptr;
    QCheckBox* highlight_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    QList<SettingsForm*> forms_;
    QList<QPushButton*> createButtons_;
    QPushButton* cancel_ = nullptr;
    QProgressBar* progress_ = nullptr;
    WindowUserInterface* ui_ = nullptr;
    QFutureWatcher<RunResult> run_;
    QString runKindTitle_;
    QString runKindName_;
    // What each kind's panel carries from its last run into the next (RunResult::carried).
    QHash<QString, QHash<QString, QString>> carried_;
    CellImageCache* cellImages_ = nullptr;
    // Photos being added: the header reader, its files, the next to join the grid.
    using ReadRecord = std::pair<bool, cCollectionViewItem>;
    QFutureWatcher<QStringList>* listing_ = nullptr;
    QFutureWatcher<ReadRecord>* adding_ = nullptr;
    QStringList addingFiles_;
    int nextRead_ = 0;
    int addedCount_ = 0;
    QStringList skippedNames_;
    QTimer readTimer_;
    QThreadPool readers_;       // its threads run behind the window's
    QStringList pendingFiles_;  // photos to add once the reader is done
    ProjectActions* projects_ = nullptr;
};
