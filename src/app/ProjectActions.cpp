#include "app/ProjectActions.h"

#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QGridLayout>
#include <QLineEdit>
#include <QMenu>
#include <QProgressDialog>
#include <QSettings>
#include <QtConcurrent/QtConcurrentRun>

#include "app/CellImageCache.h"
#include "collection/PhotoCollection.h"
#include "generators/OutputKinds.h"
#include "presets/SettingsStore.h"
#include "projects/ProjectFile.h"
#include "services/UserInterface.h"

namespace {

const QString kRecentKey = QStringLiteral("RecentProjects");
const QString kQuestion = QStringLiteral("Save changes to the project?");

// The folder dialog of Save Project…: the folder, and below the list a field for the name.
std::optional<std::pair<QString, QString>> runSaveDialog(QWidget* parent) {
    QFileDialog dialog(parent, QStringLiteral("••• Choose folder and enter project name •••"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);  // the name field needs the Qt dialog
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setLabelText(QFileDialog::Accept, QStringLiteral("OK"));
    auto* name = new QLineEdit(ProjectFile::kInitialNameText);
    name->setObjectName(QStringLiteral("projectNameField"));
    name->setAlignment(Qt::AlignCenter);
    name->setFrame(false);
    name->setStyleSheet(QStringLiteral("QLineEdit { color: white; background: #FF2D55; }"));
    name->setFixedSize(dialog.sizeHint().width() / 2, 22);
    if (auto* grid = qobject_cast<QGridLayout*>(dialog.layout()))
        grid->addWidget(name, grid->rowCount(), 0, 1, grid->columnCount(), Qt::AlignLeft);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return std::pair{dialog.selectedFiles().first(), name->text()};
}

QString runFolderDialog(QWidget* parent) {
    QFileDialog dialog(parent, QStringLiteral("••• SELECT YOUR PROJECT FOLDER •••"));
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::ShowDirsOnly |
                      QFileDialog::ReadOnly);  // read-only: no new folders
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setLabelText(QFileDialog::Accept, QStringLiteral("OK"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().first();
}

QString runFileDialog(QWidget* parent, const QString& folder) {
    return QFileDialog::getOpenFileName(parent, QStringLiteral("••• Select your project file •••"),
                                        folder, QStringLiteral("Orvella project (*.orvprj)"));
}

}  // namespace

ProjectActions::ProjectActions(const Window& window, QObject* parent)
    : QObject(parent), window_(window), ui_(window.ui) {
    copiers_.setMaxThreadCount(1);
    saveDialog = [this] { return runSaveDialog(window_.widget); };
    chooseProjectFolder = [this] { return runFolderDialog(window_.widget); };
    chooseProjectFile = [this](const QString& folder) {
        return runFileDialog(window_.widget, folder);
    };
    markSaved();
}

void ProjectActions::addToMenu(QMenu* menu) {
    menu->addAction(tr("Save Project…"), QKeySequence::Save, this, &ProjectActions::saveProject)
        ->setObjectName(QStringLiteral("actionSaveProject"));
    menu->addAction(tr("Open Project…"), this, &ProjectActions::openProject)
        ->setObjectName(QStringLiteral("actionOpenProject"));
    QMenu* recent = menu->addMenu(tr("Open Recent Project"));
    recent->setObjectName(QStringLiteral("menuRecentProjects"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { fillRecentMenu(recent); });
    fillRecentMenu(recent);
}

ProjectActions::State ProjectActions::currentState() const {
    State state;
    for (const cCollectionViewItem& r : window_.collection->arrangedObjects())
        state.records.append({r.myPhotoName, r.myPhotoURL.toString(), r.myPhotoDescription,
                              r.myPhotoOrientation, QString::number(r.myPhotoHighLight),
                              QString::number(r.myPhotoSelect), r.myPhotoPxSize});
    const SettingsStore& settings = *window_.settings;
    for (const OutputKind& kind : OutputKinds::all())
        for (const ControlSpec* control : settings.registry().controls(kind.name))
            state.settings.append(settings.text(control->name));
    state.settings.append(publishDestination_);
    return state;
}

bool ProjectActions::isModified() const {
    return !(currentState() == saved_);
}

void ProjectActions::markSaved() {
    saved_ = currentState();
}

bool ProjectActions::maySetAsideChanges() {
    if (!isModified()) return true;
    switch (ui_->askToSave(kQuestion,
                           tr("The photos or settings changed since the project was last saved "
                              "or opened."))) {
        case UserInterface::SaveAnswer::Save:
            return saveProject();
        case UserInterface::SaveAnswer::DontSave:
            return true;
        case UserInterface::SaveAnswer::Cancel:
            break;
    }
    return false;
}

bool ProjectActions::saveProject() {
    const auto chosen = saveDialog();
    if (!chosen || chosen->first.isEmpty()) return false;
    const QString folder = chosen->first;
    const QString name = ProjectFile::projectName(chosen->second, *window_.settings);
    const QList<cCollectionViewItem> records = window_.collection->arrangedObjects();
    const SettingsStore settings = *window_.settings;  // what is saved is what the user saw
    const QString destination = publishDestination_;
    const PresetLayout& layout =
        ProjectFile::layoutForTab(window_.currentTab ? window_.currentTab() : 0);
    // Copying many photos takes a while: off the window's thread, which keeps drawing behind a
    // modal progress dialog until the copies are done.
    QFutureWatcher<ProjectFile::SaveResult> copying;
    QEventLoop waiting;
    connect(&copying, &QFutureWatcherBase::finished, &waiting, &QEventLoop::quit);
    copying.setFuture(QtConcurrent::run(&copiers_, [&] {
        lowerThisThreadPriority();
        return ProjectFile::save(folder, name, records, settings, layout, destination);
    }));
    if (!copying.isFinished()) {
        QProgressDialog progress(tr("Copying the photos into the project…"), QString(), 0, 0,
                                 window_.widget);
        progress.setWindowModality(Qt::ApplicationModal);
        progress.setMinimumDuration(500);
        waiting.exec();
    }
    const ProjectFile::SaveResult saved = copying.result();
    if (!saved.ok) {
        ui_->alert(tr("The project was not saved."), saved.error, true);
        return false;
    }
    if (!saved.warnings.isEmpty())
        ui_->alert(tr("Some photos were not copied into the project."), saved.warnings.join(u'\n'),
                   false);
    markSaved();
    addRecent(saved.projectFile);
    Q_EMIT message(tr("Project saved: %1").arg(QDir::toNativeSeparators(saved.projectFile)));
    return true;
}

void ProjectActions::openProject() {
    if (!maySetAsideChanges()) return;
    const QString folder = chooseProjectFolder();
    if (folder.isEmpty()) return;
    const QString file = chooseProjectFile(folder);
    if (file.isEmpty()) {
        theDict_.clear();
        return;
    }
    openProjectFile(folder, file);
}

void ProjectActions::openGivenProject(const QString& file) {
    const QFileInfo info(file);
    if (!info.isFile()) {
        ui_->alert(tr("The project cannot be opened."),
                   tr("%1 is not there any more.").arg(QDir::toNativeSeparators(file)), false);
        return;
    }
    if (!maySetAsideChanges()) return;
    openProjectFile(info.absolutePath(), info.absoluteFilePath());
}

bool ProjectActions::openProjectFile(const QString& folder, const QString& file) {
    using Status = ProjectFile::OpenResult::Status;
    // Reading thousands of entries takes a while: off the window's thread, as a save is.
    QFutureWatcher<ProjectFile::OpenResult> reading;
    QEventLoop waiting;
    connect(&reading, &QFutureWatcherBase::finished, &waiting, &QEventLoop::quit);
    UserInterface* ui = ui_;
    reading.setFuture(QtConcurrent::run([&] { return ProjectFile::open(folder, file, 0, ui); }));
    if (!reading.isFinished()) {
        QProgressDialog progress(tr("Opening the project…"), QString(), 0, 0, window_.widget);
        progress.setWindowModality(Qt::ApplicationModal);
        progress.setMinimumDuration(500);
        waiting.exec();
    }
    const ProjectFile::OpenResult opened = reading.result();
    theDict_ = opened.dictionary;
    if (opened.status == Status::Refused) {
        ui_->alert(tr("The project was not opened."), opened.message, true);
        return false;
    }
    // An unreadable file is an empty project: the collection is emptied, no settings load.
    PhotoCollection& collection = *window_.collection;
    collection.hRemoveAllPhoto();
    collection.clearSortRule();
    collection.appendRecords(opened.records);
    if (opened.status == Status::Unreadable) {
        ui_->alert(tr("The project could not be read."), opened.message, false);
        markSaved();
        return false;
    }
    if (opened.missingPhotos())
        ui_->alert(ProjectFile::kMissingTitle, ProjectFile::missingPhotosText(), false);
    ProjectFile::loadSettings(opened, *window_.settings);
    publishDestination_ = opened.dictionary.value(ProjectFile::kPublishKey);
    const QList<PresetLayout>& layouts = PresetLayouts::all();
    for (int i = 0; i < layouts.size(); ++i)
        if (&layouts[i] == opened.layout && window_.selectTab) window_.selectTab(i);
    Q_EMIT settingsLoaded(opened.layout->kind);
    if (!opened.warnings.isEmpty())
        ui_->alert(tr("Parts of the project could not be used."), opened.warnings.join(u'\n'),
                   false);
    markSaved();
    addRecent(file);
    Q_EMIT message(tr("Project opened: %1").arg(QDir::toNativeSeparators(file)));
    return true;
}

QStringList ProjectActions::recentProjects() {
    return QSettings().value(kRecentKey).toStringList().mid(0, kRecentCount);
}

void ProjectActions::setRecentProjects(const QStringList& files) {
    QSettings settings;
    settings.setValue(kRecentKey, files.mid(0, kRecentCount));
    settings.sync();
}

void ProjectActions::addRecent(const QString& file) {
    const QString path = QFileInfo(file).absoluteFilePath();
    QStringList files = recentProjects();
    files.removeAll(path);
    files.prepend(path);
    setRecentProjects(files);
}

void ProjectActions::fillRecentMenu(QMenu* menu) {
    menu->clear();
    const QStringList files = recentProjects();
    menu->setEnabled(!files.isEmpty());
    for (const QString& file : files) {
        menu->addAction(QFileInfo(file).completeBaseName() + QStringLiteral("  —  ") +
                            QDir::toNativeSeparators(QFileInfo(file).absolutePath()),
                        this, [this, file] { openRecent(file); });
    }
}

void ProjectActions::openRecent(const QString& file) {
    if (QFileInfo(file).absoluteDir().exists() && QFileInfo(file).isFile()) {
        openGivenProject(file);
        return;
    }
    QStringList left = recentProjects();
    left.removeAll(file);
    setRecentProjects(left);
    ui_->alert(tr("The project is no longer there."),
               tr("%1 was moved or removed; it is taken off the list of recent projects.")
                   .arg(QDir::toNativeSeparators(file)),
               false);
}
