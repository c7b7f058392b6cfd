#include "WidgetTestSupport.h"

#include <KORVAutlwin/toolkit/CColourPickerXP.h>
#include <KORVAutlwin/toolkit/CColourPopupXP.h>

#include <QColorDialog>

namespace {

using korva::test::ToolkitWidgetTest;

class ColourPickerTest : public ToolkitWidgetTest
{
protected:
    ColourPickerTest()
    {
        window.resize(300, 200);
        picker = new CColourPickerXP(&window);
        picker->setGeometry(10, 10, 80, 24);
        QObject::connect(picker, &CColourPickerXP::Notice,
                         [this](int message, unsigned long colour) { notices.push_back({message, colour}); });
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    CColourPopupXP* Open()
    {
        QTest::mouseClick(picker, Qt::LeftButton);
        auto* popup = qobject_cast<CColourPopupXP*>(QApplication::activePopupWidget());
        EXPECT_NE(popup, nullptr);
        return popup;
    }

    std::vector<int> Messages() const
    {
        std::vector<int> messages;
        for (const auto& notice : notices)
            messages.push_back(notice.first);
        return messages;
    }

    QWidget window;
    CColourPickerXP* picker = nullptr;
    std::vector<std::pair<int, unsigned long>> notices;
};

TEST_F(ColourPickerTest, StartsAutomaticAndTranslatesOnlyWhenAsked)
{
    EXPECT_EQ(picker->GetColor(), 0xFF000000ul);
    EXPECT_EQ(picker->GetColor(0), 0xFF000000ul);
    picker->SetDefaultColor(0x00336699);
    EXPECT_EQ(picker->GetColor(1), 0x00336699ul);
    EXPECT_EQ(picker->GetDefaultText(), "Automatic");
    picker->SetRGBText("X");
    picker->SetColor(0x00563412);
    EXPECT_EQ(picker->GetColor(1), 0x00563412ul);
    EXPECT_EQ(picker->GetColourText(), "X:18  :52  :86");
}

TEST_F(ColourPickerTest, KeysWalkFromTheAutomaticRowAndReturnChooses)
{
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_F4);
    auto* popup = qobject_cast<CColourPopupXP*>(QApplication::activePopupWidget());
    ASSERT_TRUE(popup);
    EXPECT_TRUE(picker->IsPopupActive());
    EXPECT_EQ(popup->GetCurrentIndex(), -3);
    QTest::keyClick(popup, Qt::Key_Down);  // Black
    QTest::keyClick(popup, Qt::Key_Down);  // Dark red, a row lower
    EXPECT_EQ(popup->GetCurrentIndex(), 8);
    QTest::keyClick(popup, Qt::Key_Return);

    EXPECT_EQ(picker->GetColor(), 0x00008Bul);
    EXPECT_FALSE(picker->IsPopupActive());
    EXPECT_EQ(Messages(), (std::vector<int>{2026, 2025, 2025, 2027, 2028, 2025}));
    EXPECT_EQ(notices.back().second, 0x00008Bul);
    EXPECT_EQ(picker->GetColourText(), "Dark red");
}

TEST_F(ColourPickerTest, EscapeKeepsTheInitialColourEvenAfterTracking)
{
    picker->SetColor(0x0000FF);
    picker->SetTrackSelection(1);
    CColourPopupXP* popup = Open();
    ASSERT_TRUE(popup);
    EXPECT_EQ(popup->GetCurrentIndex(), 16); // opens at Red
    QTest::keyClick(popup, Qt::Key_Right);
    EXPECT_EQ(picker->GetColor(), 0x5BADFFul); // tracked live
    QTest::keyClick(popup, Qt::Key_Escape);
    EXPECT_EQ(picker->GetColor(), 0x0000FFul);
    EXPECT_EQ(Messages(), (std::vector<int>{2026, 2025, 2027, 2029}));
}

TEST_F(ColourPickerTest, AClickOnABoxChoosesItsColour)
{
    CColourPopupXP* popup = Open();
    ASSERT_TRUE(popup);
    QTest::mouseMove(popup, popup->GetLayout().GetItemRect(13).center());
    QTest::mouseClick(popup, Qt::LeftButton, {}, popup->GetLayout().GetItemRect(13).center());
    EXPECT_EQ(picker->GetColor(), 0xFF0000ul); // Blue
    EXPECT_EQ(notices.back(), std::make_pair(2025, 0xFF0000ul));
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

// The colour dialog of the custom row: `answer` works it, then it closes with OK or Cancel.
void WorkColourDialog(const QString& colour, bool ok)
{
    korva::test::WhenModal([colour, ok](QWidget* modal) {
        auto* dialog = qobject_cast<QColorDialog*>(modal);
        ASSERT_TRUE(dialog);
        for (QLineEdit* edit : dialog->findChildren<QLineEdit*>())
            if (edit->text().startsWith('#')) {
                edit->selectAll();
                QTest::keyClicks(edit, colour);
            }
        for (QPushButton* button : dialog->findChildren<QPushButton*>())
            if (button->text().contains("Add to Custom"))
                QTest::mouseClick(button, Qt::LeftButton);
        if (ok)
            dialog->accept();
        else
            QTest::keyClick(dialog, Qt::Key_Escape);
    });
}

bool SavedInSection(const std::string& section, unsigned long colour)
{
    auto key = ToolkitWidgetTest::AppKey(section);
    for (int i = 0; i < 16; ++i) {
        int value = -1;
        if (key->ReadInt(("CUSTOM_COLOR_" + std::to_string(i)).c_str(), value) && static_cast<unsigned long>(value) == colour)
            return true;
    }
    return false;
}

TEST_F(ColourPickerTest, CancelledColourDialogEndsWithoutAChoiceYetKeepsTheCustomColours)
{
    picker->SetRegSection("Picker");
    picker->SetColor(0x00FF00);
    CColourPopupXP* popup = Open();
    ASSERT_TRUE(popup);
    WorkColourDialog("#123456", false);
    QTest::mouseClick(popup, Qt::LeftButton, {}, popup->GetLayout().GetItemRect(-2).center());

    EXPECT_EQ(picker->GetColor(), 0x00FF00ul);
    EXPECT_EQ(Messages(), (std::vector<int>{2026, 2027, 2029}));
    EXPECT_TRUE(SavedInSection("Picker", 0x563412));
}

TEST_F(ColourPickerTest, TheColourDialogsChoiceComesBackWithTheStaticSection)
{
    CColourPickerXP::SetRegSectionStatic("AllPickers");
    CColourPopupXP* popup = Open();
    ASSERT_TRUE(popup);
    WorkColourDialog("#ABCDEF", true);
    QTest::keyClick(popup, Qt::Key_Up); // from the automatic row round to the custom row
    EXPECT_EQ(popup->GetCurrentIndex(), -2);
    QTest::keyClick(popup, Qt::Key_Space);

    EXPECT_EQ(picker->GetColor(), 0xEFCDABul);
    EXPECT_EQ(Messages(), (std::vector<int>{2026, 2027, 2028, 2025}));
    EXPECT_TRUE(SavedInSection("AllPickers", 0xEFCDAB));
    CColourPickerXP::SetRegSectionStatic("");
}

} // namespace
