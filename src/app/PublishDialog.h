#pragma once

#include <QDialog>
#include <QFutureWatcher>
#include <atomic>
#include <functional>

#include "publish/Publisher.h"

class ProjectActions;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class UserInterface;

// Publish…: sends an output folder to a web server. The destinations used for the folder are
// offered again (kept in the user's settings, per folder), the project's destination first; a
// password typed here is remembered in the desktop's secret store only when asked to. The publish
// runs off the window's thread; Cancel stops it after the file being sent.
class PublishDialog : public QDialog {
    Q_OBJECT
  public:
    PublishDialog(const QString& outputFolder, ProjectActions* projects, UserInterface* ui,
                  QWidget* parent = nullptr);
    ~PublishDialog() override;

    // The Publish… button of a kind's tab: opens the dialog on the folder `folder()` gives, or
    // says through `ui` that there is nothing to publish yet.
    static QPushButton* makeButton(QWidget* window, std::function<QString()> folder,
                                   ProjectActions* projects, UserInterface* ui);

    // Destinations used for the output folder, the last one first.
    static QStringList destinationsFor(const QString& folder);

    void setDestination(const QString& text);
    void publish();
    void testConnection();
    void cancel();
    bool isRunning() const { return work_.isRunning(); }
    QString summary() const;

    // Alerts go through this interface (the window's by default).
    void setUserInterface(UserInterface* ui) { ui_ = ui; }

    // Asked when the server offers a host key that is not known yet ("ssh-ed25519 SHA256:...");
    // true trusts it. Tests replace the question.
    std::function<bool(const QString& hostKey)> confirmHostKey;

  Q_SIGNALS:
    // A publish or a connection test has ended; its summary is shown.
    void done();

  protected:
    void reject() override;

  private:
    struct Work {
        bool test = false;
        Publisher::Result result;
    };
    void start(bool test, bool acceptHostKey, const QString& password);
    void finished();
    void setRunning(bool running);
    void showProgress(const Publisher::Progress& progress);
    static void rememberDestination(const QString& folder, const QString& destination);

    QString folder_;
    ProjectActions* projects_;
    UserInterface* ui_;
    QComboBox* destination_ = nullptr;
    QLineEdit* password_ = nullptr;
    QCheckBox* remember_ = nullptr;
    QCheckBox* removeOld_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* status_ = nullptr;
    QPlainTextEdit* summary_ = nullptr;
    QPushButton* test_ = nullptr;
    QPushButton* publish_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QFutureWatcher<Work> work_;
    std::atomic<bool> cancelled_{false};
    // The run in progress.
    std::optional<PublishDestination> running_;
    QString passwordUsed_;
    bool passwordLookedUp_ = false;
    bool closeWhenDone_ = false;
};
