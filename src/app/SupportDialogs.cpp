#include "app/SupportDialogs.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "presets/SettingsStore.h"
#include "services/SupportFolders.h"
#include "services/UserInterface.h"

namespace SupportDialogs {

bool chooseLibraryDestination(QWidget* parent, bool first, UserInterface* ui) {
    QFileDialog dialog(parent, first ? QString::fromLatin1(SupportFolders::kFirstMessage)
                                     : QObject::tr("Choose a root support folder"));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
    QString error;
    if (!SupportFolders::setLibraryDestination(dialog.selectedFiles().constLast(), &error)) {
        if (ui) ui->alert(QObject::tr("The support folder was not set."), error, false);
        return false;
    }
    return true;
}

QString defaultRoot() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

bool useDefaultRootIfUnset(UserInterface* ui) {
    if (SupportFolders::hasRoot()) return true;
    const QString root = defaultRoot();
    QString error = QObject::tr("%1: cannot be created").arg(root);
    if (QDir().mkpath(root) && SupportFolders::setLibraryDestination(root, &error)) return true;
    if (ui) ui->alert(QObject::tr("The support folder was not set."), error, false);
    return false;
}

void importImages(QWidget* parent, bool watermarks, UserInterface* ui) {
    useDefaultRootIfUnset(ui);
    // The destination as it stands now, also when a new root is chosen below.
    const QString destination =
        watermarks ? SupportFolders::watermarksPath() : SupportFolders::patternsPath();
    if (SupportFolders::importNeedsRoot(watermarks)) chooseLibraryDestination(parent, true, ui);
    const QStringList files = QFileDialog::getOpenFileNames(
        parent,
        QString::fromLatin1(watermarks ? SupportFolders::kWatermarkMessage
                                       : SupportFolders::kPatternMessage),
        QString(), QObject::tr("Images (*.png *.jpg *.jpeg)"));
    if (files.isEmpty() || destination.isEmpty()) return;
    QStringList failures;
    SupportFolders::importImagesInto(destination, files, &failures);
    if (!failures.isEmpty() && ui)
        ui->alert(QObject::tr("Some images were not imported."), failures.join(u'\n'), false);
}

}  // namespace SupportDialogs

PreferencesDialog::PreferencesDialog(UserInterface* ui, QWidget* parent)
    : QDialog(parent), ui_(ui) {
    setWindowTitle(tr("Preferences"));
    setObjectName(QStringLiteral("wwPreferences"));
    path_ = new QLabel;
    path_->setObjectName(QStringLiteral("tfLibraryFilePath"));
    path_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    path_->setMinimumWidth(420);
    auto* choose = new QPushButton(tr("Choose…"));
    connect(choose, &QPushButton::clicked, this, [this] {
        SupportDialogs::chooseLibraryDestination(this, false, ui_);
        refresh();
    });
    auto* patterns = new QPushButton(tr("Import Patterns…"));
    connect(patterns, &QPushButton::clicked, this,
            [this] { SupportDialogs::importImages(this, false, ui_); });
    auto* watermarks = new QPushButton(tr("Import Watermarks…"));
    connect(watermarks, &QPushButton::clicked, this,
            [this] { SupportDialogs::importImages(this, true, ui_); });
    auto* close = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(close, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* row = new QHBoxLayout;
    row->addWidget(path_, 1);
    row->addWidget(choose);
    auto* imports = new QHBoxLayout;
    imports->addWidget(patterns);
    imports->addWidget(watermarks);
    imports->addStretch();
    SupportDialogs::useDefaultRootIfUnset(ui_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Support folder (patterns and watermarks):")));
    layout->addLayout(row);
    layout->addLayout(imports);
    layout->addWidget(close);
    refresh();
}

void PreferencesDialog::refresh() {
    QString text = SupportFolders::preferencesText();
    // The carriage return of the message breaks the line.
    text.replace(u'\r', u'\n');
    path_->setText(text.isEmpty() ? tr("(none chosen)") : text);
}

PatternChooser::PatternChooser(const QString& kindLetters, const QString& pathControl,
                               SettingsStore& settings, QWidget* parent)
    : QWidget(parent), pathControl_(pathControl), settings_(settings) {
    lookUp_ = new QComboBox;
    lookUp_->setObjectName(QStringLiteral("pub%1ImageLookUp").arg(kindLetters));
    lookUp_->addItems({tr("Anywhere"), tr("Watermarks"), tr("Patterns")});
    lookUp_->setCurrentIndex(2);
    lookUp_->setToolTip(tr("Where the chooser starts"));
    auto* button = new QPushButton(tr("Choose Pattern…"));
    connect(button, &QPushButton::clicked, this, &PatternChooser::choose);
    preview_ = new QLabel;
    preview_->setObjectName(QStringLiteral("iw%1PatternImage").arg(kindLetters));
    preview_->setFixedSize(48, 48);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(lookUp_);
    layout->addWidget(button);
    layout->addWidget(preview_);
    layout->addStretch();
    showPreview();
}

void PatternChooser::choose() {
    SupportDialogs::useDefaultRootIfUnset(nullptr);
    QStringList patterns;
    for (const QString& suffix : SupportFolders::patternImageSuffixes())
        patterns.append(QStringLiteral("*.") + suffix);
    const QString file =
        QFileDialog::getOpenFileName(this, tr("Choose a pattern image"),
                                     SupportFolders::chooserStartFolder(lookUp_->currentIndex()),
                                     tr("Images (%1)").arg(patterns.join(u' ')));
    if (!file.isEmpty()) setPattern(file);
}

void PatternChooser::setPattern(const QString& file) {
    settings_.setText(pathControl_, file);
    showPreview();
    Q_EMIT chosen();
}

void PatternChooser::showPreview() {
    const QString path = settings_.text(pathControl_);
    if (path.isEmpty()) {
        preview_->setPixmap({});
        return;
    }
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid() && size.width() > 0 && size.height() > 0)
        reader.setScaledSize(size.scaled(preview_->size(), Qt::KeepAspectRatio));
    const QImage image = reader.read();
    preview_->setPixmap(image.isNull() ? QPixmap() : QPixmap::fromImage(image));
}
