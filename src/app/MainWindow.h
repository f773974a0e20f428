#pragma once

#include <QFutureWatcher>
#include <QHash>
#include <QMainWindow>

#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"

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

    // Adds photos (and the photo files of folders) with their headers read off the window's thread.
    void addPhotos(const QStringList& paths);
    bool isRunning() const { return run_.isRunning() || adding_ != nullptr; }
    // Asks the running generation to stop at the next photo.
    void cancelRun();

    // Files given on the command line or handed over by a later start: photos and folders are
    // added as a drop adds them, projects are opened. Returns the number of photo files taken.
    int openFiles(const QStringList& paths);
    // The first start asks for the support folder.
    void askForSupportRoot();
    void showPreferences();
    // Save Project…, Open Project…, recent projects and the unsaved-changes question.
    ProjectActions* projectActions() const { return projects_; }

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* makeCollectionPanel();
    QWidget* makeKindTab(const OutputKind& kind);
    void choosePhotos();
    void openProject(const QString& file);
    void showAbout();
    // Cell images of added photos are made on a worker and arrive one by one.
    void makeCellImages(const QStringList& files);
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
    QObject* adding_ = nullptr;  // the header reader of photos being added
    QStringList pendingFiles_;   // photos to add once it is done
    ProjectActions* projects_ = nullptr;
};
