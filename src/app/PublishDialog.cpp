#include "app/PublishDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

#include "app/ProjectActions.h"
#include "publish/PublishPasswords.h"
#include "services/UserInterface.h"

namespace {

const QString kDestinationsKey = QStringLiteral("PublishDestinations");
constexpr int kRememberedDestinations = 8;

QString megabytes(qint64 bytes) {
    return QString::number(double(bytes) / 1e6, 'f', 1) + QStringLiteral(" MB");
}

QString listed(const QString& heading, const QStringList& lines) {
    return lines.isEmpty() ? QString()
                           : heading + QStringLiteral(":\n  ") + lines.join(u"\n  ") + u'\n';
}

}  // namespace

PublishDialog::PublishDialog(const QString& outputFolder, ProjectActions* projects,
                             UserInterface* ui, QWidget* parent)
    : QDialog(parent), folder_(outputFolder), projects_(projects), ui_(ui) {
    if (!folder_.endsWith(u'/')) folder_ += u'/';
    setWindowTitle(tr("Publish"));
    setObjectName(QStringLiteral("publishDialog"));
    confirmHostKey = [this](const QString& hostKey) {
        return QMessageBox::question(
                   this, tr("Unknown server"),
                   tr("The server's host key is not known yet:\n\n%1\n\nTrust it only if it is the "
                      "key the server's administrator gave you. Trust it and add it to "
                      "~/.ssh/known_hosts?")
                       .arg(hostKey)) == QMessageBox::Yes;
    };

    destination_ = new QComboBox;
    destination_->setObjectName(QStringLiteral("publishDestination"));
    destination_->setEditable(true);
    destination_->setMinimumWidth(420);
    QStringList offered = destinationsFor(folder_);
    const QString fromProject = projects_ ? projects_->publishDestination() : QString();
    if (!fromProject.isEmpty()) {
        offered.removeAll(fromProject);
        offered.prepend(fromProject);
    }
    destination_->addItems(offered);
    destination_->lineEdit()->setPlaceholderText(QStringLiteral("sftp://user@example.com/~/www"));
    destination_->setToolTip(
        tr("sftp://USER@HOST[:PORT]/PATH, ftp://USER@HOST/PATH or ftps://USER@HOST/PATH (FTP with "
           "TLS). /~/ starts an SFTP path in the home folder."));
    password_ = new QLineEdit;
    password_->setObjectName(QStringLiteral("publishPassword"));
    password_->setEchoMode(QLineEdit::Password);
    password_->setPlaceholderText(tr("not needed with an SSH key or a remembered password"));
    remember_ = new QCheckBox(tr("Remember the password in the desktop's secret store"));
    removeOld_ =
        new QCheckBox(tr("Remove from the server the files that earlier publishes sent "
                         "and the site no longer has"));
    removeOld_->setObjectName(QStringLiteral("publishRemoveOld"));
    removeOld_->setToolTip(tr("Files Orvella did not send are never removed."));

    progress_ = new QProgressBar;
    progress_->setRange(0, 1000);
    progress_->setValue(0);
    status_ = new QLabel(tr("Sends what changed since the last publish to the same place."));
    status_->setWordWrap(true);
    summary_ = new QPlainTextEdit;
    summary_->setObjectName(QStringLiteral("publishSummary"));
    summary_->setReadOnly(true);
    summary_->setMinimumHeight(140);

    auto* buttons = new QDialogButtonBox;
    test_ = buttons->addButton(tr("Test Connection"), QDialogButtonBox::ActionRole);
    publish_ = buttons->addButton(tr("Publish"), QDialogButtonBox::AcceptRole);
    publish_->setObjectName(QStringLiteral("publishStart"));
    publish_->setDefault(true);
    cancel_ = buttons->addButton(tr("Cancel"), QDialogButtonBox::ActionRole);
    cancel_->setToolTip(tr("Stop after the file being sent; the next publish completes the site"));
    buttons->addButton(QDialogButtonBox::Close);
    connect(test_, &QPushButton::clicked, this, &PublishDialog::testConnection);
    connect(publish_, &QPushButton::clicked, this, &PublishDialog::publish);
    connect(cancel_, &QPushButton::clicked, this, &PublishDialog::cancel);
    connect(buttons, &QDialogButtonBox::rejected, this, &PublishDialog::reject);
    connect(&work_, &QFutureWatcherBase::finished, this, &PublishDialog::finished);

    auto* form = new QFormLayout;
    form->addRow(tr("Output folder:"), new QLabel(QDir::toNativeSeparators(folder_)));
    form->addRow(tr("Destination:"), destination_);
    form->addRow(tr("Password:"), password_);
    form->addRow(QString(), remember_);
    form->addRow(QString(), removeOld_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(progress_);
    layout->addWidget(status_);
    layout->addWidget(summary_, 1);
    layout->addWidget(buttons);
    setRunning(false);
}

PublishDialog::~PublishDialog() {
    cancelled_ = true;
    work_.waitForFinished();
}

QPushButton* PublishDialog::makeButton(QWidget* window, std::function<QString()> folder,
                                       ProjectActions* projects, UserInterface* ui) {
    auto* button = new QPushButton(tr("Publish…"));
    button->setObjectName(QStringLiteral("publishButton"));
    button->setToolTip(tr("Send the output folder to your web server, only what changed"));
    QObject::connect(button, &QPushButton::clicked, window, [=] {
        const QString out = folder();
        if (out.isEmpty() || !QFileInfo(out).isDir()) {
            ui->alert(tr("There is nothing to publish yet."),
                      tr("Create the site first: Publish sends the output folder it was written "
                         "into."),
                      false);
            return;
        }
        auto* dialog = new PublishDialog(out, projects, ui, window);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
    return button;
}

QStringList PublishDialog::destinationsFor(const QString& folder) {
    return QSettings().value(kDestinationsKey).toMap().value(folder).toStringList();
}

void PublishDialog::rememberDestination(const QString& folder, const QString& destination) {
    QSettings settings;
    QVariantMap all = settings.value(kDestinationsKey).toMap();
    QStringList list = all.value(folder).toStringList();
    list.removeAll(destination);
    list.prepend(destination);
    all.insert(folder, list.mid(0, kRememberedDestinations));
    settings.setValue(kDestinationsKey, all);
}

void PublishDialog::setDestination(const QString& text) {
    destination_->setCurrentText(text);
}

QString PublishDialog::summary() const {
    return summary_->toPlainText();
}

void PublishDialog::publish() {
    passwordLookedUp_ = false;
    start(false, false, password_->text());
}

void PublishDialog::testConnection() {
    start(true, false, password_->text());
}

void PublishDialog::cancel() {
    if (!isRunning()) return;
    cancelled_ = true;
    cancel_->setEnabled(false);
    status_->setText(tr("Stopping after the file being sent…"));
}

void PublishDialog::reject() {
    if (isRunning()) {
        cancel();
        closeWhenDone_ = true;  // once the file being sent has arrived
        return;
    }
    QDialog::reject();
}

void PublishDialog::setRunning(bool running) {
    for (QWidget* w : std::initializer_list<QWidget*>{destination_, password_, remember_,
                                                      removeOld_, test_, publish_})
        w->setEnabled(!running);
    cancel_->setEnabled(running);
}

void PublishDialog::showProgress(const Publisher::Progress& p) {
    progress_->setValue(p.bytesTotal > 0
                            ? int(p.bytesDone * 1000 / p.bytesTotal)
                            : (p.filesTotal > 0 ? p.filesDone * 1000 / p.filesTotal : 1000));
    if (!cancelled_)
        status_->setText(tr("%1 of %2 files, %3 of %4")
                             .arg(p.filesDone)
                             .arg(p.filesTotal)
                             .arg(megabytes(p.bytesDone), megabytes(p.bytesTotal)));
}

void PublishDialog::start(bool test, bool acceptHostKey, const QString& password) {
    if (isRunning()) return;
    QString error;
    running_ = PublishDestination::parse(destination_->currentText(), &error);
    if (!running_) {
        status_->setText(error);
        ui_->alert(tr("The destination is not taken."), error, true);
        return;
    }
    passwordUsed_ = password;
    cancelled_ = false;
    summary_->clear();
    progress_->setValue(0);
    status_->setText(test ? tr("Connecting…") : tr("Comparing the site with the last publish…"));
    setRunning(true);

    Publisher::Options options;
    options.removeOld = removeOld_->isChecked();
    options.credentials.password = password;
    options.credentials.acceptHostKey = acceptHostKey;
    const bool remember = remember_->isChecked() && !password.isEmpty();
    const bool lookUp = password.isEmpty() && !passwordLookedUp_;
    passwordLookedUp_ = passwordLookedUp_ || lookUp;
    Publisher::Callbacks callbacks;
    callbacks.cancelled = [this] { return cancelled_.load(); };
    callbacks.progress = [this](const Publisher::Progress& p) {
        QMetaObject::invokeMethod(
            this, [this, p] { showProgress(p); }, Qt::QueuedConnection);
    };
    const PublishDestination destination = *running_;
    const QString folder = folder_;
    work_.setFuture(QtConcurrent::run([=]() mutable {
        auto once = [&] {
            return test ? Publisher::testConnection(destination, options.credentials)
                        : Publisher::publish(folder, destination, options, callbacks);
        };
        Work work{test, once()};
        using Failure = ServerConnection::Failure;
        if (work.result.refusal == Failure::LoginRefused && lookUp) {
            options.credentials.password = PublishPasswords::lookup(destination.key());
            if (!options.credentials.password.isEmpty()) work.result = once();
        }
        QString reason;
        if (remember && work.result.connected &&
            !PublishPasswords::store(destination.key(), options.credentials.password, &reason))
            work.result.warnings.append(tr("The password was not remembered: %1").arg(reason));
        ServerConnection::releaseThread();
        return work;
    }));
}

void PublishDialog::finished() {
    const Work work = work_.result();
    const Publisher::Result& r = work.result;
    using Failure = ServerConnection::Failure;
    setRunning(false);
    if (r.refusal == Failure::HostKeyUnknown && confirmHostKey && confirmHostKey(r.hostKey)) {
        start(work.test, true, passwordUsed_);
        return;
    }
    const QString where = running_ ? running_->display() : QString();
    QString text;
    if (r.refusal != Failure::None) {
        text = r.failures.join(u'\n');
        if (r.refusal == Failure::LoginRefused && passwordUsed_.isEmpty()) {
            text += u'\n' + tr("Type the password and try again.");
            password_->setFocus();
        }
        status_->setText(tr("The server refused the connection."));
        ui_->alert(tr("Nothing was published."), text, true);
    } else if (!r.connected) {
        text = r.failures.join(u'\n');
        status_->setText(tr("No connection."));
        if (!work.test) ui_->alert(tr("Nothing was published."), text, false);
    } else if (work.test) {
        text = tr("Connected to %1: the host key is known and the login was accepted.").arg(where);
        status_->setText(tr("The connection works."));
    } else {
        rememberDestination(folder_, where);
        if (projects_) projects_->setPublishDestination(where);
        text = tr("Published to %1: %2 sent, %3 removed, %4 unchanged.")
                   .arg(where)
                   .arg(r.sent.size())
                   .arg(r.removed.size())
                   .arg(r.unchanged) +
               u'\n';
        const bool whole = r.complete && r.failures.isEmpty() && r.skipped.isEmpty();
        text += whole         ? tr("The server holds the whole site.")
                : r.cancelled ? tr("Cancelled: publish again to send the rest.")
                              : tr("The server does not hold the whole site yet.");
        text += u'\n' + listed(tr("Not sent"), r.failures + r.skipped) +
                listed(tr("Warnings"), r.warnings) + listed(tr("Sent"), r.sent) +
                listed(tr("Removed"), r.removed);
        status_->setText(whole ? tr("Done.") : tr("Not done."));
        progress_->setValue(whole ? progress_->maximum() : progress_->value());
        if (!r.failures.isEmpty() || !r.skipped.isEmpty())
            ui_->alert(tr("The site was not published whole."),
                       (r.failures + r.skipped).join(u'\n'), false);
    }
    summary_->setPlainText(text.trimmed());
    Q_EMIT done();
    if (closeWhenDone_) QDialog::reject();
}
