#pragma once

#include <QString>

// The one way core code reaches the user: alerts, progress and opening a page. The window, the
// command line and the tests each provide their own implementation; core code never touches a
// widget.
class UserInterface {
  public:
    virtual ~UserInterface() = default;

    // Shows an alert. A run that cannot go on returns right after calling this with stopsRun set;
    // a warning (stopsRun false) is shown while the run goes on.
    virtual void alert(const QString& title, const QString& description, bool stopsRun) = 0;

    // Progress of a long run: start, a number of steps (each adds `increment` to a 0..100 bar;
    // the sum may over- or undershoot 100), stop.
    virtual void progressStart() {}
    virtual void progressStep(double increment) { (void)increment; }
    virtual void progressStop() {}
    // The photos of a run's image stage made so far, out of `total`: first 0, then after each
    // photo, in order, on the thread that runs the run.
    virtual void progressPhotos(int done, int total) {
        (void)done;
        (void)total;
    }

    // True once the user asked to stop the run. Called from image workers: thread-safe.
    virtual bool isCancelled() const { return false; }

    // Opens a URL (normally a generated page) with the user's default application.
    virtual void openUrl(const QString& url) = 0;

    // A question about unsaved work, such as "Save changes to the project?", answered Save,
    // Don't Save or Cancel. Where nobody can answer, Cancel: nothing goes on and nothing is lost.
    enum class SaveAnswer { Save, DontSave, Cancel };
    virtual SaveAnswer askToSave(const QString& question, const QString& detail) {
        (void)question;
        (void)detail;
        return SaveAnswer::Cancel;
    }
};

// A UserInterface that shows nothing; for services used where nobody is watching.
class SilentUserInterface : public UserInterface {
  public:
    void alert(const QString&, const QString&, bool) override {}
    void openUrl(const QString&) override {}
};
