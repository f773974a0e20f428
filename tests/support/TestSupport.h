#pragma once

#include <QMap>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <ostream>
#include <utility>
#include <vector>

#include "presets/SettingsStore.h"
#include "services/UserInterface.h"

// Test messages and gtest's values show texts as they are.
inline std::ostream& operator<<(std::ostream& os, const QString& s) {
    return os << '"' << s.toStdString() << '"';
}

// A UserInterface that records what the user would have seen.
class RecordingUserInterface : public UserInterface {
  public:
    struct Alert {
        QString title, description;
        bool stopsRun;
    };
    void alert(const QString& title, const QString& description, bool stopsRun) override {
        alerts.push_back({title, description, stopsRun});
    }
    void progressStart() override { ++starts; }
    void progressStep(double increment) override { steps.push_back(increment); }
    void progressStop() override { ++stops; }
    void openUrl(const QString& url) override { opened.append(url); }
    // Answers with the next of `answers` (Cancel when none is left); the questions are kept.
    SaveAnswer askToSave(const QString& question, const QString& detail) override {
        questions.append(question + u'\n' + detail);
        if (answers.empty()) return SaveAnswer::Cancel;
        const SaveAnswer answer = answers.front();
        answers.erase(answers.begin());
        return answer;
    }

    std::vector<SaveAnswer> answers;
    QStringList questions;
    std::vector<Alert> alerts;
    std::vector<double> steps;
    int starts = 0;
    int stops = 0;
    QStringList opened;
};

namespace testsupport {

// A fresh, empty folder for one test, under the build's test-output folder. Ends with "/".
QString freshDir(const QString& name);

// The settings defaults plus these overrides (name, text value); a bad override fails the test.
SettingsStore settingsWith(const std::vector<std::pair<QString, QString>>& overrides = {});

// Runs a program and returns its exit code; its standard output and error go to the two strings.
// `environment`, when given, replaces the environment the program starts with.
int runProgram(const QString& program, const QStringList& arguments, QString* out = nullptr,
               QString* err = nullptr, int timeoutMs = 120000,
               const QProcessEnvironment* environment = nullptr);

// Runs this build's orvella with these arguments, as a user runs it; returns its exit code.
int orvella(const QStringList& arguments, QString* out = nullptr, QString* err = nullptr,
            const QProcessEnvironment* environment = nullptr);

// Runs orvella as above, expects exit code `code` (a failure shows its standard error) and returns
// its standard output; its standard error goes to `err` when given.
QString orvellaOut(int code, const QStringList& arguments, QString* err = nullptr,
                   const QProcessEnvironment* environment = nullptr);

// This environment with HOME, XDG_DATA_HOME and XDG_CONFIG_HOME in folders of `root`.
QProcessEnvironment homeIn(const QString& root);

// A black photo of this size written by vips (its type from the name's extension); the path.
QString makePhoto(const QString& path, int width = 60, int height = 40);

// The files below `dir` (which ends with "/"), as paths relative to it, sorted.
QStringList filesUnder(const QString& dir);

// The files below `dir` (which ends with "/"), hidden ones too, by relative path, with their bytes.
QMap<QString, QByteArray> contentsUnder(const QString& dir);

// The bytes of a file; `ifMissing` when it cannot be read.
QByteArray readFile(const QString& path, const QByteArray& ifMissing = {});
// Writes a file whole (its folder made when missing); a failure fails the test.
void writeFile(const QString& path, const QByteArray& bytes);

// exiftool's value of one tag (as `exiftool -s3 -TAG FILE` prints it), trailing newline removed.
QString exiftool(const QString& file, const QString& tag);

// Real camera photos shipped by Debian's mate-backgrounds package (JPEGs), sorted by name.
QStringList mateBackgroundJpegs();
// The first `count` small ones of them; copied into `dir` under their own names when it is given.
QStringList cameraPhotos(int count, const QString& dir = {});

// The pages and stylesheets below `dir` (which ends with "/"), by relative path, with their bytes.
QMap<QString, QByteArray> pagesUnder(const QString& dir);

}  // namespace testsupport
