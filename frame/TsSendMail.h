#pragma once
/// \class TsSendMail
/// A mail handed to the desktop's mail program (xdg-email), which opens its
/// composer with recipients, subject, body and attachments filled in.
///
/// Failures are shown through the user channel (UserComm) when one is
/// installed, else written to the application log:
/// - no xdg-email on the search path: "MAPI32.DLL could not be found. This dll is
///   needed to send emails." is shown and an Exception is thrown;
/// - the mail program cannot be started: string 61840, Send returns false;
/// - it reports a failure (exit status not 0): string 61841, Send returns false.

#include <string>
#include <vector>

class TsSendMail
{
public:
    TsSendMail();
    ~TsSendMail();

    /// Adds a recipient, a copy recipient, a blind copy recipient (an address such as "a@b.org").
    void AddTo(const char* address);
    void AddCC(const char* address);
    void AddBCC(const char* address);
    /// Adds the file `path` as attachment.
    void AddAttachment(const char* path);
    void SetSubject(const char* subject);
    void SetBody(const char* body);

    /// Hands the mail to the mail program and waits until it has taken it; true
    /// when it reported success. The desktop's composer always lets the user look
    /// at the mail before it goes, so `showDialog` cannot suppress it.
    bool Send(bool showDialog);

private:
    /// The arguments passed to xdg-email, without the program itself.
    std::vector<std::string> GetArguments() const;

    std::vector<std::string> mTo;
    std::vector<std::string> mCC;
    std::vector<std::string> mBCC;
    std::vector<std::string> mAttachments;
    std::string mSubject;
    std::string mBody;
};
