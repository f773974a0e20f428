#include "app/WindowUserInterface.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>
#include <QWidget>

WindowUserInterface::WindowUserInterface(QWidget* window, QProgressBar* progressBar)
    : QObject(window), window_(window), progressBar_(progressBar) {}

void WindowUserInterface::alert(const QString& title, const QString& description, bool stopsRun) {
    QMetaObject::invokeMethod(this, [this, title, description, stopsRun] {
        // A sheet on the main window: modal to the window only, so a run that goes on is not held
        // up.
        auto* box = new QMessageBox(stopsRun ? QMessageBox::Warning : QMessageBox::Information,
                                    title, title, QMessageBox::Ok, window_);
        box->setInformativeText(description.trimmed());
        box->setWindowModality(Qt::WindowModal);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
}

void WindowUserInterface::progressStart() {
    QMetaObject::invokeMethod(this, [this] {
        progress_ = 0;
        if (!progressBar_) return;
        progressBar_->setRange(0, 100);
        progressBar_->setValue(0);
        progressBar_->show();
    });
}

void WindowUserInterface::progressStep(double increment) {
    QMetaObject::invokeMethod(this, [this, increment] {
        progress_ += increment;
        if (progressBar_) progressBar_->setValue(int(progress_));
    });
}

void WindowUserInterface::progressStop() {
    QMetaObject::invokeMethod(this, [this] {
        progress_ = 0;
        if (!progressBar_) return;
        progressBar_->hide();
        progressBar_->setValue(0);
    });
}

void WindowUserInterface::openUrl(const QString& url) {
    QMetaObject::invokeMethod(this, [url] { QDesktopServices::openUrl(QUrl(url)); });
}

UserInterface::SaveAnswer WindowUserInterface::askToSave(const QString& question,
                                                         const QString& detail) {
    QMessageBox box(QMessageBox::Warning, question, question,
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, window_);
    box.setInformativeText(detail);
    box.setDefaultButton(QMessageBox::Save);
    box.button(QMessageBox::Discard)->setText(tr("Don't Save"));
    box.setWindowModality(Qt::WindowModal);
    switch (box.exec()) {
        case QMessageBox::Save:
            return SaveAnswer::Save;
        case QMessageBox::Discard:
            return SaveAnswer::DontSave;
        default:
            return SaveAnswer::Cancel;
    }
}
