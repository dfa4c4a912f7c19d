#include "tests/support/QtTest.h"

#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QDesignerComponents>
#include <QDesignerFormEditorInterface>
#include <QDesignerFormWindowCursorInterface>
#include <QDesignerFormWindowInterface>
#include <QDesignerFormWindowManagerInterface>
#include <QDesignerIntegration>
#include <QDesignerPropertyEditorInterface>
#include <QDesignerTaskMenuExtension>
#include <QDialog>
#include <QExtensionManager>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QUiLoader>
#include <QUndoStack>
#include <QVBoxLayout>

#include <memory>

namespace quill {
namespace {

constexpr const char* TreeClass = "quill::TQuillTree";

// A form with a tree in it, in the language of forms.
QByteArray FormWith(const QByteArray& TreeProperties) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><ui version="4.0"><class>Form</class>
 <widget class="QWidget" name="Form"><layout class="QVBoxLayout">
  <item><widget class="quill::TQuillTree" name="Tree">)" +
           TreeProperties + R"(</widget></item></layout></widget>
 <customwidgets><customwidget><class>quill::TQuillTree</class><extends>QAbstractScrollArea</extends>
  <header>quilltree/QuillTree.h</header></customwidget></customwidgets></ui>)";
}

std::unique_ptr<QWidget> Load(QByteArray Form) {
    QUiLoader Loader;
    Loader.addPluginPath(QStringLiteral(PLUGIN_FOLDER "/designer"));
    QBuffer Buffer(&Form);
    return std::unique_ptr<QWidget>(Loader.load(&Buffer));
}

QString Nodes(const QWidget* Tree) { return Tree->property("Nodes").toString(); }

// Designer's form editor with the tree on a form.
struct TFormEditor {
    TFormEditor() {
        QDesignerComponents::initializeResources();
        Core.reset(QDesignerComponents::createFormEditor(nullptr));
        Core->setTopLevel(&Window);
        QDesignerComponents::initializePlugins(Core.get());
        Core->setPropertyEditor(QDesignerComponents::createPropertyEditor(Core.get(), &Window));
        new QDesignerIntegration(Core.get(), Core.get());
        Form = Core->formWindowManager()->createFormWindow(&Window);
        EXPECT_TRUE(Form->setContents(QString::fromUtf8(FormWith({}))));
        Tree = Form->findChild<QWidget*>("Tree");
    }

    const testing::TExpectQtWarning NoOpenGL{"QOpenGLWidget is not supported on this platform"};
    std::unique_ptr<QDesignerFormEditorInterface> Core;
    QWidget Window; // goes first, with what stands in it
    QDesignerFormWindowInterface* Form = nullptr;
    QWidget* Tree = nullptr;
};

class Designer : public ::testing::Test {
protected:
    static void SetUpTestSuite() { QCoreApplication::addLibraryPath(QStringLiteral(PLUGIN_FOLDER)); }
};

TEST_F(Designer, ShowsTheLabelOnItsPageAndTheTreeInAGroupOfItsOwn) {
    QPluginLoader Loader(QStringLiteral(PLUGIN_FILE));
    auto* const Plugin = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(Loader.instance());
    ASSERT_NE(Plugin, nullptr) << Loader.errorString().toStdString();
    std::string All;
    for (QDesignerCustomWidgetInterface* Widget : Plugin->customWidgets()) {
        All += (Widget->name() + " in " + Widget->group() + ", ").toStdString();
        const QImage Icon = Widget->icon().pixmap(22).toImage();
        EXPECT_NE(Icon.pixelColor(11, 11).alpha(), 0);
        std::unique_ptr<QWidget> Made(Widget->createWidget(nullptr));
        EXPECT_EQ(Widget->name(), Made->metaObject()->className());
    }
    EXPECT_EQ(All, "quill::TNVHTMLText in NORVIK, quill::TQuillTree in Quill, ");
}

// Everything that a form file can hold, changed, saved and loaded: the same property by property.
TEST_F(Designer, FormsBringTheTreeBack) {
    TFormEditor Editor;
    QWidget* const Tree = Editor.Tree;
    ASSERT_NE(Tree, nullptr);
    ASSERT_STREQ(Tree->metaObject()->className(), TreeClass);
    const std::pair<const char*, QVariant> Values[] = {{"ColCount", 3},
                                                       {"StructureCol", 1},
                                                       {"ColWidths", QStringList{"120", "80", "60"}},
                                                       {"Captions", QStringList{"Name", "", "Größe"}},
                                                       {"Nodes",
                                                        "SaveOptions:63\n0,1,2,1,0,\"first cell\",Fruit,\"a, "
                                                        "b\"\n\t-1,0,0,0,0,,Apple\n\t5,0,0,0,1,Hidden\n"}};
    for (const auto& [Name, Value] : Values) {
        Editor.Form->cursor()->setWidgetProperty(Tree, Name, Value);
    }
    EXPECT_TRUE(Nodes(Tree).contains("Apple"));
    std::unique_ptr<QWidget> Again = Load(Editor.Form->contents().toUtf8());
    auto* const Copy = Again->findChild<QWidget*>("Tree");
    ASSERT_NE(Copy, nullptr);
    int Compared = 0;
    const QMetaObject* const Class = Tree->metaObject();
    for (int Index = QAbstractScrollArea::staticMetaObject.propertyCount(); Index < Class->propertyCount();
         ++Index) {
        const QMetaProperty Property = Class->property(Index);
        if (!Property.isStored() || !Property.isDesignable()) continue;
        EXPECT_EQ(Property.read(Tree), Property.read(Copy)) << Property.name();
        ++Compared;
    }
    EXPECT_GE(Compared, 3);
}

TEST_F(Designer, NodesOfAFormMayBeTypedAndDamageChangesNothing) {
    const std::unique_ptr<QWidget> Form = Load(
        FormWith("<property name=\"Nodes\"><string notr=\"true\">Fruit\n\tApple\nNuts</string></property>"));
    auto* const Tree = Form->findChild<QWidget*>("Tree");
    const QString Before = Nodes(Tree);
    EXPECT_EQ(Before, "SaveOptions:63\n0,0,0,0,0,Fruit\n\t0,0,0,0,0,Apple\n0,0,0,0,0,Nuts\n");
    for (const char* Bad : {"SaveOptions:1\nx,y", "a\n\t\t\tb", "base64:UVRSRUUB", "base64:*"}) {
        const testing::TExpectQtWarning Warning("Nodes: ");
        Tree->setProperty("Nodes", Bad);
        EXPECT_EQ(Nodes(Tree), Before) << Bad;
    }
}

// Steps of the nodes editor become one step of the form.
TEST_F(Designer, TheTaskMenuEditsNodesAndUndoTakesThemBack) {
    TFormEditor Editor;
    QDesignerFormWindowInterface* const Form = Editor.Form;
    QWidget* const Tree = Editor.Tree;
    const QString Before = Nodes(Tree);
    auto* const Menu = qt_extension<QDesignerTaskMenuExtension*>(Editor.Core->extensionManager(), Tree);
    ASSERT_NE(Menu, nullptr);
    QTimer Look;
    QObject::connect(&Look, &QTimer::timeout, &Look, [&Look] {
        auto* const Dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!Dialog || !Dialog->isVisible()) return;
        Look.stop();
        EXPECT_EQ(Dialog->windowTitle(), "FlyNodes Editor");
        for (const char* Name : {"AddChild", "Add", "OK"})
            QTest::mouseClick(Dialog->findChild<QPushButton*>(Name), Qt::LeftButton);
    });
    Look.start(1);
    Menu->preferredEditAction()->trigger();
    const QString After = Nodes(Tree);
    EXPECT_EQ(After.count("New Node"), 2) << After.toStdString();
    EXPECT_TRUE(Form->contents().contains("New Node"));
    ASSERT_EQ(Form->commandHistory()->count(), 1);
    Form->commandHistory()->undo();
    EXPECT_EQ(Nodes(Tree), Before);
    Form->commandHistory()->redo();
    EXPECT_EQ(Nodes(Tree), After);
    const std::unique_ptr<QWidget> Loaded = Load(Form->contents().toUtf8());
    EXPECT_EQ(Nodes(Loaded->findChild<QWidget*>("Tree")), After);
}

} // namespace
} // namespace quill
