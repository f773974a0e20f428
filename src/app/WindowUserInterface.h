#pragma once

#include <QObject>
#include <QPointer>
#include <atomic>

#include "services/UserInterface.h"

class QProgressBar;
class QWidget;

// Alerts, progress and opening pages for the window. Every method may be called from a worker
// thread: the work is handed to the window's thread.
class WindowUserInterface : public QObject, public UserInterface {
    Q_OBJECT
  public:
    WindowUserInterface(QWidget* window, QProgressBar* progressBar);

    void alert(const QString& title, const QString& description, bool stopsRun) override;
    void progressStart() override;
    void progressStep(double increment) override;
    void progressStop() override;
    void openUrl(const QString& url) override;
    // Asked at once, on the window's thread, in a dialog modal to the window.
    SaveAnswer askToSave(const QString& question, const QString& detail) override;
    bool isCancelled() const override { return cancelled_; }

    void requestCancel() { cancelled_ = true; }
    void resetCancel() { cancelled_ = false; }

  private:
    QPointer<QWidget> window_;
    QPointer<QProgressBar> progressBar_;
    double progress_ = 0;  // touched on the window's thread only
    std::atomic<bool> cancelled_{false};
};
