// The dialogs of the user channel step in front of a running progress: its
// break window is hidden while each one is up and comes back after it.

#include "../progress/ProgressTestSupport.h"

#include <KORVAutlwin/frame/MemoryUserComm.h>
#include <KORVAutlwin/frame/StandardUserComm.h>

using korva::test::BreakMessage;

namespace {

const BreakMessage kHide{BreakWindowChannel::eShowWindow, 0.0f};
const BreakMessage kShow{BreakWindowChannel::eShowWindow, 1.0f};

class UserCommProgressTest : public korva::test::ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        BreakWindowChannel::SetChannel(&mWindow);
        mProgress = std::make_unique<Progress>(nullptr, "Import", 0.0f, 1.0f, false, true, true);
        ASSERT_TRUE(mProgress->IsActive());
        mWindow.messages.clear();
    }
    void TearDown() override
    {
        mProgress.reset();
        ProgressFrameFixture::TearDown();
    }

    korva::test::RecordingBreakWindow mWindow;
    std::unique_ptr<Progress> mProgress;
    StandardUserComm mChannel;
};

} // namespace

TEST_F(UserCommProgressTest, EveryDialogIsBracketedByHideAndShow)
{
    // One call for each way to a dialog: the three "to all" questions share one, and
    // fatal errors and informs step in front before they choose their dialog.
    const std::string longText(40, '\n');
    const std::vector<std::function<void()>> calls = {
        [&] { mChannel.AskUserYesNo("Stop the import?", nullptr, 1); },
        [&] { mChannel.AskUserYesNo(longText.c_str(), nullptr, 1); },
        [&] { mChannel.AskUserYesNo("Stop?", "details", nullptr, 1); },
        [&] { mChannel.AskUserYesCancel("Replace?", "", nullptr, 1); },
        [&] { mChannel.FatalError("Disk full.", nullptr); },
        [&] { mChannel.InformUser(longText.c_str(), nullptr, 0); },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        mWindow.messages.clear();
        std::vector<BreakMessage> whileShown;
        korva::test::WhenModal([&](QWidget* dialog) {
            whileShown = mWindow.messages;
            korva::test::Press(dialog, Qt::Key_Return);
        });
        calls[i]();
        EXPECT_EQ(whileShown, std::vector<BreakMessage>{kHide}) << "call " << i;
        EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{kHide, kShow})) << "call " << i;
    }
}
