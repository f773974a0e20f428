#include "app/MainWindow.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentMap>
#include <QtConcurrent/QtConcurrentRun>

#include "app/CollectionDragModel.h"
#include "app/PhotoCellDelegate.h"
#include "app/PhotoGridView.h"
#include "app/SettingsForm.h"
#include "app/WindowUserInterface.h"
#include "imaging/CellImage.h"

namespace {
constexpr int kCellSize = 150;
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
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);
    splitter->setSizes({740, 460});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);

    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("Add Photos…"), QKeySequence::Open, this, &MainWindow::choosePhotos);
    file->addSeparator();
    file->addAction(tr("Quit"), QKeySequence::Quit, this, &QWidget::close);
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("About Orvella"), this, &MainWindow::showAbout)
        ->setObjectName(QStringLiteral("actionAbout"));
    resize(1200, 780);
}

QWidget* MainWindow::makeCollectionPanel() {
    collection_ = new CollectionDragModel(this);
    collection_->setCellImageSize(0);  // made in the background, see makeCellImages
    collection_->setUserInterface(ui_);
    grid_ = new PhotoGridView;
    grid_->setModel(collection_);
    grid_->setItemDelegate(new PhotoCellDelegate(kCellSize, grid_));
    grid_->setIconSize(QSize(kCellSize, kCellSize));

    auto* tools = new QToolBar;
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tools->setIconSize(QSize(16, 16));
    QAction* add = tools->addAction(style()->standardIcon(QStyle::SP_DialogOpenButton),
                                    tr("Add Photos…"), this, &MainWindow::choosePhotos);
    add->setToolTip(tr("Add photos (or drop files and folders on the grid)"));
    QAction* remove = tools->addAction(style()->standardIcon(QStyle::SP_DialogDiscardButton),
                                       tr("Remove"), this, &MainWindow::removeSelected);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    grid_->addAction(remove);
    tools->addAction(tr("Remove All"), collection_, &PhotoCollection::hRemoveAllPhoto);
    tools->addSeparator();
    tools->addAction(tr("A-z"), collection_, &PhotoCollection::setSortingModeAz)
        ->setToolTip(tr("Sort by file name, A to Z"));
    tools->addAction(tr("z-A"), collection_, &PhotoCollection::setSortingModezA)
        ->setToolTip(tr("Sort by file name, Z to A"));
    auto* spacer = new QWidget;
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    tools->addWidget(spacer);
    count_ = new QLabel;
    tools->addWidget(count_);

    photoName_ = new QLabel;
    photoName_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    description_ = new QLineEdit;
    description_->setPlaceholderText(tr("Caption of the photo"));
    description_->setClearButtonEnabled(true);
    publish_ = new QCheckBox(tr("Publish"));
    publish_->setToolTip(tr("Include the photo in the output"));
    highlight_ = new QCheckBox(tr("Highlight"));
    highlight_->setToolTip(tr("Show the photo larger where the output kind does"));

    connect(collection_, &PhotoCollection::countChanged, this, &MainWindow::showCount);
    connect(collection_, &QAbstractItemModel::dataChanged, this, &MainWindow::showCount);
    connect(collection_, &CollectionDragModel::photosDropped, this, &MainWindow::makeCellImages);
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &MainWindow::showCurrentRecord);
    connect(collection_, &QAbstractItemModel::modelReset, this, &MainWindow::showCurrentRecord);
    connect(collection_, &QAbstractItemModel::rowsInserted, this, &MainWindow::showCurrentRecord);
    // The flags go to every selected photo; the caption only to the current one.
    connect(publish_, &QCheckBox::toggled, this, [this](bool on) {
        for (const int row : selectedRows()) collection_->setSelect(row, on);
    });
    connect(highlight_, &QCheckBox::toggled, this, [this](bool on) {
        for (const int row : selectedRows()) collection_->setHighlight(row, on);
    });
    connect(description_, &QLineEdit::textEdited, this, [this](const QString& text) {
        const QModelIndex current = grid_->currentIndex();
        if (current.isValid()) collection_->setDescription(current.row(), text);
    });

    auto* details = new QHBoxLayout;
    details->addWidget(new QLabel(tr("Caption:")));
    details->addWidget(description_, 1);
    details->addWidget(publish_);
    details->addWidget(highlight_);

    auto* panel = new QWidget;
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(6, 0, 0, 6);
    layout->addWidget(tools);
    layout->addWidget(grid_, 1);
    layout->addWidget(photoName_);
    layout->addLayout(details);
    showCount();
    showCurrentRecord();
    return panel;
}

QWidget* MainWindow::makeGalleryTab() {
    galleryForm_ = new SettingsForm(QStringLiteral("gallery"), settings_);
    auto* generate = new QPushButton(tr("Create Photo Gallery…"));
    generate->setDefault(true);
    generate->setMinimumHeight(32);
    connect(generate, &QPushButton::clicked, this, &MainWindow::generateGallery);
    connect(&run_, &QFutureWatcherBase::finished, this, [generate] { generate->setEnabled(true); });
    connect(&run_, &QFutureWatcherBase::started, this, [generate] { generate->setEnabled(false); });
    connect(&run_, &QFutureWatcherBase::finished, this, &MainWindow::galleryFinished);

    // The crop height follows the width by the chosen ratio.
    connect(galleryForm_, &SettingsForm::edited, this, [this](const QString& name) {
        if (name != u"tfSmallCropWidth" && name != u"tfSmallCropHeight" && name != u"pubPhotoRatio")
            return;
        cResponsiveDesign::hPhotoRatioCalc(settings_);
        galleryForm_->refresh();
    });
    auto* addCaptionItem = new QPushButton(tr("Add Item"));
    addCaptionItem->setToolTip(tr("Append the item to add to the caption items"));
    auto* clearCaptionItems = new QPushButton(tr("Clear Items"));
    connect(addCaptionItem, &QPushButton::clicked, this, [this] {
        cResponsiveDesign::hPgAddMetaDataValue(settings_);
        galleryForm_->refresh();
    });
    connect(clearCaptionItems, &QPushButton::clicked, this, [this] {
        cResponsiveDesign::hPgClearMetaDataValue(settings_);
        galleryForm_->refresh();
    });
    auto* captionButtons = new QWidget;
    auto* buttonsLayout = new QHBoxLayout(captionButtons);
    buttonsLayout->setContentsMargins(0, 0, 0, 0);
    buttonsLayout->addWidget(addCaptionItem);
    buttonsLayout->addWidget(clearCaptionItems);
    buttonsLayout->addStretch();
    galleryForm_->addToSection(QStringLiteral("Captions"), captionButtons);

    auto* tab = new QWidget;
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(galleryForm_, 1);
    layout->addWidget(generate);
    return tab;
}

void MainWindow::choosePhotos() {
    const QStringList files = QFileDialog::getOpenFileNames(
        this, tr("*** Choose your photos ***"), QString(),
        tr("Photos (*.png *.jpg *.jpeg *.tif *.tiff *.PNG *.JPG *.JPEG *.TIF *.TIFF)"));
    if (files.isEmpty()) return;
    // Names, captions and sizes come from the headers at once; the cell images follow.
    collection_->appendPhotos(files, ui_);
    makeCellImages(files);
}

int MainWindow::openFiles(const QStringList& paths) {
    QList<QUrl> photos;
    for (const QString& path : paths) {
        if (path.endsWith(QStringLiteral(".orvprj"), Qt::CaseInsensitive))
            openProject(path);
        else
            photos.append(QUrl::fromLocalFile(path));
    }
    const QStringList files = CollectionDragModel::photoFilesFromUrls(photos);
    if (files.isEmpty()) return 0;
    const int added = collection_->appendPhotos(files, ui_);
    makeCellImages(files);
    return added;
}

void MainWindow::openProject(const QString& file) {
    // Opening a project from the desktop or the command line starts here, once projects can be
    // opened; until then the user is told.
    ui_->alert(tr("The project cannot be opened."),
               tr("%1\n\nThis version of Orvella cannot open projects yet.")
                   .arg(QDir::toNativeSeparators(file)),
               false);
}

void MainWindow::showAbout() {
    auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About Orvella"),
                                QStringLiteral("orvella " ORVELLA_VERSION), QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("aboutBox"));
    box->setIconPixmap(windowIcon().pixmap(64, 64));
    box->setInformativeText(
        tr("Turns a selection of photos into a small static web site.\n\n"
           "Run orvella --help in a terminal for the command line."));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void MainWindow::makeCellImages(const QStringList& files) {
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

QList<int> MainWindow::selectedRows() const {
    QList<int> rows;
    for (const QModelIndex& index : grid_->selectionModel()->selectedIndexes())
        rows.append(index.row());
    const QModelIndex current = grid_->currentIndex();
    if (rows.isEmpty() && current.isValid()) rows.append(current.row());
    return rows;
}

void MainWindow::removeSelected() {
    const QList<int> rows = selectedRows();
    collection_->hRemoveSelectedObject(QSet<int>(rows.cbegin(), rows.cend()));
}

void MainWindow::showCurrentRecord() {
    const QModelIndex current = grid_->currentIndex();
    const bool valid = current.isValid() && current.row() < collection_->count();
    for (QWidget* w : {static_cast<QWidget*>(publish_), static_cast<QWidget*>(highlight_),
                       static_cast<QWidget*>(description_)})
        w->setEnabled(valid);
    const QSignalBlocker b1(publish_);
    const QSignalBlocker b2(highlight_);
    if (!valid) {
        publish_->setChecked(false);
        highlight_->setChecked(false);
        description_->clear();
        photoName_->setText(collection_->count() ? tr("No photo chosen") : QString());
        return;
    }
    const cCollectionViewItem& record = collection_->arrangedObjects()[current.row()];
    publish_->setChecked(record.myPhotoSelect == 1);
    highlight_->setChecked(record.myPhotoHighLight == 1);
    if (description_->text() != record.myPhotoDescription)
        description_->setText(record.myPhotoDescription);
    photoName_->setText(QStringLiteral("<b>%1</b> &nbsp; %2")
                            .arg(record.myPhotoName.toHtmlEscaped(), record.myPhotoPxSize));
}

void MainWindow::showCount() {
    int published = 0;
    for (const cCollectionViewItem& record : collection_->arrangedObjects())
        published += record.myPhotoSelect == 1 ? 1 : 0;
    const int n = collection_->count();
    const QString photos = n == 1 ? tr("1 photo") : tr("%1 photos").arg(n);
    count_->setText(n == published ? photos : tr("%1, %2 published").arg(photos).arg(published));
}

void MainWindow::generateGallery() {
    if (run_.isRunning()) return;
    // The dialog starts in the last output folder, which presets keep.
    QString folder = QFileDialog::getExistingDirectory(
        this, tr("Choose the output folder"),
        settings_.text(QStringLiteral("tfHTMLdestinationFolder")));
    if (folder.isEmpty()) return;
    if (!folder.endsWith(u'/')) folder += u'/';
    settings_.setText(QStringLiteral("tfHTMLdestinationFolder"), folder);
    // The run works on copies taken now: the user may go on editing while it runs.
    const QList<PhotoEntry> photos = collection_->hGetPhotosFromArrayController();
    cResponsiveDesign::hPhotoRatioCalc(settings_);
    galleryForm_->refresh();
    const SettingsStore snapshot = settings_;
    WindowUserInterface* ui = ui_;
    statusBar()->showMessage(
        tr("Writing the gallery into %1…").arg(QDir::toNativeSeparators(folder)));
    run_.setFuture(QtConcurrent::run([folder, photos, snapshot, ui] {
        return cResponsiveDesign::hCreateResponsiveHTML(folder, photos, snapshot, *ui, 0, true);
    }));
}

void MainWindow::galleryFinished() {
    const GalleryResult result = run_.result();
    if (!result.ok) {
        statusBar()->showMessage(tr("No gallery was written."));
        return;
    }
    const QString page = QDir::toNativeSeparators(result.firstPage);
    // Kept by the generator: a photo count that fills the pages exactly writes no page.
    statusBar()->showMessage(QFileInfo::exists(result.firstPage)
                                 ? tr("Gallery written; first page: %1").arg(page)
                                 : tr("Gallery written, but no page file: %1").arg(page));
}
