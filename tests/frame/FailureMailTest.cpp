// TsSendMail hands mail to xdg-email. The desktop's mail program cannot run here, so a stand-in script named xdg-email,
// first on PATH, records the arguments it gets and ends with the status a test chooses.

#include "frame/helpers/ChildProcess.h"

#include <KORVAutlwin/frame/StandardUserComm.h>
#include <KORVAutlwin/frame/TsSendMail.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>

#include <sys/stat.h>

namespace {

struct RecordingUserComm : StandardUserComm
{
    void InformUser(const char* text, const char*, unsigned long) override { informed.emplace_back(text); }
    std::vector<std::string> informed;
};

class FailureMailTest : public ::testing::Test
{
protected:
    void SetUp() override { mPrevious = UserComm::SetUserComm(&mChannel); }
    void TearDown() override
    {
        UserComm::SetUserComm(mPrevious);
        setenv("PATH", mSavedPath.c_str(), 1);
    }
    // Puts a stand-in xdg-email first on PATH that records its arguments, each
    // ended by a null, and exits with `status`.
    void InstallMailProgram(int status, bool executable = true)
    {
        std::filesystem::create_directory(mFolder.File("bin"));
        std::filesystem::remove(mFolder.File("arguments"));
        WriteFile(mFolder.File("bin/xdg-email"), "#!/bin/sh\nprintf '%s\\0' \"$@\" > '" + mFolder.File("arguments") +
                                                     "'\nexit " + std::to_string(status) + "\n");
        chmod(mFolder.File("bin/xdg-email").c_str(), executable ? 0755 : 0644);
        setenv("PATH", (mFolder.File("bin") + ":" + mSavedPath).c_str(), 1);
    }

    TempDir mFolder;
    const std::string mSavedPath = std::getenv("PATH") ? std::getenv("PATH") : "";
    RecordingUserComm mChannel;
    UserComm* mPrevious = nullptr;
};

TEST_F(FailureMailTest, HandsEverythingToTheMailProgram)
{
    InstallMailProgram(0);
    TsSendMail mail;
    for (const char* address : {"first@example.org", "second@example.org"})
        mail.AddTo(address);
    mail.AddCC("copy@example.org");
    mail.AddBCC("hidden@example.org");
    mail.AddAttachment("/tmp/report one.pdf");
    mail.AddAttachment("/tmp/data.csv");
    mail.SetSubject("Crash report: Größe");
    mail.SetBody("Line one\nLine two; with \"quotes\" & more");
    EXPECT_TRUE(mail.Send(true));
    using namespace std::string_literals;
    EXPECT_EQ(ReadFile(mFolder.File("arguments")),
              "--utf8\0--cc\0copy@example.org\0--bcc\0hidden@example.org\0--subject\0Crash report: Größe\0--body\0"
              "Line one\nLine two; with \"quotes\" & more\0--attach\0/tmp/report one.pdf\0--attach\0/tmp/data.csv\0"
              "first@example.org\0second@example.org\0"s);
    EXPECT_TRUE(mChannel.informed.empty());

    // An empty subject or body is left out rather than passed empty.
    TsSendMail bare;
    bare.AddTo("only@example.org");
    EXPECT_TRUE(bare.Send(false));
    EXPECT_EQ(ReadFile(mFolder.File("arguments")), "--utf8\0only@example.org\0"s);
}

TEST_F(FailureMailTest, FailuresAreShown)
{
    TsSendMail mail;
    mail.AddTo("a@example.org");
    // The mail program reports failure; it is there but cannot be started.
    InstallMailProgram(4);
    EXPECT_FALSE(mail.Send(true));
    InstallMailProgram(0, false);
    EXPECT_FALSE(mail.Send(true));
    EXPECT_FALSE(std::filesystem::exists(mFolder.File("arguments")));
    EXPECT_EQ(mChannel.informed, (std::vector<std::string>{LanguageString::Get(61841), LanguageString::Get(61840)}));

    // No mail program on the path, or only in a folder without it: an exception.
    for (const std::string& path : {std::string(), mFolder.Path()}) {
        setenv("PATH", path.c_str(), 1);
        EXPECT_THROW(mail.Send(true), Exception) << path;
    }
    EXPECT_EQ(mChannel.informed.back(), "MAPI32.DLL could not be found. This dll is needed to send emails.");
    EXPECT_EQ(mChannel.informed.size(), 4u);
}

} // namespace
