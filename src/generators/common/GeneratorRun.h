#pragma once

#include <QString>
#include <QStringList>

// How a run of any output kind is asked for.
struct RunOptions {
    QString destination;  // the output folder, ending with "/"
    int threads = 0;      // image workers; 0: one per core. The pages never depend on it.
    bool openFirstPage = false;
    bool clean = false;    // remove the files earlier runs wrote that this run does not write again
    bool rebuild = false;  // make every image again, even those that are unchanged
};

// The outcome of a run.
struct RunResult {
    bool ok = false;         // false: an alert stopped the run before anything was written
    bool cancelled = false;  // the user cancelled: no page was written; `unfinished` names the
                             // photos whose images were not made
    QString firstPage;       // the path of the page a browser opens first
    QStringList failures;    // "path: reason" for each file that could not be read or written
    QStringList unfinished;  // photos left out by a cancel
};
