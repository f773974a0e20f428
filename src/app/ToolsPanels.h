#pragma once

#include <QFutureWatcher>
#include <QWidget>
#include <functional>

#include "presets/SettingsStore.h"

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class SettingsForm;

// The photos a tool works on, its output folder, its progress and its log. A run calls the work
// for each photo on a worker thread, one after the other, and logs "FILE: STATUS" lines. The
// output folder may never be the folder of one of the photos: such a run is refused.
class PhotoBatchBox : public QWidget {
    Q_OBJECT
  public:
    using Work = std::function<QString(const QString& photo, const QString& folder)>;

    explicit PhotoBatchBox(QWidget* parent = nullptr);
    ~PhotoBatchBox() override;

    QStringList photos() const;
    void setPhotos(const QStringList& photos);
    QString outputFolder() const;
    void setOutputFolder(const QString& folder);
    // Starts a run; false (with the reason shown) when there is nothing to do or the folder is
    // refused.
    bool run(const Work& work);
    bool isRunning() const { return watcher_.isRunning(); }
    // Waits for the run and shows its results.
    void waitForFinished();
    QStringList logLines() const;

  Q_SIGNALS:
    void photosChanged();
    void finished();

  private:
    void choosePhotos();
    void chooseFolder();
    void refuse(const QString& reason);

    QListWidget* photos_ = nullptr;
    QLineEdit* folder_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPlainTextEdit* log_ = nullptr;
    QLabel* status_ = nullptr;
    QFutureWatcher<QString> watcher_;
};

// The nine positions of a segmented position control as a three-by-three grid of buttons, bound
// to the store by the control's name.
class PositionGrid : public QWidget {
    Q_OBJECT
  public:
    PositionGrid(const QString& name, SettingsStore& store, QWidget* parent = nullptr);
    void refresh();

  Q_SIGNALS:
    void edited(const QString& name);

  private:
    QString name_;
    SettingsStore& store_;
    QButtonGroup* buttons_ = nullptr;
};

// The watermark panel: every control of the text and the image stamp (made from the registry),
// the position grids, the preview of the watermark image and the stamping of the chosen photos.
class WatermarkPanel : public QWidget {
    Q_OBJECT
  public:
    explicit WatermarkPanel(QWidget* parent = nullptr);

    SettingsStore& settings() { return store_; }
    PhotoBatchBox* batch() const { return batch_; }
    SettingsForm* form() const { return form_; }
    // Stamps the photos: text (true) or image (false). False when the run did not start.
    bool stamp(bool text);
    // The file dialog for the watermark image; the chosen path goes into the settings.
    void hChooseWatermarkImage();
    // Shows the watermark image of the settings in the preview.
    void showWatermarkImage();
    QLabel* preview() const { return iwWaterMarkImage_; }

  private:
    SettingsStore store_;
    SettingsForm* form_ = nullptr;
    QList<PositionGrid*> grids_;
    QLabel* iwWaterMarkImage_ = nullptr;
    PhotoBatchBox* batch_ = nullptr;
};

// The colour effects panel: a fixed effect or an enhancement with its value, applied to copies of
// the chosen photos.
class ColorEffectsPanel : public QWidget {
    Q_OBJECT
  public:
    explicit ColorEffectsPanel(QWidget* parent = nullptr);

    // The titles of the effect and enhancement popups, in code order.
    static QStringList effectTitles();
    static QStringList enhancementTitles();

    // Puts the default value of the chosen enhancement into the value field.
    void hSetDefaultValue();
    // Applies the chosen effect (true) or enhancement (false). False when the run did not start.
    bool apply(bool effect);

    QComboBox* pubColorConversions = nullptr;
    QComboBox* pubEnhanceChoice = nullptr;
    QLineEdit* tfDefaultEnhanceValue = nullptr;
    PhotoBatchBox* batch = nullptr;
};
