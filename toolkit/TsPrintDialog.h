#pragma once
/// \class TsPrintDialog
/// The print dialog and what it keeps between jobs: the chosen printer and its
/// settings, and the device context that the last OK made, until a print job
/// takes it over.
///
/// On this platform the file entry of the dialog ("Print to File (PDF)") stands
/// in for the system's PDF printer, so it is offered whatever the flags say.

#include <QPointer>

#include <functional>
#include <memory>
#include <string>

class PrintDC;
class QPrinter;
class QWidget;

/// A copy of the print dialog's data.
struct PDA
{
    unsigned long Flags = 0;
    int nFromPage = 1;
    int nToPage = 1;
    int nMinPage = 1;
    int nMaxPage = 0xFFFF;
    int nCopies = 1;
    bool collate = false;
    std::string printerName;    // empty: the default printer
    std::string outputFileName; // a PDF file instead of a printer; empty for a printer
};

class TsPrintDialog
{
public:
    /// Flags of the dialog, with their numbers.
    enum : unsigned long
    {
        PD_NOSELECTION = 0x4,
        PD_NOPAGENUMS = 0x8,
        PD_COLLATE = 0x10,
        PD_PRINTSETUP = 0x40,
        PD_RETURNDC = 0x100,
        PD_USEDEVMODECOPIESANDCOLLATE = 0x40000,
        PD_HIDEPRINTTOFILE = 0x100000
    };
    /// Dialog results.
    enum EResult
    {
        IDOK = 1,
        IDCANCEL = 2
    };

    /// A print dialog (`printSetupOnly`: a page setup dialog) with `flags`,
    /// owned by `owner` (may be null). New dialogs first get what
    /// SetDefaultSetup gave.
    TsPrintDialog(bool printSetupOnly, unsigned long flags, QWidget* owner);
    ~TsPrintDialog();
    TsPrintDialog(const TsPrintDialog&) = delete;
    TsPrintDialog& operator=(const TsPrintDialog&) = delete;

    /// Shows the dialog modally over `parent` (null: the owner). IDOK or
    /// IDCANCEL; OK in a print dialog makes a new device context.
    int DoModal(QWidget* parent = nullptr);
    /// Makes a device context from the stored settings without asking; false,
    /// and none made, when the stored printer no longer exists.
    bool CreatePrinterDC();
    /// The device context that the last OK or CreatePrinterDC made, moved to
    /// the caller; null when there is none.
    std::unique_ptr<PrintDC> TakeDC();
    /// Forgets the chosen printer and its settings: the defaults apply again.
    void ClearDevice();

    /// The printer whose settings the dialog shows and keeps.
    QPrinter& GetPrinter() { return *mPrinter; }
    PDA GetData() const;
    unsigned long GetFlags() const { return mFlags; }

    /// Settings that every new dialog starts from, before the user's choice
    /// (a PDF file where no printer is installed, for example); empty: Qt's.
    static void SetDefaultSetup(std::function<void(QPrinter&)> setup);

private:
    std::unique_ptr<QPrinter> NewPrinter() const;
    std::unique_ptr<QPrinter> CopyOfPrinter() const;

    bool mPrintSetupOnly;
    unsigned long mFlags;
    QPointer<QWidget> mOwner;
    std::unique_ptr<QPrinter> mPrinter;
    std::unique_ptr<PrintDC> mDC;

    static std::function<void(QPrinter&)> msDefaultSetup;
};
