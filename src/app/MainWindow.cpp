#include "app/MainWindow.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentMap>
#include <QtConcurrent/QtConcurrentRun>

#include "app/CollectionDragModel.h"
#include "app/SettingsForm.h"
#include "app/WindowUserInterface.h"
#include "generators/gallery/cResponsiveDesign.h"
#include "imaging/CellImage.h"

namespace {
constexpr int kCellSize = 160;
}

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent) {
    setWindowTitle(QStringLiteral("Orvella"));
    progress_ = new QProgressBar;
    progress_->setMaximumWidth(240);
    progress_->hide();
    statusBar()->addPermanentWidget(progress_);
    ui_ = new WindowUserInterface(this, progress_);

    auto* splitter = new QSplitter;
    splitter->addWidget(makeCollectionPanel());
    tabs_ = new QTabWidget;
    tabs_->addTab(makeGalleryTab(), tr("Photo Gallery"));
    splitter->addWidget(tabs_);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    setCentralWidget(splitter);

    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("Add Photos…"), QKeySequence::Open, this, &MainWindow::choosePhotos);
    file->addSeparator();
    file->addAction(tr("Quit"), QKeySequence::Quit, this, &QWidget::close);
    resize(1200, 780);
}

QWidget* MainWindow::makeCollectionPanel() {
    collection_ = new CollectionDragModel(this);
    collection_->setCellImageSize(0);  // made in the background, see choosePhotos
    grid_ = new QListView;
    grid_->setModel(collection_);
    grid_->setViewMode(QListView::IconMode);
    grid_->setIconSize(QSize(kCellSize, kCellSize));
    grid_->setGridSize(QSize(180, 200));
    grid_->setResizeMode(QListView::Adjust);
    grid_->setMovement(QListView::Snap);
    grid_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    grid_->setDragDropMode(QAbstractItemView::InternalMove);
    grid_->setDefaultDropAction(Qt::MoveAction);
    grid_->setUniformItemSizes(true);
    grid_->setWordWrap(true);

    auto* add = new QPushButton(tr("Add Photos…"));
    auto* remove = new QPushButton(tr("Remove"));
    auto* removeAll = new QPushButton(tr("Remove All"));
    auto* sortAz = new QPushButton(tr("A-z"));
    auto* sortZa = new QPushButton(tr("z-A"));
    count_ = new QLabel(QStringLiteral("0"));
    publish_ = new QCheckBox(tr("Publish"));
    highlight_ = new QCheckBox(tr("Highlight"));
    connect(add, &QPushButton::clicked, this, &MainWindow::choosePhotos);
    connect(remove, &QPushButton::clicked, this, &MainWindow::removeSelected);
    connect(removeAll, &QPushButton::clicked, collection_, &PhotoCollection::hRemoveAllPhoto);
    connect(sortAz, &QPushButton::clicked, collection_, &PhotoCollection::setSortingModeAz);
    connect(sortZa, &QPushButton::clicked, collection_, &PhotoCollection::setSortingModezA);
    connect(collection_, &PhotoCollection::countChanged, this,
            [this](int n) { count_->setText(QString::number(n)); });
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &MainWindow::showCurrentRecord);
    connect(collection_, &QAbstractItemModel::modelReset, this, &MainWindow::showCurrentRecord);
    connect(publish_, &QCheckBox::toggled, this, [this](bool on) {
        const QModelIndex current = grid_->currentIndex();
        if (current.isValid()) collection_->setSelect(current.row(), on);
    });
    connect(highlight_, &QCheckBox::toggled, this, [this](bool on) {
        const QModelIndex current = grid_->currentIndex();
        if (current.isValid()) collection_->setHighlight(current.row(), on);
    });

    auto* buttons = new QHBoxLayout;
    for (QWidget* w : {static_cast<QWidget*>(add), static_cast<QWidget*>(remove),
                       static_cast<QWidget*>(removeAll), static_cast<QWidget*>(sortAz),
                       static_cast<QWidget*>(sortZa)})
        buttons->addWidget(w);
    buttons->addStretch();
    buttons->addWidget(new QLabel(tr("Photos:")));
    buttons->addWidget(count_);
    auto* flags = new QHBoxLayout;
    flags->addWidget(publish_);
    flags->addWidget(highlight_);
    flags->addStretch();

    auto* panel = new QWidget;
    auto* layout = new QVBoxLayout(panel);
    layout->addLayout(buttons);
    layout->addWidget(grid_, 1);
    layout->addLayout(flags);
    showCurrentRecord();
    return panel;
}

QWidget* MainWindow::makeGalleryTab() {
    galleryForm_ = new SettingsForm(QStringLiteral("gallery"), settings_);
    auto* generate = new QPushButton(tr("Create Photo Gallery…"));
    generate->setDefault(true);
    connect(generate, &QPushButton::clicked, this, &MainWindow::generateGallery);
    connect(&run_, &QFutureWatcher<void>::finished, this, [generate] { generate->setEnabled(true); });
    connect(&run_, &QFutureWatcher<void>::started, this, [generate] { generate->setEnabled(false); });

    // The crop height follows the width by the chosen ratio.
    connect(galleryForm_, &SettingsForm::edited, this, [this](const QString& name) {
        if (name != u"tfSmallCropWidth" && name != u"tfSmallCropHeight" && name != u"pubPhotoRatio")
            return;
        cResponsiveDesign::hPhotoRatioCalc(settings_);
        galleryForm_->refresh();
    });
    auto* addCaptionItem = new QPushButton(tr("Add Caption Item"));
    auto* clearCaptionItems = new QPushButton(tr("Clear Caption Items"));
    connect(addCaptionItem, &QPushButton::clicked, this, [this] {
        cResponsiveDesign::hPgAddMetaDataValue(settings_);
        galleryForm_->refresh();
    });
    connect(clearCaptionItems, &QPushButton::clicked, this, [this] {
        cResponsiveDesign::hPgClearMetaDataValue(settings_);
        galleryForm_->refresh();
    });

    auto* captionButtons = new QHBoxLayout;
    captionButtons->addWidget(addCaptionItem);
    captionButtons->addWidget(clearCaptionItems);
    captionButtons->addStretch();
    auto* tab = new QWidget;
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(galleryForm_, 1);
    layout->addLayout(captionButtons);
    layout->addWidget(generate);
    return tab;
}

void MainWindow::choosePhotos() {
    const QStringList files = QFileDialog::getOpenFileNames(
        this, tr("*** Choose your photos ***"), QString(),
        tr("Photos (*.png *.jpg *.jpeg *.tif *.tiff *.PNG *.JPG *.JPEG *.TIF *.TIFF)"));
    if (files.isEmpty()) return;
    // Names, captions and sizes come from the headers at once; the cell images follow from a
    // worker, so the window stays responsive on large selections.
    collection_->appendPhotos(files, ui_);
    auto* cells = new QFutureWatcher<std::pair<QUrl, QImage>>(this);
    connect(cells, &QFutureWatcherBase::resultReadyAt, this, [this, cells](int i) {
        const auto& [url, image] = cells->resultAt(i);
        collection_->setCellImage(url, image);
    });
    connect(cells, &QFutureWatcherBase::finished, cells, &QObject::deleteLater);
    cells->setFuture(QtConcurrent::mapped(files, [](const QString& path) {
        return std::pair{QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()),
                         makeCellImage(path, kCellSize)};
    }));
}

void MainWindow::removeSelected() {
    QSet<int> rows;
    for (const QModelIndex& index : grid_->selectionModel()->selectedIndexes()) rows.insert(index.row());
    collection_->hRemoveSelectedObject(rows);
}

void MainWindow::showCurrentRecord() {
    const QModelIndex current = grid_->currentIndex();
    const bool valid = current.isValid() && current.row() < collection_->count();
    publish_->setEnabled(valid);
    highlight_->setEnabled(valid);
    const QSignalBlocker b1(publish_);
    const QSignalBlocker b2(highlight_);
    publish_->setChecked(valid && collection_->arrangedObjects()[current.row()].myPhotoSelect == 1);
    highlight_->setChecked(valid && collection_->arrangedObjects()[current.row()].myPhotoHighLight == 1);
}

void MainWindow::generateGallery() {
    if (run_.isRunning()) return;
    QString folder = QFileDialog::getExistingDirectory(this, tr("Choose the output folder"));
    if (folder.isEmpty()) return;
    if (!folder.endsWith(u'/')) folder += u'/';
    // The run works on copies taken now: the user may go on editing while it runs.
    const QList<PhotoEntry> photos = collection_->hGetPhotosFromArrayController();
    cResponsiveDesign::hPhotoRatioCalc(settings_);
    galleryForm_->refresh();
    const SettingsStore snapshot = settings_;
    WindowUserInterface* ui = ui_;
    run_.setFuture(QtConcurrent::run([folder, photos, snapshot, ui] {
        cResponsiveDesign::hCreateResponsiveHTML(folder, photos, snapshot, *ui, 0, true);
    }));
}
