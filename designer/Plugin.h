// What Qt Designer and the run-time form loader learn about the controls.
#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <QDesignerFormEditorInterface>
#include <QIcon>
#include <QPointer>

namespace quill::designer {

struct TWidgetInfo {
    const char* ClassName;
    const char* Header;
    const char* Group; // of the palette
    const char* ToolTip;
    const char* ObjectName; // of the first one on a form
    const char* Values;     // of properties, when it is put on a form, in the form's language
    const char* Properties; // their extra settings
    QSize Size;             // pixels, when it is put on a form with a click
    QIcon (*Icon)();
    QWidget* (*Create)(QWidget* Parent);
};

class TWidgetPlugin : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    TWidgetPlugin(const TWidgetInfo& Info, QObject* Parent) : QObject(Parent), FInfo(Info) {}

    QString name() const override { return FInfo.ClassName; }
    QString group() const override { return FInfo.Group; }
    QString toolTip() const override { return FInfo.ToolTip; }
    QString whatsThis() const override { return FInfo.ToolTip; }
    QString includeFile() const override { return FInfo.Header; }
    QIcon icon() const override { return FInfo.Icon(); }
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* Parent) override;
    bool isInitialized() const override { return !FCore.isNull(); }
    // Called by Designer only.
    void initialize(QDesignerFormEditorInterface* Core) override;
    QString domXml() const override;

private:
    const TWidgetInfo& FInfo;
    QPointer<QDesignerFormEditorInterface> FCore;
};

class TPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit TPlugin(QObject* Parent = nullptr);

    QList<QDesignerCustomWidgetInterface*> customWidgets() const override { return FWidgets; }

private:
    QList<QDesignerCustomWidgetInterface*> FWidgets;
};

} // namespace quill::designer
