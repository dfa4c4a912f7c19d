#include "designer/Plugin.h"

#include "designer/Icons.h"
#include "designer/NodesMenu.h"
#include "flyedit/Registration.h"
#include "htmldraw/HTMLText.h"
#include "quilltree/QuillTree.h"

#include <QDesignerFormEditorInterface>
#include <QExtensionManager>

namespace quill::designer {

namespace {

// The label stands where the package registers it; the tree, which it does not, in a group of its own.
const TWidgetInfo Widgets[] = {
    {.ClassName = "quill::TNVHTMLText",
     .Header = "htmldraw/HTMLText.h",
     .Group = PalettePage.data(),
     .ToolTip = "A label that shows markup",
     .ObjectName = "htmlText",
     .Values = "",
     .Properties = R"(<stringpropertyspecification name="Lines" type="multiline"/>)",
     .Size = {105, 105},
     .Icon = LabelIcon,
     .Create = [](QWidget* Parent) -> QWidget* { return new TNVHTMLText(nullptr, Parent); }},
    {.ClassName = "quill::TQuillTree",
     .Header = "quilltree/QuillTree.h",
     .Group = "Quill",
     .ToolTip = "A tree whose nodes have columns",
     .ObjectName = "quillTree",
     // The node that a tree begins with. Only a value can say that it is not to be translated.
     .Values = R"(<property name="Nodes"><string notr="true">TFlyNode</string></property>)",
     .Properties = R"(<stringpropertyspecification name="Nodes" type="multiline" notr="true"/>)",
     .Size = {240, 180},
     .Icon = TreeIcon,
     .Create = [](QWidget* Parent) -> QWidget* { return new TQuillTree(Parent); }},
};

} // namespace

QWidget* TWidgetPlugin::createWidget(QWidget* Parent) {
    QWidget* const Widget = FInfo.Create(Parent);
    if (auto* const Component = dynamic_cast<TComponent*>(Widget); Component && FCore)
        Component->SetDesigning(true);
    return Widget;
}

void TWidgetPlugin::initialize(QDesignerFormEditorInterface* Core) {
    if (FCore == Core) return;
    FCore = Core;
    if (name() != QLatin1String("quill::TQuillTree")) return;
    QExtensionManager* const Manager = Core->extensionManager();
    Manager->registerExtensions(new TNodesMenuFactory(Manager), Q_TYPEID(QDesignerTaskMenuExtension));
}

QString TWidgetPlugin::domXml() const {
    return QStringLiteral(R"(<ui language="c++">
 <widget class="%1" name="%2">
  <property name="geometry"><rect><x>0</x><y>0</y><width>%3</width><height>%4</height></rect></property>
  %6
 </widget>
 <customwidgets>
  <customwidget>
   <class>%1</class>
   <extends>QAbstractScrollArea</extends>
   <propertyspecifications>%5</propertyspecifications>
  </customwidget>
 </customwidgets>
</ui>)")
        .arg(FInfo.ClassName, FInfo.ObjectName)
        .arg(FInfo.Size.width())
        .arg(FInfo.Size.height())
        .arg(FInfo.Properties, FInfo.Values);
}

TPlugin::TPlugin(QObject* Parent) : QObject(Parent) {
    RegisterPackage();
    for (const TWidgetInfo& Info : Widgets) FWidgets.append(new TWidgetPlugin(Info, this));
}

} // namespace quill::designer
