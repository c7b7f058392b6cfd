// BreakDialog as a transport drives it: the delay before it appears, the stop
// question with every way of answering it (including a Finish that arrives while
// it is open), the three layouts, and the shuffle of the paintings. Offscreen,
// with real key and mouse input; the art comes from the collection shipped
// beside the test program.

#include "../frame/MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/art/ProgressArt.h>
#include <KORVAutlwin/progress/Spinner.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <KORVAutl/LanguageString.h>

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <set>

// The platform's own entry for a click on the close box; QtGui exports it.
class QWindowSystemInterface
{
public:
    struct SynchronousDelivery;
    template <typename Delivery>
    static bool handleCloseEvent(QWindow* window);
};

namespace {

using korva::test::BoxText;
using korva::test::WhenModal;

// Counts the show events of one widget.
class ShowCounter : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            ++count;
        return QObject::eventFilter(watched, event);
    }
    int count = 0;
};

BreakStartInfo Info(unsigned int delay, bool showSpin = false, bool allowBreak = true, bool showGauge = true)
{
    BreakStartInfo info;
    info.delay = delay;
    info.allowBreak = allowBreak;
    info.showSpin = showSpin;
    info.showGauge = showGauge;
    info.infoText = "Fitting the model";
    info.stopQuestion = "Stop the fit?";
    info.stopTitle = "Model";
    info.stopButton = "Halt";
    return info;
}

// Hidden at once, or after its fade where the window system shows one.
bool GoesAway(QWidget* window)
{
    return QTest::qWaitFor([window] { return !window->isVisible(); }, 2000);
}

void ClickAnswer(QWidget* box, int answer)
{
    for (auto* button : box->findChildren<QPushButton*>())
        if (button->property("ctrlId").toInt() == answer) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    ADD_FAILURE() << "no button " << answer;
}

// The catalogue's preferred artist for a scope.
class PreferredArtist
{
public:
    explicit PreferredArtist(int artist) : mBefore(ProgressArt::GetPreferedArtist())
    {
        ProgressArt::SetPreferedArtist(artist);
    }
    ~PreferredArtist() { ProgressArt::SetPreferedArtist(mBefore); }
    PreferredArtist(const PreferredArtist&) = delete;
    PreferredArtist& operator=(const PreferredArtist&) = delete;

private:
    int mBefore;
};

class BreakDialogTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        korva::test::Application();
        mDialog = std::make_unique<BreakDialog>([this] { ++mConfirmed; });
    }
    void TearDown() override
    {
        mDialog.reset();
        QCoreApplication::processEvents();
    }

    // Starts with `info` and waits until the window is up.
    void StartShown(const BreakStartInfo& info)
    {
        mDialog->Start(info);
        mDialog->ShowWindow(true);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(mDialog.get()));
    }

    std::unique_ptr<BreakDialog> mDialog;
    int mConfirmed = 0;
};

// --- Appearing --------------------------------------------------------------------------------

TEST_F(BreakDialogTest, WorkShorterThanTheDelayShowsNothing)
{
    ShowCounter shows;
    mDialog->installEventFilter(&shows);
    mDialog->Start(Info(300));
    QTest::qWait(100);
    mDialog->show();  // nobody can bring it up during the delay
    EXPECT_FALSE(mDialog->isVisible());
    mDialog->Finish();
    // The delay's timer went with the client.
    QTest::qWait(400);
    EXPECT_FALSE(mDialog->isVisible());
    EXPECT_FALSE(mDialog->IsShown());
    EXPECT_EQ(shows.count, 0);
}

TEST_F(BreakDialogTest, ComesUpAfterTheDelayCentredOnTheMainWindowWithTheClientsTitle)
{
    BreakStartInfo info = Info(250);
    info.mainWindow = QRect(100, 80, 900, 700);
    mDialog->Start(info);
    QTest::qWait(80);
    EXPECT_FALSE(mDialog->isVisible());
    EXPECT_FALSE(mDialog->IsShown());
    EXPECT_TRUE(QTest::qWaitFor([&] { return mDialog->isVisible(); }, 3000));
    EXPECT_TRUE(mDialog->IsShown());
    EXPECT_EQ(mDialog->windowTitle(), "Fitting the model");
    const QPoint centre = mDialog->frameGeometry().center();
    EXPECT_LE(std::abs(centre.x() - info.mainWindow.center().x()), 2);
    EXPECT_LE(std::abs(centre.y() - info.mainWindow.center().y()), 2);
    EXPECT_EQ(mDialog->GetStopButton()->text(), "Halt");

    mDialog->SetTitle("Second pass");
    EXPECT_EQ(mDialog->windowTitle(), "Second pass");
    mDialog->Finish();
    EXPECT_TRUE(GoesAway(mDialog.get()));
    EXPECT_FALSE(mDialog->IsServing());
}

TEST_F(BreakDialogTest, ShowWindowEndsTheDelayAndHidesForABoxOfTheClient)
{
    mDialog->Start(Info(60000));
    mDialog->ShowWindow(true);
    EXPECT_TRUE(mDialog->isVisible());
    EXPECT_TRUE(mDialog->IsShown());

    // Hide around a box of the main thread; the delay does not bring it back.
    mDialog->ShowWindow(false);
    EXPECT_TRUE(GoesAway(mDialog.get()));
    EXPECT_TRUE(mDialog->IsShown());
    mDialog->ShowWindow(true);
    EXPECT_TRUE(mDialog->isVisible());

    // Between clients the window stays hidden, whatever is asked of it.
    mDialog->Finish();
    mDialog->ShowWindow(true);
    EXPECT_TRUE(GoesAway(mDialog.get()));
}

TEST_F(BreakDialogTest, FinishLeavesTheSpinnerAtRestForTheNextClient)
{
    StartShown(Info(0, true));
    Spinner* spinner = mDialog->GetSpinner();
    QTest::qWait(Spinner::kStepInterval + 30);
    mDialog->SpinStep();
    ASSERT_EQ(spinner->GetFrame(), 0);
    QTest::qWait(Spinner::kStepInterval + 30);
    mDialog->Finish();
    EXPECT_EQ(spinner->GetFrame(), Spinner::kRestFrame);
}

// --- Stopping ---------------------------------------------------------------------------------

TEST_F(BreakDialogTest, YesConfirmsTheStopOnce)
{
    StartShown(Info(0));
    QString text, title;
    bool openWhileAsked = false;
    WhenModal([&](QWidget* box) {
        text = BoxText(box);
        title = box->windowTitle();
        openWhileAsked = mDialog->IsQuestionOpen();
        ClickAnswer(box, IDYES);
    });
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);

    EXPECT_EQ(text, "Stop the fit?");
    EXPECT_EQ(title, "Model");
    EXPECT_TRUE(openWhileAsked);
    EXPECT_FALSE(mDialog->IsQuestionOpen());
    EXPECT_EQ(mConfirmed, 1);
    EXPECT_EQ(mDialog->GetGauge()->GetCaption(), LanguageString::Get(BreakDialog::kStoppingStringId));
    EXPECT_EQ(mDialog->GetGauge()->GetCaption(), "Stopping...");
    EXPECT_FALSE(mDialog->GetStopButton()->isEnabled());

    // Stopped is stopped: neither Escape nor the close box ask again.
    bool askedAgain = false;
    WhenModal([&](QWidget* box) {
        askedAgain = true;
        ClickAnswer(box, IDYES);
    }, std::chrono::milliseconds(300));
    QTest::keyClick(mDialog.get(), Qt::Key_Escape);
    QTest::qWait(350);
    EXPECT_FALSE(askedAgain);
    EXPECT_EQ(mConfirmed, 1);

    // The next client starts with a clean gauge and a live button.
    mDialog->Finish();
    EXPECT_EQ(mDialog->GetGauge()->GetCaption(), "");
    EXPECT_TRUE(mDialog->GetStopButton()->isEnabled());
}

TEST_F(BreakDialogTest, NoConfirmsNothing)
{
    StartShown(Info(0));
    WhenModal([&](QWidget* box) { ClickAnswer(box, IDNO); });
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);
    EXPECT_EQ(mConfirmed, 0);
    EXPECT_FALSE(mDialog->IsQuestionOpen());
    EXPECT_TRUE(mDialog->GetStopButton()->isEnabled());
    EXPECT_EQ(mDialog->GetGauge()->GetCaption(), "");
    EXPECT_TRUE(mDialog->isVisible());
}

TEST_F(BreakDialogTest, EscapeAndTheCloseBoxAskTheQuestion)
{
    StartShown(Info(0));
    QString asked;
    WhenModal([&](QWidget* box) {
        asked = BoxText(box);
        ClickAnswer(box, IDNO);
    });
    QTest::keyClick(mDialog.get(), Qt::Key_Escape);
    EXPECT_EQ(asked, "Stop the fit?");
    EXPECT_TRUE(mDialog->isVisible());
    EXPECT_EQ(mConfirmed, 0);

    asked.clear();
    WhenModal([&](QWidget* box) {
        asked = BoxText(box);
        ClickAnswer(box, IDYES);
    });
    QWindowSystemInterface::handleCloseEvent<QWindowSystemInterface::SynchronousDelivery>(mDialog->windowHandle());
    EXPECT_EQ(asked, "Stop the fit?");
    EXPECT_EQ(mConfirmed, 1);
    // The window stays: only its client ends it.
    EXPECT_TRUE(mDialog->isVisible());
}

TEST_F(BreakDialogTest, FinishWhileTheQuestionIsOpenAnswersNo)
{
    StartShown(Info(0));
    // The transport's Finish arrives inside the question's own event loop.
    bool finishedWhileOpen = false;
    WhenModal([&](QWidget*) {
        finishedWhileOpen = mDialog->IsQuestionOpen();
        mDialog->Finish();
    });
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);
    EXPECT_TRUE(finishedWhileOpen);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(mConfirmed, 0);
    EXPECT_FALSE(mDialog->IsQuestionOpen());
    EXPECT_TRUE(GoesAway(mDialog.get()));
    EXPECT_TRUE(mDialog->GetStopButton()->isEnabled());

    // Yes already pressed, but the work ended before the answer was taken in,
    // and the next client started at once: the new client is not stopped.
    StartShown(Info(0));
    WhenModal([&](QWidget* box) {
        ClickAnswer(box, IDYES);
        mDialog->Finish();
        mDialog->Start(Info(0));
    });
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);
    EXPECT_EQ(mConfirmed, 0);
    EXPECT_TRUE(mDialog->IsServing());
    EXPECT_FALSE(mDialog->IsQuestionOpen());

    // And that client can still be stopped.
    mDialog->ShowWindow(true);
    WhenModal([&](QWidget* box) { ClickAnswer(box, IDYES); });
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);
    EXPECT_EQ(mConfirmed, 1);
}

// --- Layouts ----------------------------------------------------------------------------------

TEST_F(BreakDialogTest, SpinnerLayoutWithButtonBesideItAndGaugeAcrossTheWidth)
{
    StartShown(Info(0, true));
    ASSERT_EQ(mDialog->GetLayout(), BreakDialog::eSpinnerLayout);
    const int margin = BreakDialog::kMargin;
    QWidget* spinner = mDialog->GetSpinner();
    QWidget* button = mDialog->GetStopButton();
    EXPECT_TRUE(spinner->isVisible());
    EXPECT_FALSE(mDialog->GetPlaceholder()->isVisible());
    EXPECT_FALSE(mDialog->GetArtistLabel()->isVisible());
    EXPECT_FALSE(mDialog->GetPaintingLabel()->isVisible());
    EXPECT_EQ(spinner->size(), spinner->sizeHint());
    EXPECT_EQ(spinner->x(), margin);
    EXPECT_EQ(button->geometry().right() + 1, mDialog->width() - margin);
    EXPECT_LE(std::abs(button->geometry().center().y() - spinner->geometry().center().y()), 1);

    TsGauge* gauge = mDialog->GetGauge();
    EXPECT_TRUE(gauge->isVisible());
    EXPECT_EQ(gauge->x(), margin);
    EXPECT_EQ(gauge->width(), mDialog->width() - 2 * margin);
    EXPECT_EQ(gauge->geometry().bottom() + 1, mDialog->height() - margin);
    EXPECT_GE(gauge->height(), gauge->GetDesiredHeight());
    EXPECT_GE(gauge->y(), std::max(spinner->geometry().bottom(), button->geometry().bottom()) + margin);

    // Without a gauge and without a stop button the window is smaller.
    const QSize full = mDialog->size();
    mDialog->Finish();
    StartShown(Info(0, true, false, false));
    EXPECT_FALSE(gauge->isVisible());
    EXPECT_FALSE(button->isVisible());
    EXPECT_LT(mDialog->height(), full.height());
    // Without a stop button there is nothing to ask.
    bool asked = false;
    WhenModal([&](QWidget* box) {
        asked = true;
        ClickAnswer(box, IDYES);
    }, std::chrono::milliseconds(300));
    QTest::keyClick(mDialog.get(), Qt::Key_Escape);
    QTest::qWait(350);
    EXPECT_FALSE(asked);
    EXPECT_EQ(mConfirmed, 0);
}

TEST_F(BreakDialogTest, PlaceholderWithoutArt)
{
    std::optional<BreakDialog> made;
    {
        const PreferredArtist none(-1);
        made.emplace([] {});
    }
    BreakDialog& dialog = *made;
    EXPECT_TRUE(dialog.HasNoArt());
    EXPECT_TRUE(dialog.GetOrder().empty());

    dialog.Start(Info(0));
    dialog.ShowWindow(true);
    EXPECT_EQ(dialog.GetLayout(), BreakDialog::ePlaceholderLayout);
    EXPECT_TRUE(dialog.GetPlaceholder()->isVisible());
    EXPECT_FALSE(dialog.GetSpinner()->isVisible());
    EXPECT_FALSE(dialog.GetPaintingLabel()->isVisible());
    EXPECT_TRUE(dialog.GetPainting().isNull());
    EXPECT_EQ(dialog.GetPlaceholder()->pos(), QPoint(BreakDialog::kMargin, BreakDialog::kMargin));
    dialog.Finish();

    // A spinning client still gets its spinner.
    dialog.Start(Info(0, true));
    EXPECT_EQ(dialog.GetLayout(), BreakDialog::eSpinnerLayout);
    dialog.Finish();
}

TEST_F(BreakDialogTest, ArtLayoutShowsEveryPaintingOnceBeforeAnyComesAgain)
{
    ASSERT_GT(ProgressArt::GetNumArtists(), 0) << "the shipped collection is missing beside the test program";
    // Artist 0 is the collection beside the program (other tests may add
    // collections of their own to the process's catalogue and remove the files).
    const int artist = 0;
    const PreferredArtist preferred(artist);
    mDialog = std::make_unique<BreakDialog>([this] { ++mConfirmed; });
    const int count = ProgressArt::GetNumPaintings(artist);
    ASSERT_FALSE(mDialog->HasNoArt());
    ASSERT_EQ(int(mDialog->GetOrder().size()), count);

    StartShown(Info(0));
    ASSERT_EQ(mDialog->GetLayout(), BreakDialog::eArtLayout);
    EXPECT_FALSE(mDialog->GetPlaceholder()->isVisible());
    EXPECT_FALSE(mDialog->GetSpinner()->isVisible());
    EXPECT_TRUE(mDialog->GetArtistLabel()->isVisible());
    EXPECT_TRUE(mDialog->GetPaintingLabel()->isVisible());

    // The painting at the left, the portrait beside it with the artist under it,
    // the title under the painting, the button at the bottom right of the pictures.
    const QRect picture = mDialog->GetPictureRect();
    const QPoint maxBitmap = ProgressArt::GetMaxBitmapSize();
    EXPECT_EQ(picture, QRect(BreakDialog::kMargin, BreakDialog::kMargin, maxBitmap.x(), maxBitmap.y()));
    EXPECT_GT(mDialog->GetPortraitRect().left(), picture.right());
    EXPECT_GT(mDialog->GetArtistLabel()->y(), mDialog->GetPortraitRect().bottom());
    EXPECT_GT(mDialog->GetPaintingLabel()->y(), picture.bottom());
    QWidget* button = mDialog->GetStopButton();
    EXPECT_EQ(button->geometry().right() + 1, mDialog->width() - BreakDialog::kMargin);
    EXPECT_LT(button->geometry().bottom(), mDialog->GetPaintingLabel()->y());
    EXPECT_GT(button->y(), mDialog->GetArtistLabel()->geometry().bottom());

    // One painting per client, in the shuffled order, wrapping at the end.
    std::set<std::string> titles;
    for (int client = 0; client < count; ++client) {
        if (client > 0) {
            mDialog->Finish();
            EXPECT_TRUE(mDialog->GetPainting().isNull());
            mDialog->Start(Info(0));
        }
        const int number = mDialog->GetOrder()[std::size_t(client)];
        EXPECT_EQ(mDialog->GetPaintingIndex(), client);
        EXPECT_FALSE(mDialog->GetPainting().isNull());
        EXPECT_EQ(mDialog->GetPainting().size(), ProgressArt::GetPainting(artist, number).size());
        const std::string title = ProgressArt::GetPaintingName(artist, number);
        EXPECT_EQ(mDialog->GetPaintingLabel()->text().toStdString(), title);
        EXPECT_EQ(mDialog->GetArtistLabel()->text().toStdString(),
                  ProgressArt::GetArtistName(artist, number) + "\n" + ProgressArt::GetArtistLifeSpan(artist, number));
        titles.insert(std::to_string(number));
    }
    EXPECT_EQ(int(titles.size()), count);
    mDialog->Finish();
    mDialog->Start(Info(0));
    EXPECT_EQ(mDialog->GetPaintingIndex(), 0);

    // The painting is on the screen, centred in its area.
    mDialog->ShowWindow(true);
    const QImage screen = mDialog->grab().toImage();
    const QImage& shown = mDialog->GetPainting();
    const QPoint at(picture.left() + (picture.width() - shown.width()) / 2,
                    picture.top() + (picture.height() - shown.height()) / 2);
    const QPoint middle(shown.width() / 2, shown.height() / 2);
    EXPECT_EQ(screen.pixelColor(at + middle).rgb(), shown.pixelColor(middle).rgb());
}

// --- The shuffle ------------------------------------------------------------------------------

TEST(BreakDialogShuffleTest, IsAPermutationThatMovesNumbersAbout)
{
    for (int count : {0, 1, 2, 7, 100}) {
        std::srand(11);
        std::vector<int> order = BreakDialog::ShuffledOrder(count);
        ASSERT_EQ(int(order.size()), count);
        std::vector<int> sorted = order;
        std::sort(sorted.begin(), sorted.end());
        std::vector<int> identity(std::size_t(count), 0);
        std::iota(identity.begin(), identity.end(), 0);
        EXPECT_EQ(sorted, identity) << count;
        if (count == 100) {
            EXPECT_NE(order, identity);
        }
    }
}

TEST(BreakDialogShuffleTest, TakesOneRandCallPerPositionAndMoreBeyond15Bits)
{
    // Counts the calls by where the generator stands afterwards.
    auto callsTaken = [](int count) {
        std::srand(3);
        const std::vector<int> order = BreakDialog::ShuffledOrder(count);
        std::vector<char> seen(std::size_t(count), 0);
        for (int number : order)
            if (number >= 0 && number < count)
                seen[std::size_t(number)] = 1;
        EXPECT_EQ(std::count(seen.begin(), seen.end(), 1), count) << "not a permutation of " << count;
        const int next = std::rand();
        std::srand(3);
        for (int calls = 0; calls < 4 * count; ++calls)
            if (std::rand() == next)
                return calls;
        return -1;
    };
    EXPECT_EQ(callsTaken(1000), 999);
    // Up to position 32767 one call of 15 bits covers every partner; from
    // position 32768 on, two calls make 30 bits.
    EXPECT_EQ(callsTaken(32768), 32767);
    EXPECT_EQ(callsTaken(70000), 69999 + (70000 - 32768));
}

} // namespace
