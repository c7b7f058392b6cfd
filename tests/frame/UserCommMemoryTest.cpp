// Collecting informs under headers, and the scopes that remember "to all"
// answers and hand what they collected to the channel before them.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/MemoryUserComm.h>
#include <KORVAutlwin/frame/MuteInformUserComm.h>

using namespace korva::test;

namespace {

// The collecting channel stands as the application's channel, so that what a
// scope hands on can be read from it.
class UserCommMemoryTest : public MessageDialogTest
{
protected:
    void SetUp() override
    {
        MessageDialogTest::SetUp();
        mBefore = UserComm::SetUserComm(&mOuter);
    }
    void TearDown() override
    {
        EXPECT_EQ(UserComm::SetUserComm(mBefore), &mOuter) << "a scope was left installed";
        MessageDialogTest::TearDown();
    }
    // Informs the current channel, or `channel`, of each text in turn.
    static void Inform(std::initializer_list<const char*> texts, UserComm* channel = nullptr)
    {
        for (const char* text : texts)
            (channel ? channel : UserComm::GetUserComm())->InformUser(text, "ignored", 0);
    }

    MuteInformUserComm mOuter;
    UserComm* mBefore = nullptr;
    Shown mShown;
};

} // namespace

TEST_F(UserCommMemoryTest, AnInformIsStoredOncePerHeaderAndAHeaderOnce)
{
    MuteInformUserComm mute;
    mute.SetHeader("Batch 117:\n");
    Inform({"Row 7 is empty.", "Row 9 is empty.", "Row 7 is empty."}, &mute);
    // The same inform under a new header is stored again, under that header.
    mute.SetHeader("Batch 118:\n");
    Inform({"Row 7 is empty.", "Row 7 is empty."}, &mute);
    EXPECT_STREQ(mute.GetInformUserMessages(),
                 "Batch 117:\nRow 7 is empty.\nRow 9 is empty.\nBatch 118:\nRow 7 is empty.\n");
    EXPECT_EQ(mute.GetUsage(), 0) << "collecting does not address the user";

    // A header set again is not repeated; back to an earlier header, the lines after it count.
    MuteInformUserComm again;
    for (const auto& [header, line] : {std::pair{"A\n", "x"}, {"A\n", "y"}, {"B\n", "z"}, {"A\n", "z"}}) {
        again.SetHeader(header);
        again.InformUser(line, nullptr, 0);
    }
    EXPECT_STREQ(again.GetInformUserMessages(), "A\nx\ny\nB\nz\n");

    // A silenced inform is not collected, not even its header.
    {
        RegistrySection key = korva::OpenInformSilenceKey();
        ASSERT_TRUE(key.WriteInt("5", 0) && key.WriteInt("6", 1));
    }
    MuteInformUserComm silenced;
    silenced.SetHeader("H\n");
    silenced.InformUser("silenced", nullptr, 5);
    EXPECT_STREQ(silenced.GetInformUserMessages(), "");
    silenced.InformUser("shown", nullptr, 6);
    EXPECT_STREQ(silenced.GetInformUserMessages(), "H\nshown\n");
}

TEST_F(UserCommMemoryTest, PrefixEmptyAndAddString)
{
    MuteInformUserComm mute;
    // Without a header the empty header goes in, invisibly; a null text is an empty line.
    mute.SetPrefix("  - ");
    mute.InformUser("first", nullptr, 0);
    mute.SetPrefix(nullptr);
    Inform({"first", nullptr}, &mute);
    EXPECT_STREQ(mute.GetInformUserMessages(), "  - first\nfirst\n\n");

    // Empty keeps the header flag: the header does not come back by itself. AddString
    // skips equal strings anywhere in the list.
    mute.SetHeader("Header\n");
    mute.InformUser("a", nullptr, 0);
    mute.Empty();
    Inform({"b", "b"}, &mute);
    for (const char* text : {"b\n", "c"})
        mute.AddString(text);
    EXPECT_STREQ(mute.GetInformUserMessages(), "b\nc");
}

TEST_F(UserCommMemoryTest, ScopesCollectAndHandOnAtTheirEndInReverseOrder)
{
    {
        MemoryUserComm outerScope;
        EXPECT_EQ(outerScope.GetLastAnsver(), -1);
        outerScope.SetHeader("Favourites:\n");
        {
            MemoryUserComm innerScope;
            EXPECT_EQ(UserComm::GetUserComm(), &innerScope);
            Inform({"inner fact"});
        }
        EXPECT_EQ(UserComm::GetUserComm(), &outerScope);
        Inform({"Wheat is missing.", "Barley is missing.", "Wheat is missing."});
        // The collection stays private to the scope.
        EXPECT_STREQ(static_cast<MuteInformUserComm&>(outerScope).GetInformUserMessages(), "");
        EXPECT_STREQ(mOuter.GetInformUserMessages(), "");
    }
    EXPECT_EQ(UserComm::GetUserComm(), &mOuter);
    // One inform with everything; the collecting channel adds its line feed.
    EXPECT_STREQ(mOuter.GetInformUserMessages(),
                 "Favourites:\ninner fact\n\nWheat is missing.\nBarley is missing.\n\n");

    // A scope with nothing collected informs nobody, not even with an empty text.
    mOuter.Empty();
    { MemoryUserComm scope; }
    EXPECT_STREQ(mOuter.GetInformUserMessages(), "");
}

TEST_F(UserCommMemoryTest, ToAllAnswersEveryFollowingQuestionOfTheScope)
{
    for (const auto& [toAll, answer] : {std::pair{2, 1}, {4, 3}}) {
        SCOPED_TRACE(toAll);
        MemoryUserComm scope;
        // Cancel is returned as it is, and the next question asks again.
        Answer(mShown, Key(Qt::Key_Escape));
        EXPECT_EQ(scope.AskUserYesYesToAllCancel("Recalculate model 1?", "", nullptr, 1), 5);
        EXPECT_EQ(scope.GetLastAnsver(), 5);
        Answer(mShown, Key(Qt::Key_Return));   // the default: the "to all" answer
        EXPECT_EQ(scope.AskUserYesYesToAllNoNoToAllCancel("Replace a.csv?", "", "Export", toAll), answer);
        EXPECT_EQ(mShown.kind, "YesNoCancelAll");
        {
            DialogSpy spy;
            EXPECT_EQ(scope.AskUserYesYesToAllNoNoToAllCancel("Replace b.csv?", "", "Export", 5), answer);
            EXPECT_EQ(scope.AskUserYesYesToAllCancel("Recalculate?", "", nullptr, 5), answer);
            EXPECT_EQ(scope.AskUserYesCancel("Go on?", "", nullptr, 5), answer);
            EXPECT_EQ(scope.AskUserYesNo("Delete?", nullptr, 4 - answer), answer);   // against the default
            EXPECT_EQ(spy.Count(), 0);
        }
        // The question with details is not remembered: it asks, and leaves the "to all" alone.
        Answer(mShown, Key(Qt::Key_Return));
        EXPECT_EQ(scope.AskUserYesNo("Leave them out?", "Sample 17", nullptr, 3), 3);
        EXPECT_EQ(std::tuple(mShown.kind, scope.GetLastAnsver(), scope.GetUsage()),
                  std::tuple("YesNoDialog", toAll, 3));
    }

    // A new scope starts without an answer; the plain yes/no question asks through the box.
    MemoryUserComm scope;
    Answer(mShown, Key(Qt::Key_Return));
    EXPECT_EQ(scope.AskUserYesNo("Delete the sample?", nullptr, 3), 3);
    EXPECT_EQ(std::tuple(mShown.kind, scope.GetLastAnsver()), std::tuple("CustomMessageBoxDlg", 3));
}

TEST_F(UserCommMemoryTest, ScopeOverTheDialogChannelShowsWhatItCollected)
{
    constexpr int kTextCtrlId = CustomMessageBoxDlg::kTextCtrlId;
    StandardUserComm standard;
    UserComm::SetUserComm(&standard);
    Answer(mShown, Key(Qt::Key_Return));
    {
        MemoryUserComm scope;
        scope.SetHeader("Export:\n");
        Inform({"3 files written."});
    }
    // Titled with the application's name.
    EXPECT_EQ(std::tuple(mShown.texts[kTextCtrlId], mShown.type, mShown.title, standard.GetUsage()),
              std::tuple("Export:\n3 files written.\n", unsigned(MB_ICONASTERISK), "Dialogs", 1));
    UserComm::SetUserComm(&mOuter);
}
