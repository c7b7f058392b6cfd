#pragma once
/// \class CmdTarget
/// Commands keep their numeric ids. A command travels along a route of command
/// targets (a frame sends it to its active child first, then handles it itself,
/// then hands it to the application) until one has a handler. Updates travel the
/// same route and let the handler enable, check or rename the thing that shows
/// the command: a menu item, a tool button, a dialog's button.

#include <functional>
#include <map>

class CCmdUI;

class CmdTarget
{
public:
    /// What OnCmdMsg is asked to do with a command.
    enum ECmdCode
    {
        eCommand,       // run the handler
        eUpdate,        // run the update handler with the CCmdUI
        eQueryHandler   // only tell whether a handler exists
    };

    using CommandHandler = std::function<void()>;
    using UpdateHandler = std::function<void(CCmdUI*)>;

    CmdTarget() = default;
    CmdTarget(const CmdTarget&) = delete;
    CmdTarget& operator=(const CmdTarget&) = delete;
    virtual ~CmdTarget();

    /// Makes `handler` the handler of command `id` on this target; an empty one removes it.
    void OnCommand(unsigned int id, CommandHandler handler);
    /// Makes `handler` the update handler of command `id` on this target; an empty one removes it.
    void OnUpdateCommand(unsigned int id, UpdateHandler handler);

    /// Routes command `id`; true when some target along the route took it.
    /// The base looks only at this target's own handlers: classes that route
    /// further override it and call the base for their own part.
    virtual bool OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI);

    /// Runs command `id` along the route; false when nobody handles it.
    bool ExecuteCommand(unsigned int id);

private:
    std::map<unsigned int, CommandHandler> mCommands;
    std::map<unsigned int, UpdateHandler> mUpdates;
};

/// The state of one thing that shows a command, updated along the command route.
class CCmdUI
{
public:
    explicit CCmdUI(unsigned int id = 0) : m_nID(id) {}
    virtual ~CCmdUI();

    unsigned int m_nID;
    bool m_bEnableChanged = false;
    bool m_bContinueRouting = false;

    virtual void Enable(bool on = true);
    virtual void SetCheck(int check = 1);
    virtual void SetRadio(bool on = true);
    virtual void SetText(const char* text);
    /// Called by an update handler that wants the next target to decide too.
    void ContinueRouting() { m_bContinueRouting = true; }

    /// Routes an update for m_nID through `target`. With `disableIfNoHandler`, a
    /// command for which no update handler ran and no target has a handler is disabled.
    void DoUpdate(CmdTarget* target, bool disableIfNoHandler);
};

/// A window that wants idle command updates of its own (tool bars, status bars,
/// dialog bars) implements this; frames and dialogs call it when they go idle.
class IdleUpdateCmdUI
{
public:
    virtual ~IdleUpdateCmdUI();
    virtual void OnIdleUpdateCmdUI(CmdTarget* target, bool disableIfNoHandler) = 0;
};
