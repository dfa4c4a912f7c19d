// The window of the gallery: a list of pages, and the chosen one beside it.
#pragma once

#include <QMainWindow>

class QLabel;
class QListWidget;
class QStackedWidget;

namespace quill::examples {

class TGalleryPage;

class TGalleryWindow : public QMainWindow {
    Q_OBJECT

public:
    TGalleryWindow();

    // Index counts GalleryPages; a page is made when it is shown first.
    void ShowPage(int Index);
    TGalleryPage* GetPage() const { return FPage; }

private:
    void MakeList();
    QWidget* MakeHead();

    QListWidget* FList;
    QLabel* FTitle;
    QLabel* FDescription;
    QStackedWidget* FStack;
    TGalleryPage* FPage = nullptr;
    QList<TGalleryPage*> FPages; // null for those that were not shown yet
};

} // namespace quill::examples
