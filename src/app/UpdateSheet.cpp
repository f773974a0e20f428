#include "app/UpdateSheet.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPointer>
#include <QThread>
#include <QVBoxLayout>

#include "services/cAppUpdater.h"

namespace {

// The thread of the check, owned by the window: it ends with the window even while a request is
// still under way.
class UpdateCheckThread : public QObject {
  public:
    explicit UpdateCheckThread(QWidget* window) : QObject(window) {
        updater_ = new cAppUpdater;
        updater_->moveToThread(&thread_);
        QObject::connect(&thread_, &QThread::started, updater_, [updater = updater_] {
            updater->getAppVersion(cAppUpdater::currentBuild());
        });
        QObject::connect(updater_, &cAppUpdater::finished, &thread_, &QThread::quit);
        QObject::connect(&thread_, &QThread::finished, updater_, &QObject::deleteLater);
        QPointer<QWidget> target(window);
        // Queued to the window's thread: the sheet is made there.
        QObject::connect(updater_, &cAppUpdater::newVersion, this,
                         [target](const QString& announcement) {
                             if (target) showSheet(target, announcement);
                         });
        thread_.start();
    }
    ~UpdateCheckThread() override {
        thread_.quit();
        thread_.wait();  // the updater is deleted as the thread ends
    }

    // wwApplicationVersionWindow with tfNewApplicationVersion; Close ends the sheet.
    static void showSheet(QWidget* window, const QString& announcement) {
        auto* sheet = new QDialog(window);
        sheet->setObjectName(QStringLiteral("wwApplicationVersionWindow"));
        sheet->setWindowTitle(QObject::tr("A new version is available"));
        sheet->setWindowModality(Qt::WindowModal);
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        auto* text = new QLabel(announcement);
        text->setObjectName(QStringLiteral("tfNewApplicationVersion"));
        text->setWordWrap(true);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
        QObject::connect(buttons, &QDialogButtonBox::rejected, sheet, &QDialog::close);
        auto* layout = new QVBoxLayout(sheet);
        layout->addWidget(text);
        layout->addWidget(buttons);
        sheet->open();
    }

  private:
    QThread thread_;
    cAppUpdater* updater_ = nullptr;
};

}  // namespace

void startUpdateCheck(QWidget* window) {
    new UpdateCheckThread(window);
}
