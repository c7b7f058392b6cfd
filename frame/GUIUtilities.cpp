#include <KORVAutlwin/frame/GUIUtilities.h>

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/CommandAction.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>

#include <QAction>
#include <QMenu>

namespace {

// System commands (close, move, size ...) are the window manager's and stay
// enabled without a handler.
constexpr unsigned int kFirstSystemCommand = 0xF000;

} // namespace

namespace GUIUtilities {

std::string ReadResource(unsigned int id)
{
    std::size_t size = 0;
    const char* data = LanguageString::GetModule()->FindResource(id, "HTML", &size);
    return data ? std::string(data, size) : std::string();
}

void EnableMenu(CmdTarget* target, QMenu* menu)
{
    if (!target || !menu)
        return;
    for (QAction* action : menu->actions()) {
        if (action->isSeparator())
            continue;
        if (QMenu* subMenu = action->menu()) {
            const QList<QAction*> items = subMenu->actions();
            const unsigned int firstId = items.isEmpty() ? 0 : korva::GetCommandId(items.front());
            if (firstId != 0) {
                korva::ActionCmdUI entry(action, firstId, true);
                entry.DoUpdate(target, false);
            }
            EnableMenu(target, subMenu);
            continue;
        }
        const unsigned int id = korva::GetCommandId(action);
        if (id == 0)
            continue;
        korva::ActionCmdUI item(action, id);
        item.DoUpdate(target, id < kFirstSystemCommand);
    }
}

} // namespace GUIUtilities
