#include <KORVAutlwin/frame/TsSendMail.h>

#include <KORVAutlwin/platform/ChildProcess.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutl/UserComm.h>

#include <cstdlib>

#include <sys/stat.h>

namespace {

const char* const kMailProgram = "xdg-email";
const char* const kNoMailProgram = "MAPI32.DLL could not be found. This dll is needed to send emails.";
constexpr unsigned int kStartFailed = 61840;
constexpr unsigned int kSendFailed = 61841;

void Show(const char* text)
{
    if (UserComm* channel = UserComm::GetUserComm())
        channel->InformUser(text, TsSystemInfo::GetApplicationName().c_str(), 0);
    else
        Log::WriteMessage("TsSendMail", "Send", text, Log::eSystemCallFailed);
}

// The mail program's file on the search path; empty when there is none. A file
// that is there but cannot be run counts as found: starting it fails then.
std::string FindMailProgram()
{
    const char* path = std::getenv("PATH");
    if (!path)
        return {};
    const std::string directories = path;
    std::size_t start = 0;
    while (start <= directories.size()) {
        std::size_t end = directories.find(':', start);
        if (end == std::string::npos)
            end = directories.size();
        // An empty entry would mean the current folder: not searched.
        if (end > start) {
            const std::string candidate = directories.substr(start, end - start) + "/" + kMailProgram;
            struct stat info;
            if (stat(candidate.c_str(), &info) == 0 && S_ISREG(info.st_mode))
                return candidate;
        }
        start = end + 1;
    }
    return {};
}

} // namespace

TsSendMail::TsSendMail() = default;
TsSendMail::~TsSendMail() = default;

void TsSendMail::AddTo(const char* address)
{
    if (address && *address)
        mTo.emplace_back(address);
}

void TsSendMail::AddCC(const char* address)
{
    if (address && *address)
        mCC.emplace_back(address);
}

void TsSendMail::AddBCC(const char* address)
{
    if (address && *address)
        mBCC.emplace_back(address);
}

void TsSendMail::AddAttachment(const char* path)
{
    if (path && *path)
        mAttachments.emplace_back(path);
}

void TsSendMail::SetSubject(const char* subject)
{
    mSubject = subject ? subject : "";
}

void TsSendMail::SetBody(const char* body)
{
    mBody = body ? body : "";
}

std::vector<std::string> TsSendMail::GetArguments() const
{
    std::vector<std::string> arguments{"--utf8"};
    for (const std::string& address : mCC) {
        arguments.emplace_back("--cc");
        arguments.push_back(address);
    }
    for (const std::string& address : mBCC) {
        arguments.emplace_back("--bcc");
        arguments.push_back(address);
    }
    if (!mSubject.empty()) {
        arguments.emplace_back("--subject");
        arguments.push_back(mSubject);
    }
    if (!mBody.empty()) {
        arguments.emplace_back("--body");
        arguments.push_back(mBody);
    }
    for (const std::string& file : mAttachments) {
        arguments.emplace_back("--attach");
        arguments.push_back(file);
    }
    arguments.insert(arguments.end(), mTo.begin(), mTo.end());
    return arguments;
}

bool TsSendMail::Send(bool)
{
    const std::string program = FindMailProgram();
    if (program.empty()) {
        Show(kNoMailProgram);
        throw Exception(LanguageString::Get(13326));
    }

    std::vector<std::string> arguments = GetArguments();
    arguments.insert(arguments.begin(), program);
    korva::ChildProcess child;
    if (child.Spawn(program, arguments) != 0) {
        Show(LanguageString::Get(kStartFailed));
        return false;
    }
    if (child.Wait() != 0) {
        Show(LanguageString::Get(kSendFailed));
        return false;
    }
    return true;
}
