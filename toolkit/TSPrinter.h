#pragma once
/// \class TSPrinter
/// Runs a print job for a PrintOut: keeps the print dialog's settings between
/// jobs, takes the device context, and drives the document, copy and page
/// loops. Copies of a TSPrinter share the dialog.
///
/// Copies are asked of the device: one that makes them itself needs one pass,
/// a file gets one pass per copy. While the job runs the parent window is
/// disabled and the wait cursor shows; cancelling the dialog leaves the
/// PrintOut untouched.

#include <KORVAutlwin/toolkit/TsPrintDialog.h>

#include <QRect>

#include <memory>

class PrintDC;
class PrintOut;
class QWidget;

class TSPrinter
{
public:
    /// The dialog's flags: no selection, no page numbers, collate, no print-to-file box.
    static constexpr unsigned long kPrintFlags = 0x10001C;

    /// Makes the print dialog, owned by the application's main window when there is one.
    TSPrinter();
    virtual ~TSPrinter();
    TSPrinter(const TSPrinter&) = default;
    TSPrinter& operator=(const TSPrinter&) = default;

    /// Runs the print dialog over `parent`; true on OK, false on cancel or without a dialog.
    bool ExecPrintDialog(QWidget* parent);
    /// The same with the page setup dialog.
    bool PrinterSetup(QWidget* parent);
    /// A copy of the dialog's data.
    PDA GetSetup() const;
    /// The result of the last page call: above 0 while all is well.
    int GetSetupError() const { return mResult; }
    /// Moves the dialog's device context to the caller; null when there is none.
    std::unique_ptr<PrintDC> TransferDC();
    /// The dialog whose printer holds the settings; null when there is none.
    TsPrintDialog* GetDialog() const { return mDialog.get(); }

    /// Prints `printOut`. With `prompt` the print dialog asks first, and
    /// cancelling gives false with nothing printed; without it the stored
    /// settings apply, unless their printer is gone, when the dialog asks anyway.
    /// Throws an Exception when there is no device context. True when the last
    /// page call succeeded.
    virtual bool Print(QWidget* parent, PrintOut& printOut, bool prompt);

protected:
    /// Forgets the dialog's printer and its settings.
    void ClearDevice();

private:
    std::shared_ptr<TsPrintDialog> mDialog;
    QRect mPageRect;
    int mResult = 0;
    int mWidth = 0;  // HORZRES
    int mHeight = 0; // VERTRES
};
