#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class SettingsStore;
class UserInterface;

// The support folder in the window: choosing the root, the preferences sheet that shows it,
// importing patterns and watermarks, and the pattern choosers of the output kinds.
namespace SupportDialogs {

// Lets the user choose the support root (with the "FIRST" message when `first`) and builds the
// tree. False when cancelled or refused.
bool chooseLibraryDestination(QWidget* parent, bool first, UserInterface* ui = nullptr);
// The root used until the user chooses one: the application's folder in the user's data folder
// ($XDG_DATA_HOME/KeldraCom/Orvella).
QString defaultRoot();
// Makes the default root the support root (creating it) when none is set. False, with an alert,
// when it cannot be made.
bool useDefaultRootIfUnset(UserInterface* ui);
// Copies pattern or watermark images the user picks into the support folder; with no root set the
// default one is taken, and a root whose folder has gone is asked for again.
void importImages(QWidget* parent, bool watermarks, UserInterface* ui);

}  // namespace SupportDialogs

// The preferences sheet: the support root (or the two-line message when it has gone) and a
// button to choose it.
class PreferencesDialog : public QDialog {
    Q_OBJECT
  public:
    explicit PreferencesDialog(UserInterface* ui, QWidget* parent = nullptr);
    void refresh();

  private:
    UserInterface* ui_;
    QLabel* path_ = nullptr;
};

// A pattern image chooser for one output kind: a start-folder popup (none, watermarks,
// patterns), a Choose button and a preview. Writes the chosen path into the kind's pattern path.
class PatternChooser : public QWidget {
    Q_OBJECT
  public:
    // `kindLetters` "Tb", "Ss" or "Rg" names the popup and preview (pubTbImageLookUp, ...).
    PatternChooser(const QString& kindLetters, const QString& pathControl, SettingsStore& settings,
                   QWidget* parent = nullptr);
    void choose();
    // Takes a chosen file: the path into the setting, the image into the preview.
    void setPattern(const QString& file);
    void showPreview();

  Q_SIGNALS:
    void chosen();

  private:
    QString pathControl_;
    SettingsStore& settings_;
    QComboBox* lookUp_ = nullptr;
    QLabel* preview_ = nullptr;
};
