#pragma once
/// \class SetResourceInstance
/// Switches the current language resource module for a scope: dialogs, menus,
/// strings and pages read inside the scope come from the given module.

namespace korva { class ResourceModule; }

class SetResourceInstance
{
public:
    /// Makes `module` current (null: the English module) and remembers the previous one.
    explicit SetResourceInstance(const korva::ResourceModule* module);
    /// Copies only the remembered module: the copy, too, puts it back when it ends.
    SetResourceInstance(const SetResourceInstance& other);
    SetResourceInstance& operator=(const SetResourceInstance& other);
    /// Puts the remembered module back.
    virtual ~SetResourceInstance();

private:
    const korva::ResourceModule* mSavedModule;
};
