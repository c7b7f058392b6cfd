#include <KORVAutlwin/toolkit/TsPrintDialog.h>

#include <KORVAutlwin/toolkit/PrintDC.h>

#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

std::function<void(QPrinter&)> TsPrintDialog::msDefaultSetup;

TsPrintDialog::TsPrintDialog(bool printSetupOnly, unsigned long flags, QWidget* owner)
    : mPrintSetupOnly(printSetupOnly), mFlags(flags), mOwner(owner), mPrinter(NewPrinter())
{
    if (msDefaultSetup)
        msDefaultSetup(*mPrinter);
}

TsPrintDialog::~TsPrintDialog() = default;

void TsPrintDialog::SetDefaultSetup(std::function<void(QPrinter&)> setup)
{
    msDefaultSetup = std::move(setup);
}

std::unique_ptr<QPrinter> TsPrintDialog::NewPrinter() const
{
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setCollateCopies((mFlags & PD_COLLATE) != 0);
    return printer;
}

std::unique_ptr<QPrinter> TsPrintDialog::CopyOfPrinter() const
{
    auto copy = std::make_unique<QPrinter>(QPrinter::HighResolution);
    copy->setOutputFormat(mPrinter->outputFormat());
    if (mPrinter->outputFormat() == QPrinter::NativeFormat)
        copy->setPrinterName(mPrinter->printerName());
    else
        copy->setOutputFileName(mPrinter->outputFileName());
    copy->setPageLayout(mPrinter->pageLayout());
    copy->setCollateCopies(mPrinter->collateCopies());
    copy->setColorMode(mPrinter->colorMode());
    copy->setDuplex(mPrinter->duplex());
    copy->setFullPage(mPrinter->fullPage());
    copy->setDocName(mPrinter->docName());
    // Copies are asked of the device by the job itself.
    copy->setCopyCount(1);
    return copy;
}

int TsPrintDialog::DoModal(QWidget* parent)
{
    QWidget* over = parent ? parent : mOwner.data();
    if (mPrintSetupOnly) {
        QPageSetupDialog dialog(mPrinter.get(), over);
        return dialog.exec() == QDialog::Accepted ? IDOK : IDCANCEL;
    }
    QPrintDialog dialog(mPrinter.get(), over);
    QAbstractPrintDialog::PrintDialogOptions options = QAbstractPrintDialog::PrintToFile |
                                                       QAbstractPrintDialog::PrintShowPageSize |
                                                       QAbstractPrintDialog::PrintCollateCopies;
    if (!(mFlags & PD_NOSELECTION))
        options |= QAbstractPrintDialog::PrintSelection;
    if (!(mFlags & PD_NOPAGENUMS))
        options |= QAbstractPrintDialog::PrintPageRange;
    dialog.setOptions(options);
    if (dialog.exec() != QDialog::Accepted)
        return IDCANCEL;
    mDC = std::make_unique<PrintDC>(CopyOfPrinter());
    return IDOK;
}

bool TsPrintDialog::CreatePrinterDC()
{
    bool exists = false;
    if (mPrinter->outputFormat() == QPrinter::PdfFormat) {
        exists = !mPrinter->outputFileName().isEmpty();
    } else {
        const QString name = mPrinter->printerName();
        exists = name.isEmpty() ? !QPrinterInfo::defaultPrinter().isNull()
                                : QPrinterInfo::availablePrinterNames().contains(name);
    }
    if (!exists)
        return false;
    mDC = std::make_unique<PrintDC>(CopyOfPrinter());
    return true;
}

std::unique_ptr<PrintDC> TsPrintDialog::TakeDC()
{
    return std::move(mDC);
}

void TsPrintDialog::ClearDevice()
{
    mPrinter = NewPrinter();
}

PDA TsPrintDialog::GetData() const
{
    PDA data;
    data.Flags = mFlags;
    data.nFromPage = mPrinter->fromPage() > 0 ? mPrinter->fromPage() : data.nMinPage;
    data.nToPage = mPrinter->toPage() > 0 ? mPrinter->toPage() : data.nMaxPage;
    data.nCopies = mPrinter->copyCount();
    data.collate = mPrinter->collateCopies();
    if (mPrinter->outputFormat() == QPrinter::PdfFormat)
        data.outputFileName = mPrinter->outputFileName().toStdString();
    else
        data.printerName = mPrinter->printerName().toStdString();
    return data;
}
