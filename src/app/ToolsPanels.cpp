#include "app/ToolsPanels.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QDoubleValidator>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPromise>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

#include "app/SettingsForm.h"
#include "generators/OutputKinds.h"
#include "imaging/CellImage.h"
#include "imaging/KLColorConversions.h"
#include "imaging/KLWatermark.h"
#include "presets/WatermarkControls.h"
#include "services/OutputFolders.h"
#include "services/PhotoFileTypes.h"

namespace {

constexpr int kPreviewSize = 160;

// The photos, and the other types the image tools read.
QString photoFilter() {
    return QObject::tr("Photos (%1 *.bmp *.gif *.jp2 *.BMP *.GIF *.JP2);;All files (*)")
        .arg(PhotoFileTypes::dialogPatterns());
}

}  // namespace

// ---- PhotoBatchBox ----

PhotoBatchBox::PhotoBatchBox(QWidget* parent) : QWidget(parent) {
    photos_ = new QListWidget;
    photos_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    photos_->setMinimumHeight(80);
    auto* add = new QPushButton(tr("Add Photos…"));
    auto* remove = new QPushButton(tr("Remove"));
    auto* clear = new QPushButton(tr("Clear"));
    connect(add, &QPushButton::clicked, this, &PhotoBatchBox::choosePhotos);
    connect(remove, &QPushButton::clicked, this, [this] {
        qDeleteAll(photos_->selectedItems());
        Q_EMIT photosChanged();
    });
    connect(clear, &QPushButton::clicked, this, [this] { setPhotos({}); });
    auto* photoButtons = new QHBoxLayout;
    photoButtons->addWidget(add);
    photoButtons->addWidget(remove);
    photoButtons->addWidget(clear);
    photoButtons->addStretch();

    folder_ = new QLineEdit;
    folder_->setPlaceholderText(tr("Another folder than the photos' own"));
    auto* chooseFolder = new QPushButton(tr("Choose…"));
    connect(chooseFolder, &QPushButton::clicked, this, &PhotoBatchBox::chooseFolder);
    auto* folderRow = new QHBoxLayout;
    folderRow->addWidget(new QLabel(tr("Output folder:")));
    folderRow->addWidget(folder_, 1);
    folderRow->addWidget(chooseFolder);

    progress_ = new QProgressBar;
    progress_->hide();
    status_ = new QLabel;
    status_->setWordWrap(true);
    log_ = new QPlainTextEdit;
    log_->setReadOnly(true);
    log_->setMaximumBlockCount(5000);
    log_->setMinimumHeight(70);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(tr("Photos:")));
    layout->addWidget(photos_, 1);
    layout->addLayout(photoButtons);
    layout->addLayout(folderRow);
    layout->addWidget(progress_);
    layout->addWidget(status_);
    layout->addWidget(log_, 1);

    connect(&watcher_, &QFutureWatcherBase::progressValueChanged, progress_,
            &QProgressBar::setValue);
    connect(&watcher_, &QFutureWatcherBase::resultReadyAt, this,
            [this](int i) { log_->appendPlainText(watcher_.resultAt(i)); });
    connect(&watcher_, &QFutureWatcherBase::finished, this, [this] {
        progress_->hide();
        status_->setText(tr("Done."));
        Q_EMIT finished();
    });
}

PhotoBatchBox::~PhotoBatchBox() {
    // The work refers to nothing of the window, but its results would arrive at a dead watcher.
    watcher_.cancel();
    watcher_.waitForFinished();
}

void PhotoBatchBox::waitForFinished() {
    watcher_.waitForFinished();
    QCoreApplication::processEvents();
}

QStringList PhotoBatchBox::photos() const {
    QStringList list;
    for (int i = 0; i < photos_->count(); ++i) list.append(photos_->item(i)->text());
    return list;
}

void PhotoBatchBox::setPhotos(const QStringList& photos) {
    photos_->clear();
    photos_->addItems(photos);
    Q_EMIT photosChanged();
}

QString PhotoBatchBox::outputFolder() const {
    return folder_->text();
}

void PhotoBatchBox::setOutputFolder(const QString& folder) {
    folder_->setText(folder);
}

QStringList PhotoBatchBox::logLines() const {
    return log_->toPlainText().split(u'\n', Qt::SkipEmptyParts);
}

void PhotoBatchBox::choosePhotos() {
    const QStringList files =
        QFileDialog::getOpenFileNames(this, tr("Choose photos"), QString(), photoFilter());
    if (files.isEmpty()) return;
    photos_->addItems(files);
    Q_EMIT photosChanged();
}

void PhotoBatchBox::chooseFolder() {
    const QString folder =
        QFileDialog::getExistingDirectory(this, tr("Choose the output folder"), folder_->text());
    if (!folder.isEmpty()) folder_->setText(folder);
}

void PhotoBatchBox::refuse(const QString& reason) {
    status_->setText(
        QStringLiteral("<span style='color:#b00020'>%1</span>").arg(reason.toHtmlEscaped()));
}

bool PhotoBatchBox::run(const Work& work) {
    if (isRunning()) return false;
    const QStringList files = photos();
    if (files.isEmpty()) {
        refuse(tr("Add the photos first."));
        return false;
    }
    if (folder_->text().trimmed().isEmpty()) {
        refuse(tr("Choose an output folder."));
        return false;
    }
    QString error;
    const QString folder = OutputFolders::prepare(folder_->text().trimmed(), files, &error);
    if (folder.isEmpty()) {
        refuse(error);
        return false;
    }
    status_->setText(tr("Writing into %1…").arg(QDir::toNativeSeparators(folder)));
    progress_->setRange(0, int(files.size()));
    progress_->setValue(0);
    progress_->show();
    watcher_.setFuture(QtConcurrent::run([files, folder, work](QPromise<QString>& promise) {
        promise.setProgressRange(0, int(files.size()));
        for (qsizetype i = 0; i < files.size(); ++i) {
            if (promise.isCanceled()) return;
            promise.addResult(files[i] + QStringLiteral(": ") + work(files[i], folder));
            promise.setProgressValue(int(i + 1));
        }
    }));
    return true;
}

// ---- PositionGrid ----

PositionGrid::PositionGrid(const QString& name, SettingsStore& store, QWidget* parent)
    : QWidget(parent), name_(name), store_(store) {
    buttons_ = new QButtonGroup(this);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    const QStringList titles = store.registry().find(name)->items;
    for (int i = 0; i < 9; ++i) {
        auto* button = new QToolButton;
        button->setCheckable(true);
        button->setFixedSize(26, 20);
        button->setToolTip(titles.value(i));
        button->setAccessibleName(titles.value(i));
        buttons_->addButton(button, i);
        grid->addWidget(button, i / 3, i % 3);
    }
    grid->setColumnStretch(3, 1);
    connect(buttons_, &QButtonGroup::idClicked, this, [this](int id) {
        if (store_.integer(name_) == id) return;
        store_.set(name_, QString::number(id));
        Q_EMIT edited(name_);
    });
    refresh();
}

void PositionGrid::refresh() {
    if (QAbstractButton* button = buttons_->button(store_.integer(name_))) button->setChecked(true);
}

// ---- WatermarkPanel ----

WatermarkPanel::WatermarkPanel(QWidget* parent) : QWidget(parent), store_(OutputKinds::registry()) {
    form_ = new SettingsForm(QStringLiteral("watermark"), store_);
    for (const auto& [section, name] :
         {std::pair{"Text", "scWaterMarkPos"}, std::pair{"Image", "scImageWaterMarkPos"}}) {
        auto* grid = new PositionGrid(QString::fromLatin1(name), store_);
        grids_.append(grid);
        form_->addToSection(QString::fromLatin1(section), grid);
        connect(grid, &PositionGrid::edited, form_, &SettingsForm::refresh);
    }
    iwWaterMarkImage_ = new QLabel;
    iwWaterMarkImage_->setFixedSize(kPreviewSize, kPreviewSize);
    iwWaterMarkImage_->setAlignment(Qt::AlignCenter);
    iwWaterMarkImage_->setFrameShape(QFrame::StyledPanel);
    form_->addToSection(QStringLiteral("Image"), iwWaterMarkImage_);
    connect(form_, &SettingsForm::edited, this, [this](const QString& name) {
        for (PositionGrid* grid : std::as_const(grids_)) grid->refresh();
        if (name == u"tfWaterMarkImageFilePath") showWatermarkImage();
    });
    // The path row's own button opens the watermark image dialog.
    if (auto* row = form_->findChild<QWidget*>(QStringLiteral("tfWaterMarkImageFilePath"))) {
        if (auto* choose = row->findChild<QPushButton*>()) {
            choose->disconnect();
            connect(choose, &QPushButton::clicked, this, &WatermarkPanel::hChooseWatermarkImage);
        }
    }

    batch_ = new PhotoBatchBox;
    auto* stampText = new QPushButton(tr("Stamp Text"));
    auto* stampImage = new QPushButton(tr("Stamp Image"));
    connect(stampText, &QPushButton::clicked, this, [this] { stamp(true); });
    connect(stampImage, &QPushButton::clicked, this, [this] { stamp(false); });
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(stampText);
    buttons->addWidget(stampImage);

    auto* right = new QVBoxLayout;
    right->addWidget(batch_, 1);
    right->addLayout(buttons);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(form_, 1);
    layout->addLayout(right, 1);
    showWatermarkImage();
}

void WatermarkPanel::hChooseWatermarkImage() {
    QStringList patterns;
    for (const QString& extension : KLWatermark::watermarkImageExtensions())
        patterns << QStringLiteral("*.") + extension;
    const QString current = store_.text(QStringLiteral("tfWaterMarkImageFilePath"));
    const QString path = QFileDialog::getOpenFileName(this, tr("Choose the watermark image"),
                                                      QFileInfo(current).path(),
                                                      tr("Images (%1)").arg(patterns.join(u' ')));
    if (path.isEmpty()) return;
    store_.setText(QStringLiteral("tfWaterMarkImageFilePath"), path);
    form_->refresh();
    showWatermarkImage();
}

void WatermarkPanel::showWatermarkImage() {
    const QString path = store_.text(QStringLiteral("tfWaterMarkImageFilePath"));
    const QImage image = path.isEmpty() ? QImage() : makeCellImage(path, kPreviewSize);
    if (image.isNull()) {
        iwWaterMarkImage_->setPixmap({});
        iwWaterMarkImage_->setText(path.isEmpty() ? tr("No image") : tr("Not readable"));
    } else {
        iwWaterMarkImage_->setPixmap(QPixmap::fromImage(image));
    }
}

bool WatermarkPanel::stamp(bool text) {
    if (batch_->isRunning()) return false;
    // Nothing chosen in the font list: the second font is used, and it becomes the chosen one.
    const QString fontName = QStringLiteral("cbFontList");
    if (text && store_.text(fontName).isEmpty()) {
        const QStringList fonts = store_.registry().find(fontName)->items;
        const QString font = fonts.size() > 1 ? fonts[1] : fonts.value(0);
        if (!font.isEmpty()) {
            store_.setText(fontName, font);
            form_->refresh();
        }
    }
    const WatermarkSettings settings = watermarkSettingsFrom(store_);
    PhotoBatchBox::Work work;
    if (text) {
        work = [settings](const QString& photo, const QString& folder) {
            return KLWatermark(settings).setWatermarkText(photo, folder);
        };
    } else {
        work = [settings](const QString& photo, const QString& folder) {
            return KLWatermark(settings).setWatermarkImage(photo, folder);
        };
    }
    return batch_->run(work);
}

// ---- ColorEffectsPanel ----

QStringList ColorEffectsPanel::effectTitles() {
    return {tr("Noir"),    tr("Mono"),     tr("Sepia (light)"), tr("Sepia (medium)"),
            tr("Sepia"),   tr("Chrome"),   tr("Invert"),        tr("Process"),
            tr("Instant"), tr("Transfer"), tr("Fade"),          tr("Invert (again)")};
}

QStringList ColorEffectsPanel::enhancementTitles() {
    return {tr("Brightness"), tr("Exposure"), tr("Gamma"),  tr("Hue"),
            tr("Pixellate"),  tr("Mosaic"),   tr("Blocks"), tr("Process"),
            tr("Instant"),    tr("Transfer"), tr("Fade")};
}

ColorEffectsPanel::ColorEffectsPanel(QWidget* parent) : QWidget(parent) {
    pubColorConversions = new QComboBox;
    pubColorConversions->setObjectName(QStringLiteral("pubColorConversions"));
    pubColorConversions->addItems(effectTitles());
    pubEnhanceChoice = new QComboBox;
    pubEnhanceChoice->setObjectName(QStringLiteral("pubEnhanceChoice"));
    pubEnhanceChoice->addItems(enhancementTitles());
    tfDefaultEnhanceValue = new QLineEdit(QStringLiteral("0.0"));
    tfDefaultEnhanceValue->setObjectName(QStringLiteral("tfDefaultEnhanceValue"));
    auto* number = new QDoubleValidator(tfDefaultEnhanceValue);
    number->setLocale(QLocale::c());
    tfDefaultEnhanceValue->setValidator(number);
    tfDefaultEnhanceValue->setMaximumWidth(90);
    connect(pubEnhanceChoice, &QComboBox::currentIndexChanged, this,
            &ColorEffectsPanel::hSetDefaultValue);

    auto* applyEffect = new QPushButton(tr("Apply Effect"));
    auto* applyEnhancement = new QPushButton(tr("Apply Enhancement"));
    connect(applyEffect, &QPushButton::clicked, this, [this] { apply(true); });
    connect(applyEnhancement, &QPushButton::clicked, this, [this] { apply(false); });

    auto* form = new QFormLayout;
    auto* effectRow = new QHBoxLayout;
    effectRow->addWidget(pubColorConversions);
    effectRow->addWidget(applyEffect);
    effectRow->addStretch();
    auto* enhanceRow = new QHBoxLayout;
    enhanceRow->addWidget(pubEnhanceChoice);
    enhanceRow->addWidget(tfDefaultEnhanceValue);
    enhanceRow->addWidget(applyEnhancement);
    enhanceRow->addStretch();
    form->addRow(tr("Effect:"), effectRow);
    form->addRow(tr("Enhancement:"), enhanceRow);
    auto* note = new QLabel(
        tr("Copies are written for tif, tiff, jpg and jpeg files (either case) and lower-case png "
           "files; other photos are skipped."));
    note->setWordWrap(true);

    batch = new PhotoBatchBox;
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addWidget(batch, 1);
}

void ColorEffectsPanel::hSetDefaultValue() {
    tfDefaultEnhanceValue->setText(KLColorConversions::hSetDefaultValue(
        pubEnhanceChoice->currentIndex(), tfDefaultEnhanceValue->text()));
}

bool ColorEffectsPanel::apply(bool effect) {
    const QString code = QString::number(effect ? pubColorConversions->currentIndex()
                                                : pubEnhanceChoice->currentIndex());
    const float value = QLocale::c().toFloat(tfDefaultEnhanceValue->text());
    return batch->run([effect, code, value](const QString& photo, const QString& folder) {
        if (!KLColorConversions::writesFileNamed(photo))
            return QStringLiteral("skipped (not a tif, tiff, jpg, jpeg or png file name)");
        KLColorConversions colours;
        if (effect)
            colours.convertColorTo(photo, folder, code);
        else
            colours.enhanceColorTo(photo, folder, code, value);
        return colours.lastWritten ? QStringLiteral("OK") : QStringLiteral("Failed");
    });
}
