#include "app/MainWindow.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>
#include <QToolBar>
#include <QToolBox>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentMap>
#include <QtConcurrent/QtConcurrentRun>

#include "app/CellImageCache.h"
#include "app/CollectionDragModel.h"
#include "app/PhotoCellDelegate.h"
#include "app/PhotoGridView.h"
#include "app/PresetsPanel.h"
#include "app/ProjectActions.h"
#include "app/PublishDialog.h"
#include "app/SettingsForm.h"
#include "app/SupportDialogs.h"
#include "app/ToolsWindow.h"
#include "app/WindowUserInterface.h"
#include "generators/common/CaptionBuilder.h"
#include "imaging/CellImage.h"
#include "presets/dbViewController.h"
#include "services/PhotoFileTypes.h"

namespace {
constexpr int kCellSize = 150;
// About 2,300 cells of 150 x 100 pixels: several screens of them.
constexpr qint64 kCellImageBudget = 96 << 20;
constexpr int kReadTick = 40;  // ms between batches of read headers joining the grid
const QString kGeometryKey = QStringLiteral("window/geometry");
constexpr int kTitleBarRoom = 40;
}  // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), settings_(OutputKinds::registry()) {
    setWindowTitle(QStringLiteral("Orvella"));
    readTimer_.setInterval(kReadTick);
    connect(&readTimer_, &QTimer::timeout, this, &MainWindow::takeReadRecords);
    progress_ = new QProgressBar;
    progress_->setMaximumWidth(240);
    cancel_ = new QPushButton(tr("Cancel"));
    cancel_->setToolTip(tr("Stop after the photo being made; nothing already there is removed"));
    // Their room is kept while they are hidden: showing them must not lay out the whole window
    // again, which takes a quarter of a second with every kind's settings in it.
    for (QWidget* w : {static_cast<QWidget*>(progress_), static_cast<QWidget*>(cancel_)}) {
        QSizePolicy policy = w->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        w->setSizePolicy(policy);
        w->hide();
    }
    connect(cancel_, &QPushButton::clicked, this, &MainWindow::cancelRun);
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(cancel_);
    ui_ = new WindowUserInterface(this, progress_);
    if (dbViewController db; !db.linkToPresetsDB())
        ui_->alert(db.failure(), db.dbFilePath(), false);

    auto* splitter = new QSplitter;
    splitter->addWidget(makeCollectionPanel());
    projects_ = new ProjectActions(
        {this, collection_, &settings_, ui_, [this] { return tabs_ ? tabs_->currentIndex() : 0; },
         [this](int tab) { tabs_->setCurrentIndex(tab); }},
        this);
    connect(projects_, &ProjectActions::settingsLoaded, this, [this] {
        for (SettingsForm* form : forms_) form->refresh();
    });
    connect(projects_, &ProjectActions::message, statusBar(),
            [this](const QString& text) { statusBar()->showMessage(text); });
    tabs_ = new QTabWidget;
    for (const OutputKind& kind : OutputKinds::all()) tabs_->addTab(makeKindTab(kind), kind.title);
    // The Highlight box means something only to the kinds that show highlighted photos larger.
    connect(tabs_, &QTabWidget::currentChanged, this, [this] { showCurrentRecord(); });
    splitter->addWidget(tabs_);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 0);
    splitter->setSizes({740, 460});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);

    connect(&run_, &QFutureWatcherBase::started, this, [this] { runStateChanged(true); });
    connect(&run_, &QFutureWatcherBase::finished, this, &MainWindow::runFinished);

    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("Add Photos…"), QKeySequence::Open, this, &MainWindow::choosePhotos);
    file->addSeparator();
    projects_->addToMenu(file);
    file->addSeparator();
    file->addAction(tr("Preferences…"), QKeySequence::Preferences, this,
                    &MainWindow::showPreferences);
    file->addSeparator();
    file->addAction(tr("Quit"), QKeySequence::Quit, this, &QWidget::close);
    addToolsMenu(this);
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("About Orvella"), this, &MainWindow::showAbout)
        ->setObjectName(QStringLiteral("actionAbout"));
    placeOnScreen();
    projects_->markSaved();  // what the window starts with is nothing to lose
}

void MainWindow::placeOnScreen() {
    if (restoreGeometry(QSettings().value(kGeometryKey).toByteArray())) return;
    // A laptop's 1366 x 768 screen leaves about 740 pixels under its panel for the window and its
    // title bar.
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QSize room = screen ? screen->availableGeometry().size() : QSize(1366, 740);
    resize(QSize(1200, 700).boundedTo(room - QSize(0, kTitleBarRoom)));
}

QWidget* MainWindow::makeCollectionPanel() {
    collection_ = new CollectionDragModel(this);
    collection_->setCellImageSize(0);  // made as cells are drawn
    cellImages_ = new CellImageCache(kCellSize, kCellImageBudget, this);
    collection_->setCellImages(cellImages_);
    grid_ = new PhotoGridView;
    grid_->setObjectName(QStringLiteral("photoGrid"));
    connect(cellImages_, &CellImageCache::ready, grid_->viewport(), qOverload<>(&QWidget::update));
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
    tools->addAction(tr("Remove All"), collection_, &PhotoCollection::hRemoveAllPhoto)
        ->setObjectName(QStringLiteral("removeAll"));
    tools->addSeparator();
    QAction* az = tools->addAction(tr("Sort A–Z"), collection_, &PhotoCollection::setSortingModeAz);
    az->setObjectName(QStringLiteral("sortAz"));
    az->setToolTip(tr("Sort by file name, A to Z (case ignored); added photos follow the order"));
    QAction* za = tools->addAction(tr("Sort Z–A"), collection_, &PhotoCollection::setSortingModezA);
    za->setObjectName(QStringLiteral("sortZa"));
    za->setToolTip(tr("Sort by file name, Z to A (case ignored); added photos follow the order"));
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
    publish_->setObjectName(QStringLiteral("publish"));
    publish_->setToolTip(tr("Include the photo in the output"));
    highlight_ = new QCheckBox(tr("Highlight"));
    highlight_->setToolTip(tr("Show the photo larger where the output kind does"));

    connect(collection_, &PhotoCollection::countChanged, this, &MainWindow::showCount);
    connect(collection_, &QAbstractItemModel::dataChanged, this, &MainWindow::showCount);
    connect(collection_, &CollectionDragModel::photosDropped, this, &MainWindow::addPhotos);
    connect(grid_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &MainWindow::showCurrentRecord);
    connect(collection_, &QAbstractItemModel::modelReset, this, &MainWindow::showCurrentRecord);
    connect(collection_, &QAbstractItemModel::rowsInserted, this, &MainWindow::showCurrentRecord);
    // The flags go to every selected photo; the caption only to the current one.
    connect(publish_, &QCheckBox::toggled, this,
            [this](bool on) { collection_->setSelect(selectedRows(), on); });
    connect(highlight_, &QCheckBox::toggled, this,
            [this](bool on) { collection_->setHighlight(selectedRows(), on); });
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

QWidget* MainWindow::makeKindTab(const OutputKind& kind) {
    auto* form = new SettingsForm(kind.name, settings_);
    forms_.append(form);
    auto* create = new QPushButton(kind.action + QStringLiteral("…"));
    create->setDefault(true);
    create->setMinimumHeight(32);
    createButtons_.append(create);
    connect(create, &QPushButton::clicked, this, [this, &kind] { generate(kind); });

    if (kind.settingEdited)
        connect(form, &SettingsForm::edited, this, [this, form, &kind](const QString& name) {
            kind.settingEdited(settings_, name);
            form->refresh();
        });
    if (!kind.captionListControl.isEmpty()) {
        auto* addItem = new QPushButton(tr("Add Item"));
        addItem->setToolTip(tr("Append the item to add to the caption items"));
        auto* clearItems = new QPushButton(tr("Clear Items"));
        connect(addItem, &QPushButton::clicked, this, [this, form, &kind] {
            settings_.setText(kind.captionListControl,
                              CaptionBuilder::withItem(settings_.text(kind.captionListControl),
                                                       settings_.title(kind.captionItemControl)));
            form->refresh();
        });
        connect(clearItems, &QPushButton::clicked, this, [this, form, &kind] {
            settings_.setText(kind.captionListControl, QString());
            form->refresh();
        });
        auto* buttons = new QWidget;
        auto* buttonsLayout = new QHBoxLayout(buttons);
        buttonsLayout->setContentsMargins(0, 0, 0, 0);
        buttonsLayout->addWidget(addItem);
        buttonsLayout->addWidget(clearItems);
        buttonsLayout->addStretch();
        form->addToSection(kind.captionSection, buttons);
    }

    // Presets of the kind, and the pattern chooser on its pattern section.
    auto* presets = new PresetsPanel(kind.name, settings_, *ui_);
    form->sections()->addItem(presets, tr("Presets"));
    connect(presets, &PresetsPanel::loaded, this, [this](const QString& loadedKind) {
        for (SettingsForm* f : forms_) f->refresh();
        for (int i = 0; i < OutputKinds::all().size(); ++i)
            if (OutputKinds::all()[i].name == loadedKind) tabs_->setCurrentIndex(i);
    });
    static const QHash<QString, std::pair<QString, QString>> patternPaths = {
        {"gallery", {"Tb", "tfTbPatternPath"}},
        {"slideshow", {"Ss", "tfSsPatternPath"}},
        {"grid", {"Rg", "tfRgPatternPath"}}};
    const auto [letters, pathControl] = patternPaths.value(kind.name);
    if (const ControlSpec* path = settings_.registry().find(pathControl)) {
        auto* chooser = new PatternChooser(letters, pathControl, settings_);
        connect(chooser, &PatternChooser::chosen, form, &SettingsForm::refresh);
        connect(presets, &PresetsPanel::loaded, chooser, &PatternChooser::showPreview);
        connect(projects_, &ProjectActions::settingsLoaded, chooser, &PatternChooser::showPreview);
        form->addToSection(path->section, chooser);
    }

    // Read by generate() as the run's `clean` option; off for every new window.
    auto* clean = new QCheckBox(tr("Remove files of earlier runs"));
    clean->setObjectName(QStringLiteral("removeEarlierFiles_") + kind.name);
    clean->setToolTip(
        tr("Before writing, remove the images and pages that earlier runs wrote "
           "into the output folder and that this run does not write again. Files "
           "Orvella did not write are never removed."));

    auto* tab = new QWidget;
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(form, 1);
    layout->addWidget(clean);
    layout->addWidget(create);
    layout->addWidget(PublishDialog::makeButton(
        this, [this, &kind] { return settings_.text(kind.destinationControl); }, projects_, ui_));
    return tab;
}

void MainWindow::choosePhotos() {
    const QStringList files =
        QFileDialog::getOpenFileNames(this, tr("*** Choose your photos ***"), QString(),
                                      tr("Photos (%1)").arg(PhotoFileTypes::dialogPatterns()));
    addPhotos(files);
}

void MainWindow::addPhotos(const QStringList& paths) {
    if (paths.isEmpty()) return;
    if (isAdding()) {  // one reader at a time: these follow when it is done
        pendingFiles_ += paths;
        return;
    }
    // Folders are listed behind the window too: thousands of names take a while.
    listing_ = new QFutureWatcher<QStringList>(this);
    connect(listing_, &QFutureWatcherBase::finished, this, [this] {
        const QStringList files = listing_->result();
        listing_->deleteLater();
        listing_ = nullptr;
        readPhotos(files);
    });
    QList<QUrl> urls;
    for (const QString& path : paths) urls.append(QUrl::fromLocalFile(path));
    listing_->setFuture(
        QtConcurrent::run(&readers_, &CollectionDragModel::photoFilesFromUrls, urls));
}

void MainWindow::readPhotos(const QStringList& files) {
    if (files.isEmpty()) {
        if (!pendingFiles_.isEmpty()) addPhotos(std::exchange(pendingFiles_, {}));
        return;
    }
    // Headers are read on workers; the records join the grid in order, a batch at every tick of
    // takeReadRecords, so the first cells show while the rest are read.
    adding_ = new QFutureWatcher<ReadRecord>(this);
    addingFiles_ = files;
    nextRead_ = 0;
    addedCount_ = 0;
    skippedNames_.clear();
    progress_->setRange(0, int(files.size()));
    progress_->setValue(0);
    progress_->show();
    statusBar()->showMessage(tr("Reading %n photo(s)…", nullptr, int(files.size())));
    connect(adding_, &QFutureWatcherBase::finished, this, &MainWindow::photosRead);
    adding_->setFuture(QtConcurrent::mapped(&readers_, files, [](const QString& path) {
        lowerThisThreadPriority();
        ReadRecord read;
        QString reason;
        read.first = PhotoCollection::readRecord(path, 0, &read.second, &reason);
        return read;
    }));
    readTimer_.start();
}

void MainWindow::takeReadRecords() {
    if (!adding_) return;

    const QFuture<ReadRecord> future = adding_->future();
    QList<cCollectionViewItem> batch;
    while (nextRead_ < addingFiles_.size() && future.isResultReadyAt(nextRead_)) {
        const auto& [ok, record] = future.resultAt(nextRead_);
        if (ok)
            batch.append(record);
        else
            skippedNames_.append(QFileInfo(addingFiles_[nextRead_]).fileName());
        ++nextRead_;
    }
    addedCount_ += int(batch.size());
    collection_->insertRecords(std::move(batch));
    progress_->setValue(nextRead_);
}

void MainWindow::photosRead() {
    readTimer_.stop();
    takeReadRecords();
    progress_->hide();
    progress_->setRange(0, 100);
    adding_->deleteLater();
    adding_ = nullptr;
    addingFiles_.clear();
    statusBar()->showMessage(skippedNames_.isEmpty()
                                 ? tr("%n photo(s) added.", nullptr, addedCount_)
                                 : tr("%n photo(s) added; not readable: %1", nullptr, addedCount_)
                                       .arg(skippedNames_.join(QStringLiteral(", "))));
    Q_EMIT photosAdded();
    if (!pendingFiles_.isEmpty()) addPhotos(std::exchange(pendingFiles_, {}));
}

void MainWindow::openFiles(const QStringList& paths) {
    QStringList photos;
    for (const QString& path : paths) {
        if (isProjectFile(path))
            openProject(path);
        else
            photos.append(path);
    }
    addPhotos(photos);
}

bool MainWindow::isProjectFile(const QString& path) {
    return path.endsWith(QStringLiteral(".orvprj"), Qt::CaseInsensitive);
}

int MainWindow::photoFileCount(const QStringList& paths) {
    QList<QUrl> photos;
    for (const QString& path : paths)
        if (!isProjectFile(path)) photos.append(QUrl::fromLocalFile(path));
    return int(CollectionDragModel::photoFilesFromUrls(photos).size());
}

void MainWindow::openProject(const QString& file) {
    // After the caller is done: the question about unsaved changes may wait for the user.
    QMetaObject::invokeMethod(
        this, [this, file] { projects_->openGivenProject(file); }, Qt::QueuedConnection);
}

void MainWindow::showPreferences() {
    auto* sheet = new PreferencesDialog(ui_, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setWindowModality(Qt::WindowModal);
    sheet->open();
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

QList<int> MainWindow::selectedRows() const {
    QList<int> rows;
    for (const QItemSelectionRange& range : grid_->selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row) rows.append(row);
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
    for (QWidget* w : {static_cast<QWidget*>(publish_), static_cast<QWidget*>(description_)})
        w->setEnabled(valid);
    const int tab = tabs_ ? tabs_->currentIndex() : 0;
    highlight_->setEnabled(valid && tab >= 0 && tab < OutputKinds::all().size() &&
                           OutputKinds::all()[tab].usesHighlight);
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

void MainWindow::generate(const OutputKind& kind) {
    if (run_.isRunning()) return;
    // The dialog starts in the last output folder, which presets keep.
    const QString start =
        kind.destinationControl.isEmpty() ? QString() : settings_.text(kind.destinationControl);
    QString folder = QFileDialog::getExistingDirectory(this, tr("Choose the output folder"), start);
    if (folder.isEmpty()) return;
    if (!folder.endsWith(u'/')) folder += u'/';
    if (!kind.destinationControl.isEmpty()) settings_.setText(kind.destinationControl, folder);
    // The run works on copies taken now: the user may go on editing while it runs.
    const QList<PhotoEntry> photos = collection_->hGetPhotosFromArrayController();
    for (SettingsForm* form : forms_) form->refresh();
    const SettingsStore snapshot = settings_;
    WindowUserInterface* ui = ui_;
    ui->resetCancel();
    runKindTitle_ = kind.title;
    runKindName_ = kind.name;
    statusBar()->showMessage(
        tr("Writing the %1 into %2…").arg(kind.title, QDir::toNativeSeparators(folder)));
    const auto run = kind.run;
    const auto* cleanBox = findChild<QCheckBox*>(QStringLiteral("removeEarlierFiles_") + kind.name);
    const bool clean = cleanBox && cleanBox->isChecked();
    const RunOptions options{.destination = folder,
                             .openFirstPage = true,
                             .clean = clean,
                             .carried = carried_.value(kind.name)};
    run_.setFuture(QtConcurrent::run(
        [run, photos, snapshot, ui, options] { return run(photos, snapshot, *ui, options); }));
}

void MainWindow::cancelRun() {
    if (!run_.isRunning()) return;
    ui_->requestCancel();
    cancel_->setEnabled(false);
    statusBar()->showMessage(tr("Stopping after the photo being made…"));
}

void MainWindow::runStateChanged(bool running) {
    for (QPushButton* button : createButtons_) button->setEnabled(!running);
    cancel_->setVisible(running);
    cancel_->setEnabled(running);
}

void MainWindow::runFinished() {
    runStateChanged(false);
    const RunResult result = run_.result();
    if (!result.carried.isEmpty()) carried_.insert(runKindName_, result.carried);
    if (!result.ok) {
        statusBar()->showMessage(tr("Nothing was written."));
        return;
    }
    const QString page = QDir::toNativeSeparators(result.firstPage);
    if (result.cancelled) {
        statusBar()->showMessage(
            tr("Cancelled: %n photo(s) were not made.", nullptr, int(result.unfinished.size())));
        ui_->alert(tr("The %1 was cancelled.").arg(runKindTitle_),
                   tr("No page was written, and these photos were not made:\n%1")
                       .arg(result.unfinished.join(u'\n')),
                   false);
        return;
    }
    if (!result.failures.isEmpty()) {
        statusBar()->showMessage(
            result.firstPage.isEmpty()
                ? tr("No page was written; %n failure(s).", nullptr, int(result.failures.size()))
                : tr("Written with %n failure(s); first page: %1", nullptr,
                     int(result.failures.size()))
                      .arg(page));
        ui_->alert(tr("Some photos or files could not be made; they are left out of the pages."),
                   result.failures.join(u'\n'), false);
        return;
    }
    if (result.firstPage.isEmpty()) {
        // Kept by the generator: a photo count that fills the pages exactly writes no page.
        statusBar()->showMessage(tr("No page was written."));
        ui_->alert(tr("No page was written."),
                   tr("The images of the %1 were made, but the photos fill its pages exactly, "
                      "so no page was written. Add or leave out a photo, or change the number "
                      "of photos per page.")
                       .arg(runKindTitle_),
                   false);
        return;
    }
    statusBar()->showMessage(tr("%1 written; first page: %2").arg(runKindTitle_, page));
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!projects_->maySetAsideChanges()) {
        event->ignore();
        return;
    }
    QSettings().setValue(kGeometryKey, saveGeometry());
    if (!run_.isRunning()) {
        event->accept();
        return;
    }
    const auto answer = QMessageBox::question(
        this, tr("A run is in progress"),
        tr("Stop the run and quit? The photos being made are finished first; nothing already "
           "written is removed."),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    ui_->requestCancel();
    run_.waitForFinished();
    event->accept();
}
