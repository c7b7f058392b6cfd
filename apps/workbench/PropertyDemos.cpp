#include "PropertyDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/options/PropertyInPlaceComboBox.h>
#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemColorPopup.h>
#include <KORVAutlwin/options/PropertyItemCustomList.h>
#include <KORVAutlwin/options/PropertyItemFilePath.h>
#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemFolderPath.h>
#include <KORVAutlwin/options/PropertyItemListEnabledDisabled.h>
#include <KORVAutlwin/options/PropertyItemListTrueFalse.h>
#include <KORVAutlwin/options/PropertyItemListYesNo.h>
#include <KORVAutlwin/options/PropertyItemManager.h>
#include <KORVAutlwin/options/PropertyItemNegNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyListCtrl.h>

#include <QDialog>
#include <QDockWidget>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTimer>
#include <QVBoxLayout>

#include <functional>
#include <string>

namespace {

enum : unsigned int
{
    eModelName = 1,
    eComponents,
    eWavelengthShift,
    eScaling,
    eMethod,
    eAutoSave,
    eOutliers,
    eCrossValidated,
    eDataFolder,
    eReportFile,
    eScoreColour,
    eNoChoices
};

// The grid's values live in its items; the pane tells each change in its caption line.
class DemoManager : public PropertyItemManager
{
public:
    std::function<void(PropertyItem*, int)> changed;

    void OnDataChanged(PropertyItem* item, PropertyListCtrl*, int index) override
    {
        if (changed)
            changed(item, index);
    }
    void OnInitManager(unsigned long) override {}
    void OnManagerCommand(unsigned long) override {}
};

std::string ValueText(PropertyItem* item)
{
    if (auto* text = dynamic_cast<PropertyItemString*>(item)) {
        std::string value;
        text->GetData(value);
        return "\"" + value + "\"";
    }
    if (auto* number = dynamic_cast<PropertyItemNumber*>(item))
        return number->GetValueText();
    if (auto* real = dynamic_cast<PropertyItemFloat*>(item))
        return real->GetValueText();
    if (auto* list = dynamic_cast<PropertyItemList*>(item)) {
        int index = 0;
        list->GetData(index);
        return "entry " + std::to_string(index) + " \"" + list->GetItemData(static_cast<unsigned int>(index)) + "\"";
    }
    if (auto* folder = dynamic_cast<PropertyItemFolderPath*>(item)) {
        std::string value;
        folder->GetData(value);
        return value;
    }
    if (auto* file = dynamic_cast<PropertyItemFilePath*>(item)) {
        std::string value;
        file->GetData(value);
        return value;
    }
    if (auto* colour = dynamic_cast<PropertyItemColorPopup*>(item)) {
        COLORREF value = 0;
        colour->GetData(value);
        return PropertyItemColorPopup::FormatColor(value);
    }
    return std::string();
}

void Fill(DemoManager& manager)
{
    PropertyItemCategory* model = manager.AddPropertyCategory("Model", "What the calibration model is made of.", true);
    auto* name = new PropertyItemString("Model name", eModelName, "The name under which the model is saved and listed.");
    name->SetData(std::string("Wheat protein NIR"));
    model->AddPropertyItem(name);
    auto* components = new PropertyItemNumber("Number of latent variables in the final model", eComponents,
                                               "Digits only. 2147483647 is refused with a tip; 2147483646 is taken.");
    components->SetData(6);
    model->AddPropertyItem(components);
    auto* shift = new PropertyItemNegNumber("Wavelength shift (nm)", eWavelengthShift,
                                            "Negative numbers too; text that is no number goes back silently.");
    shift->SetData(-2);
    model->AddPropertyItem(shift);
    auto* scaling = new PropertyItemFloat("Scaling factor", eScaling, "A floating-point number, shown through %g.");
    scaling->SetData(0.125f);
    model->AddPropertyItem(scaling);
    auto* method = new PropertyItemCustomList("Regression method", eMethod, "A list whose entries the caller gives.");
    std::vector<std::string> methods = {"PLS1", "PLS2", "PCR", "MLR", "Ridge", "Lasso", "SVR", "ANN", "Random forest",
                                        "Gaussian process"};
    method->InitPropertyItemList(methods, 0);
    model->AddPropertyItem(method);

    PropertyItemCategory* behaviour = manager.AddPropertyCategory("Behaviour", "Switches: double-click one to flip it.", true);
    auto* autoSave = new PropertyItemListYesNo("Save after each fit", eAutoSave, "A yes/no row.");
    autoSave->SetData(true);
    behaviour->AddPropertyItem(autoSave);
    behaviour->AddPropertyItem(new PropertyItemListEnabledDisabled("Outlier detection", eOutliers, "An enabled/disabled row."));
    behaviour->AddPropertyItem(new PropertyItemListTrueFalse("Cross-validated", eCrossValidated, "A true/false row."));
    behaviour->AddPropertyItem(new PropertyItem("Rows of the plain kind are headings without a value", 0, ""));
    behaviour->AddPropertyItem(new PropertyItemList("A list without entries", eNoChoices, "Its drop-down is 100 pixels high."));

    PropertyItemCategory* files = manager.AddPropertyCategory("Files and colours", "Rows with a browse button.", true);
    auto* folder = new PropertyItemFolderPath("Data folder", eDataFolder, "The folder of the spectra; \"...\" browses.");
    folder->SetData(std::string("/home/analyst/projects/wheat-2024/spectra/batch-11"));
    files->AddPropertyItem(folder);
    auto* report = new PropertyItemFilePath("Report file", eReportFile, "The file the report is written to.");
    report->SetData(std::string("/home/analyst/projects/wheat-2024/reports/calibration-report.html"));
    files->AddPropertyItem(report);
    auto* colour = new PropertyItemColorPopup("Score plot colour", eScoreColour, "The colour of the score plot's points.");
    colour->SetData(RGB(0, 102, 204));
    files->AddPropertyItem(colour);

    manager.AddPropertyCategory("Closed category", "Its rows appear when it is expanded.", false)
        ->AddPropertyItem(new PropertyItemString("Hidden until expanded", 99, ""));
}

// The grid with its manager and a line that tells each change.
class PropertiesPane : public QWidget
{
public:
    explicit PropertiesPane(QWidget* parent = nullptr) : QWidget(parent)
    {
        auto* layout = new QVBoxLayout(this);
        grid = new PropertyListCtrl(this);
        auto* status = new QLabel(tr("Select a row and edit its value; the change appears here."), this);
        layout->addWidget(grid, 1);
        layout->addWidget(status);
        mManager.changed = [status](PropertyItem* item, int index) {
            status->setText(QString::fromStdString("Row " + std::to_string(index) + ", " + item->GetName() +
                                                   ": " + ValueText(item)));
        };
        Fill(mManager);
        grid->SetPropertyItemManager(&mManager);
        setWindowTitle(tr("Properties"));
    }
    ~PropertiesPane() override
    {
        delete grid; // before the manager it tells
    }

    PropertyListCtrl* grid;

private:
    DemoManager mManager;
};

void ShowDialog(QWidget* parent, bool dropDown)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(QObject::tr("Properties"));
    auto* layout = new QVBoxLayout(&dialog);
    auto* pane = new PropertiesPane(&dialog);
    layout->addWidget(pane);
    dialog.resize(460, 520);
    QTimer::singleShot(0, &dialog, [pane, dropDown] {
        PropertyListCtrl* grid = pane->grid;
        grid->SetCurSelByID(dropDown ? eMethod : eComponents);
        grid->ShowInPlaceControl(true);
        if (dropDown)
            if (auto* combo = qobject_cast<PropertyInPlaceComboBox*>(grid->GetInPlaceControl()))
                combo->OnBnClicked();
    });
    dialog.exec();
}

} // namespace

void AddPropertyDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, ControlsMenu(), QObject::tr("P&roperties"));
    frame.AddCommand(menu, eDemoPropertiesDock, QObject::tr("&Properties pane"));
    frame.AddCommand(menu, eDemoPropertiesPane, QObject::tr("Property &grid"));
    frame.AddCommand(menu, eDemoPropertiesDialog, QObject::tr("Property grid in a &dialog"));
    frame.AddCommand(menu, eDemoPropertiesDropDown, QObject::tr("Property grid with a &drop-down open"));
    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoPropertiesPane, [target] {
        QMdiSubWindow* child = target->AddMDIChild(new PropertiesPane);
        child->resize(460, 520);
        child->show();
    });
    frame.OnCommand(eDemoPropertiesDock, [target] {
        auto* dock = target->findChild<QDockWidget*>(QStringLiteral("PropertiesPane"));
        if (!dock) {
            dock = new QDockWidget(QObject::tr("Properties"), target);
            dock->setObjectName(QStringLiteral("PropertiesPane")); // its place is kept with the frame's
            dock->setWidget(new PropertiesPane(dock));
            dock->setMinimumWidth(320);
            target->addDockWidget(Qt::RightDockWidgetArea, dock);
            dock->show();
            return;
        }
        dock->setVisible(!dock->isVisible());
    });
    frame.OnCommand(eDemoPropertiesDialog, [target] { ShowDialog(target, false); });
    frame.OnCommand(eDemoPropertiesDropDown, [target] { ShowDialog(target, true); });
}
