// GtkTreeView with GtkTreeStore: fixed height mode, fixed column widths, filled while the view has no model.
#include "bench/NodesFile.h"
#include "bench/Workloads.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <cstring>

namespace quill::bench {
namespace {

constexpr int CheckColumn = Columns;

class TPath {
public:
    TPath(GtkTreeModel* Model, GtkTreeIter& Iter) : FPath(gtk_tree_model_get_path(Model, &Iter)) {}
    ~TPath() { gtk_tree_path_free(FPath); }
    TPath(const TPath&) = delete;
    TPath& operator=(const TPath&) = delete;
    operator GtkTreePath*() const { return FPath; }

private:
    GtkTreePath* FPath;
};

class TGtkTree : public TContender {
public:
    void UseChecks() override { FChecks = true; }
    void UseEditing() override { FEditing = true; }
    void UseHotTracking() override {}
    void UseCollation() override { FCollated = true; }
    void Open() override;
    void Show() override;
    long GetPaintCount() const override { return FPaints; }
    void RepaintAll() override { gtk_widget_queue_draw(FWidget); }

    void Fill(const TShape& Shape) override {
        const TDetached Detached(*this);
        int Number = 0;
        for (int T = 0; T < Shape.Tops; ++T) {
            GtkTreeIter Top = Add(nullptr, -1, TextsOf(Number++));
            for (int G = 0; G < Shape.Groups; ++G) {
                GtkTreeIter Group = Add(&Top, -1, TextsOf(Number++));
                for (int L = 0; L < Shape.Leaves; ++L) Add(&Group, -1, TextsOf(Number++));
            }
        }
    }
    // From the last one to the first: adding at the end walks along all siblings.
    void FillList(int Count, TTextsOf TextsOf, bool BelowOne) override {
        const TDetached Detached(*this);
        GtkTreeIter Parent{};
        if (BelowOne) Parent = Add(nullptr, -1, TextsOf(0));
        for (int Index = Count - 1; Index >= 0; --Index) Add(BelowOne ? &Parent : nullptr, 0, TextsOf(Index));
    }
    void Load(const std::string& FileName) override {
        const TDetached Detached(*this);
        std::vector<GtkTreeIter> Path;
        ReadNodesFile(FileName, [&](int Level, const TTextViews& Texts) {
            Path.resize(static_cast<std::size_t>(Level));
            GtkTreeIter* const Parent = Path.empty() ? nullptr : &Path.back();
            const GtkTreeIter New =
                Add(Parent, -1, {std::string(Texts[0]), std::string(Texts[1]), std::string(Texts[2])});
            Path.push_back(New);
        });
    }
    void Clear() override {
        const TDetached Detached(*this);
        gtk_tree_sortable_set_sort_column_id(GTK_TREE_SORTABLE(FStore),
                                             GTK_TREE_SORTABLE_UNSORTED_SORT_COLUMN_ID, GTK_SORT_ASCENDING);
        gtk_tree_store_clear(FStore);
        FLast = {};
    }
    TNode GetChild(TNode Parent, int Index) override {
        GtkTreeIter Child{};
        GtkTreeIter Above = IterOf(Parent);
        if (!gtk_tree_model_iter_nth_child(FModel, &Child, Parent ? &Above : nullptr, Index)) return 0;
        return NodeOf(Child);
    }
    void Append(const TTexts& Texts) override {
        GtkTreeIter New{};
        gtk_tree_store_insert_after(FStore, &New, nullptr, FLast.user_data ? &FLast : LastTop());
        Store(New, Texts);
        FLast = New;
    }
    void InsertBefore(TNode Sibling, const TTexts& Texts) override {
        GtkTreeIter Place = IterOf(Sibling);
        GtkTreeIter New{};
        gtk_tree_store_insert_before(FStore, &New, nullptr, &Place);
        Store(New, Texts);
    }
    void Delete(TNode Node) override {
        GtkTreeIter Iter = IterOf(Node);
        gtk_tree_store_remove(FStore, &Iter);
    }
    void Sort() override {
        // The store's own comparison is the locale's.
        if (!FCollated)
            gtk_tree_sortable_set_sort_func(GTK_TREE_SORTABLE(FStore), 0, CompareBytes, nullptr, nullptr);
        gtk_tree_sortable_set_sort_column_id(GTK_TREE_SORTABLE(FStore), 0, GTK_SORT_ASCENDING);
    }
    std::string GetText(TNode Node) override {
        GtkTreeIter Iter = IterOf(Node);
        gchar* Text = nullptr;
        gtk_tree_model_get(FModel, &Iter, 0, &Text, -1);
        const std::string Result = Text ? Text : "";
        g_free(Text);
        return Result;
    }
    int GetCheckState(TNode Node) override {
        GtkTreeIter Iter = IterOf(Node);
        gboolean Checked = FALSE;
        gtk_tree_model_get(FModel, &Iter, CheckColumn, &Checked, -1);
        return Checked;
    }

    void ExpandAll() override { gtk_tree_view_expand_all(FView); }
    void CollapseAll() override { gtk_tree_view_collapse_all(FView); }
    void SetExpanded(TNode Node, bool Value) override {
        GtkTreeIter Iter = IterOf(Node);
        const TPath Path(FModel, Iter);
        if (Value) {
            gtk_tree_view_expand_row(FView, Path, FALSE);
        } else {
            gtk_tree_view_collapse_row(FView, Path);
        }
    }
    void ScrollTo(TNode Node) override {
        GtkTreeIter Iter = IterOf(Node);
        gtk_tree_view_scroll_to_cell(FView, TPath(FModel, Iter), nullptr, TRUE, 0, 0);
    }
    void ScrollToEnd() override {
        if (FLast.user_data || LastTop()) {
            gtk_tree_view_scroll_to_cell(FView, TPath(FModel, FLast), nullptr, FALSE, 0, 0);
        }
    }
    void ScrollRow() override { ScrollBy(RowHeight); }
    void ScrollPage() override { ScrollBy(gtk_adjustment_get_page_size(Bar())); }
    void SelectAll() override { gtk_tree_selection_select_all(gtk_tree_view_get_selection(FView)); }
    void ClearSelection() override { gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(FView)); }
    void SetCurrent(TNode Node) override {
        GtkTreeIter Iter = IterOf(Node);
        gtk_tree_view_set_cursor(FView, TPath(FModel, Iter), nullptr, FALSE);
        FCurrent = Node;
    }
    TNode GetNodeAt(TSpot Spot) override {
        GtkTreePath* Path = nullptr;
        if (!gtk_tree_view_get_path_at_pos(FView, Spot.X, Spot.Y, &Path, nullptr, nullptr, nullptr)) return 0;
        GtkTreeIter Iter{};
        gtk_tree_model_get_iter(FModel, &Iter, Path);
        gtk_tree_path_free(Path);
        return NodeOf(Iter);
    }
    long GetRowOf(TNode Node) override {
        GtkTreeIter Iter = IterOf(Node);
        GdkRectangle Rect{};
        gtk_tree_view_get_background_area(FView, TPath(FModel, Iter), nullptr, &Rect);
        return Rect.y;
    }
    TSpot GetTextSpot(TNode Node) override {
        const GdkRectangle Rect = CellOf(Node);
        return {Rect.x + 30, Rect.y + Rect.height / 2};
    }
    TSpot GetCheckSpot(TNode Node) override {
        const GdkRectangle Rect = CellOf(Node);
        return {Rect.x + 8, Rect.y + Rect.height / 2};
    }
    bool IsEditing() override {
        gboolean Editing = FALSE;
        g_object_get(FFirstText, "editing", &Editing, nullptr);
        return Editing;
    }

    void Press(TKey Key) override;
    void Click(TSpot Spot) override;
    void MoveMouse(TSpot Spot) override;

private:
    // The view without its model while the scope lasts, so that nothing is told row by row.
    class TDetached {
    public:
        explicit TDetached(TGtkTree& Tree) : FTree(Tree) { gtk_tree_view_set_model(FTree.FView, nullptr); }
        ~TDetached() { gtk_tree_view_set_model(FTree.FView, FTree.FModel); }
        TDetached(const TDetached&) = delete;
        TDetached& operator=(const TDetached&) = delete;

    private:
        TGtkTree& FTree;
    };

    static gint CompareBytes(GtkTreeModel* Model, GtkTreeIter* A, GtkTreeIter* B, gpointer) {
        gchar* First = nullptr;
        gchar* Second = nullptr;
        gtk_tree_model_get(Model, A, 0, &First, -1);
        gtk_tree_model_get(Model, B, 0, &Second, -1);
        const int Result = std::strcmp(First, Second);
        g_free(First);
        g_free(Second);
        return Result;
    }
    static gboolean Drawn(GtkWidget*, cairo_t*, gpointer Self) {
        ++static_cast<TGtkTree*>(Self)->FPaints;
        return FALSE;
    }
    static void Toggled(GtkCellRendererToggle*, gchar* PathText, gpointer Self) {
        auto& Tree = *static_cast<TGtkTree*>(Self);
        GtkTreeIter Iter{};
        gtk_tree_model_get_iter_from_string(Tree.FModel, &Iter, PathText);
        gtk_tree_store_set(Tree.FStore, &Iter, CheckColumn, !Tree.GetCheckState(NodeOf(Iter)), -1);
    }

    // Nodes are what the store keeps in its iterators beside a stamp.
    static TNode NodeOf(const GtkTreeIter& Iter) { return reinterpret_cast<TNode>(Iter.user_data); }
    GtkTreeIter IterOf(TNode Node) {
        GtkTreeIter Iter{};
        if (Node) gtk_tree_model_get_iter_first(FModel, &Iter);
        Iter.user_data = reinterpret_cast<gpointer>(Node);
        return Iter;
    }
    GtkTreeIter* LastTop() {
        const int Count = gtk_tree_model_iter_n_children(FModel, nullptr);
        if (Count == 0 || !gtk_tree_model_iter_nth_child(FModel, &FLast, nullptr, Count - 1)) return nullptr;
        return &FLast;
    }
    GtkTreeIter Add(GtkTreeIter* Parent, int Position, const TTexts& Texts) {
        GtkTreeIter New{};
        gtk_tree_store_insert_with_values(FStore, &New, Parent, Position, 0, Texts[0].c_str(), 1,
                                          Texts[1].c_str(), 2, Texts[2].c_str(), -1);
        return New;
    }
    void Store(GtkTreeIter& Iter, const TTexts& Texts) {
        gtk_tree_store_set(FStore, &Iter, 0, Texts[0].c_str(), 1, Texts[1].c_str(), 2, Texts[2].c_str(), -1);
    }
    GdkRectangle CellOf(TNode Node) {
        GtkTreeIter Iter = IterOf(Node);
        GdkRectangle Rect{};
        gtk_tree_view_get_cell_area(FView, TPath(FModel, Iter), gtk_tree_view_get_column(FView, 0), &Rect);
        return Rect;
    }
    GtkAdjustment* Bar() { return gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(FView)); }
    void ScrollBy(double Distance) {
        gtk_adjustment_set_value(Bar(), gtk_adjustment_get_value(Bar()) + Distance);
    }
    void AddColumn(int Col);
    void Send(GdkEvent* Event, GdkWindow* Window, bool FromKeyboard);
    void SendButton(GdkEventType Type, TSpot Spot);

    GtkTreeStore* FStore = nullptr;
    GtkTreeModel* FModel = nullptr;
    GtkWidget* FWindow = nullptr;
    GtkWidget* FWidget = nullptr;
    GtkTreeView* FView = nullptr;
    GtkCellRenderer* FFirstText = nullptr;
    GtkTreeIter FLast{};
    TNode FCurrent = 0;
    guint32 FTime = 1000;
    long FPaints = 0;
    bool FChecks = false;
    bool FEditing = false;
    bool FCollated = false;
};

void TGtkTree::AddColumn(int Col) {
    GtkTreeViewColumn* const Column = gtk_tree_view_column_new();
    if (Col == 0 && FChecks) {
        GtkCellRenderer* const Check = gtk_cell_renderer_toggle_new();
        g_object_set(Check, "ypad", 0, nullptr);
        g_signal_connect(Check, "toggled", G_CALLBACK(Toggled), this);
        gtk_tree_view_column_pack_start(Column, Check, FALSE);
        gtk_tree_view_column_add_attribute(Column, Check, "active", CheckColumn);
    }
    GtkCellRenderer* const Text = gtk_cell_renderer_text_new();
    g_object_set(Text, "ypad", 0, "editable", FEditing && Col == 0, nullptr);
    int Separator = 0;
    gtk_widget_style_get(FWidget, "vertical-separator", &Separator, nullptr);
    gtk_cell_renderer_set_fixed_size(Text, -1, RowHeight - Separator);
    gtk_tree_view_column_pack_start(Column, Text, TRUE);
    gtk_tree_view_column_add_attribute(Column, Text, "text", Col);
    gtk_tree_view_column_set_sizing(Column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(Column, ColumnWidths[Col]);
    gtk_tree_view_append_column(FView, Column);
    if (Col == 0) FFirstText = Text;
}

void TGtkTree::Open() {
    GType Types[] = {G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_BOOLEAN};
    FStore = gtk_tree_store_newv(Columns + 1, Types);
    FModel = GTK_TREE_MODEL(FStore);
    FWidget = gtk_tree_view_new_with_model(FModel);
    FView = GTK_TREE_VIEW(FWidget);
    gtk_tree_view_set_headers_visible(FView, FALSE);
    gtk_tree_view_set_enable_tree_lines(FView, TRUE);
    gtk_tree_view_set_enable_search(FView, FALSE); // its search opens a window of its own
    for (int Col = 0; Col < Columns; ++Col) AddColumn(Col);
    gtk_tree_view_set_fixed_height_mode(FView, TRUE);
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(FView), GTK_SELECTION_MULTIPLE);
    g_signal_connect_after(FWidget, "draw", G_CALLBACK(Drawn), this);

    GtkWidget* const Scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(Scrolled), FALSE);
    gtk_container_add(GTK_CONTAINER(Scrolled), FWidget);
    FWindow = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(FWindow), Width, Height);
    gtk_container_add(GTK_CONTAINER(FWindow), Scrolled);
    gtk_widget_show_all(FWindow);
    gtk_widget_grab_focus(FWidget);
    Show();
}

// The frame clock would lay out and paint sixty times a second; here both come at once, so that nobody waits for it.
void TGtkTree::Show() {
    constexpr int MostTurns = 20;
    for (int Turn = 0; Turn < MostTurns; ++Turn) {
        const long Before = FPaints;
        while (gtk_events_pending()) gtk_main_iteration();
        gtk_container_check_resize(GTK_CONTAINER(FWindow));
        G_GNUC_BEGIN_IGNORE_DEPRECATIONS
        gdk_window_process_updates(gtk_widget_get_window(FWindow), TRUE);
        G_GNUC_END_IGNORE_DEPRECATIONS
        if (Turn > 0 && FPaints == Before) return;
    }
}

void TGtkTree::Send(GdkEvent* Event, GdkWindow* Window, bool FromKeyboard) {
    GdkSeat* const Seat = gdk_display_get_default_seat(gdk_display_get_default());
    Event->any.window = GDK_WINDOW(g_object_ref(Window));
    Event->any.send_event = FALSE;
    gdk_event_set_device(Event, FromKeyboard ? gdk_seat_get_keyboard(Seat) : gdk_seat_get_pointer(Seat));
    gtk_main_do_event(Event);
    gdk_event_free(Event);
}

void TGtkTree::Press(TKey Key) {
    static constexpr guint Values[] = {GDK_KEY_Down, GDK_KEY_Page_Down, GDK_KEY_F2, GDK_KEY_Return};
    if (Key == TKey::Edit) {
        // The widget has no key for it; programs start it so.
        GtkTreeIter Iter = IterOf(FCurrent);
        gtk_tree_view_set_cursor(FView, TPath(FModel, Iter), gtk_tree_view_get_column(FView, 0), TRUE);
        return;
    }
    for (const GdkEventType Type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
        GdkEvent* const Event = gdk_event_new(Type);
        Event->key.time = FTime += 10;
        Event->key.keyval = Values[static_cast<int>(Key)];
        GdkKeymapKey* Codes = nullptr;
        gint Count = 0;
        GdkKeymap* const Keymap = gdk_keymap_get_for_display(gdk_display_get_default());
        if (gdk_keymap_get_entries_for_keyval(Keymap, Event->key.keyval, &Codes, &Count) && Count > 0) {
            Event->key.hardware_keycode = static_cast<guint16>(Codes[0].keycode);
        }
        g_free(Codes);
        Send(Event, gtk_widget_get_window(FWindow), true);
    }
}

void TGtkTree::SendButton(GdkEventType Type, TSpot Spot) {
    GdkEvent* const Event = gdk_event_new(Type);
    Event->button.time = FTime += 1000; // no double click
    Event->button.x = Spot.X;
    Event->button.y = Spot.Y;
    Event->button.button = 1;
    if (Type == GDK_BUTTON_RELEASE) Event->button.state = GDK_BUTTON1_MASK;
    Send(Event, gtk_tree_view_get_bin_window(FView), false);
}

void TGtkTree::Click(TSpot Spot) {
    SendButton(GDK_BUTTON_PRESS, Spot);
    SendButton(GDK_BUTTON_RELEASE, Spot);
}

void TGtkTree::MoveMouse(TSpot Spot) {
    GdkEvent* const Event = gdk_event_new(GDK_MOTION_NOTIFY);
    Event->motion.time = FTime += 10;
    Event->motion.x = Spot.X;
    Event->motion.y = Spot.Y;
    Send(Event, gtk_tree_view_get_bin_window(FView), false);
}

} // namespace

std::span<const TWorkload> OwnWorkloads() { return {}; }

std::vector<TContenderEntry> StartToolkit(int& ArgCount, char** Args) {
    if (ArgCount >= 2 && std::strcmp(Args[1], "--list") == 0) return {{"gtk", nullptr}}; // needs no display
    gtk_init(&ArgCount, &Args);
    g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
    GtkCssProvider* const Style = gtk_css_provider_new();
    const std::string Css =
        "* { font: " + std::to_string(TContender::FontPixels) + "px \"" + TContender::FontName + "\"; }";
    gtk_css_provider_load_from_data(Style, Css.c_str(), -1, nullptr);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(Style),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    return {{"gtk", [] { return std::make_unique<TGtkTree>(); }}};
}

} // namespace quill::bench
