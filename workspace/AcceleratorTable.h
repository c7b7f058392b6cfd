#pragma once
/// \class AcceleratorTable
/// A table of keyboard accelerators from the language module: a resource of
/// type "ACCEL" holding `<accelerators><key sequence="Ctrl+Ins" id="57634"/></accelerators>`,
/// key sequences in Qt's portable text, each with the command id it runs.

#include <utility>
#include <vector>

class CmdTarget;
class QEvent;

class AcceleratorTable
{
public:
    /// The table of resource `id` in the current language module, else the
    /// English one; empty when it is missing. Entries that are not valid are skipped.
    static AcceleratorTable Load(unsigned int id);

    bool IsEmpty() const { return mKeys.empty(); }
    /// The command of the key press `event`; 0 when it is no key press or the table lacks it.
    unsigned int Find(const QEvent* event) const;
    /// Runs the command of the key press `event` along the route of `target`,
    /// and of the main window when `target` leaves it. True when the key is in
    /// the table, whether or not someone handled the command.
    bool Translate(const QEvent* event, CmdTarget* target) const;

private:
    std::vector<std::pair<int, unsigned int>> mKeys;   // combined key and modifiers, command
};
