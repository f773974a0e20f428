#pragma once

#include <QFutureWatcher>
#include <QMainWindow>

#include "presets/SettingsStore.h"

class PhotoCollection;
class QCheckBox;
class QLabel;
class QListView;
class QProgressBar;
class QTabWidget;
class SettingsForm;
class WindowUserInterface;

// The main window: the photo collection on the left, the output kinds as tabs on the right.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr);

private:
    QWidget* makeCollectionPanel();
    QWidget* makeGalleryTab();
    void choosePhotos();
    void removeSelected();
    void showCurrentRecord();
    void generateGallery();

    SettingsStore settings_;
    PhotoCollection* collection_ = nullptr;
    QListView* grid_ = nullptr;
    QLabel* count_ = nullptr;
    QCheckBox* publish_ = nullptr;
    QCheckBox* highlight_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    SettingsForm* galleryForm_ = nullptr;
    QProgressBar* progress_ = nullptr;
    WindowUserInterface* ui_ = nullptr;
    QFutureWatcher<void> run_;
};
