#pragma once
/// \class FavouriteApplication
/// What favourites ask of the running application: command states, running
/// commands, opening documents, messages, and the window work around opening
/// several favourites at once. The window layer of favourites installs the
/// answers when it loads; without them a command is never enabled, opening
/// does nothing and no message is shown, so the window-free rules run alone.

#include <functional>
#include <string>
#include <vector>

class ConfigurationSection;
class QWidget;

class FavouriteApplication
{
public:
    /// Message box types that favourites use (the framework's values).
    enum EMessageType : unsigned int
    {
        eIconError = 0x10,
        eIconExclamation = 0x30,
    };

    /// Whether the command is enabled by the application's command routing;
    /// false when no application or main window runs.
    std::function<bool(unsigned int commandId)> isCommandEnabled;
    /// Sends the command (ids above 0) to the main window and returns the
    /// child frame that became active through it, else null.
    std::function<QWidget*(int commandId)> runCommand;
    /// Lets the application open the document.
    std::function<void(const std::string& path)> openDocumentFile;
    /// Shows a message box of `type` (EMessageType, 0 for a plain one).
    std::function<void(const std::string& text, unsigned int type)> messageBox;
    /// Writes the application's own keys (name and version) into a section.
    std::function<void(ConfigurationSection* section)> writeAppInfo;
    /// The MDI child windows that are there now.
    std::function<std::vector<QWidget*>()> getMDIChildWnds;
    /// Stops (true) and resumes (false) drawing of the main window.
    std::function<void(bool lock)> lockWindowUpdate;
    /// After several frames were opened: restores the minimised ones, tiles
    /// only them when `tile` (the windows `noted` before stay as they are),
    /// and brings each to the top in order.
    std::function<void(const std::vector<QWidget*>& noted, const std::vector<QWidget*>& opened, bool tile)>
        arrangeOpenedFrames;
    /// Shows failures: a summary line and the details (an error box).
    std::function<void(const std::string& summary, const std::string& details)> showDetails;

    /// The answers in force.
    static FavouriteApplication& Get();
};
