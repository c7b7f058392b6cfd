#pragma once
/// \class MemoryUserComm
/// A scope of the user channel: made on the stack, it installs itself as the
/// current channel and remembers "to all" answers; at its end it puts the
/// channel that stood before back and hands everything it collected to that one
/// as a single inform.
///
///   {
///       MemoryUserComm scope;                 // now the current channel
///       for (const auto& file : files)
///           ImportFile(file);                 // asks and informs through GetUserComm()
///   }                                         // one inform with all collected lines
///
/// Inside the scope the four questions AskUserYesNo (without details),
/// AskUserYesYesToAllNoNoToAllCancel, AskUserYesYesToAllCancel and
/// AskUserYesCancel ask the user through the dialogs of StandardUserComm until
/// one of them is answered "yes to all" (2) or "no to all" (4). From then on
/// none of them asks again within the scope: they answer 1 or 3 by themselves,
/// and GetLastAnsver keeps giving the "to all" code. AskUserYesNo with details
/// always asks and leaves the remembered answer alone. Informs are collected as
/// MuteInformUserComm collects them; questions, fatal errors and hour glass
/// work as in StandardUserComm.
///
/// Scopes nest; they must end in reverse order of their start. A copy takes
/// every member, the channel that stood before included, but does not install
/// itself; its destruction, too, reinstalls that channel and hands on what the
/// copy collected.

#include <KORVAutlwin/frame/MuteInformUserComm.h>

#include <cstdint>

class MemoryUserComm : public MuteInformUserComm
{
public:
    /// Installs the object as the current channel; no answer remembered (-1).
    MemoryUserComm();
    /// Copies every member; does not install the copy.
    MemoryUserComm(const MemoryUserComm& other) = default;
    MemoryUserComm& operator=(const MemoryUserComm& other) = default;
    /// Reinstalls the channel that stood before, then, when something was
    /// collected, informs it of all of it at once (title: the application's
    /// name, no silence id). A failure of that inform is logged: nothing leaves
    /// the destructor.
    ~MemoryUserComm() override;

    using MuteInformUserComm::AskUserYesNo;
    int AskUserYesNo(const char* question, const char* title, int defaultAnswer) override;
    int AskUserYesYesToAllNoNoToAllCancel(const char* question, const char* details, const char* title,
                                          int defaultAnswer) override;
    int AskUserYesYesToAllCancel(const char* question, const char* details, const char* title,
                                 int defaultAnswer) override;
    int AskUserYesCancel(const char* question, const char* details, const char* title, int defaultAnswer) override;

    /// The last answer that one of the four remembering questions got from the
    /// user (a "to all" answer stays), -1 before the first.
    int GetLastAnsver() const { return lastAnswer; }

private:
    /// The empty string: what was collected reaches the user only at the scope's end.
    const char* GetInformUserMessages() const override;

    template <class Ask>
    int AskOnceForAll(Ask ask);

    std::int32_t lastAnswer;
    UserComm* previous;  // not owned
};
