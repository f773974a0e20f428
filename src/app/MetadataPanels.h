#pragma once

#include <QFutureWatcher>
#include <QWidget>

#include "metadata/cEditMetaData.h"
#include "metadata/mMeta.h"

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableWidget;
class QTreeWidget;

// Appends a row to a log table of the eight log columns.
void addLogRow(QTableWidget* table, const MetaLogRow& row);
QTableWidget* makeLogTable();

// The single-file metadata editor: the chosen file's user comment (editable) and its metadata
// tree, the apply action and the activity log. Reading and writing run on a worker thread.
class MetadataEditorPanel : public QWidget {
    Q_OBJECT
  public:
    explicit MetadataEditorPanel(QWidget* parent = nullptr);
    ~MetadataEditorPanel() override;

    // Shows a file: its comment and its tree.
    void hiDoNothing(const QString& path);
    // Writes the comment field into the active file, shows it again and logs the outcome.
    void btApplyExifUserComment();
    bool isRunning() const { return watcher_.isRunning(); }
    // Waits for the reading or writing and shows its results.
    void waitForFinished();

    QLineEdit* tfActiveFilePath = nullptr;
    QLineEdit* tfExifUserComment = nullptr;
    QTreeWidget* mTree = nullptr;
    QTableWidget* themMetaLogTable = nullptr;

  private:
    struct Shown {
        QString path;
        QString comment;
        QList<MetaTreeNode> tree;
        bool applied = false;  // the result of an apply (with its log row)
        QString status;
        QString reason;
    };
    void chooseFile();
    void show(const Shown& shown);
    void start(const std::function<Shown()>& work);

    QProgressBar* busy_ = nullptr;
    QLabel* status_ = nullptr;
    QPushButton* apply_ = nullptr;
    QFutureWatcher<Shown> watcher_;
};

// The batch comment editor: one comment written into chosen files or the photos of a folder, the
// progress, and a log row per file written.
class BatchCommentPanel : public QWidget {
    Q_OBJECT
  public:
    explicit BatchCommentPanel(QWidget* parent = nullptr);
    ~BatchCommentPanel() override;

    // The two dialogs and their batches.
    void btEMDchooseFile();
    void btEMDchooseFolder();
    // The batch over a list of files (already chosen); false when one is still running.
    bool runBatch(const QStringList& files);
    bool isRunning() const { return watcher_.isRunning(); }
    // Waits for the batch and shows its results.
    void waitForFinished();

    QLineEdit* tfEMDuserCommentField = nullptr;
    QProgressBar* myProgressBarke = nullptr;
    QTableWidget* theLogTable = nullptr;
    QLabel* status = nullptr;
    // The progress bar's highest value in the last batch, as it stood before being hidden.
    int lastProgressValue = 0;
    int lastProgressMaximum = 0;

  Q_SIGNALS:
    void finished();

  private:
    QFutureWatcher<void> watcher_;
    QStringList failures_;
};
