#include <KORVAutlwin/frame/CommandAction.h>

#include <KORVAutlwin/frame/WinApp.h>

#include <QAbstractButton>
#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QVariant>
#include <QWidget>

#include <vector>

namespace korva {

namespace {

unsigned int IdProperty(const QObject* object, const char* name)
{
    if (!object)
        return 0;
    bool ok = false;
    const unsigned int id = object->property(name).toUInt(&ok);
    return ok ? id : 0;
}

// Marks the actions that route their command themselves.
constexpr const char* kRoutesItselfProperty = "korvaRoutesItself";

} // namespace

unsigned int GetCommandId(const QAction* action)
{
    return IdProperty(action, kCommandIdProperty);
}

unsigned int GetControlId(const QWidget* widget)
{
    return IdProperty(widget, kControlIdProperty);
}

CmdTarget* GetMainCommandTarget()
{
    WinApp* app = WinApp::GetApp();
    if (!app)
        return nullptr;
    if (auto* frame = dynamic_cast<CmdTarget*>(app->GetMainWnd()))
        return frame;
    return app;
}

bool RouteCommand(unsigned int id)
{
    CmdTarget* target = GetMainCommandTarget();
    return target && target->ExecuteCommand(id);
}

QAction* CreateCommandAction(unsigned int id, const QString& text, QObject* parent)
{
    auto* action = new QAction(text, parent);
    action->setProperty(kCommandIdProperty, id);
    action->setProperty(kRoutesItselfProperty, true);
    QObject::connect(action, &QAction::triggered, action, [id] { RouteCommand(id); });
    return action;
}

bool RoutesItself(const QAction* action)
{
    return action && action->property(kRoutesItselfProperty).toBool();
}

ActionCmdUI::ActionCmdUI(QAction* action, unsigned int id, bool subMenuEntry)
    : CCmdUI(id), mAction(action), mSubMenuEntry(subMenuEntry)
{
}

void ActionCmdUI::Enable(bool on)
{
    CCmdUI::Enable(on);
    mAction->setEnabled(on);
}

void ActionCmdUI::SetCheck(int check)
{
    if (mSubMenuEntry)
        return;
    mAction->setCheckable(true);
    mAction->setChecked(check != 0);
}

void ActionCmdUI::SetRadio(bool on)
{
    if (mSubMenuEntry)
        return;
    // Menus draw a radio mark for members of an exclusive group; a group of its
    // own gives the mark without tying the action to any other.
    if (!mAction->actionGroup())
        (new QActionGroup(mAction))->addAction(mAction);
    mAction->setCheckable(true);
    mAction->setChecked(on);
}

void ActionCmdUI::SetText(const char* text)
{
    if (mSubMenuEntry)
        return;
    mAction->setText(QString::fromUtf8(text ? text : ""));
}

void UpdateCommandAction(QAction* action, CmdTarget* target, bool disableIfNoHandler)
{
    const unsigned int id = GetCommandId(action);
    if (!action || id == 0)
        return;
    ActionCmdUI cmdUI(action, id);
    cmdUI.DoUpdate(target, disableIfNoHandler);
}

ControlCmdUI::ControlCmdUI(QWidget* control, unsigned int id) : CCmdUI(id), mControl(control) {}

void ControlCmdUI::Enable(bool on)
{
    CCmdUI::Enable(on);
    // Qt moves the focus on when the focused control is disabled.
    if (mControl->isEnabled() != on)
        mControl->setEnabled(on);
}

void ControlCmdUI::SetCheck(int check)
{
    if (auto* checkBox = qobject_cast<QCheckBox*>(mControl)) {
        if (check == 2) {
            checkBox->setTristate(true);
            checkBox->setCheckState(Qt::PartiallyChecked);
        } else {
            checkBox->setCheckState(check ? Qt::Checked : Qt::Unchecked);
        }
        return;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(mControl))
        if (button->isCheckable())
            button->setChecked(check != 0);
}

void ControlCmdUI::SetRadio(bool on)
{
    SetCheck(on ? 1 : 0);
}

void ControlCmdUI::SetText(const char* text)
{
    const QString value = QString::fromUtf8(text ? text : "");
    if (auto* button = qobject_cast<QAbstractButton*>(mControl)) {
        if (button->text() != value)
            button->setText(value);
    } else if (auto* label = qobject_cast<QLabel*>(mControl)) {
        if (label->text() != value)
            label->setText(value);
    } else if (auto* edit = qobject_cast<QLineEdit*>(mControl)) {
        if (edit->text() != value)
            edit->setText(value);
    } else if (auto* group = qobject_cast<QGroupBox*>(mControl)) {
        if (group->title() != value)
            group->setTitle(value);
    }
}

namespace {

// The controls of a dialog in creation order, without those of windows of
// their own (a dialog opened from this one updates its own controls).
void CollectControls(QWidget* parent, std::vector<QPointer<QWidget>>& controls)
{
    for (QObject* child : parent->children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (!widget || widget->isWindow())
            continue;
        controls.push_back(widget);
        CollectControls(widget, controls);
    }
}

// Only plain push buttons are disabled for want of a handler, as the framework
// does for dialog buttons: check boxes and radio buttons work by themselves.
bool DisabledWithoutHandler(QWidget* control)
{
    const auto* button = qobject_cast<QAbstractButton*>(control);
    return button && !button->isCheckable();
}

} // namespace

void UpdateDialogControls(QWidget* dialog, CmdTarget* target, bool disableIfNoHandler)
{
    if (!dialog)
        return;
    auto* own = dynamic_cast<CmdTarget*>(dialog);
    // Guarded pointers: an update handler may delete a control.
    std::vector<QPointer<QWidget>> controls;
    CollectControls(dialog, controls);
    for (const QPointer<QWidget>& control : controls) {
        if (!control)
            continue;
        const unsigned int id = GetControlId(control);
        if (id == 0)
            continue;
        ControlCmdUI cmdUI(control, id);
        // The dialog's own handlers first, without any routing beyond it.
        if (own && own != target && own->CmdTarget::OnCmdMsg(id, CmdTarget::eUpdate, &cmdUI))
            continue;
        cmdUI.DoUpdate(target, disableIfNoHandler && DisabledWithoutHandler(control));
    }
}

} // namespace korva
