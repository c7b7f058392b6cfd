#include "WidgetTestSupport.h"

#include <KORVAutlwin/toolkit/DateFormatDialog.h>

#include <KORVAutl/TsTimeUtl.h>

namespace {

using korva::test::Control;
using korva::test::ToolkitWidgetTest;
using korva::test::WhenModal;

class DateFormatDialogTest : public ToolkitWidgetTest
{
protected:
    std::string Saved() { return AppKey("DateTimeDefaults")->ReadKey("Settings", text) ? text : "<none>"; }
    void Save(const char* value) { AppKey("DateTimeDefaults")->WriteKey("Settings", value); }

    std::string text;
};

QComboBox* Box(QWidget* dialog)
{
    return Control<QComboBox>(dialog, SpecifyDateFormat::eFormatBox);
}

TEST_F(DateFormatDialogTest, OfferedFormatsStartWithTheGivenOneAndOKRemembersTheNewOne)
{
    Save("dd.MM.yyyy;yyyy-MM-dd");
    SpecifyDateFormat dialog("Column 3", "2005-08-05 14:03", "yyyy-MM-dd");
    QComboBox* box = Box(&dialog);
    ASSERT_TRUE(box);
    ASSERT_EQ(box->count(), 2);
    EXPECT_EQ(box->itemText(0), "yyyy-MM-dd");
    EXPECT_EQ(box->itemText(1), "dd.MM.yyyy");
    EXPECT_EQ(Control<QLabel>(&dialog, SpecifyDateFormat::eSampleDate)->text(), "2005-08-05 14:03");

    WhenModal([](QWidget* modal) {
        Box(modal)->lineEdit()->selectAll();
        QTest::keyClicks(Box(modal)->lineEdit(), "yyyy-MM-dd HH:mm");
        korva::test::Click(modal, 1);
    });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetDateFormat(), "yyyy-MM-dd HH:mm");
    EXPECT_EQ(Saved(), "yyyy-MM-dd HH:mm;dd.MM.yyyy;yyyy-MM-dd");
}

TEST_F(DateFormatDialogTest, OKWithTheLatestFormatLeavesTheRegistryAlone)
{
    Save("dd.MM.yyyy;yyyy-MM-dd");
    SpecifyDateFormat dialog(std::wstring(L"Spalte 3"), std::wstring(L"05.08.2005"), std::wstring(L"dd.MM.yyyy"));
    EXPECT_EQ(Control<QLabel>(&dialog, SpecifyDateFormat::eHeading)->text(), "Spalte 3");
    WhenModal([](QWidget* modal) { korva::test::Click(modal, 1); });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(Saved(), "dd.MM.yyyy;yyyy-MM-dd");
}

TEST_F(DateFormatDialogTest, DetailsToggleAndOKNeedsAFormat)
{
    SpecifyDateFormat dialog("", "", "HH:mm");
    dialog.SetNoDate();
    dialog.show();
    auto* details = Control<QPushButton>(&dialog, SpecifyDateFormat::eDetailsButton);
    auto* text = Control<QPlainTextEdit>(&dialog, SpecifyDateFormat::eDetailsText);
    ASSERT_TRUE(details && text);
    EXPECT_FALSE(Control<QLabel>(&dialog, SpecifyDateFormat::eHeading)->isVisible());
    EXPECT_TRUE(Control<QLabel>(&dialog, SpecifyDateFormat::eSampleLabel)->text().isEmpty());
    EXPECT_EQ(details->text(), "Show Details >>");
    EXPECT_FALSE(text->isVisible());

    dialog.resize(640, dialog.height());
    QTest::mouseClick(details, Qt::LeftButton);
    EXPECT_EQ(details->text(), "Hide Details <<");
    EXPECT_TRUE(text->isVisible());
    EXPECT_TRUE(text->toPlainText().startsWith("yyyy - year using four digits (ex. 2005)\n"));
    EXPECT_EQ(dialog.width(), 640);
    QTest::mouseClick(details, Qt::LeftButton);
    EXPECT_EQ(details->text(), "Show Details >>");
    EXPECT_FALSE(text->isVisible());

    auto* ok = Control<QPushButton>(&dialog, 1);
    EXPECT_TRUE(ok->isEnabled());
    Box(&dialog)->lineEdit()->selectAll();
    QTest::keyClick(Box(&dialog)->lineEdit(), Qt::Key_Delete);
    EXPECT_FALSE(ok->isEnabled());
}

TEST_F(DateFormatDialogTest, AnInvalidFormatBringsTheDialogBackWithTheUsersText)
{
    std::vector<std::string> offered;
    WhenModal([&](QWidget* dialog) {
        offered.push_back(Box(dialog)->itemText(0).toStdString());
        Box(dialog)->lineEdit()->selectAll();
        QTest::keyClicks(Box(dialog)->lineEdit(), "yyyy-MMMM");
        korva::test::Click(dialog, 1);
        WhenModal([&](QWidget* again) {
            offered.push_back(Box(again)->itemText(0).toStdString());
            Box(again)->lineEdit()->selectAll();
            QTest::keyClicks(Box(again)->lineEdit(), "yyyy-MMM");
            korva::test::Click(again, 1);
        });
    });
    std::string result;
    EXPECT_TRUE(TsTimeUtl::GetUserFormatString("", "2005-August", "yyyy", result));
    EXPECT_EQ(result, "yyyy-MMM");
    EXPECT_EQ(offered, (std::vector<std::string>{"yyyy", "yyyy-MMMM"}));

    WhenModal([](QWidget* dialog) { korva::test::Click(dialog, 2); });
    EXPECT_FALSE(TsTimeUtl::GetUserFormatString("", "2005-August", "yyyy", result));
}

} // namespace
