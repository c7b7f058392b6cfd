#pragma once
/// \class MuteDetailsDialog
/// The switch that keeps the DetailsDialog functions quiet: while it is on they
/// show nothing and hand their texts to Collect, so that work that runs without
/// a user (batch runs, tests) is not stopped by a dialog and loses no message.
/// One per process, for the whole process; it starts unmuted.

#include <string>
#include <vector>

class MuteDetailsDialog
{
public:
    /// One message that a DetailsDialog function would have shown.
    struct Message
    {
        std::string text;
        std::string details;
        std::string title;
        unsigned int nType = 0;
    };

    /// The process's one instance.
    static MuteDetailsDialog* Instance();

    void Mute(bool mute) { muted = mute; }
    bool IsMuted() const { return muted; }

    /// Keeps a message in place of a dialog (null texts count as empty).
    void Collect(const char* text, const char* details, const char* title, unsigned int nType);
    /// What was collected, oldest first.
    const std::vector<Message>& GetMessages() const { return messages; }
    /// Forgets what was collected; the switch stays as it is.
    void Clear() { messages.clear(); }

private:
    MuteDetailsDialog() = default;
    MuteDetailsDialog(const MuteDetailsDialog&) = delete;
    MuteDetailsDialog& operator=(const MuteDetailsDialog&) = delete;

    bool muted = false;
    std::vector<Message> messages;
};
