#include "app/MetadataPanels.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

#include "services/PhotoFileTypes.h"

namespace {

void addNodes(QTreeWidgetItem* parent, QTreeWidget* tree, const QList<MetaTreeNode>& nodes) {
    for (const MetaTreeNode& node : nodes) {
        auto* item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(tree);
        item->setText(0, node.key);
        item->setText(1, node.val);
        item->setToolTip(1, node.val);
        addNodes(item, tree, node.children);
    }
}

// What the editor shows for a file it cannot read or write: the reader's own message.
QString notSupportedText() {
    mMeta meta;
    meta.hiDoNothing(QString());
    return meta.tfExifUserComment;
}

}  // namespace

QTableWidget* makeLogTable() {
    // Titles a person reads, in the order of the row's keys; each key stays as the title's tip.
    static const QStringList titles = {QObject::tr("Date"),       QObject::tr("Process"),
                                       QObject::tr("Action"),     QObject::tr("Status"),
                                       QObject::tr("Input"),      QObject::tr("Output"),
                                       QObject::tr("Input path"), QObject::tr("Output path")};
    const QStringList keys = MetaLogRow::columnNames();
    auto* table = new QTableWidget(0, int(keys.size()));
    for (int column = 0; column < keys.size(); ++column) {
        auto* header = new QTableWidgetItem(titles.value(column, keys[column]));
        header->setToolTip(keys[column]);
        table->setHorizontalHeaderItem(column, header);
    }
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->setMinimumHeight(100);
    return table;
}

void addLogRow(QTableWidget* table, const MetaLogRow& row) {
    const int at = table->rowCount();
    table->insertRow(at);
    const QStringList values = row.columns();
    for (int column = 0; column < values.size(); ++column)
        table->setItem(at, column, new QTableWidgetItem(values[column]));
    table->scrollToBottom();
}

// ---- MetadataEditorPanel ----

MetadataEditorPanel::MetadataEditorPanel(QWidget* parent) : QWidget(parent) {
    tfActiveFilePath = new QLineEdit;
    tfActiveFilePath->setReadOnly(true);
    tfActiveFilePath->setPlaceholderText(tr("No file chosen"));
    auto* choose = new QPushButton(tr("Choose File…"));
    connect(choose, &QPushButton::clicked, this, &MetadataEditorPanel::chooseFile);
    tfExifUserComment = new QLineEdit;
    tfExifUserComment->setPlaceholderText(tr("EXIF user comment"));
    apply_ = new QPushButton(tr("Apply"));
    apply_->setEnabled(false);
    connect(apply_, &QPushButton::clicked, this, &MetadataEditorPanel::btApplyExifUserComment);
    connect(tfExifUserComment, &QLineEdit::returnPressed, this,
            &MetadataEditorPanel::btApplyExifUserComment);

    mTree = new QTreeWidget;
    mTree->setHeaderLabels({tr("Property"), tr("Value")});
    mTree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    themMetaLogTable = makeLogTable();
    busy_ = new QProgressBar;
    busy_->setRange(0, 0);
    busy_->setMaximumHeight(8);
    busy_->setTextVisible(false);
    busy_->hide();
    status_ = new QLabel;
    status_->setWordWrap(true);

    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(new QLabel(tr("File:")));
    fileRow->addWidget(tfActiveFilePath, 1);
    fileRow->addWidget(choose);
    auto* commentRow = new QHBoxLayout;
    commentRow->addWidget(new QLabel(tr("User comment:")));
    commentRow->addWidget(tfExifUserComment, 1);
    commentRow->addWidget(apply_);
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(mTree);
    splitter->addWidget(themMetaLogTable);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fileRow);
    layout->addLayout(commentRow);
    layout->addWidget(busy_);
    layout->addWidget(status_);
    layout->addWidget(splitter, 1);

    connect(&watcher_, &QFutureWatcherBase::finished, this, [this] {
        busy_->hide();
        if (!watcher_.isCanceled()) show(watcher_.result());
    });
}

MetadataEditorPanel::~MetadataEditorPanel() {
    watcher_.waitForFinished();
}

void MetadataEditorPanel::waitForFinished() {
    watcher_.waitForFinished();
    QCoreApplication::processEvents();
}

void MetadataEditorPanel::chooseFile() {
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Choose a photo"), QFileInfo(tfActiveFilePath->text()).path(),
        tr("Photos (%1);;All files (*)").arg(PhotoFileTypes::dialogPatterns()));
    if (!path.isEmpty()) hiDoNothing(path);
}

void MetadataEditorPanel::start(const std::function<Shown()>& work) {
    if (watcher_.isRunning()) return;
    busy_->show();
    apply_->setEnabled(false);
    watcher_.setFuture(QtConcurrent::run(work));
}

void MetadataEditorPanel::hiDoNothing(const QString& path) {
    tfActiveFilePath->setText(path);
    status_->clear();
    start([path] {
        mMeta meta;
        Shown shown;
        shown.path = path;
        shown.tree = meta.hiDoNothing(path);
        shown.comment = meta.tfExifUserComment;
        return shown;
    });
}

void MetadataEditorPanel::btApplyExifUserComment() {
    const QString path = tfActiveFilePath->text();
    const QString comment = tfExifUserComment->text();
    if (path.isEmpty() || watcher_.isRunning()) return;
    start([path, comment] {
        Shown shown;
        shown.path = path;
        shown.applied = true;
        shown.status = cEditMetaData::hWriteComment(path, comment, &shown.reason);
        if (shown.status == u"OK") {
            mMeta meta;
            shown.tree = meta.hiDoNothing(path);
            shown.comment = meta.tfExifUserComment;
        } else {
            shown.comment = notSupportedText();
        }
        return shown;
    });
}

void MetadataEditorPanel::show(const Shown& shown) {
    if (shown.path != tfActiveFilePath->text()) return;  // another file was chosen meanwhile
    apply_->setEnabled(true);
    tfExifUserComment->setText(shown.comment);
    if (shown.applied) {
        addLogRow(themMetaLogTable, MetaLogRow::forFile(shown.path, shown.status));
        status_->setText(shown.status == u"OK" ? tr("The comment was written.")
                                               : tr("Not written: %1.").arg(shown.reason));
        if (shown.status != u"OK") return;  // the tree of the file stays as it was
    }
    mTree->clear();
    addNodes(nullptr, mTree, shown.tree);
    mTree->expandToDepth(0);
}

// ---- BatchCommentPanel ----

BatchCommentPanel::BatchCommentPanel(QWidget* parent) : QWidget(parent) {
    tfEMDuserCommentField = new QLineEdit;
    tfEMDuserCommentField->setPlaceholderText(tr("The comment to write into every file"));
    auto* files = new QPushButton(tr("Choose Files…"));
    auto* folder = new QPushButton(tr("Choose Folder…"));
    connect(files, &QPushButton::clicked, this, &BatchCommentPanel::btEMDchooseFile);
    connect(folder, &QPushButton::clicked, this, &BatchCommentPanel::btEMDchooseFolder);
    myProgressBarke = new QProgressBar;
    myProgressBarke->hide();
    status = new QLabel;
    status->setWordWrap(true);
    theLogTable = makeLogTable();

    auto* commentRow = new QHBoxLayout;
    commentRow->addWidget(new QLabel(tr("User comment:")));
    commentRow->addWidget(tfEMDuserCommentField, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(files);
    buttons->addWidget(folder);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(commentRow);
    layout->addLayout(buttons);
    layout->addWidget(myProgressBarke);
    layout->addWidget(status);
    layout->addWidget(theLogTable, 1);
}

BatchCommentPanel::~BatchCommentPanel() {
    watcher_.waitForFinished();
}

void BatchCommentPanel::waitForFinished() {
    watcher_.waitForFinished();
    QCoreApplication::processEvents();
}

void BatchCommentPanel::btEMDchooseFile() {
    QStringList patterns;
    for (const QString& extension : cEditMetaData::fileExtensions())
        patterns << QStringLiteral("*.") + extension << QStringLiteral("*.") + extension.toUpper();
    const QStringList files = QFileDialog::getOpenFileNames(
        this, tr("Choose photos"), QString(), tr("Photos (%1)").arg(patterns.join(u' ')));
    runBatch(files);  // cancelled: an empty batch, shown and hidden at once
}

void BatchCommentPanel::btEMDchooseFolder() {
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Choose a folder"));
    runBatch(folder.isEmpty() ? QStringList() : cEditMetaData::filesOfFolder(folder));
}

bool BatchCommentPanel::runBatch(const QStringList& files) {
    if (watcher_.isRunning()) return false;
    const QString comment = tfEMDuserCommentField->text();  // read once
    failures_.clear();
    lastProgressValue = 0;
    lastProgressMaximum = int(files.size());
    myProgressBarke->setRange(0, int(files.size()));
    myProgressBarke->setValue(0);
    myProgressBarke->show();
    status->setText(files.isEmpty() ? QString() : tr("Writing…"));

    // The worker reports through queued calls, which are dropped if the panel is gone.
    QPointer<BatchCommentPanel> self(this);
    cEditMetaData::Progress progress;
    progress.logged = [self](const MetaLogRow& row) {
        QMetaObject::invokeMethod(self, [self, row] { addLogRow(self->theLogTable, row); });
    };
    progress.advanced = [self](int value) {
        QMetaObject::invokeMethod(self, [self, value] {
            self->myProgressBarke->setValue(value);
            self->lastProgressValue = value;
        });
    };
    progress.failed = [self](const QString& path, const QString& reason) {
        QMetaObject::invokeMethod(self, [self, path, reason] {
            self->failures_.append(QFileInfo(path).fileName() + QStringLiteral(" (") + reason +
                                   u')');
        });
    };
    progress.finished = [self] {
        QMetaObject::invokeMethod(self, [self] {
            self->myProgressBarke->hide();
            self->myProgressBarke->setValue(0);
            const int written = self->lastProgressValue;
            QString text = tr("%n file(s) written.", nullptr, written);
            if (!self->failures_.isEmpty())
                text +=
                    u' ' + tr("Not written: %1.").arg(self->failures_.join(QStringLiteral(", ")));
            self->status->setText(text);
            Q_EMIT self->finished();
        });
    };
    watcher_.setFuture(QtConcurrent::run([files, comment, progress] {
        cEditMetaData editor;
        editor.btEMDchooseFile(files, comment, progress);
    }));
    return true;
}
