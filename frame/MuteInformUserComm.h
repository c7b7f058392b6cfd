#pragma once
/// \class MuteInformUserComm
/// A user channel that asks through dialogs like StandardUserComm but shows no
/// informs: it collects them, grouped under headers, for the caller to show
/// later in one piece (GetInformUserMessages).
///
/// The collection is a list of strings. The current header goes into it with
/// the first inform after SetHeader (unless an equal string is already there);
/// each inform is the line "<prefix><text>\n" and is stored once per header: a
/// line already standing after the last occurrence of the header is not stored
/// again, while the same inform under a later header is. After Empty the header
/// is not added again until the next SetHeader.

#include <KORVAutlwin/frame/StandardUserComm.h>

#include <cstdint>
#include <string>
#include <vector>

class MuteInformUserComm : public StandardUserComm
{
public:
    /// Empty header and prefix, nothing collected.
    MuteInformUserComm();
    /// Copies header, collection, buffer, prefix and the header flag.
    MuteInformUserComm(const MuteInformUserComm& other) = default;
    MuteInformUserComm& operator=(const MuteInformUserComm& other) = default;
    ~MuteInformUserComm() override;

    /// Collects `text` instead of showing it; counts no usage, ignores `title`.
    /// A non-zero `silenceId` that the user silenced (see StandardUserComm) is
    /// dropped; opening the silence key may throw Exception as there. A null
    /// `text` counts as empty.
    void InformUser(const char* text, const char* title, unsigned long silenceId) override;

    /// All collected strings joined without separator: put line feeds into the
    /// header yourself. The text is valid until the next call.
    virtual const char* GetInformUserMessages() const;

    /// The header for the following informs; it enters the collection with the
    /// next inform. Null counts as empty.
    void SetHeader(const char* text);
    /// Put before the text of each following inform. Null counts as empty.
    void SetPrefix(const char* text);
    /// Appends `text` unless an equal string is in the collection already.
    void AddString(const char* text);
    /// Clears the collection; the header is not added again until SetHeader.
    void Empty();

protected:
    std::string header;
    std::vector<std::string> messages;
    mutable std::string text;  // the buffer behind GetInformUserMessages
    std::string prefix;
    std::int32_t headerAdded;
};
