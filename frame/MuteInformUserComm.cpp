#include <KORVAutlwin/frame/MuteInformUserComm.h>

#include <algorithm>

MuteInformUserComm::MuteInformUserComm() : headerAdded(0) {}

MuteInformUserComm::~MuteInformUserComm() = default;

void MuteInformUserComm::InformUser(const char* informText, const char*, unsigned long silenceId)
{
    if (silenceId != 0) {
        const RegistrySection key = korva::OpenInformSilenceKey();
        if (korva::IsInformSilenced(key, silenceId))
            return;
    }
    if (headerAdded == 0) {
        AddString(header.c_str());
        headerAdded = 1;
    }
    const std::string line = prefix + (informText ? informText : "") + "\n";
    // Once per header: look from the header's last occurrence on, or from the
    // start when the header is not in the list (after Empty).
    const auto lastHeader = std::find(messages.rbegin(), messages.rend(), header);
    const auto from = lastHeader == messages.rend() ? messages.begin() : std::prev(lastHeader.base());
    if (std::find(from, messages.end(), line) == messages.end())
        messages.push_back(line);
}

const char* MuteInformUserComm::GetInformUserMessages() const
{
    text.clear();
    for (const std::string& message : messages)
        text += message;
    return text.c_str();
}

void MuteInformUserComm::SetHeader(const char* value)
{
    header = value ? value : "";
    headerAdded = 0;
}

void MuteInformUserComm::SetPrefix(const char* value)
{
    prefix = value ? value : "";
}

void MuteInformUserComm::AddString(const char* value)
{
    const std::string entry = value ? value : "";
    if (std::find(messages.begin(), messages.end(), entry) == messages.end())
        messages.push_back(entry);
}

void MuteInformUserComm::Empty()
{
    messages.clear();
}
