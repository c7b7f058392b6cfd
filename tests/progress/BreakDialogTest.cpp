// BreakDialog as a transport drives it, and in the client's own process, served by the work's pumping.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/art/ProgressArt.h>
#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>
#include <KORVAutlwin/progress/Spinner.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <QLabel>

#include <numeric>

using namespace korva::test;

namespace {

BreakStartInfo Info(unsigned int delay, bool showSpin = false, bool allowBreak = true, bool showGauge = true)
{
    return {delay, QRect(), allowBreak, showSpin, showGauge, "Fitting the model", "Stop the fit?", "Model", "Halt"};
}

bool GoesAway(QWidget* window)
{
    return QTest::qWaitFor([window] { return !window->isVisible(); }, 2000);
}

class BreakDialogTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Application();
        mDialog = std::make_unique<BreakDialog>([this] { ++mConfirmed; });
    }
    void TearDown() override
    {
        mDialog.reset();
        QCoreApplication::processEvents();
    }

    void StartShown(const BreakStartInfo& info)
    {
        mDialog->Start(info);
        mDialog->ShowWindow(true);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(mDialog.get()));
    }

    // Whether Escape brings up a question (which is answered Yes).
    bool EscapeAsks()
    {
        QString asked;
        Answer(IDYES, &asked, std::chrono::milliseconds(300));
        QTest::keyClick(mDialog.get(), Qt::Key_Escape);
        QTest::qWait(350);
        return !asked.isEmpty();
    }

    std::unique_ptr<BreakDialog> mDialog;
    int mConfirmed = 0;
};

TEST_F(BreakDialogTest, ComesUpAfterTheDelayOrAtShowWindowAndTheCloseBoxAsksAndYesConfirmsTheStopOnce)
{
    // Work shorter than the delay shows nothing; the delay's timer goes with the client.
    mDialog->Start(Info(300));
    QTest::qWait(100);
    mDialog->show();  // nobody can bring it up during the delay
    const bool upInTheDelay = mDialog->isVisible();
    mDialog->Finish();
    QTest::qWait(400);
    EXPECT_FALSE(upInTheDelay || mDialog->isVisible());

    BreakStartInfo info = Info(250);
    info.mainWindow = QRect(100, 80, 900, 700);
    mDialog->Start(info);
    QTest::qWait(80);
    EXPECT_FALSE(mDialog->isVisible() || mDialog->IsShown());
    EXPECT_TRUE(QTest::qWaitFor([&] { return mDialog->isVisible(); }, 3000));
    EXPECT_EQ(mDialog->windowTitle() + "|" + mDialog->GetStopButton()->text(), "Fitting the model|Halt");
    const QPoint offset = mDialog->frameGeometry().center() - info.mainWindow.center();
    EXPECT_TRUE(std::abs(offset.x()) <= 2 && std::abs(offset.y()) <= 2) << offset.x() << "," << offset.y();
    mDialog->Finish();
    EXPECT_TRUE(GoesAway(mDialog.get()));

    // ShowWindow ends the delay; hidden around a box of the client, the delay does not bring it back.
    mDialog->Start(Info(60000));
    mDialog->ShowWindow(true);
    EXPECT_TRUE(mDialog->isVisible());
    mDialog->ShowWindow(false);
    EXPECT_TRUE(GoesAway(mDialog.get()) && mDialog->IsShown());
    mDialog->ShowWindow(true);
    EXPECT_TRUE(mDialog->isVisible());
    mDialog->Finish();
    mDialog->ShowWindow(true);
    EXPECT_TRUE(GoesAway(mDialog.get()));

    // (Escape answered No: BreakDialogInProcessTest.)
    StartShown(Info(0));
    QString text, title;
    bool openWhileAsked = false;
    WhenModal([&](QWidget* box) {
        text = BoxText(box);
        title = box->windowTitle();
        openWhileAsked = mDialog->IsQuestionOpen();
        Click(box, IDYES);
    });
    Queue::handleCloseEvent<Queue::SynchronousDelivery>(mDialog->windowHandle());
    EXPECT_EQ(text + "|" + title, "Stop the fit?|Model");
    EXPECT_TRUE(openWhileAsked && !mDialog->IsQuestionOpen());
    EXPECT_EQ(std::tuple(mConfirmed, mDialog->GetGauge()->GetCaption(), mDialog->GetStopButton()->isEnabled()),
              std::tuple(1, "Stopping...", false));
    EXPECT_TRUE(mDialog->isVisible()) << "only its client ends the window";
    EXPECT_TRUE(!EscapeAsks() && mConfirmed == 1) << "stopped is stopped: Escape does not ask again";

    // The next client starts with a clean gauge and a live button.
    mDialog->Finish();
    EXPECT_EQ(std::tuple(mDialog->GetGauge()->GetCaption(), mDialog->GetStopButton()->isEnabled()), std::tuple("", true));
}

TEST_F(BreakDialogTest, FinishWhileTheQuestionIsOpenAnswersNoAndTheSpinnerAndPlaceholderLayouts)
{
    StartShown(Info(0));
    // The transport's Finish arrives inside the question's own event loop.
    bool finishedWhileOpen = false;
    WhenModal([&](QWidget*) {
        finishedWhileOpen = mDialog->IsQuestionOpen();
        mDialog->Finish();
    });
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);
    EXPECT_TRUE(finishedWhileOpen && !mDialog->IsQuestionOpen() && !QApplication::activeModalWidget());
    EXPECT_TRUE(GoesAway(mDialog.get()));

    // Yes pressed, but the work ended and the next began before the answer was taken in: not for the new client.
    StartShown(Info(0));
    WhenModal([&](QWidget* box) {
        Click(box, IDYES);
        mDialog->Finish();
        mDialog->Start(Info(0));
    });
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);
    EXPECT_TRUE(mConfirmed == 0 && mDialog->IsServing() && !mDialog->IsQuestionOpen());
    mDialog->ShowWindow(true);
    Answer(IDYES);
    QTest::mouseClick(mDialog->GetStopButton(), Qt::LeftButton);
    EXPECT_EQ(mConfirmed, 1);

    StartShown(Info(0, true));
    ASSERT_EQ(mDialog->GetLayout(), BreakDialog::eSpinnerLayout);
    const int margin = BreakDialog::kMargin;
    Spinner* spinner = mDialog->GetSpinner();
    QWidget* button = mDialog->GetStopButton();
    TsGauge* gauge = mDialog->GetGauge();
    EXPECT_TRUE(spinner->isVisible() && gauge->isVisible());
    // The spinner at the left, the button at the right of the same row, the gauge across the width below.
    EXPECT_EQ(std::tuple(spinner->x(), button->geometry().right() + 1), std::tuple(margin, mDialog->width() - margin));
    EXPECT_LE(std::abs(button->geometry().center().y() - spinner->geometry().center().y()), 1);
    EXPECT_EQ(gauge->geometry(), QRect(margin, mDialog->height() - margin - gauge->height(),
                                       mDialog->width() - 2 * margin, gauge->height()));

    QTest::qWait(Spinner::kStepInterval + 30);
    mDialog->SpinStep();
    ASSERT_EQ(spinner->GetFrame(), 0);
    QTest::qWait(Spinner::kStepInterval + 30);
    const int fullHeight = mDialog->height();
    mDialog->Finish();
    EXPECT_EQ(spinner->GetFrame(), Spinner::kRestFrame);

    // Without a gauge and without a stop button the window is lower, and nothing asks.
    StartShown(Info(0, true, false, false));
    EXPECT_FALSE(gauge->isVisible() || button->isVisible());
    EXPECT_LT(mDialog->height(), fullHeight);
    EXPECT_TRUE(!EscapeAsks() && mConfirmed == 1) << "no more than before";

    // Without art a placeholder stands at the margins, but a spinning client still gets its spinner.
    const int before = ProgressArt::GetPreferedArtist();
    ProgressArt::SetPreferedArtist(-1);
    mDialog = std::make_unique<BreakDialog>([] {});
    ProgressArt::SetPreferedArtist(before);
    EXPECT_TRUE(mDialog->HasNoArt());
    StartShown(Info(0));
    EXPECT_EQ(std::tuple(mDialog->GetLayout(), mDialog->GetPlaceholder()->isVisible(), mDialog->GetPlaceholder()->pos()),
              std::tuple(BreakDialog::ePlaceholderLayout, true, QPoint(margin, margin)));
    mDialog->Finish();
    mDialog->Start(Info(0, true));
    EXPECT_EQ(mDialog->GetLayout(), BreakDialog::eSpinnerLayout);
}

TEST_F(BreakDialogTest, ArtLayoutShowsEveryPaintingOnceBeforeAnyComesAgainInAShuffleWithOneRandCallPerPosition)
{
    ASSERT_GT(ProgressArt::GetNumArtists(), 0) << "the shipped collection is missing beside the test program";
    ProgressArt::SetPreferedArtist(0);
    mDialog = std::make_unique<BreakDialog>([] {});
    const int count = ProgressArt::GetNumPaintings(0);
    ASSERT_EQ(int(mDialog->GetOrder().size()), count);
    StartShown(Info(0));
    ASSERT_EQ(mDialog->GetLayout(), BreakDialog::eArtLayout);
    EXPECT_TRUE(mDialog->GetArtistLabel()->isVisible() && !mDialog->GetSpinner()->isVisible());

    // The painting left, the portrait right of it over the artist, the title under it, the button at the bottom.
    const QRect picture = mDialog->GetPictureRect();
    const QPoint maxBitmap = ProgressArt::GetMaxBitmapSize();
    EXPECT_EQ(picture, QRect(BreakDialog::kMargin, BreakDialog::kMargin, maxBitmap.x(), maxBitmap.y()));
    const QRect portrait = mDialog->GetPortraitRect(), artist = mDialog->GetArtistLabel()->geometry();
    const QRect title = mDialog->GetPaintingLabel()->geometry(), button = mDialog->GetStopButton()->geometry();
    EXPECT_TRUE(portrait.left() > picture.right() && artist.top() > portrait.bottom());
    EXPECT_EQ(button.right() + 1, mDialog->width() - BreakDialog::kMargin);
    EXPECT_TRUE(button.bottom() <= picture.bottom() && button.top() > artist.bottom());
    // The title right under the painting, which stands centred in the picture area.
    const auto titleUnderPainting = [&] {
        const int shown = std::min(mDialog->GetPainting().height(), picture.height());
        const int gap = mDialog->GetPaintingLabel()->y() - (picture.top() + (picture.height() - shown) / 2 + shown);
        return gap > 0 && gap <= 8 && mDialog->GetPaintingLabel()->x() == title.x();
    };
    EXPECT_TRUE(titleUnderPainting());

    // One painting per client, in the shuffled order, wrapping at the end.
    for (int client = 0; client <= count; ++client) {
        if (client > 0) {
            mDialog->Finish();
            EXPECT_TRUE(mDialog->GetPainting().isNull());
            mDialog->Start(Info(0));
        }
        const int number = mDialog->GetOrder()[std::size_t(client % count)];
        EXPECT_EQ(mDialog->GetPaintingIndex(), client % count);
        EXPECT_EQ(mDialog->GetPainting().size(), ProgressArt::GetPainting(0, number).size());
        EXPECT_EQ(mDialog->GetPaintingLabel()->text().toStdString(), ProgressArt::GetPaintingName(0, number));
        EXPECT_TRUE(titleUnderPainting());
        EXPECT_EQ(mDialog->GetArtistLabel()->text().toStdString(),
                  ProgressArt::GetArtistName(0, number) + "\n" + ProgressArt::GetArtistLifeSpan(0, number));
    }

    mDialog->ShowWindow(true);
    const QImage screen = mDialog->grab().toImage();
    const QImage& shown = mDialog->GetPainting();
    const QPoint at(picture.left() + (picture.width() - shown.width()) / 2,
                    picture.top() + (picture.height() - shown.height()) / 2);
    const QPoint middle(shown.width() / 2, shown.height() / 2);
    EXPECT_EQ(screen.pixelColor(at + middle).rgb(), shown.pixelColor(middle).rgb());

    // One rand() call of 15 bits per position up to 32767, two calls of 30 bits from 32768 on.
    const struct { int count, calls; } rows[] = {{0, 0},     {1, 0},        {2, 1},         {7, 6},
                                                 {100, 99}, {1000, 999}, {32768, 32767}, {70000, 69999 + 37232}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.count);
        std::srand(3);
        const std::vector<int> order = BreakDialog::ShuffledOrder(row.count);
        const int next = std::rand();
        std::srand(3);
        int calls = 0;
        while (calls < 4 * row.count && std::rand() != next)
            ++calls;
        EXPECT_EQ(calls, row.calls);
        std::vector<int> sorted = order, identity(std::size_t(row.count), 0);
        std::sort(sorted.begin(), sorted.end());
        std::iota(identity.begin(), identity.end(), 0);
        EXPECT_EQ(sorted, identity);
        EXPECT_TRUE(row.count < 100 || order != identity) << "numbers move about";
    }
}

using BreakDialogInProcessTest = ProgressFrameFixture;

// The user's key and click come through the platform's queue, as while the main thread computes.
TEST_F(BreakDialogInProcessTest, EscapeAnsweredNoGoesOnAStopConfirmedMakesTheNextSetFalseAndOtherWindowsGetNoInput)
{
    MakeFrame();
    InProcessBreakWindow window;
    BreakWindowChannel::SetChannel(&window);
    auto progress = std::make_unique<Progress>(nullptr, "Computing", 0.0f, 1000.0f, false, true, true,
                                               "Stop computing?", "Computing", "Stop", 50);
    BreakDialog* dialog = window.GetDialog();
    ASSERT_TRUE(dialog && window.GetWidget() == dialog);
    EventCounter frameKeys(QEvent::KeyPress);
    for (QWidget* widget : mFrame->findChildren<QWidget*>())
        widget->installEventFilter(&frameKeys);
    mFrame->installEventFilter(&frameKeys);

    // The work: Set in a tight loop, as a computation does, until Set answers false (true) or `during` does.
    auto compute = [&](const std::function<bool()>& during) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        for (int i = 0; std::chrono::steady_clock::now() < end; ++i) {
            if (!progress->Set(float(i % 1000)))
                return true;
            if (!during())
                return false;
        }
        return false;
    };
    QString asked;
    Answer(IDNO, &asked);
    bool pressed = false;
    EXPECT_FALSE(compute([&] {
        if (!pressed && dialog->isVisible() && QGuiApplication::focusWindow() == dialog->windowHandle()) {
            // A key for the main window, where it must not start anything, and Escape for the break window.
            QueueKey(mFrame.get(), Qt::Key_A);
            QueueKey(dialog, Qt::Key_Escape);
            pressed = true;
        }
        return asked.isEmpty() || dialog->IsQuestionOpen();  // on until the question has come and gone
    }));
    EXPECT_EQ(std::tuple(asked, frameKeys.count), std::tuple("Stop computing?", 0));

    Answer(IDYES);
    bool clicked = false;
    EXPECT_TRUE(compute([&] {
        if (!clicked && dialog->isVisible()) {
            QueueClick(dialog->GetStopButton());
            clicked = true;
        }
        return true;
    })) << "the click never reached the stop button";
    EXPECT_EQ((std::tuple{progress->NextSpin(), dialog->GetGauge()->GetCaption()}), std::tuple(false, "Stopping..."));
    // The end of the work ends the service; the next client is not stopped by the last one's answer.
    progress.reset();
    EXPECT_TRUE(!dialog->IsServing() && Progress(nullptr, "Again", 0.0f, 1.0f, false, true, true).Set(0.5f));
}

} // namespace
