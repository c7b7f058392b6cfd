#pragma once
/// \class MenuResource
/// Menus of the language resource module: resources of type "MENU", written as
/// \code{.xml}
///   <menu>
///     <popup text="&amp;Edit">
///       <item id="57634" text="&amp;Copy&#9;Ctrl+C"/>
///       <separator/>
///       <popup text="&amp;More">
///         <item id="32800" text="Option" checked="true" enabled="false"/>
///       </popup>
///     </popup>
///   </menu>
/// \endcode
///
/// "&" marks the mnemonic and a tab (`&#9;`) starts the shortcut text shown at the
/// right. checked and enabled give an item its first look; update handlers decide
/// afterwards. Every item's QAction carries its command id in the property
/// "commandId". The actions run nothing by themselves: whoever shows the menu
/// routes the chosen command (TsMenu::TrackPopupMenu, AddToMenuBar).

#include <cstddef>

class CmdTarget;
class QMenu;
class QMenuBar;
class QWidget;

class MenuResource
{
public:
    /// True when the current module, or the English module behind it, has menu `id`.
    static bool Exists(unsigned int id);

    /// Reads menu `id` from the current module (the English module when the
    /// current one has no such menu) into a new QMenu owned by `parent` (by the
    /// caller when null); its popups are sub-menus owned by it. Throws Exception
    /// when the menu does not exist or is not a valid menu.
    static QMenu* Load(unsigned int id, QWidget* parent = nullptr);

    /// Reads the menu text `data` (`size` bytes) as Load does; `id` only names it
    /// in the text of the Exception thrown for an invalid menu.
    static QMenu* Parse(const char* data, std::size_t size, unsigned int id, QWidget* parent = nullptr);

    /// Adds the entries of menu `id` to the menu bar `bar`: a chosen command is
    /// run along the route of `target`, and each popup is brought up to date
    /// through `target` just before it opens. `target` must outlive `bar`.
    /// Throws as Load does.
    static void AddToMenuBar(unsigned int id, QMenuBar* bar, CmdTarget* target);
};
