#include <KORVAutlwin/toolkit/PrintDC.h>

#include <algorithm>

#include <QImage>
#include <QPainter>
#include <QPrinter>
#include <QRect>

PrintDC::PrintDC(std::unique_ptr<QPrinter> printer) : mPrinter(std::move(printer)), mPainter(new QPainter)
{
}

PrintDC::~PrintDC()
{
    if (!mPainter->isActive())
        return;
    if (mDocumentOpen || mDocumentsEnded == 0)
        mPrinter->abort();
    mPainter->end();
}

int PrintDC::GetDeviceCaps(int index) const
{
    switch (index) {
    case HORZRES: return mPrinter->width();
    case VERTRES: return mPrinter->height();
    case LOGPIXELSX: return mPrinter->logicalDpiX();
    case LOGPIXELSY: return mPrinter->logicalDpiY();
    default: return 0;
    }
}

int PrintDC::StartDoc(const char* name)
{
    if (mDocumentOpen)
        return -1;
    if (!mPainter->isActive()) {
        mPrinter->setDocName(QString::fromUtf8(name ? name : ""));
        if (!mPainter->begin(mPrinter.get()))
            return -1;
    }
    mDocumentOpen = true;
    return 1;
}

int PrintDC::StartPage()
{
    if (!mDocumentOpen || !mPainter->isActive())
        return -1;
    if (mPageOpen)
        return 1;
    // The output starts with a page; every later one is asked for.
    if (mPagesStarted > 0 && !mPrinter->newPage())
        return -1;
    ++mPagesStarted;
    mPageOpen = true;
    return 1;
}

int PrintDC::EndPage()
{
    if (!mDocumentOpen || !mPainter->isActive())
        return -1;
    mPageOpen = false;
    return 1;
}

int PrintDC::EndDoc()
{
    if (!mDocumentOpen)
        return -1;
    mPageOpen = false;
    mDocumentOpen = false;
    ++mDocumentsEnded;
    return 1;
}

int PrintDC::Escape(int escape, int input, int* output)
{
    switch (escape) {
    case QUERYESCSUPPORT:
        return input == NEWFRAME || input == SETCOPYCOUNT || input == QUERYESCSUPPORT ? 1 : 0;
    case NEWFRAME:
        return EndPage();
    case SETCOPYCOUNT: {
        // A device that makes copies itself takes them all; a file takes one at a time.
        const int accepted = mPrinter->supportsMultipleCopies() ? std::max(1, input) : 1;
        if (!mPainter->isActive())
            mPrinter->setCopyCount(accepted);
        if (output)
            *output = accepted;
        return 1;
    }
    default:
        return 0;
    }
}

int PrintDC::StretchDIBits(const QRect& target, const QImage& image)
{
    if (!mPainter->isActive() || image.isNull())
        return 0;
    mPainter->drawImage(target, image);
    return image.height();
}
