#include <KORVAutlwin/toolkit/TSPrinter.h>

#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/toolkit/PrintDC.h>
#include <KORVAutlwin/toolkit/PrintOut.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>

#include <QApplication>
#include <QPointer>
#include <QPrinter>
#include <QWidget>

#include <algorithm>
#include <cerrno>

namespace {

// "No printer is ready: the job cannot start."
constexpr unsigned int IDS_NO_PRINTER_DC = 34400;

// The wait cursor for the job, put aside while a dialog asks the user.
class WaitCursor
{
public:
    WaitCursor() { Show(); }
    ~WaitCursor() { Hide(); }
    void Show()
    {
        if (!mShown && qobject_cast<QApplication*>(QCoreApplication::instance())) {
            QApplication::setOverrideCursor(Qt::WaitCursor);
            mShown = true;
        }
    }
    void Hide()
    {
        if (mShown)
            QApplication::restoreOverrideCursor();
        mShown = false;
    }

private:
    bool mShown = false;
};

// The parent stays disabled while the job runs, and comes back whatever happens.
class DisabledWindow
{
public:
    explicit DisabledWindow(QWidget* window) : mWindow(window)
    {
        if (mWindow)
            mWindow->setEnabled(false);
    }
    ~DisabledWindow()
    {
        if (mWindow)
            mWindow->setEnabled(true);
    }

private:
    QPointer<QWidget> mWindow;
};

} // namespace

PrintOut::~PrintOut() = default;

TSPrinter::TSPrinter()
{
    WinApp* app = WinApp::GetApp();
    mDialog = std::make_shared<TsPrintDialog>(false, kPrintFlags, app ? app->GetMainWnd() : nullptr);
}

TSPrinter::~TSPrinter() = default;

bool TSPrinter::ExecPrintDialog(QWidget* parent)
{
    if (!mDialog)
        return false;
    // As with every modal box: the application's modeless windows wait.
    WinApp* app = WinApp::GetApp();
    if (app)
        app->EnableModeless(false);
    const int result = mDialog->DoModal(parent);
    if (app)
        app->EnableModeless(true);
    return result == TsPrintDialog::IDOK;
}

bool TSPrinter::PrinterSetup(QWidget* parent)
{
    if (!mDialog)
        return false;
    TsPrintDialog setup(true, mDialog->GetFlags() | TsPrintDialog::PD_PRINTSETUP, nullptr);
    setup.GetPrinter().setPageLayout(mDialog->GetPrinter().pageLayout());
    WinApp* app = WinApp::GetApp();
    if (app)
        app->EnableModeless(false);
    QWidget* over = parent ? parent : (app ? app->GetMainWnd() : nullptr);
    const bool ok = setup.DoModal(over) == TsPrintDialog::IDOK;
    if (app)
        app->EnableModeless(true);
    if (ok)
        mDialog->GetPrinter().setPageLayout(setup.GetPrinter().pageLayout());
    return ok;
}

PDA TSPrinter::GetSetup() const
{
    return mDialog ? mDialog->GetData() : PDA{};
}

std::unique_ptr<PrintDC> TSPrinter::TransferDC()
{
    return mDialog ? mDialog->TakeDC() : nullptr;
}

void TSPrinter::ClearDevice()
{
    if (mDialog)
        mDialog->ClearDevice();
}

bool TSPrinter::Print(QWidget* parent, PrintOut& printOut, bool prompt)
{
    WaitCursor waitCursor;

    if (!mDialog)
        return false;
    if (prompt || !mDialog->CreatePrinterDC()) {
        waitCursor.Hide();
        const bool ok = ExecPrintDialog(parent);
        waitCursor.Show();
        if (!ok)
            return false;
    }

    std::unique_ptr<PrintDC> dc = TransferDC();
    if (!dc)
        throw Exception(LanguageString::Get(IDS_NO_PRINTER_DC));

    dc->GetPrinter().setPageOrientation(printOut.GetOrientation());
    mWidth = dc->GetDeviceCaps(PrintDC::HORZRES);
    mHeight = dc->GetDeviceCaps(PrintDC::VERTRES);
    printOut.BeginPrinting(*dc, mWidth, mHeight);

    // The device context was made from the dialog's printer: it is ready.
    DisabledWindow disabled(parent);
    const std::string name = printOut.GetDocumentName();
    int due = std::max(1, mDialog->GetData().nCopies);
    int mostAccepted = 1;
    do {
        int accepted = due;
        dc->Escape(PrintDC::SETCOPYCOUNT, due, &accepted);
        accepted = std::clamp(accepted, 1, due);
        mostAccepted = std::max(mostAccepted, accepted);

        mResult = dc->StartDoc(name.c_str());
        for (int page = printOut.GetFirstPage();
             mResult > 0 && page <= printOut.GetLastPage() && printOut.HasPage(page); ++page) {
            mPageRect = printOut.GetPageRect(page);
            if (dc->StartPage() > 0 && !mPageRect.isEmpty())
                printOut.PrintPage(*dc, page, mPageRect);
            mResult = dc->EndPage();
            // A page that reports nothing counts as done; a failure has the
            // system's last error added, as it always had.
            if (mResult == 0)
                mResult = 1;
            else if (mResult < 0)
                mResult += errno;
        }
        if (mResult > 0)
            dc->EndDoc();
        printOut.EndCopy();
        due -= accepted;
    } while (due > 0 && mResult > 0);

    printOut.EndPrinting();
    if (mostAccepted > 1)
        dc->Escape(PrintDC::SETCOPYCOUNT, 1, nullptr);
    return mResult > 0;
}
