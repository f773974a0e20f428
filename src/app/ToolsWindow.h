#pragma once

#include <QWidget>

class QMainWindow;
class QTabWidget;
class WatermarkPanel;
class ColorEffectsPanel;
class MetadataEditorPanel;
class BatchCommentPanel;

// The side tools in one window of their own, a tab each: Watermark, Colour Effects, Metadata
// Editor, Batch Comment.
class ToolsWindow : public QWidget {
    Q_OBJECT
  public:
    enum Page { Watermark, ColourEffects, MetadataEditor, BatchComment };

    explicit ToolsWindow(QWidget* parent = nullptr);

    void showPage(Page page);

    WatermarkPanel* watermark() const { return watermark_; }
    ColorEffectsPanel* colourEffects() const { return colourEffects_; }
    MetadataEditorPanel* metadataEditor() const { return metadataEditor_; }
    BatchCommentPanel* batchComment() const { return batchComment_; }
    QTabWidget* tabs() const { return tabs_; }

  private:
    QTabWidget* tabs_ = nullptr;
    WatermarkPanel* watermark_ = nullptr;
    ColorEffectsPanel* colourEffects_ = nullptr;
    MetadataEditorPanel* metadataEditor_ = nullptr;
    BatchCommentPanel* batchComment_ = nullptr;
};

// Adds the Tools menu to the main window; its entries open the tools window at their tab.
void addToolsMenu(QMainWindow* window);
