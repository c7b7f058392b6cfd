#include <KORVAutlwin/frame/CmdTarget.h>

CmdTarget::~CmdTarget() = default;

void CmdTarget::OnCommand(unsigned int id, CommandHandler handler)
{
    // An empty handler removes the entry, so that the query for a handler agrees.
    if (handler)
        mCommands[id] = std::move(handler);
    else
        mCommands.erase(id);
}

void CmdTarget::OnUpdateCommand(unsigned int id, UpdateHandler handler)
{
    if (handler)
        mUpdates[id] = std::move(handler);
    else
        mUpdates.erase(id);
}

bool CmdTarget::OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI)
{
    switch (code) {
    case eCommand: {
        const auto it = mCommands.find(id);
        if (it == mCommands.end() || !it->second)
            return false;
        // A copy: the handler may replace itself.
        const CommandHandler handler = it->second;
        handler();
        return true;
    }
    case eQueryHandler:
        return mCommands.count(id) > 0;
    case eUpdate: {
        const auto it = mUpdates.find(id);
        if (it == mUpdates.end() || !cmdUI)
            return false;
        cmdUI->m_bContinueRouting = false;
        const UpdateHandler handler = it->second;
        handler(cmdUI);
        return !cmdUI->m_bContinueRouting;
    }
    }
    return false;
}

bool CmdTarget::ExecuteCommand(unsigned int id)
{
    return OnCmdMsg(id, eCommand, nullptr);
}

CCmdUI::~CCmdUI() = default;

void CCmdUI::Enable(bool)
{
    m_bEnableChanged = true;
}

void CCmdUI::SetCheck(int) {}

void CCmdUI::SetRadio(bool on)
{
    SetCheck(on ? 1 : 0);
}

void CCmdUI::SetText(const char*) {}

void CCmdUI::DoUpdate(CmdTarget* target, bool disableIfNoHandler)
{
    if (!target || m_nID == 0)
        return;
    m_bEnableChanged = false;
    if (target->OnCmdMsg(m_nID, CmdTarget::eUpdate, this))
        return;
    if (disableIfNoHandler && !m_bEnableChanged)
        Enable(target->OnCmdMsg(m_nID, CmdTarget::eQueryHandler, nullptr));
}

IdleUpdateCmdUI::~IdleUpdateCmdUI() = default;
