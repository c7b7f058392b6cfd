#include <KORVAutlwin/frame/MemoryUserComm.h>

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/Log.h>

#include <exception>

namespace {
constexpr int kNoAnswer = -1;
constexpr int kYes = 1;
constexpr int kYesToAll = 2;
constexpr int kNo = 3;
constexpr int kNoToAll = 4;
} // namespace

MemoryUserComm::MemoryUserComm() : lastAnswer(kNoAnswer), previous(UserComm::SetUserComm(this)) {}

MemoryUserComm::~MemoryUserComm()
{
    UserComm::SetUserComm(previous);
    if (messages.empty())
        return;
    MuteInformUserComm::GetInformUserMessages();
    UserComm* current = UserComm::GetUserComm();
    if (!current)
        return;
    try {
        current->InformUser(text.c_str(), korva::MessageTitle(nullptr).c_str(), 0);
    } catch (const Exception& exception) {
        Log::WriteMessage("MemoryUserComm", "~MemoryUserComm", exception.RecursiveWhy().c_str(), Log::eLogicFailure);
    } catch (const std::exception& exception) {
        Log::WriteMessage("MemoryUserComm", "~MemoryUserComm", exception.what(), Log::eLogicFailure);
    } catch (...) {
        Log::WriteMessage("MemoryUserComm", "~MemoryUserComm", "The collected messages could not be shown.",
                          Log::eLogicFailure);
    }
}

// After a "to all" answer nobody is asked again within the scope.
template <class Ask>
int MemoryUserComm::AskOnceForAll(Ask ask)
{
    if (lastAnswer != kYesToAll && lastAnswer != kNoToAll)
        lastAnswer = ask();
    if (lastAnswer == kYesToAll)
        return kYes;
    if (lastAnswer == kNoToAll)
        return kNo;
    return lastAnswer;
}

int MemoryUserComm::AskUserYesNo(const char* question, const char* title, int defaultAnswer)
{
    return AskOnceForAll([&] { return StandardUserComm::AskUserYesNo(question, title, defaultAnswer); });
}

int MemoryUserComm::AskUserYesYesToAllNoNoToAllCancel(const char* question, const char* details, const char* title,
                                                      int defaultAnswer)
{
    return AskOnceForAll(
        [&] { return StandardUserComm::AskUserYesYesToAllNoNoToAllCancel(question, details, title, defaultAnswer); });
}

int MemoryUserComm::AskUserYesYesToAllCancel(const char* question, const char* details, const char* title,
                                             int defaultAnswer)
{
    return AskOnceForAll(
        [&] { return StandardUserComm::AskUserYesYesToAllCancel(question, details, title, defaultAnswer); });
}

int MemoryUserComm::AskUserYesCancel(const char* question, const char* details, const char* title, int defaultAnswer)
{
    return AskOnceForAll([&] { return StandardUserComm::AskUserYesCancel(question, details, title, defaultAnswer); });
}

const char* MemoryUserComm::GetInformUserMessages() const
{
    return "";
}
