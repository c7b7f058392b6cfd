// TsSendMail hands mail to xdg-email. The desktop's mail program cannot run
// here, so a stand-in script named xdg-email, first on PATH, records the
// arguments it gets and ends with the status a test chooses.

#include "frame/helpers/ChildProcess.h"

#include <KORVAutlwin/frame/StandardUserComm.h>
#include <KORVAutlwin/frame/TsSendMail.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using Strings = std::vector<std::string>;

// A user channel that records what it is told.
class RecordingUserComm : public StandardUserComm
{
public:
    void InformUser(const char* text, const char*, unsigned long) override { informed.emplace_back(text); }
    Strings informed;
};

class FailureMailTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        mPrevious = UserComm::SetUserComm(&mChannel);
        std::filesystem::create_directory(mFolder.File("bin"));
        mMail.AddTo("a@example.org");
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
        std::filesystem::remove(mFolder.File("arguments"));
        WriteFile(script, "#!/bin/sh\nprintf '%s\\0' \"$@\" > '" + mFolder.File("arguments") + "'\nexit " +
                              std::to_string(status) + "\n");
        chmod(script.c_str(), executable ? 0755 : 0644);
        setenv("PATH", (mFolder.File("bin") + ":" + mSavedPath).c_str(), 1);
    }
    Strings RecordedArguments() const
    {
        Strings arguments;
        const std::string content = ReadFile(mFolder.File("arguments"));
        for (std::size_t start = 0, end; (end = content.find('\0', start)) != std::string::npos; start = end + 1)
            arguments.push_back(content.substr(start, end - start));
        return arguments;
    }

    TempDir mFolder;
    const std::string mSavedPath = std::getenv("PATH") ? std::getenv("PATH") : "";
    RecordingUserComm mChannel;
    UserComm* mPrevious = nullptr;
    TsSendMail mMail;
};

TEST_F(FailureMailTest, HandsEverythingToTheMailProgram)
{
    InstallMailProgram(0);
    mMail.AddTo("second@example.org");
    mMail.AddCC("copy@example.org");
    mMail.AddBCC("hidden@example.org");
    mMail.AddAttachment("/tmp/report one.pdf");
    mMail.AddAttachment("/tmp/data.csv");
    mMail.SetSubject("Crash report: Größe");
    mMail.SetBody("Line one\nLine two; with \"quotes\" & more");
    EXPECT_TRUE(mMail.Send(true));
    EXPECT_EQ(RecordedArguments(),
              (Strings{"--utf8", "--cc", "copy@example.org", "--bcc", "hidden@example.org", "--subject",
                       "Crash report: Größe", "--body", "Line one\nLine two; with \"quotes\" & more", "--attach",
                       "/tmp/report one.pdf", "--attach", "/tmp/data.csv", "a@example.org", "second@example.org"}));
    EXPECT_TRUE(mChannel.informed.empty());

    // An empty subject or body is left out rather than passed empty.
    TsSendMail bare;
    bare.AddTo("only@example.org");
    EXPECT_TRUE(bare.Send(false));
    EXPECT_EQ(RecordedArguments(), (Strings{"--utf8", "only@example.org"}));
}

TEST_F(FailureMailTest, FailuresAreShown)
{
    // The mail program reports failure; it is there but cannot be started.
    InstallMailProgram(4);
    EXPECT_FALSE(mMail.Send(true));
    InstallMailProgram(0, false);
    EXPECT_FALSE(mMail.Send(true));
    EXPECT_FALSE(std::filesystem::exists(mFolder.File("arguments")));
    EXPECT_EQ(mChannel.informed, (Strings{LanguageString::Get(61841), LanguageString::Get(61840)}));

    // Without a user channel the text goes to the application log.
    UserComm::SetUserComm(nullptr);
    const std::string savedLog = Log::GetLogFile();
    Log::SetLogFile(mFolder.File("mail.log").c_str());
    InstallMailProgram(3);
    EXPECT_FALSE(mMail.Send(true));
    Log::Flush();
    Log::SetLogFile(savedLog.c_str());
    EXPECT_NE(ReadFile(mFolder.File("mail.log")).find(LanguageString::Get(61841)), std::string::npos);
    EXPECT_EQ(mChannel.informed.size(), 2u);

    // No mail program on the path, or only in a folder without it: an exception.
    UserComm::SetUserComm(&mChannel);
    for (const std::string& path : {std::string(), mFolder.Path()}) {
        setenv("PATH", path.c_str(), 1);
        EXPECT_THROW(mMail.Send(true), Exception) << path;
    }
    EXPECT_EQ(mChannel.informed.back(), "MAPI32.DLL could not be found. This dll is needed to send emails.");
    EXPECT_EQ(mChannel.informed.size(), 4u);
}

} // namespace
