// The pages of the gallery. A new one is a class and a line in GalleryPages.cpp.
#pragma once

#include <QString>
#include <QWidget>

#include <span>

namespace quill::examples {

class TGalleryPage : public QWidget {
public:
    // Brings the page into a state that shows its feature without a user. Called while it is shown.
    virtual void Pose() {}
    // What a screenshot shows then.
    virtual QWidget* GetPicture() { return window(); }
};

struct TPageInfo {
    const char* Name; // on the command line
    const char* Title;
    const char* Description;
    TGalleryPage* (*Create)();
};

std::span<const TPageInfo> GalleryPages();
// The index of the page of that name, -1 when there is none.
int FindPage(const QString& Name);

} // namespace quill::examples
