#pragma once

#include <QFutureWatcher>
#include <QMainWindow>

#include "generators/gallery/cResponsiveDesign.h"
#include "presets/SettingsStore.h"

class CollectionDragModel;
class PhotoGridView;
class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QTabWidget;
class SettingsForm;
class WindowUserInterface;

// The main window: the photo collection on the left, the output kinds as tabs on the right.
class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit MainWindow(QWidget* parent = nullptr);

    // Files given on the command line or handed over by a later start: photos and folders are
    // added as a drop adds them, projects are opened. Returns the number of photos added.
    int openFiles(const QStringList& paths);

  private:
    QWidget* makeCollectionPanel();
    QWidget* makeGalleryTab();
    void choosePhotos();
    void openProject(const QString& file);
    void showAbout();
    // Cell images of added photos are made on a worker and arrive one by one.
    void makeCellImages(const QStringList& files);
    void removeSelected();
    QList<int> selectedRows() const;
    void showCurrentRecord();
    void showCount();
    void generateGallery();
    void galleryFinished();

    SettingsStore settings_;
    CollectionDragModel* collection_ = nullptr;
    PhotoGridView* grid_ = nullptr;
    QLabel* count_ = nullptr;
    QLabel* photoName_ = nullptr;
    QLineEdit* description_ = nullptr;
    QCheckBox* publish_ = nullptr;
    QCheckBox* highlight_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    SettingsForm* galleryForm_ = nullptr;
    QProgressBar* progress_ = nullptr;
    WindowUserInterface* ui_ = nullptr;
    QFutureWatcher<GalleryResult> run_;
};
