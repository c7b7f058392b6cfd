// TsSendMail hands mail to xdg-email. The desktop's mail program cannot run
// here, so a stand-in script named xdg-email, first on PATH, records the
// arguments it gets and ends with the status a test chooses.

#include "frame/helpers/ChildProcess.h"

#include <KORVAutlwin/frame/TsSendMail.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/UserComm.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

using korva::test::ReadWholeFile;
using korva::test::TempFolder;

const char* const kNoMailProgram = "MAPI32.DLL could not be found. This dll is needed to send emails.";

// A user channel that records what it is told.
class RecordingUserComm : public UserComm
{
public:
    int AskUserYesNo(const char*, const char*, const char*, int) override { return eNo; }
    int AskUserYesNo(const char*, const char*, int) override { return eNo; }
    int AskUserYesYesToAllNoNoToAllCancel(const char*, const char*, const char*, int) override { return eCancel; }
    int AskUserYesYesToAllCancel(const char*, const char*, const char*, int) override { return eCancel; }
    int AskUserYesCancel(const char*, const char*, const char*, int) override { return eCancel; }
    void FatalError(const char*, const char*) override {}
    void InformUser(const char* text, const char*, unsigned long) override { informed.emplace_back(text); }
    void HourGlassOn() override {}
    void HourGlassOff() override {}

    std::vector<std::string> informed;
};

class FailureMailTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const char* path = std::getenv("PATH");
        mSavedPath = path ? path : "";
        std::filesystem::create_directory(mFolder.File("bin"));
        mRecord = mFolder.File("arguments");
        mPrevious = UserComm::SetUserComm(&mChannel);
    }
    void TearDown() override
    {
        UserComm::SetUserComm(mPrevious);
        setenv("PATH", mSavedPath.c_str(), 1);
    }

    // Puts a stand-in xdg-email first on PATH that records its arguments and exits with `status`.
    void InstallMailProgram(int status, bool executable = true)
    {
        const std::string script = mFolder.File("bin/xdg-email");
        std::filesystem::remove(mRecord);
        std::ofstream(script) << "#!/bin/sh\nprintf '%s\\0' \"$@\" > '" << mRecord << "'\nexit " << status << "\n";
        chmod(script.c_str(), executable ? 0755 : 0644);
        setenv("PATH", (mFolder.File("bin") + ":" + mSavedPath).c_str(), 1);
    }

    std::vector<std::string> RecordedArguments() const
    {
        std::vector<std::string> arguments;
        const std::string content = ReadWholeFile(mRecord);
        std::size_t start = 0;
        for (std::size_t end; (end = content.find('\0', start)) != std::string::npos; start = end + 1)
            arguments.push_back(content.substr(start, end - start));
        return arguments;
    }

    TempFolder mFolder;
    std::string mRecord;
    std::string mSavedPath;
    RecordingUserComm mChannel;
    UserComm* mPrevious = nullptr;
};

TEST_F(FailureMailTest, HandsEverythingToTheMailProgram)
{
    InstallMailProgram(0);
    TsSendMail mail;
    mail.AddTo("first@example.org");
    mail.AddTo("second@example.org");
    mail.AddCC("copy@example.org");
    mail.AddBCC("hidden@example.org");
    mail.AddAttachment("/tmp/report one.pdf");
    mail.AddAttachment("/tmp/data.csv");
    mail.SetSubject("Crash report: Größe");
    mail.SetBody("Line one\nLine two; with \"quotes\" & more");
    EXPECT_TRUE(mail.Send(true));
    EXPECT_EQ(RecordedArguments(),
              (std::vector<std::string>{"--utf8", "--cc", "copy@example.org", "--bcc", "hidden@example.org",
                                        "--subject", "Crash report: Größe", "--body",
                                        "Line one\nLine two; with \"quotes\" & more", "--attach",
                                        "/tmp/report one.pdf", "--attach", "/tmp/data.csv", "first@example.org",
                                        "second@example.org"}));
    EXPECT_TRUE(mChannel.informed.empty());

    // An empty subject or body is left out rather than passed empty.
    TsSendMail bare;
    bare.AddTo("only@example.org");
    EXPECT_TRUE(bare.Send(false));
    EXPECT_EQ(RecordedArguments(), (std::vector<std::string>{"--utf8", "only@example.org"}));
}

TEST_F(FailureMailTest, FailuresAreShown)
{
    TsSendMail mail;
    mail.AddTo("a@example.org");

    // The mail program reports failure.
    InstallMailProgram(4);
    EXPECT_FALSE(mail.Send(true));
    ASSERT_EQ(mChannel.informed.size(), 1u);
    EXPECT_EQ(mChannel.informed[0], LanguageString::Get(61841));

    // The mail program is there but cannot be started.
    InstallMailProgram(0, false);
    EXPECT_FALSE(mail.Send(true));
    ASSERT_EQ(mChannel.informed.size(), 2u);
    EXPECT_EQ(mChannel.informed[1], LanguageString::Get(61840));
    EXPECT_FALSE(std::filesystem::exists(mRecord));

    // Without a user channel the text goes to the application log.
    UserComm::SetUserComm(nullptr);
    const std::string log = mFolder.File("mail.log");
    const std::string savedLog = Log::GetLogFile();
    Log::SetLogFile(log.c_str());
    InstallMailProgram(3);
    EXPECT_FALSE(mail.Send(true));
    Log::Flush();
    Log::SetLogFile(savedLog.c_str());
    EXPECT_NE(ReadWholeFile(log).find(LanguageString::Get(61841)), std::string::npos);
    EXPECT_EQ(mChannel.informed.size(), 2u);
}

TEST_F(FailureMailTest, NoMailProgramOnThePath)
{
    TsSendMail mail;
    mail.AddTo("a@example.org");
    setenv("PATH", "", 1);
    EXPECT_THROW(mail.Send(true), Exception);
    ASSERT_EQ(mChannel.informed.size(), 1u);
    EXPECT_EQ(mChannel.informed[0], kNoMailProgram);

    // A folder without it is no better than an empty search path.
    setenv("PATH", mFolder.File("bin").c_str(), 1);
    EXPECT_THROW(mail.Send(true), Exception);
    EXPECT_EQ(mChannel.informed.size(), 2u);
}

} // namespace
