#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class UserInterface;
struct PhotoEntry;

// The output folder of one run. It makes the kind's folders, copies the support files and the
// pattern, and writes pages and stylesheets whole or not at all. Nothing is thrown: what could not
// be written is collected as "path: reason" in failures(), in the order it happened.
class OutputFolder {
  public:
    // `destination` ends with "/".
    explicit OutputFolder(const QString& destination);

    const QString& path() const { return destination_; }

    // Creates each folder (such as "KLimages_b/") with its parents, sets the folder icon, and
    // removes temporary files a crashed run left in it.
    void createFolders(const QStringList& folders);
    // Copies the nine lightbox files into `folder` (such as "KLovlightbox/"). A file that is there
    // already is kept, not refreshed.
    void copyLightboxFiles(const QString& folder);
    // Copies the pattern image at `source` to folder + fileName, keeping a file already there.
    void copyPattern(const QString& source, const QString& folderAndFileName);
    // Writes the program's resource `resource` (":/...") to `relativePath`; a file that holds its
    // bytes already is left as it is.
    void writeResource(const QString& resource, const QString& relativePath);
    // Writes a page or stylesheet (path relative to the destination) in UTF-8; pages get the page
    // icon. A file that holds these bytes already is left as it is, so its time does not change.
    // False when it could not be written.
    bool writeText(const QString& relativePath, const QString& text, bool pageIcon = true);
    // Opens a page with the default browser, as every kind does at the end of a run.
    void openPage(const QString& relativePath, UserInterface& ui) const;

    void addFailure(const QString& path, const QString& reason);
    // Failures already in the form "path: reason".
    void addFailures(const QStringList& failures) { failures_ += failures; }
    const QStringList& failures() const { return failures_; }
    // The files (relative paths) written so far, and those found holding the text to write.
    const QStringList& writtenFiles() const { return written_; }

    // A message naming the first photo that lies inside one of `folders` of `destination` (the
    // folders a run writes into), or "" when none does. Such a photo would be overwritten.
    static QString photoInside(const QString& destination, const QStringList& folders,
                               const QList<PhotoEntry>& photos);

    // The nine lightbox files, in the order they are copied.
    static const QStringList& lightboxFiles();

  private:
    QString destination_;
    QStringList failures_;
    QStringList written_;
};
