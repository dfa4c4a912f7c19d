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

#include <map>
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

// A value as messages show it.
std::string Shown(const QMetaProperty& Property, const QVariant& Value) {
    if (Property.isEnumType()) return std::to_string(Value.toInt());
    if (Value.typeId() == QMetaType::QStringList) return Value.toStringList().join('|').toStdString();
    return Value.toString().toStdString();
}

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
    const QMetaObject* const Class = Tree->metaObject();
    const int First = QAbstractScrollArea::staticMetaObject.propertyCount();
    // Those that depend on others, or have a range of their own; the rest gets what differs from its default.
    const std::map<QString, QVariant> Values = {{"ButtonSize", 9},
                                                {"Indent", 30},
                                                {"ColCount", 3},
                                                {"StructureCol", 1},
                                                {"FixedCols", 1},
                                                {"FixedRows", 2},
                                                {"FitColumnToClientWidth", false},
                                                {"ColWidths", QStringList{"120", "80", "60"}},
                                                {"Captions", QStringList{"Name", "", "Größe"}},
                                                {"Nodes",
                                                 "SaveOptions:127\n0,1,2,1,0,0,\"first cell\",Fruit,\"a, "
                                                 "b\"\n\t-1,0,0,0,0,1,,Apple,x\n\t5,0,0,0,1,2,x,Hidden,y\n"}};
    for (int Index = First; Index < Class->propertyCount(); ++Index) {
        const QMetaProperty Property = Class->property(Index);
        QVariant Value = Property.read(Tree);
        if (const auto Found = Values.find(Property.name()); Found != Values.end()) {
            Value = Found->second;
        } else if (Property.isEnumType()) {
            const QMetaEnum Enum = Property.enumerator();
            Value = Enum.isFlag() ? Enum.keysToValue("goTabs|goEditing|goColMoving")
                                  : Enum.value(Enum.keyCount() - 1);
        } else if (Value.typeId() == QMetaType::Bool) {
            Value = !Value.toBool();
        } else if (Value.typeId() == QMetaType::Int) {
            Value = Value.toInt() + 3;
        } else if (Value.typeId() == QMetaType::QColor) {
            Value = QColor(10, 200, 99);
        } else {
            FAIL() << Property.name();
        }
        Editor.Form->cursor()->setWidgetProperty(Tree, Property.name(), Value);
        EXPECT_EQ(Shown(Property, Property.read(Tree)), Shown(Property, Value)) << Property.name();
    }
    EXPECT_TRUE(Nodes(Tree).contains("Apple")) << Nodes(Tree).toStdString();
    std::unique_ptr<QWidget> Again = Load(Editor.Form->contents().toUtf8());
    auto* const Copy = Again->findChild<QWidget*>("Tree");
    ASSERT_NE(Copy, nullptr);
    int Compared = 0;
    for (int Index = First; Index < Class->propertyCount(); ++Index) {
        const QMetaProperty Property = Class->property(Index);
        EXPECT_EQ(Shown(Property, Property.read(Tree)), Shown(Property, Property.read(Copy)))
            << Property.name();
        ++Compared;
    }
    EXPECT_GE(Compared, 50);
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
    // As the widget box has it.
    ASSERT_TRUE(Form->setContents(QString::fromUtf8(
        FormWith("<property name=\"Nodes\"><string notr=\"true\">TFlyNode</string></property>"))));
    auto* const Tree = Form->findChild<QWidget*>("Tree");
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
    // Compiled forms then set it through Qt, too, and do not translate it.
    const QString Contents = Form->contents().simplified();
    EXPECT_TRUE(Contents.contains("<property name=\"Nodes\" stdset=\"0\"> <string notr=\"true\">"))
        << Contents.toStdString();
    EXPECT_TRUE(Form->isDirty());
    ASSERT_EQ(Form->commandHistory()->count(), 1);
    Form->commandHistory()->undo();
    EXPECT_EQ(Nodes(Tree), Before);
    EXPECT_FALSE(Form->contents().contains("New Node"));
    Form->commandHistory()->redo();
    EXPECT_EQ(Nodes(Tree), After);
    const std::unique_ptr<QWidget> Loaded = Load(Form->contents().toUtf8());
    EXPECT_EQ(Nodes(Loaded->findChild<QWidget*>("Tree")), After);
}

} // namespace
} // namespace quill
