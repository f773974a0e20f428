#include "app/ToolsWindow.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTabWidget>
#include <QVBoxLayout>

#include "app/MetadataPanels.h"
#include "app/ToolsPanels.h"

ToolsWindow::ToolsWindow(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowTitle(tr("Orvella Tools"));
    tabs_ = new QTabWidget;
    watermark_ = new WatermarkPanel;
    colourEffects_ = new ColorEffectsPanel;
    metadataEditor_ = new MetadataEditorPanel;
    batchComment_ = new BatchCommentPanel;
    tabs_->addTab(watermark_, tr("Watermark"));
    tabs_->addTab(colourEffects_, tr("Colour Effects"));
    tabs_->addTab(metadataEditor_, tr("Metadata Editor"));
    tabs_->addTab(batchComment_, tr("Batch Comment"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs_);
    resize(1000, 700);
}

void ToolsWindow::showPage(Page page) {
    tabs_->setCurrentIndex(int(page));
    show();
    raise();
    activateWindow();
}

void addToolsMenu(QMainWindow* window) {
    QMenu* menu = window->menuBar()->addMenu(QObject::tr("&Tools"));
    // One tools window, made when first asked for and owned by the main window.
    auto tools = std::make_shared<QPointer<ToolsWindow>>();
    const std::pair<QString, ToolsWindow::Page> entries[] = {
        {QObject::tr("Watermark…"), ToolsWindow::Watermark},
        {QObject::tr("Colour Effects…"), ToolsWindow::ColourEffects},
        {QObject::tr("Metadata Editor…"), ToolsWindow::MetadataEditor},
        {QObject::tr("Batch Comment…"), ToolsWindow::BatchComment}};
    for (const auto& [title, page] : entries) {
        menu->addAction(title, window, [window, tools, page = page] {
            if (!*tools) *tools = new ToolsWindow(window);
            (*tools)->showPage(page);
        });
    }
}
