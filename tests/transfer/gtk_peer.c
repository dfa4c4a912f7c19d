/* The other toolkit's side of the tests between processes: "source text|files X Y" or "target X Y". */
#include <gtk/gtk.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char* kind = "";

static void say_bytes(const char* name, const guchar* bytes, int length) {
    int i;
    printf(" %s=", name);
    for (i = 0; i < length; i++) printf(bytes[i] >= ' ' && bytes[i] < 127 ? "%c" : "\\x%02x", bytes[i]);
}

static void data_get(GtkWidget* w, GdkDragContext* c, GtkSelectionData* data, guint info, guint time, gpointer p) {
    gchar* uris[] = {"file:///tmp/a%20b", "file:///tmp/%C3%A9", NULL};
    if (strcmp(kind, "files") == 0)
        gtk_selection_data_set_uris(data, uris);
    else
        gtk_selection_data_set_text(data, "from gtk \xC3\xA9", -1);
}

static void drag_end(GtkWidget* w, GdkDragContext* c, gpointer p) {
    printf("done action %d\n", gdk_drag_context_get_selected_action(c));
    fflush(stdout);
}

static void received(GtkWidget* w, GdkDragContext* c, gint x, gint y, GtkSelectionData* data, guint info, guint time,
                     gpointer p) {
    gchar* type = gdk_atom_name(gtk_selection_data_get_target(data));
    printf("drop %d", gdk_drag_context_get_selected_action(c));
    say_bytes(type, gtk_selection_data_get_data(data), gtk_selection_data_get_length(data));
    printf("\n");
    fflush(stdout);
    g_free(type);
}

static gboolean announce(gpointer window) {
    gint x, y;
    gdk_window_get_origin(gtk_widget_get_window(window), &x, &y);
    printf("ready %d %d\n", x + 100, y + 75);
    fflush(stdout);
    return FALSE;
}

int main(int argc, char** argv) {
    GtkWidget *window, *box;
    int at;
    gtk_init(&argc, &argv);
    if (argc < 4) return 1;
    at = strcmp(argv[1], "source") == 0 ? 3 : 2;
    window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    box = gtk_event_box_new();
    gtk_container_add(GTK_CONTAINER(window), box);
    gtk_window_set_default_size(GTK_WINDOW(window), 200, 150);
    gtk_window_move(GTK_WINDOW(window), atoi(argv[at]), atoi(argv[at + 1]));
    if (at == 3) {
        kind = argv[2];
        gtk_drag_source_set(box, GDK_BUTTON1_MASK, NULL, 0, GDK_ACTION_COPY | GDK_ACTION_MOVE);
        if (strcmp(kind, "files") == 0)
            gtk_drag_source_add_uri_targets(box);
        else
            gtk_drag_source_add_text_targets(box);
        g_signal_connect(box, "drag-data-get", G_CALLBACK(data_get), NULL);
        g_signal_connect(box, "drag-end", G_CALLBACK(drag_end), NULL);
    } else {
        const GtkTargetEntry targets[] = {{"text/uri-list", 0, 0}, {"image/png", 0, 1}, {"UTF8_STRING", 0, 2}};
        gtk_drag_dest_set(box, GTK_DEST_DEFAULT_ALL, targets, 3, GDK_ACTION_COPY | GDK_ACTION_MOVE);
        g_signal_connect(box, "drag-data-received", G_CALLBACK(received), NULL);
    }
    gtk_widget_show_all(window);
    g_timeout_add(400, announce, window);
    gtk_main();
    return 0;
}
