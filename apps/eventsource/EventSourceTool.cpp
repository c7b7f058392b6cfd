// eventsource: the operator's view of the event log. It finds which log holds a
// source, registers and removes sources as an installer does, and writes an
// event through EventLog exactly as a service would, to check what reaches the
// journal.

#include <KORVAutlwin/operations/EventSource.h>

#include <KORVAutl/Exception.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

const char* const kHelp = R"(Usage:
  eventsource find SOURCE        show the log that holds SOURCE (any case)
  eventsource create SOURCE [LOG] [OPTIONS]
                                 register SOURCE in LOG (default: Application)
  eventsource delete SOURCE      remove SOURCE from whichever log holds it
  eventsource write SOURCE ID [OPTIONS] [STRING...]
                                 write event ID under SOURCE with the
                                 insertion strings STRING...
  eventsource --help             show this text

Options of create:
  --message-file PATH, --category-file PATH, --parameter-file PATH
  --categories N                 the number of categories
  --types MASK                   the supported types (1 error, 2 warning,
                                 4 information; default 7)
Options of write:
  --type error|warning|information   (default: information)
  --category N                   (default: 0)
  --data HEX                     raw data, two hex digits a byte

Sources live in the registry store below HKEY_LOCAL_MACHINE
"System\CurrentControlSet\Services\EventLog\<log>\<source>"; changing them
needs the right to write the machine's store. Events go to journald: see them
with `journalctl -t SOURCE -o verbose`. Exit status: 0 done, 1 failed, 2 bad use.
)";

int Usage(const char* problem)
{
    std::fprintf(stderr, "eventsource: %s\n\n%s", problem, kHelp);
    return 2;
}

bool ToNumber(const char* text, unsigned long& value)
{
    char* end = nullptr;
    value = std::strtoul(text, &end, 0);
    return *text && *end == '\0';
}

bool ToBytes(const std::string& hex, std::vector<unsigned char>& bytes)
{
    if (hex.size() % 2 != 0)
        return false;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        char* end = nullptr;
        const std::string pair = hex.substr(i, 2);
        bytes.push_back(static_cast<unsigned char>(std::strtoul(pair.c_str(), &end, 16)));
        if (*end != '\0')
            return false;
    }
    return true;
}

int Create(const char* source, std::vector<std::string> arguments)
{
    std::string log = EventLog::APPLICATION_LOG;
    if (!arguments.empty() && arguments.front().rfind("--", 0) != 0) {
        log = arguments.front();
        arguments.erase(arguments.begin());
    }
    // Every option is checked before the source is made, so that bad use leaves nothing behind.
    static const char* const kOptions[] = {"--message-file", "--category-file", "--parameter-file", "--categories",
                                           "--types"};
    std::vector<std::pair<int, std::string>> options;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        int which = 0;
        while (which < 5 && arguments[i] != kOptions[which])
            ++which;
        unsigned long number = 0;
        if (which == 5 || i + 1 >= arguments.size() || (which >= 3 && !ToNumber(arguments[i + 1].c_str(), number)))
            return Usage(("not an option of create, or a bad or missing value: " + arguments[i]).c_str());
        options.emplace_back(which, arguments[i + 1]);
    }
    EventSource created = EventLog::CreateEventSource(source, log.c_str());
    bool written = true;
    for (const auto& [which, value] : options) {
        unsigned long number = 0;
        ToNumber(value.c_str(), number);
        switch (which) {
        case 0: written = created.SetMessageFile(value.c_str()) && written; break;
        case 1: written = created.SetCategoryFile(value.c_str()) && written; break;
        case 2: written = created.SetParameterFile(value.c_str()) && written; break;
        case 3: written = created.SetNumCategories(number) && written; break;
        default: written = created.SetSupportedEventTypes(static_cast<EventLog::EventType>(number)) && written;
        }
    }
    std::printf("%s registered in %s\n", created.GetSource(), created.GetLog());
    if (!written)
        std::fprintf(stderr, "eventsource: some values of %s could not be written\n", source);
    return written ? 0 : 1;
}

int Write(const char* source, const char* idText, const std::vector<std::string>& arguments)
{
    unsigned long id = 0;
    if (!ToNumber(idText, id))
        return Usage("the event id must be a number");
    EventLog::EventType type = EventLog::eInformation;
    unsigned long category = 0;
    std::vector<unsigned char> data;
    std::vector<std::string> strings;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--type" && hasValue) {
            const std::string name = arguments[++i];
            if (name == "error")
                type = EventLog::eError;
            else if (name == "warning")
                type = EventLog::eWarning;
            else if (name != "information")
                return Usage(("not an event type: " + name).c_str());
        } else if (argument == "--category" && hasValue) {
            if (!ToNumber(arguments[++i].c_str(), category) || category > 0xFFFF)
                return Usage("the category must be a number from 0 to 65535");
        } else if (argument == "--data" && hasValue) {
            if (!ToBytes(arguments[++i], data))
                return Usage("the data must be pairs of hex digits");
        } else {
            strings.push_back(argument);
        }
    }
    EventLog(source).WriteEntry(strings, id, type, static_cast<unsigned short>(category),
                                static_cast<unsigned long>(data.size()), data.empty() ? nullptr : data.data());
    // The event log never reports a failed write: say where to look instead.
    std::printf("event %lu written under %s; see: journalctl -t %s -o verbose\n", id, source, source);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return Usage("a command is missing");
    const std::string command = argv[1];
    if (command == "--help") {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (argc < 3)
        return Usage("the source is missing");
    const char* source = argv[2];
    const std::vector<std::string> rest(argv + 3, argv + argc);
    try {
        if (command == "find" && rest.empty()) {
            const std::string log = EventLog::LogNameFromSourceName(source);
            if (log.empty()) {
                std::fprintf(stderr, "eventsource: no log holds %s\n", source);
                return 1;
            }
            std::printf("%s\n", log.c_str());
            return 0;
        }
        if (command == "create")
            return Create(source, rest);
        if (command == "delete" && rest.empty()) {
            if (EventLog::DeleteEventSource(source))
                return 0;
            std::fprintf(stderr, "eventsource: %s could not be removed: no log holds it, or the store refused\n",
                         source);
            return 1;
        }
        if (command == "write" && !rest.empty())
            return Write(source, rest.front().c_str(), {rest.begin() + 1, rest.end()});
    } catch (const Exception& error) {
        std::fprintf(stderr, "eventsource: %s\n", error.Why());
        return 1;
    }
    return Usage(("not a command: " + command).c_str());
}
