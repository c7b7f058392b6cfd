// Print jobs into PDF files, read back with pdftotext: the copy and page
// loops, the footer line, the parent window while printing, a cancelled
// dialog, and the device context that a dialog hands over once.

#include "frame/TestApplication.h"
#include "utl/TempDir.h"

#include <KORVAutlwin/toolkit/PrintDC.h>
#include <KORVAutlwin/toolkit/PrintFooter.h>
#include <KORVAutlwin/toolkit/PrintOut.h>
#include <KORVAutlwin/toolkit/PrintWindow.h>
#include <KORVAutlwin/toolkit/TSPrinter.h>

#include <QLabel>
#include <QPainter>
#include <QPrinter>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using korva::test::WhenModal;

// The user's answers to a print dialog: its accepting button, or Escape.
void Print(QWidget* dialog)
{
    if (auto* box = dialog->findChild<QDialogButtonBox*>())
        for (QAbstractButton* button : box->buttons())
            if (box->buttonRole(button) == QDialogButtonBox::AcceptRole && button->isVisible())
                return QTest::mouseClick(button, Qt::LeftButton);
    ADD_FAILURE() << "no button that prints";
    dialog->close();
}

void Cancel(QWidget* dialog)
{
    QTest::keyClick(dialog, Qt::Key_Escape);
}

// The text of each page of a PDF file.
std::vector<std::string> PdfPages(const std::string& file)
{
    const std::string text = std::system(("pdftotext -layout '" + file + "' '" + file + ".txt'").c_str()) == 0
                                 ? ReadFile(file + ".txt")
                                 : "";
    std::vector<std::string> pages;
    for (size_t start = 0, end; (end = text.find('\f', start)) != std::string::npos; start = end + 1)
        pages.push_back(text.substr(start, end - start));
    return pages;
}

void PdfOutput(QPrinter& printer, const std::string& file, int copies)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(file));
    printer.setCopyCount(copies);
}

// Three pages, the second left blank by an empty rectangle; every call is noted.
class Loadings : public PrintOut
{
public:
    explicit Loadings(const QWidget* parent) : mParent(parent) {}

    std::string GetDocumentName() const override { return "Loadings"; }
    QPageLayout::Orientation GetOrientation() const override { return QPageLayout::Landscape; }
    int GetFirstPage() const override { return 1; }
    int GetLastPage() const override { return 99; }
    void BeginPrinting(PrintDC&, int width, int height) override
    {
        calls.push_back(width > height ? "begin landscape" : "begin portrait");
        mPage = QRect(0, 0, width, height);
    }
    bool HasPage(int page) const override { return page <= 3; }
    QRect GetPageRect(int page) const override { return page == 2 ? QRect() : mPage; }
    void PrintPage(PrintDC& dc, int page, const QRect& rect) override
    {
        calls.push_back("page " + std::to_string(page) + (mParent->isEnabled() ? " parent enabled" : ""));
        const std::string footer = MakePrintFooter(("page " + std::to_string(page)).c_str());
        dc.GetPainter().drawText(rect, Qt::AlignLeft | Qt::AlignBottom, QString::fromStdString(footer));
    }
    void EndCopy() override { calls.push_back("end copy"); }
    void EndPrinting() override { calls.push_back("end"); }

    std::vector<std::string> calls;

private:
    const QWidget* mParent;
    QRect mPage;
};

const std::string kProgram = "toolkit_widgets_tests ";

TEST(PrintTest, EveryCopyEveryPageWithTheFooter)
{
    korva::test::Application();
    TempDir folder;
    const std::string file = folder.File("loadings.pdf");
    QWidget parent;
    Loadings loadings(&parent);
    TSPrinter printer;
    PdfOutput(printer.GetDialog()->GetPrinter(), file, 2);

    ASSERT_TRUE(printer.Print(&parent, loadings, false));
    EXPECT_TRUE(parent.isEnabled());
    // A file makes no copies itself: one pass per copy, each in the same file.
    EXPECT_EQ(loadings.calls, (std::vector<std::string>{"begin landscape", "page 1", "page 3", "end copy", "page 1",
                                                         "page 3", "end copy", "end"}));
    const std::vector<std::string> pages = PdfPages(file);
    ASSERT_EQ(pages.size(), 6u);
    for (size_t k = 0; k < pages.size(); ++k) {
        SCOPED_TRACE(k);
        if (k % 3 == 1) {
            EXPECT_EQ(pages[k].find_first_not_of(" \n"), std::string::npos) << pages[k];
            continue;
        }
        const std::string footer = kProgram + "1.0 - page " + std::to_string(k % 3 + 1) + " - ";
        EXPECT_NE(pages[k].find(footer), std::string::npos) << pages[k];
    }
}

TEST(PrintTest, CancelLeavesEverythingAsItWas)
{
    korva::test::Application();
    TempDir folder;
    QWidget parent;
    Loadings loadings(&parent);
    TSPrinter printer;
    // The stored printer is gone: even without a prompt the dialog asks.
    printer.GetDialog()->GetPrinter().setPrinterName(QStringLiteral("No such printer"));
    for (bool prompt : {false, true}) {
        SCOPED_TRACE(prompt);
        if (prompt)
            PdfOutput(printer.GetDialog()->GetPrinter(), folder.File("never.pdf"), 1);
        bool asked = false;
        WhenModal([&asked](QWidget* dialog) {
            asked = true;
            Cancel(dialog);
        });
        EXPECT_FALSE(printer.Print(&parent, loadings, prompt));
        EXPECT_TRUE(asked);
        EXPECT_TRUE(loadings.calls.empty());
        EXPECT_TRUE(parent.isEnabled());
        EXPECT_EQ(printer.GetSetupError(), 0);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.File("never.pdf")));
}

TEST(PrintTest, TheDeviceContextIsHandedOverOnce)
{
    korva::test::Application();
    TempDir folder;
    TSPrinter printer;
    TSPrinter sharing = printer;
    PdfOutput(printer.GetDialog()->GetPrinter(), folder.File("once.pdf"), 3);

    WhenModal(Print);
    ASSERT_TRUE(sharing.ExecPrintDialog(nullptr));
    EXPECT_EQ(printer.GetSetup().nCopies, 3);
    EXPECT_EQ(printer.GetSetup().outputFileName, folder.File("once.pdf"));
    EXPECT_NE(printer.TransferDC(), nullptr);
    EXPECT_EQ(sharing.TransferDC(), nullptr);
    // Until the dialog makes a new one.
    ASSERT_TRUE(printer.GetDialog()->CreatePrinterDC());
    EXPECT_NE(sharing.TransferDC(), nullptr);
    EXPECT_EQ(printer.TransferDC(), nullptr);
}

TEST(PrintTest, WindowAsPictureBelowTheFooter)
{
    korva::test::Application();
    TempDir folder;
    const std::string file = folder.File("window.pdf");
    TsPrintDialog::SetDefaultSetup([&file](QPrinter& printer) { PdfOutput(printer, file, 2); });
    QLabel window(QStringLiteral("Scores of the first two components"));
    window.resize(400, 300);

    WhenModal(Cancel);
    PrintWindow(&window, "Scores plot", "Model 1");
    EXPECT_FALSE(std::filesystem::exists(file));

    WhenModal(Print);
    PrintWindow(&window, "Scores plot", "Model 1");
    TsPrintDialog::SetDefaultSetup(nullptr);
    const std::vector<std::string> pages = PdfPages(file);
    ASSERT_EQ(pages.size(), 2u);
    for (const std::string& page : pages) {
        EXPECT_EQ(page.find(kProgram + "1.0 - "), page.find_first_not_of(" \n")) << page;
        EXPECT_NE(page.find("Scores plot"), std::string::npos);
        EXPECT_NE(page.find("Model 1"), std::string::npos);
    }

    // A picture is needed; without a device nothing can be drawn.
    const QImage none;
    const QImage picture = CopyWindowToDIB(&window);
    EXPECT_EQ(picture.size(), window.size() * window.devicePixelRatio());
    EXPECT_EQ(PrintDIB(nullptr, ePrintBestFit, 1, 1, nullptr, 0), ePrintDIBNoBitmap);
    EXPECT_EQ(PrintDIB(&none, ePrintBestFit, 1, 1, nullptr, 0), ePrintDIBNoBitmap);
    EXPECT_EQ(PrintDIB(&picture, ePrintBestFit, 1, 1, nullptr, 0), ePrintDIBDrawFailed);
}

} // namespace
