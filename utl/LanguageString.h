#pragma once
/// \class LanguageString
/// Texts of the current language resource module, by numeric id.

namespace korva { class ResourceModule; }

class LanguageString
{
public:
    /// The text of string `id` in the current module, falling back to the
    /// English module, and to an empty text for an unknown id. The pointer stays
    /// valid for the life of the process.
    static const char* Get(unsigned int id);

    /// True when the current module or the English module has a text for `id`.
    static bool Has(unsigned int id);

    /// The module that Get reads; the English module unless switched.
    static const korva::ResourceModule* GetModule();
    /// Makes `module` (null: the English module) the current one and returns the
    /// previous one. This is the switch that SetResourceInstance uses for a scope.
    /// Modules are never unloaded, so texts already handed out stay valid.
    static const korva::ResourceModule* SetModule(const korva::ResourceModule* module);
};
