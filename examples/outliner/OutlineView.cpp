#include "OutlineView.h"

#include "OutlineTree.h"

#include "host/base/Errors.h"
#include "host/base/Reflection.h"
#include "host/forms/Forms.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace quill::examples {

namespace {

// What the View menu offers. Pictures and check marks are shown when an outline has any, and the direction of reading
// is the desktop's.
const char* const Look[] = {"OutlineStyle", "Showlines", "ShowRoot", "ShowButtons",
                            "StatesDrawed", "WordWrap",  "ToolTips", "FitToHeight",
                            "HTMLDrawing",  "Options",   "HotTrack", "SmoothExpandCollapse"};

void CopyLook(TQuillTree& From, TQuillTree& To) {
    for (const char* Name : Look) {
        const TPropertyInfo* const Property = FindProperty(To.GetClassInfo(), Name);
        Property->SetOrdinal(To, Property->GetOrdinal(From));
    }
}

// Both have the same data columns.
void CopyColumns(TQuillTree& From, TQuillTree& To) {
    for (int Col = 0; Col < To.GetColCount(); ++Col) {
        const int At = To.GetDisplayColumn(From.GetColumnOrder(Col));
        if (At != Col) To.MoveColumn(At, Col);
    }
    for (int Col = 0; Col < To.GetColCount(); ++Col) To.SetColWidths(Col, From.GetColWidths(Col));
}

} // namespace

std::string ViewFileName() {
    const QDir Folder(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation));
    return Folder.filePath("view.form").toStdString();
}

void TOutlineView::Take(TOutlineTree& Tree) {
    CopyLook(Tree, *this);
    SetColCount(Tree.GetColCount());
    for (int Col = 0; Col < GetColCount(); ++Col) SetCaptions(Col, Tree.GetCaptions(Col));
    CopyColumns(Tree, *this);
}

void TOutlineView::GiveLook(TOutlineTree& Tree) { CopyLook(*this, Tree); }

bool TOutlineView::GiveColumns(TOutlineTree& Tree) {
    if (GetColCount() != Tree.GetColCount()) return false;
    for (int Col = 0; Col < GetColCount(); ++Col) {
        if (GetCaptions(Col) != Tree.GetCaptions(Col)) return false;
    }
    CopyColumns(*this, Tree);
    return true;
}

std::string TOutlineView::Load(const std::string& FileName) {
    if (!QFileInfo::exists(QString::fromStdString(FileName))) return {};
    std::string Message;
    TOutlineView Ancestor;
    TFormOptions Options;
    Options.Ancestor = &Ancestor;
    Options.OnError = [&Message](const EFormError& Fault) {
        if (Message.empty()) Message = Fault.GetMessage();
        return true;
    };
    try {
        LoadFormFromFile(FileName, this, Options);
    } catch (const Exception& Error) {
        Message = Error.GetMessage();
    }
    return Message;
}

void TOutlineView::Save(const std::string& FileName) {
    QDir().mkpath(QFileInfo(QString::fromStdString(FileName)).path());
    TOutlineView Ancestor;
    TFormOptions Options;
    Options.Ancestor = &Ancestor;
    SaveFormToFile(FileName, this, Options);
}

} // namespace quill::examples
